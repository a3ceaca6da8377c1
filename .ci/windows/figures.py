#!/usr/bin/python3
"""Measures the program for Windows under Wine: virtual_screen figures.py BUILD

The yardstick for the start is an empty dialog, linked statically with the same Qt. Both take turns; each figure is a
median of the times from the start of the process to the last change of the screen before it stands still.
"""

import shutil
import statistics
import sys
import time
from pathlib import Path

from wine_session import Pixels, Wine, screen

BUILD = Path(sys.argv[1])
ROUNDS = 7
MEGABYTE = 1e6


def report(what, measured, unit, target, yardstick=None):
    value = measured / yardstick if yardstick else measured
    met = value <= target
    against = f", yardstick {yardstick:.2f} {unit}, ratio {value:.2f}" if yardstick else ""
    print(f"{what}: measured {measured:.2f} {unit}{against}, target {target}, {'met' if met else 'missed'}", flush=True)
    return met


def start_times(programs):
    wine, pixels = Wine(), Pixels()
    times = {program: [] for program in programs}
    for _ in range(ROUNDS):
        for program in programs:
            pixels.note()
            begun = time.perf_counter()
            wine.start(f"wine {program}")
            times[program].append(pixels.settle(begun))
            pixels.note()
            wine.run(f"wine taskkill /f /im {program.name}")
            pixels.settle()
    wine.end()
    return [statistics.median(times[program][1:]) for program in programs]


def main():
    layout = BUILD / "figures"
    shutil.rmtree(layout, ignore_errors=True)
    (layout / "bin").mkdir(parents=True)
    (layout / "Vexal").mkdir()
    shutil.copy(BUILD / "package/quorvane/bin/quorvane.exe", layout / "bin")
    shutil.copy(BUILD / "bin/label_dialog.exe", layout / "bin")
    shutil.copy(BUILD / "sample/灯具数据库.mdb", layout / "Vexal")
    ours, empty = start_times([layout / "bin" / name for name in ("quorvane.exe", "label_dialog.exe")])
    met = [report("start to the painted window", ours, "s", 2.0, empty),
           report("quorvane.exe", (layout / "bin/quorvane.exe").stat().st_size / MEGABYTE, "MB", 26),
           report("quorvane-setup.exe", (BUILD / "package/quorvane-setup.exe").stat().st_size / MEGABYTE, "MB", 12)]
    return 0 if all(met) else 1


if __name__ == "__main__":
    try:
        sys.exit(main())
    except screen.TimeLimit as limit:
        sys.exit(f"figures.py: {limit}")
