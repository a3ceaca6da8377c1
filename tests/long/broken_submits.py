#!/usr/bin/python3
"""Breaks each system call of a submit that changes the disk, one after the other, in the real program.

    tests/e2e/virtual_screen tests/long/broken_submits.py BINARIES kills|errors [NUMBER...]

A submit of a changed, a new and a deleted light source is hit at its Nth call that writes, syncs, cuts, names or
removes a file. DATABASE_KIND chooses the kind of file.

kills: the program ends there and is started again. The file must hold the statements up to one of them and no later
one. After every other kill the edits that were kept are restored and submitted; the file must then hold all of them.

errors: the call fails: once (an I/O error), or with all that follow (a full disk, a quota). So does each call that
reads, once. The program must go on, show the edits, tell the cause, and write them by another submit once the disk is in
order.
"""

import subprocess
import sys
import time

from runs import FLUX, Run, report
from screen import TimeLimit

WRITES = "pwrite64,fsync,fdatasync,ftruncate,rename,renameat,renameat2,link,linkat,unlink,unlinkat"
ADDED, DELETED = "KILL-1", "JC-HO24"  # models; no luminaire has the deleted one
# Which calls are broken, how, and what the messages may then say.
BREAKS = {"kills": [(WRITES, "signal=KILL:when={}", ())],
          "errors": [(WRITES, "error=ENOSPC:when={}+", ("磁盘已满", "No space")),
                     (WRITES, "error=EDQUOT:when={}+", ("磁盘已满", "quota")),
                     (WRITES, "error=EIO:when={}", ("数据库报告", "未能备份")),
                     ("pread64", "error=EIO:when={}", ("数据库报告", "未能备份"))]}
OLD_COPIES = [f"灯具数据库.mdb.2025-01-0{day}-080000.bak" for day in (1, 2, 3)]


def watch(program, called, *options):
    """Starts to watch, or to break, those calls of the program."""
    strace = subprocess.Popen(["strace", "-f", "-e", f"trace={called}", *options, "-p", str(program.process.pid)],
                              stderr=subprocess.PIPE, text=True)
    assert "attached" in strace.stderr.readline()
    return strace


def calls(strace):
    """Ends the watch; the calls that were made."""
    strace.terminate()
    return [line for line in strace.communicate(timeout=30)[1].splitlines() if "(" in line and "resumed" not in line]


def models(window):
    return [window.cell(row, "光源型号").get_name() for row in range(window.append_row())]


def delete(window):
    window.click_cell(models(window).index(DELETED), "光源型号")
    window.press_button("删除")
    window.program.message("确定是否删除").press_button("是")


def edit(window):
    window.enter(0, FLUX, "4321")
    window.type_along(window.append_row(), {"光源型号": ADDED})
    delete(window)
    time.sleep(3)  # edits are kept for a crash two seconds after they were made at the latest


def stored(before, after):
    """Of the three statements in their order, which are in the file; nothing else may have changed."""
    assert all(after[table] == rows for table, rows in before.items() if table != "光源"), "another table was changed"
    old, new = ({row["ID"]: row for row in rows["光源"]} for rows in (before, after))
    deleted = next(number for number, row in old.items() if row["LamphouseModel"] == DELETED)
    changed = next(number for number, row in old.items() if row["LamphouseType"] == old[deleted]["LamphouseType"])
    added = [row["LamphouseModel"] for number, row in new.items() if number not in old]
    result = [new[changed] == {**old[changed], "LuminousFlux": 4321}, added == [ADDED], deleted not in new]
    assert added in ([], [ADDED]) and (result[0] or new[changed] == old[changed]), "no statement does this"
    assert all(new[number] == old[number] for number in old.keys() - {changed, deleted}), "another row was changed"
    return result


def kill(run, before, strace, restores):
    run.window.press_button("提交")
    has_returned = False
    try:
        run.program.process.wait(timeout=10)
    except subprocess.TimeoutExpired:  # fewer calls were made than in the first run
        has_returned = True
        run.kill()
    calls(strace)
    told = run.submit() if run.start(restores) and restores else ""
    run.leave()
    result = stored(before, run.folder.everything())
    assert result == sorted(result, reverse=True) and (all(result) or not (restores or has_returned)), (result, told)
    return result


def fail(run, before, strace, causes):
    told = run.submit()
    injected = [call for call in calls(strace) if "INJECTED" in call]
    shown = models(run.window)
    assert run.window.cell(0, FLUX).get_name() == "4321" and ADDED in shown, f"no longer shown; {told}"
    assert any(cause in told for cause in causes) or not told and all(stored(before, run.folder.everything())), told
    if DELETED in shown:  # what could not be deleted comes back into sight
        delete(run.window)
    assert (again := run.submit()) == "", f"{told}, and again on a disk that is in order: {again}"
    run.leave()
    assert all(done := stored(before, run.folder.everything())), f"{done} after another submit; {told}"
    return f"{injected[:1]}: {told}"


def other_bytes(content):
    """The same database, but for a number in its first page that means nothing to the program."""
    place = 63 if content.startswith(b"SQLite") else 4000
    return content[:place] + bytes([content[place] ^ 1]) + content[place + 1:]


def broken(number, called, how, causes):
    """One submit, of which that call is broken; how many calls an unbroken one makes when number is 0."""
    with Run() as run:
        before = run.folder.everything()
        old_copies = [run.folder.database.with_name(name) for name in OLD_COPIES]
        for copy in old_copies:
            copy.write_bytes(other_bytes(run.folder.database.read_bytes()))
        edit(run.window)
        strace = watch(run.program, called, *(["-e", f"inject={called}:{how.format(number)}"] if number else []))
        if not number:
            run.submit()
            return len(calls(strace))
        result = fail(run, before, strace, causes) if causes else kill(run, before, strace, number % 2 == 0)
        copies = sorted(run.folder.database.parent.glob("*.bak"))
        assert len(copies) >= len(old_copies), "a copy went before there was a better one"
        new = [copy for copy in copies if copy not in old_copies]
        # Without room for a copy the program asks whether to go on.
        assert new or not (causes or any(result)) or "备份" in result, "there is no copy of what the file was before"
        assert all(run.folder.everything(copy) == before for copy in new[:1]), "the copy is not what the file was before"
        return result


def main():
    tried = failed = 0
    reached = []  # statements in the file after each kill without restored edits
    for called, how, causes in BREAKS[sys.argv[2]]:
        numbers = [int(number) for number in sys.argv[3:]] or range(1, broken(0, called, "", ()) + 1)
        for number in numbers:
            try:
                result = broken(number, called, how, causes)
                reached += [sum(result)] if not causes and number % 2 else []
            except (AssertionError, OSError, subprocess.SubprocessError, TimeLimit) as error:
                failed += 1
                result = f"FAILED {error!r}"
            tried += 1
            print(f"{called[:7]} {how.format(number)} {result}", flush=True)
    if reached != sorted(reached) or reached and not sys.argv[3:] and not set(reached) > {0, 3}:
        failed += 1  # a statement is in the file as soon as it has reported success, not only with the last one
        print(f"FAILED: after the kills the file held {reached} statements")
    return report("submits", tried, failed)


if __name__ == "__main__":
    sys.exit(main())
