#!/usr/bin/python3
"""The demonstration: the real program on a virtual screen, driven by keys and mouse, checked in its file.

    demo.py --build FOLDER --into FOLDER    pictures go to the second folder as 01-start.png, 02-...

To show another road, write a function that takes the story and put it into ROADS. It begins and ends with the
main window open and nothing left to submit.
"""

import argparse
import shutil
import sys
import unicodedata
from pathlib import Path

from driver import Program, ProgramFolder, VirtualScreen


class Failure(Exception):
    """The file does not hold what was typed."""


class Story:
    """What a road has at hand: the window, the file, and a way to tell and to show."""

    def __init__(self, screen, folder):
        self.screen, self.folder = screen, folder
        self.program = Program(screen, folder)
        self.window = self.program.main_window()
        self._pictures = 0

    def tell(self, text):
        print(f"demo: {text}", flush=True)

    def show(self, name):
        """A picture of the screen, numbered in the order of the story."""
        self._pictures += 1
        picture = self.folder.folder / f"{self._pictures:02}-{name}.png"
        self.screen.picture(picture)
        print(f"      picture {picture}", flush=True)

    def expect(self, holds, what):
        if not holds:
            raise Failure(what)


# Rows of the file, printed -------------------------------------------------------------------------------------

def columns_of(text):
    """How many columns of a terminal a text takes: a Chinese character takes two."""
    return sum(2 if unicodedata.east_asian_width(character) in "WF" else 1 for character in text)


def print_rows(title, rows, marks):
    """Prints rows as a table; marks tells, by ID, what stands before a row."""
    print(f"\n  {title}")
    lines = [list(rows[0])] + [[f"{value}" for value in row.values()] for row in rows]
    widths = [max(columns_of(line[column]) for line in lines) for column in range(len(lines[0]))]
    for mark, line in zip(["", *(marks.get(row["ID"], "") for row in rows)], lines):
        padded = (text + " " * (width - columns_of(text)) for text, width in zip(line, widths))
        print(f"    {mark:<8}{'  '.join(padded)}".rstrip())
    print(flush=True)


# The roads -----------------------------------------------------------------------------------------------------

NEW_FLUX = 2645
NEW_SOURCE = {"LamphouseName": "三基色直管荧光灯", "LamphouseModel": "DEMO-T5-28W/840", "LuminousFlux": 2750,
              "LamphousePower": 28}


def light_source_road(story):
    """Types a luminous flux, fills the append row, submits, and compares the file before and after."""
    window, folder = story.window, story.folder
    category = folder.first_category()
    before = folder.everything()

    story.tell(f"choosing the category “{category['name']}”")
    window.choose("按光源类型显示", category["name"])
    story.show("category")

    first = window.grid().row_texts(0)
    story.tell(f"typing {NEW_FLUX} lm over {first['光通量']} lm of {first['光源型号']}")
    window.enter(0, "光通量", f"{NEW_FLUX}")
    story.show("luminous-flux")

    story.tell(f"filling the append row with {NEW_SOURCE['LamphouseModel']}")
    row = window.append_row()
    window.click_cell(row, "名    称")
    for heading, value in zip(("名    称", "光源型号", "光通量", "功  率"), NEW_SOURCE.values()):
        story.screen.type_text(f"{value}")
        story.screen.press("Tab")
        window.wait_for_cell(row, heading, f"{value}")
    story.show("append-row")
    story.expect(folder.everything() == before, "the file was changed before the data were submitted")

    story.tell("submitting")
    window.press_button("提交")
    window.wait_for_cell(row, "序号", f"{row + 1}")
    story.show("submitted")

    after = folder.everything()
    compare_light_sources(story, category, first, before.pop("光源"), after.pop("光源"))
    story.expect(after == before, "another table of the file was changed")


def compare_light_sources(story, category, first, before, after):
    """Prints the category's rows before and after; fails unless just the typed values differ."""
    known = {row["ID"]: row for row in before}
    marks = {row["ID"]: "new" if row["ID"] not in known else "changed" for row in after
             if row != known.get(row["ID"])}
    for title, rows in (("before", before), ("after", after)):
        print_rows(f"{title}: 光源 in the file, category {category['ID']} ({len(rows)} rows in all categories)",
                   [row for row in rows if row["LamphouseType"] == category["ID"]], marks)

    changed = [row for row in after if marks.get(row["ID"]) == "changed"]
    added = [row for row in after if marks.get(row["ID"]) == "new"]
    story.expect(len(changed) == 1 and len(added) == 1 and len(after) == len(before) + 1,
                 f"one row changed and one new were expected, not {len(changed)} and {len(added)}")
    old = known[changed[0]["ID"]]
    story.expect(old["LamphouseModel"] == first["光源型号"] and changed[0] == {**old, "LuminousFlux": NEW_FLUX},
                 f"the changed row is {changed[0]}")
    story.expect({**added[0], **NEW_SOURCE, "LamphouseType": category["ID"]} == added[0],
                 f"the new row is {added[0]}")


def leave(story):
    story.tell("leaving with 退出")
    story.window.press_button("退出")
    story.expect(story.program.wait_for_end() == 0, "the program ended with a failure")


ROADS = [light_source_road]


def main():
    arguments = argparse.ArgumentParser()
    arguments.add_argument("--build", type=Path, required=True)
    arguments.add_argument("--into", type=Path, required=True)
    given = arguments.parse_args()

    shutil.rmtree(given.into, ignore_errors=True)
    with VirtualScreen() as screen:
        story = None
        try:
            story = Story(screen, ProgramFolder(given.into, given.build / "bin"))
            story.tell(f"started {story.folder.program}")
            story.show("start")
            for road in ROADS:
                road(story)
            leave(story)
        except Exception as error:
            screen.picture(given.into / "99-failure.png")
            print(f"demo: {type(error).__name__}: {error}", file=sys.stderr, flush=True)
            return 1
    print("demo: the file holds what was typed, and nothing else in it was changed")
    return 0


if __name__ == "__main__":
    sys.exit(main())
