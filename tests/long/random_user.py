#!/usr/bin/python3
"""A user who types at random, on the real program.

    tests/e2e/virtual_screen tests/long/random_user.py BINARIES SECONDS [SEED]

For half of the time the program is killed again and again in the middle of the work. At the next start the kept edits
are restored; each cell must show what was typed into it last, or, of what was typed in the last seconds before the
kill, any of it. For the other half one run of the program edits, undoes, changes tabs, loads and submits; its private
memory and open files must not grow. DATABASE_KIND chooses the kind of file.
"""

import os
import random
import statistics
import sys
import tempfile
import time
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent.parent / "e2e"))

import screen  # noqa: E402
from driver import Program, ProgramFolder  # noqa: E402

BINARIES, SECONDS = Path(sys.argv[1]).resolve(), float(sys.argv[2])
KIND = os.environ.get("DATABASE_KIND", "access")
LOST_AT_MOST = 4.0  # seconds of typing before a kill
GROWTH_AT_MOST = 1.1
CATEGORY, COLUMN = "T5直管荧光灯", "光通量"


def type_somewhere(window, rows, chance):
    row, value = chance.randrange(rows), str(chance.randrange(1, 9999))
    window.enter(row, COLUMN, value)
    return row, value


def one_crash(folder, chance):
    """One run of the program, killed while its user types; the rows that were not restored."""
    program = Program(folder)
    window = program.main_window()
    window.choose("按光源类型显示", CATEGORY)
    rows = window.append_row()
    allowed = [[window.cell(row, COLUMN).get_name()] for row in range(rows)]
    typed = []
    end = time.monotonic() + chance.uniform(6, 20)
    while time.monotonic() < end:
        typed.append((*type_somewhere(window, rows, chance), time.monotonic()))
    program.process.kill()
    killed = time.monotonic()
    program.wait_for_end()
    for row, value, when in typed:
        if when < killed - LOST_AT_MOST:
            allowed[row] = []
        allowed[row].append(value)
    program = Program(folder)
    if any(when < killed - LOST_AT_MOST for _, _, when in typed):
        program.message("是否恢复").press_button("是")  # the page shows the same light sources again
        window = program.main_window()
        window.wait_for_cell(rows, "序号", "追加")
    else:  # too early to tell
        program.process.kill()
        program.wait_for_end()
        for file in Path(os.environ["XDG_CONFIG_HOME"]).glob("quorvane/edits-*"):
            file.unlink()
        return []
    lost = [row for row in range(rows) if window.cell(row, COLUMN).get_name() not in allowed[row]]
    window.submit()
    window.press_button("退出")
    program.wait_for_end()
    return lost


def crashes(folder, chance):
    tried = failed = 0
    end = time.monotonic() + SECONDS / 2
    while time.monotonic() < end:
        lost = one_crash(folder, chance)
        tried, failed = tried + 1, failed + bool(lost)
        print(f"crash {tried}: {f'rows {lost} were not restored' if lost else 'all was restored'}", flush=True)
    print(f"crashes of a random user's program, {KIND}: {tried} tried, {failed} failed")
    return failed


def resources(program):
    """Private memory in kilobytes, and the number of open files."""
    place = Path("/proc") / str(program.process.pid)
    lines = (place / "smaps_rollup").read_text().splitlines()
    return (sum(int(line.split()[1]) for line in lines if line.startswith("Private_")),
            len(list((place / "fd").iterdir())))


def long_day(folder, chance):
    program = Program(folder)
    window = program.main_window()
    window.choose("按光源类型显示", CATEGORY)
    rows, seen = window.append_row(), []
    acts = [lambda: type_somewhere(window, rows, chance), lambda: screen.press("ctrl+z"),
            lambda: screen.press("ctrl+Page_Down", "ctrl+Page_Up"), lambda: window.submit()]
    end = time.monotonic() + SECONDS / 2
    while time.monotonic() < end:
        chance.choices(acts, weights=[20, 5, 2, 2])[0]()
        seen.append(resources(program))
    window.submit()
    window.press_button("退出")
    program.wait_for_end()
    quarter = len(seen) // 4
    grown = [statistics.median(late) / statistics.median(early)
             for early, late in zip(zip(*seen[quarter:2 * quarter]), zip(*seen[-quarter:]))]
    print(f"growth of memory and open files: {', '.join(f'{growth:.2f}' for growth in grown)}")
    failed = max(grown) > GROWTH_AT_MOST
    print(f"acts of a random user without growth, {KIND}: {len(seen)} tried, {int(failed)} failed")
    return failed


def main():
    chance = random.Random(int(sys.argv[3]) if len(sys.argv) > 3 else 1)
    failed = 0
    for part in (crashes, long_day):
        with tempfile.TemporaryDirectory() as place:
            folder = ProgramFolder(Path(place) / "installed", BINARIES)
            failed += part(folder, chance)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
