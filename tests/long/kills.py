#!/usr/bin/python3
"""Kills the real program at each system call of a submit that changes the disk, one after the other.

    tests/e2e/virtual_screen tests/long/kills.py BINARIES [EVERY]

A submit of a changed, a new and a deleted light source is killed at its Nth call that writes, syncs, cuts, renames or
removes a file, for every EVERYth N. The program is then started again. The file must hold the statements up to one of
them and no later one, and be one file. After every other kill the edits that were kept are restored and submitted; the
file must then hold all of them. DATABASE_KIND chooses the kind of file.
"""

import os
import subprocess
import sys
import tempfile
import time
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent.parent / "e2e"))

import screen  # noqa: E402
from driver import Program, ProgramFolder, Window, find_all  # noqa: E402

BINARIES = Path(sys.argv[1]).resolve()
EVERY = int(sys.argv[2]) if len(sys.argv) > 2 else 1
CALLS = "pwrite64,fsync,fdatasync,ftruncate,rename,renameat,renameat2,unlink,unlinkat"
CATEGORY, FLUX, MODEL = "T5直管荧光灯", "4321", "KILL-1"


def edit(window):
    window.choose("按光源类型显示", CATEGORY)
    window.enter(0, "光通量", FLUX)
    window.type_along(window.append_row(), {"光源型号": MODEL})
    window.click_cell(2, "光源型号")
    window.press_button("删除")
    window.program.message("确定是否删除").press_button("是")
    time.sleep(3)  # edits are kept for a crash two seconds after they were made at the latest


def submit_under_knife(program, number):
    """Submits while the program is killed at the call with that number, or none; the calls that were made."""
    with tempfile.NamedTemporaryFile("r") as log:
        knife = ["-e", f"inject={CALLS}:signal=KILL:when={number}"] if number else []
        strace = subprocess.Popen(["strace", "-f", "-e", f"trace={CALLS}", *knife, "-o", log.name,
                                   "-p", str(program.process.pid)], stderr=subprocess.PIPE, text=True)
        assert "attached" in strace.stderr.readline()
        screen.press("ctrl+s")
        try:
            program.process.wait(timeout=10 if number else 0)
        except subprocess.TimeoutExpired:  # fewer calls were made than the last time
            window = program.main_window()
            window.wait_for_cell(window.append_row() - 1, "序号", f"{window.append_row()}")
            strace.terminate()
            program.process.kill()
            program.wait_for_end()
        strace.wait(timeout=30)
        return [line for line in log.read().splitlines() if "(" in line and "resumed" not in line]


def settle_kept_edits(program, restores):
    """Answers the question whether kept edits shall be restored, if it comes, and submits them then."""
    try:
        question = program.wait_until(lambda: next(
            (window for window in program.windows()
             if any("是否恢复" in label.get_name() for label in find_all(window, "label"))), None), "a question", 4)
    except screen.TimeLimit:
        return
    Window(program, question).press_button("是" if restores else "否")
    if restores:
        program.main_window().submit()


def leave(program, window):
    window.press_button("退出")
    assert program.wait_for_end() == 0


def done(before, after, changed, deleted):
    """Of the three statements in their order, which are in the file; nothing else may have changed."""
    old = {row["ID"]: row for row in before.pop("光源")}
    new = {row["ID"]: row for row in after.pop("光源")}
    assert before == after, "another table was changed"
    added = [row for number, row in new.items() if number not in old]
    assert [row["LamphouseModel"] for row in added] in ([], [MODEL]), added
    result = [new[changed] == {**old[changed], "LuminousFlux": int(FLUX)}, bool(added), deleted not in new]
    assert result[0] or new[changed] == old[changed], new[changed]
    for number in old.keys() - {changed, deleted}:
        assert new[number] == old[number], new[number]
    return result


def cut(number):
    """One submit, killed at that call; how many calls an undisturbed one makes when number is 0."""
    with tempfile.TemporaryDirectory() as place:
        folder = ProgramFolder(Path(place) / "installed", BINARIES)
        before = folder.everything()
        category = next(row["ID"] for row in before["光源类别"] if row["LamphouseType"] == CATEGORY)
        shown = [row["ID"] for row in before["光源"] if row["LamphouseType"] == category]
        program = Program(folder)
        edit(program.main_window())
        calls = submit_under_knife(program, number)
        if not number:
            return len(calls)
        program = Program(folder)
        restores = number % 2 == 0
        settle_kept_edits(program, restores)
        leave(program, program.main_window())
        files = {file.name for file in folder.database.parent.iterdir() if ".bak" not in file.name}
        assert files == {folder.database.name, "LuminairePhotoLib"}, files
        result = done(before, folder.everything(), shown[0], shown[2])
        assert result == sorted(result, reverse=True), result
        assert all(result) or not restores, f"restored and submitted, but {result}"
        for file in Path(os.environ["XDG_CONFIG_HOME"]).glob("quorvane/edits-*"):
            file.unlink()
        return calls[-1].split(None, 1)[1] if calls else "nothing"


def main():
    count = cut(0)
    numbers = range(1, count + 1, EVERY)
    failed = 0
    for number in numbers:
        try:
            print(f"kill {number} of {count}: {cut(number)}", flush=True)
        except (AssertionError, OSError, subprocess.SubprocessError, screen.TimeLimit) as error:
            failed += 1
            print(f"kill {number} of {count} failed: {error}", flush=True)
    print(f"kills at the calls of a submit, {os.environ.get('DATABASE_KIND', 'access')}: "
          f"{len(numbers)} tried, {failed} failed")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
