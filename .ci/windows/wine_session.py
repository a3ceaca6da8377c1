"""Programs for Windows on the screen that this process runs on."""

import mmap
import os
import subprocess
import sys
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent.parent
sys.path.insert(0, str(ROOT / "tests" / "e2e"))

import screen  # noqa: E402, F401

STILL = 0.6  # seconds without a change; a text cursor blinks every 0.5 s, so none may be shown


class Wine:
    """A shell in the system with Wine, in which programs share one session of Windows."""

    def __init__(self):
        self._shell = subprocess.Popen([ROOT / ".ci/windows/in-wine", "bash"], stdin=subprocess.PIPE,
                                       stdout=subprocess.PIPE, text=True, cwd=ROOT)
        self.run("true")

    def run(self, command):
        """Runs a command line of the shell to its end; its status and what it printed."""
        self._send(f"{{ {command} ; }} 2>&1; printf '\\n=%d=\\n' $?")
        lines = []
        for line in self._shell.stdout:
            if line.startswith("=") and line.rstrip().endswith("="):
                return int(line.strip().strip("=")), "".join(lines).replace("\r", "")
            lines.append(line)
        raise RuntimeError("the shell has ended")

    def start(self, command):
        self._send(f"{{ {command} ; }} >/dev/null 2>&1 &")

    def end(self):
        self._shell.stdin.close()
        self._shell.wait(timeout=60)

    def _send(self, line):
        self._shell.stdin.write(line + "\n")
        self._shell.stdin.flush()


class Pixels:
    """The pixels of the screen, read from the file in which the screen keeps them."""

    def __init__(self):
        with open(os.environ["SCREEN_FILE"], "rb") as file:
            self._pixels = mmap.mmap(file.fileno(), 0, access=mmap.ACCESS_READ)
        self._shown = self._pixels[:]

    def settle(self, begun=None, limit=60):
        """Waits until the screen has changed and then stands still; the seconds from `begun` to its last change."""
        begun = begun or time.perf_counter()
        last = None
        while not last or time.perf_counter() - last < STILL:
            if (now := self._pixels[:]) != self._shown:
                self._shown, last = now, time.perf_counter()
            elif not last and time.perf_counter() - begun > limit:
                raise screen.TimeLimit("the screen did not change")
            time.sleep(0.002)
        return last - begun

    def note(self):
        """Takes what is shown now as the state from which settle waits for a change."""
        self._shown = self._pixels[:]
