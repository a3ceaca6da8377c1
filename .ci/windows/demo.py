#!/usr/bin/python3
"""Plays the program for Windows under Wine, by keys alone: virtual_screen demo.py BUILD

Changes a luminous flux, appends a light source and submits; compares the file before and after, as an independent
program reads it; leaves a picture of each tab and dialog in BUILD/demo.
"""

import csv
import shutil
import subprocess
import sys
import time
from pathlib import Path

from wine_session import Pixels, Wine, screen

BUILD = Path(sys.argv[1])
PLACE = BUILD / "demo"
DATABASE = PLACE / "Vexal/灯具数据库.mdb"
TABLES = ("光源类别", "光源", "灯具", "利用系数", "照度要求及功率密度")
FLUX = "2645"
SOURCE = {"LamphouseName": "三基色灯管", "LamphouseModel": "WINE-T5-28W", "LuminousFlux": "2750",
          "LamphousePower": "28", "Factory": "示范照明"}


def everything():
    def rows(table):
        text = subprocess.run(["mdb-export", DATABASE, table], check=True, capture_output=True, text=True).stdout
        return {row["ID"]: row for row in csv.DictReader(text.splitlines())}
    return {table: rows(table) for table in TABLES}


class Story:
    """The program on the screen, and the pictures taken of it."""

    def __init__(self, wine, argument=""):
        self._wine, self._pixels = wine, Pixels()
        wine.start(f"wine {PLACE}/bin/quorvane.exe {argument}")
        self._pixels.settle()

    def press(self, *keys):
        for key in keys:
            screen.press(key)
            time.sleep(0.4)

    def type(self, text):
        screen.type_text(text)
        time.sleep(0.5)

    def show(self, name):
        time.sleep(1.5)
        screen.picture(PLACE / f"{name}.png")
        print(f"    {name}.png", flush=True)

    def end(self):
        self._wine.run("wine taskkill /f /im quorvane.exe")
        time.sleep(1)



def edit_light_sources(wine):
    before = everything()
    story = Story(wine)
    story.press("Tab", "Tab", "Down", "Down")  # from the tabs over the kind of the slice to its list
    story.show("light-sources")
    story.press("Tab", "Tab", "Right", "Right", "Right")
    story.type(FLUX)
    story.press("Return", "Escape", "ctrl+End", "Home", "Right", "Right")
    for text in SOURCE.values():
        story.type(text)
        story.press("Tab")
    story.show("light-sources-appended")
    if everything() != before:
        sys.exit("demo.py: the file was changed before the data were submitted")
    story.press("Escape", "ctrl+End", "Tab", "space")
    story.show("light-sources-submitted")
    story.end()
    compare(before, everything())


def compare(before, after):
    changed = {table: {number: row for number, row in after[table].items() if before[table].get(number) != row}
               for table in TABLES}
    new = [row for number, row in changed["光源"].items() if number not in before["光源"]]
    old = [row for number, row in changed["光源"].items() if number in before["光源"]]
    print(f"    new row: {new}\n    changed row: {old}", flush=True)
    right = (len(new) == len(old) == 1 and new[0] == {**new[0], **SOURCE} and
             old[0] == {**before["光源"][old[0]["ID"]], "LuminousFlux": FLUX} and
             not any(rows for table, rows in changed.items() if table != "光源") and
             all(after[table].keys() >= before[table].keys() for table in TABLES))
    if not right:
        sys.exit("demo.py: the file does not hold exactly what was typed")


def show_luminaires(wine):
    # The list entry of the category, the columns from the last one to the cell with the button, the picture.
    for entry, columns, name in ((2, 0, "factor-table"), (2, 2, "photo"), (2, 8, "type-chooser"), (6, 7, "mixed-light")):
        story = Story(wine, "灯具管理器")
        story.press("Tab", *["Down"] * entry, "Tab", "Tab")
        story.show(f"luminaires-{entry}")
        story.press("End", *["Left"] * columns, "space")
        story.show(name)
        story.end()


def show_requirements(wine):
    story = Story(wine, "照度管理器")
    story.press("Tab", "Down", "Right", "Down")
    story.show("requirements")
    wine.start(f"wine {PLACE}/bin/quorvane.exe; echo $? >{PLACE}/second-copy")
    screen.wait_until(lambda: (PLACE / "second-copy").exists(), "the end of the second copy")
    story.show("after-a-second-start")
    story.end()


def main():
    shutil.rmtree(PLACE, ignore_errors=True)
    (PLACE / "bin").mkdir(parents=True)
    shutil.copy(BUILD / "bin/quorvane.exe", PLACE / "bin")
    shutil.copytree(BUILD / "sample", PLACE / "Vexal")
    wine = Wine()
    edit_light_sources(wine)
    show_luminaires(wine)
    show_requirements(wine)
    wine.end()


if __name__ == "__main__":
    try:
        main()
    except screen.TimeLimit as limit:
        sys.exit(f"demo.py: {limit}")
