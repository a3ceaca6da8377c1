#!/usr/bin/python3
"""The demonstration: the real program on a virtual screen, driven by keys and mouse, checked in its file.

    virtual_screen demo.py --build FOLDER --into FOLDER [--docs FOLDER]

Pictures go to the second folder as 01-start.png, 02-...; those that the documents show are copied to the third.

To show another road, write a function that takes the story into a road_*.py and put it into ROADS. It begins and
ends with the main window open and nothing left to submit.
"""

import argparse
import shutil
import sys
from pathlib import Path

import screen
from driver import ProgramFolder
from road_factor_table import factor_table_road
from road_luminaires import luminaire_road
from road_records import light_source_road, requirement_road
from road_recovery import recovery_road
from road_spreadsheet import spreadsheet_road
from story import Story

ROADS = [light_source_road, requirement_road, factor_table_road, luminaire_road, spreadsheet_road, recovery_road]

# The pictures that the documents show.
DOCUMENTED = ["main-window", "light-sources-append", "requirements", "luminaires", "type-chooser", "mixed-light",
              "photo", "factor-menu", "factor-table", "mixed-light-row", "found", "plot", "recovery"]


def main():
    arguments = argparse.ArgumentParser()
    for name in ("--build", "--into", "--docs"):
        arguments.add_argument(name, type=Path, required=name != "--docs")
    given = arguments.parse_args()

    shutil.rmtree(given.into, ignore_errors=True)
    try:
        story = Story(ProgramFolder(given.into, given.build / "bin"))
        story.tell(f"started {story.folder.program}")
        story.show("start")
        for road in ROADS:
            road(story)
        story.tell("leaving with 退出")
        story.window.press_button("退出")
        story.expect(story.program.wait_for_end() == 0, "the program ended with a failure")
    except Exception as error:
        screen.picture(given.into / "99-failure.png")
        print(f"demo: {type(error).__name__}: {error}", file=sys.stderr, flush=True)
        return 1
    for name in DOCUMENTED if given.docs else ():
        shutil.copyfile(min(given.into.glob(f"[0-9][0-9]-{name}.png")), given.docs / f"{name}.png")
    print("demo: the file holds what was typed, and nothing else in it was changed")
    return 0


if __name__ == "__main__":
    sys.exit(main())
