"""What the long tests share: a program that is broken and started again, on a database of its own."""

import os
import subprocess
import sys
import tempfile
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent.parent / "e2e"))

from driver import MAIN_TITLE, Program, ProgramFolder, Window, caption, find_all, has  # noqa: E402

BINARIES = Path(sys.argv[1]).resolve()
CATEGORY, FLUX = "T5直管荧光灯", "光通量"


def kept_edits():
    return list(Path(os.environ["XDG_CONFIG_HOME"]).glob("quorvane/edits-*"))


class Run:
    """The program, started once or more often, and its window with the light sources of CATEGORY."""

    def __enter__(self):
        self._place = tempfile.TemporaryDirectory()
        self.folder = ProgramFolder(Path(self._place.name) / "installed", BINARIES)
        for file in kept_edits():  # of an earlier run that failed
            file.unlink()
        self.start()
        return self

    def __exit__(self, *_):
        self.kill()
        self._place.cleanup()

    def start(self, restores=True):
        """Restores the edits of a killed program, or drops them. Whether there were any."""
        were_kept = bool(kept_edits())
        self.program = Program(self.folder)
        if were_kept:
            self.program.message("是否恢复").press_button("是" if restores else "否")
            self.program.wait_until(self._is_settled, "the main window")
        self.window = self.program.main_window()
        if not (were_kept and restores):  # what is restored shows what was shown
            self.window.choose("按光源类型显示", CATEGORY)
        return were_kept

    def _is_settled(self):
        """Confirms the list of edits that the file contradicts: a submit came after they were kept."""
        front = next((one for one in self.program.windows() if has(one, "ACTIVE")), None)
        if front and find_all(front, "push button", "确定"):
            Window(self.program, front).press_button("确定")
        return front and caption(front) == MAIN_TITLE

    def kill(self):
        self.program.process.kill()
        self.program.wait_for_end()

    def submit(self):
        """Submits, and says Yes or OK to each message; what they told."""
        told = []
        self.window.press_button("提交")
        button = self.window.find("push button", "提交")
        while (front := self.program.wait_until(lambda: self._usable(button), "the end of a submit")) is not button:
            told += [label.get_name() for label in find_all(front, "label") if label.get_name()]
            message = Window(self.program, front)
            message.press_button("是" if find_all(front, "push button", "是") else "确定")
            message.wait_until_closed()
        return " ".join(told)

    def _usable(self, button):
        """The message that asks, or the button once no submit goes on."""
        message = next((one for one in self.program.windows() if one != self.window.element and has(one, "ACTIVE")), None)
        return message or (has(button, "FOCUSED") and has(button, "SENSITIVE") and has(self.window.element, "ACTIVE")
                           and button)

    def leave(self):
        """Ends the program as a user does. The database must be one sound file then, and each copy of it as sound."""
        self.window.press_button("退出")
        assert self.program.wait_for_end() == 0, "the program did not end as it should"
        names = {file.name for file in self.folder.database.parent.iterdir() if file.suffix != ".bak"}
        assert names == {self.folder.database.name, "LuminairePhotoLib"}, f"it left {names}"
        for file in self.folder.database.parent.glob("*.mdb*"):
            check = subprocess.run([BINARIES / "quorvane-sample-database", "--check", file], text=True,
                                   stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
            assert check.returncode == 0, f"{file.name}: {check.stdout}"


def report(what, tried, failed):
    """The last line of a long test, which .ci/long reads."""
    print(f"{what}: {tried} tried, {failed} failed", flush=True)
    return 1 if failed else 0
