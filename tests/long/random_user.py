#!/usr/bin/python3
"""A user who types, undoes and submits at random, on the real program.

    tests/e2e/virtual_screen tests/long/random_user.py BINARIES crashes|day SECONDS [SEED]

crashes: the program is killed in the middle of the work, again and again. After each start the kept edits are restored.
The page must then show what it showed at one of the last moments before the kill.

day: one run of the program, in which the user changes tabs and loads as well. Its private memory and its open files must
not grow. DATABASE_KIND chooses the kind of file.
"""

import random
import statistics
import sys
import time
from pathlib import Path

from runs import CATEGORY, FLUX, Run, report

import screen

LOST_AT_MOST = 4.0  # seconds of work before a kill
GROWTH_AT_MOST = 1.1
ROWS = 6


def fluxes(window):
    return [window.cell(row, FLUX).get_name() for row in range(ROWS)]


class User:
    """Works in one column of the first rows, and knows what the page must show: each state with the time it came."""

    def __init__(self, window, chance):
        self._window, self._chance, self._undo = window, chance, []
        self.states = [(0.0, fluxes(window))]

    def act(self):
        act = self._chance.choices(("type", "undo", "submit"), weights=(20, 6, 1))[0]
        texts = list(self.states[-1][1])
        if act == "submit":
            self._window.submit()
            self._undo.clear()  # a submit ends the history
        elif act == "undo" and self._undo:
            self._window.click_cell(0, "序号")  # leaves the cell that Enter has gone on to
            screen.press("ctrl+z")
            row, texts[row] = self._undo.pop()
            self._window.wait_for_cell(row, FLUX, texts[row])
        else:
            row, text = self._chance.randrange(ROWS), str(self._chance.randrange(10000, 99999))
            self._undo.append((row, texts[row]))
            self._window.enter(row, FLUX, text)
            texts[row] = text
        self.states.append((time.monotonic(), texts))


def crashes(run, chance, end):
    tried = failed = 0
    while time.monotonic() < end:
        user, kill = User(run.window, chance), time.monotonic() + chance.uniform(4, 20)
        while time.monotonic() < kill:
            user.act()
        run.kill()
        oldest = time.monotonic() - LOST_AT_MOST
        run.start()
        # What was shown at that time is the last state before it.
        first = max(number for number, (when, _) in enumerate(user.states) if when <= oldest or number == 0)
        now = fluxes(run.window)
        is_lost = now not in [texts for _, texts in user.states[first:]]
        tried, failed = tried + 1, failed + is_lost
        print(f"crash {tried}: {f'{now} after {user.states}' if is_lost else 'restored'}", flush=True)
        run.submit()
    run.leave()
    return report("crashes", tried, failed)


def resources(program):
    """Private memory in kilobytes, and the number of open files."""
    place = Path("/proc") / str(program.process.pid)
    lines = (place / "smaps_rollup").read_text().splitlines()
    return (sum(int(line.split()[1]) for line in lines if line.startswith("Private_")),
            len(list((place / "fd").iterdir())))


def day(run, chance, end):
    def load():
        run.submit()
        run.window.choose("按光源类型显示", "荧光高压汞灯")
        run.window.choose("按光源类型显示", CATEGORY)
        return User(run.window, chance)

    user, seen = load(), []
    while time.monotonic() < end:
        act = chance.choices(("work", "tabs", "load"), weights=(20, 2, 1))[0]
        if act == "work":
            user.act()
        elif act == "tabs":
            screen.press("ctrl+Page_Down", "ctrl+Page_Up")
        else:
            user = load()
        seen.append(resources(run.program))
    load()
    run.leave()
    quarter = len(seen) // 4
    grown = [statistics.median(late) / statistics.median(early)
             for early, late in zip(zip(*seen[quarter:2 * quarter]), zip(*seen[-quarter:]))]
    print(f"memory and open files at first {seen[quarter]}, at last {seen[-1]}, growth {grown}")
    return report("acts", len(seen), sum(growth > GROWTH_AT_MOST for growth in grown))


def main():
    chance = random.Random(int(sys.argv[4]) if len(sys.argv) > 4 else 1)
    with Run() as run:
        return {"crashes": crashes, "day": day}[sys.argv[2]](run, chance, time.monotonic() + float(sys.argv[3]))


if __name__ == "__main__":
    sys.exit(main())
