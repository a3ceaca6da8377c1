#!/usr/bin/python3
"""Measures the release program from outside, with files of both kinds, against a minimal dialog and against DB Browser
for SQLite, which shows the SQLite file.

    tests/e2e/virtual_screen benchmarks/outside.py BINARIES PICTURES

A time runs from a start, key or click to the last change of the screen before it stands still. The pixels are read
from the file in which the screen keeps them. All programs take turns; each figure is a median. A picture of what the
screen showed when it stood still is left in the folder PICTURES for each figure.
"""

import mmap
import os
import shutil
import sqlite3
import statistics
import subprocess
import sys
import tempfile
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
sys.path.insert(0, str(ROOT / "tests" / "e2e"))

import driver  # noqa: E402
import screen  # noqa: E402

BINARIES, PICTURES = (Path(argument).resolve() for argument in sys.argv[1:])
ROUNDS = 9  # with 5, a start without the disk cache was at times faster than one with it
ROWS = 100_000
PEER = "DB Browser for SQLite"
KINDS = {"sqlite": "SQLite", "access": "Access"}
STILL = 0.45  # seconds without a change; a text cursor blinks every 0.5 s

_file = open(os.environ["SCREEN_FILE"], "rb")
_pixels = mmap.mmap(_file.fileno(), 0, access=mmap.ACCESS_READ)


def settle(begun):
    """Waits until the screen has changed and then stands still; milliseconds from `begun` to its last change."""
    shown, last = settle.shown, None
    while not last or time.perf_counter() - last < STILL:
        if (now := _pixels[:]) != shown:
            shown, last = now, time.perf_counter()
        elif not last and time.perf_counter() - begun > 30:
            raise screen.TimeLimit("nothing was painted")
        time.sleep(0.001)
    settle.shown = shown
    return (last - begun) * 1000


settle.shown = b""


class Running:
    """A program that was started; its time until its window stands still is `start`."""

    def __init__(self, *command):
        environment = {name: value for name, value in os.environ.items() if "ACCESSIBILITY" not in name}
        settle.shown = _pixels[:]
        begun = time.perf_counter()
        self.process = subprocess.Popen(command, env=environment, stderr=subprocess.DEVNULL)
        self.start = settle(begun)

    def keys(self, *names):
        """Milliseconds from these keys to a picture that stands still. Between keys xdotool would wait 12 ms."""
        settle.shown = _pixels[:]
        begun = time.perf_counter()
        subprocess.run(["xdotool", "key", "--delay", "0", *names], check=True)
        return settle(begun)

    def click(self, place):
        """Milliseconds from a click to a picture that stands still. The pointer has come to rest before."""
        screen.move(*place)
        while (now := _pixels[:]) != settle.shown:
            settle.shown = now
            time.sleep(STILL)
        begun = time.perf_counter()
        subprocess.run(["xdotool", "click", "1"], check=True)
        return settle(begun)

    def memory(self, *kinds):
        """Megabytes of these kinds. Private memory holds the pages of library files that no other process has loaded
        at the moment, so it depends on what else runs; written memory does not."""
        lines = Path(f"/proc/{self.process.pid}/smaps_rollup").read_text().splitlines()
        return sum(int(line.split()[1]) for line in lines if line.startswith(kinds)) / 1024

    def end(self):
        self.process.kill()
        self.process.wait()
        settle(time.perf_counter())


class Places:
    """Where to click, learnt through the accessibility of programs that are not measured."""

    def __init__(self, folder, peer_file):
        program = driver.Program(folder)
        window = program.main_window()
        box = driver.find_all(window.element, "combo box")[0]
        self.categories = driver.centre(box)
        left, top, width, _ = driver.rectangle(window.find("table"))
        self.cell = left + width // 3, top + 30
        entries = program.wait_until(lambda: driver.children(driver.children(box)[0]), "the categories")
        self.last_category = entries[-1].get_name()
        program.process.kill()
        program.wait_for_end()
        peer = subprocess.Popen(["sqlitebrowser", peer_file], stderr=subprocess.DEVNULL)
        program.process = peer
        window = driver.Window(program, program.wait_until(lambda: next(iter(program.windows()), None), "the peer"))
        self.browse = driver.centre(window.find("page tab", "Browse Data"))
        screen.click(*self.browse)
        left, top, width, _ = driver.rectangle(window.find("table"))
        self.peer_cell = left + width // 3, top + 70
        peer.kill()
        peer.wait()


def add_light_sources(file, category):
    connection = sqlite3.connect(file)
    with connection:
        (number,), = connection.execute("select ID from 光源类别 where LamphouseType = ?", [category])
        connection.executemany(
            "insert into 光源 (LamphouseType, LamphouseName, LamphouseModel, LuminousFlux, LamphousePower, Factory) "
            "values (?, ?, ?, ?, ?, ?)",
            ((number, "直管荧光灯", f"TL-{row:06}", 1000 + row % 3000, 8 + row % 60, f"厂家{row % 40}")
             for row in range(ROWS)))
    connection.close()


def copy_light_sources(source, target):
    """A file with the light sources alone, because the peer first shows the table that it lists first."""
    connection = sqlite3.connect(target)
    connection.execute("attach ? as source", [str(source)])
    (statement,), = connection.execute("select sql from source.sqlite_master where name = '光源'")
    with connection:
        connection.execute(statement.replace("AUTOINCREMENT", ""))
        connection.execute("insert into main.光源 select * from source.光源")
    connection.close()
    return target


def leave_cache(file):
    """Makes the next reader of the file wait for the disk."""
    with open(file, "rb") as opened:
        os.fsync(opened.fileno())
        os.posix_fadvise(opened.fileno(), 0, 0, os.POSIX_FADV_DONTNEED)


def make_files(place):
    """By kind the folders of the program with few and with many rows, the peer's files, and where to click."""
    small, large = ({kind: driver.ProgramFolder(place / f"{size}-{kind}", BINARIES, kind) for kind in KINDS}
                    for size in ("small", "large"))
    source = large["sqlite"].database
    peer_small = shutil.copy2(small["sqlite"].database, place / "small.db")
    places = Places(small["sqlite"], peer_small)
    add_light_sources(source, places.last_category)
    target = shutil.copyfile(ROOT / "tools" / "data" / "empty.mdb", large["access"].database)
    subprocess.run([BINARIES / "quorvane-convert", source, target], check=True, stdout=subprocess.DEVNULL)
    return small, large, peer_small, copy_light_sources(source, place / "large.db"), places


def measure(place):
    small, large, peer_small, peer_large, places = make_files(place)
    os.sync()  # pages of a file that the disk does not have yet would count as written by the program that maps them
    figures = {}
    PICTURES.mkdir(parents=True, exist_ok=True)

    def note(name, value):
        figures.setdefault(name, []).append(value)
        screen.picture(PICTURES / f"{name.replace(' ', '-')}.png")

    def start(name, *command):
        running = Running(*command)
        note(name, running.start)
        return running

    for _ in range(ROUNDS):
        start("label", BINARIES / "label_dialog").end()
        start("small peer", "sqlitebrowser", peer_small).end()
        for kind in KINDS:
            start(f"small {kind}", small[kind].program).end()
            leave_cache(small[kind].database)
            start(f"small cold {kind}", small[kind].program).end()
            leave_cache(large[kind].database)
            start(f"large cold {kind}", large[kind].program).end()
            program = start(f"large {kind}", large[kind].program)
            program.click(places.categories)
            program.keys("End")
            note(f"category {kind}", program.keys("Return"))
            program.click(places.cell)
            note(f"end {kind}", program.keys("ctrl+End"))
            note(f"memory {kind}", program.memory("Private_Clean", "Private_Dirty"))
            note(f"written {kind}", program.memory("Private_Dirty"))
            program.end()
        peer = start("large peer", "sqlitebrowser", peer_large)
        note("category peer", peer.click(places.browse))
        peer.click(places.peer_cell)
        note("end peer", peer.keys("ctrl+End"))
        note("memory peer", peer.memory("Private_Clean", "Private_Dirty"))
        note("written peer", peer.memory("Private_Dirty"))
        peer.end()
    return {name: statistics.median(values) for name, values in figures.items()}


def rows_of_table(kind):
    """What, unit, figure, yardstick, the yardstick's name, target."""
    file = KINDS[kind]
    return [
        (f"start to painted window, from outside, {file}", "ms", f"small {kind}", "label",
         "dialog with one label", 1.25),
        (f"start to painted window, from outside, {file}", "ms", f"small {kind}", "small peer", PEER, 0.30),
        (f"start with {ROWS:,} more light sources, {file}", "ms", f"large {kind}", f"small {kind}",
         "start with the small file", 1.2),
        (f"the same, not in memory, {file}", "ms", f"large cold {kind}", f"small cold {kind}",
         "small file not in memory", 1.2),
        (f"choosing {ROWS:,} light sources, {file}", "ms", f"category {kind}", "category peer",
         f"{PEER}, Browse Data", 0.7),
        (f"Ctrl+End there, {file}", "ms", f"end {kind}", "end peer", PEER, 0.5),
        (f"private memory after both, {file}", "MB", f"memory {kind}", "memory peer", PEER, 0.35),
        (f"the part of it that was written, {file}", "MB", f"written {kind}", "written peer", PEER, 0.35),
    ]


def main():
    with tempfile.TemporaryDirectory() as place:
        figures = measure(Path(place))
    not_met = 0
    for what, unit, name, yardstick, whose, target in (row for kind in KINDS for row in rows_of_table(kind)):
        ratio = figures[name] / figures[yardstick]
        not_met += ratio > target
        print(f"{what} ({whose}): measured {figures[name]:.1f} {unit}, yardstick {figures[yardstick]:.1f} {unit}, "
              f"ratio {ratio:.2f}, target {target:.2f}, {'not met' if ratio > target else 'met'}")
    return 1 if not_met else 0


if __name__ == "__main__":
    sys.exit(main())
