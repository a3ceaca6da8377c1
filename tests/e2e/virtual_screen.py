#!/usr/bin/python3
"""A screen of its own, with a window manager and a session bus, for programs that nobody watches.

As a program: virtual_screen.py COMMAND [ARGUMENT...] runs the command there and ends with its status.
"""

import os
import select
import shutil
import signal
import subprocess
import sys
import tempfile
import time
from pathlib import Path


class TimeLimit(Exception):
    """Something awaited did not come in time."""


def wait_until(condition, what, limit=30.0):
    """Asks until condition() gives something true, and returns that; TimeLimit names `what` after limit seconds."""
    end = time.monotonic() + limit
    while not (result := condition()):
        if time.monotonic() > end:
            raise TimeLimit(f"waited {limit:g} s in vain: {what}")
        time.sleep(0.03)
    return result


class VirtualScreen:
    """1280 by 1024 pixels at 96 dpi. Use it in a with statement: all that it started ends with it."""

    def __init__(self):
        self._processes = []
        self._desktops = 2
        self._keys = {}  # character -> key that was given to it
        self._folder = Path(tempfile.mkdtemp(prefix="quorvane-screen-"))
        # Settings of the person who runs this (scaling, styles, input methods, another lock) must not reach in.
        self.environment = {name: value for name, value in os.environ.items()
                            if not name.startswith(("QT_", "XDG_", "DBUS_", "WAYLAND_", "XMODIFIERS"))}
        self.environment.update(
            LC_ALL="C.UTF-8",
            QT_QPA_PLATFORM="xcb",
            QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1",
            NO_AT_BRIDGE="1",  # for the window manager and other bystanders
            TMPDIR=self._own_folder("tmp"),
            XDG_RUNTIME_DIR=self._own_folder("runtime"),
            XDG_CONFIG_HOME=self._own_folder("config"))

    def _own_folder(self, name):
        (self._folder / name).mkdir(mode=0o700)
        return str(self._folder / name)

    def __enter__(self):
        for number in (signal.SIGTERM, signal.SIGHUP):
            signal.signal(number, lambda caught, _frame: sys.exit(128 + caught))
        try:
            display = self._start_and_read("Xvfb", "-displayfd", "{fd}", "-screen", "0", "1280x1024x24",
                                           "-dpi", "96", "-nolisten", "tcp", "-noreset")
            self.environment["DISPLAY"] = f":{display}"
            self.environment["DBUS_SESSION_BUS_ADDRESS"] = self._start_and_read(
                "dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address={fd}")
            self.start("openbox", "--sm-disable")
            wait_until(lambda: self._run("xdotool", "get_num_desktops", check=False).returncode == 0,
                       "the window manager")
            # The very first key makes the server change keyboards, and the window manager grab its keys anew.
            self.press("Shift_L")
            self._await_window_manager()
        except BaseException:
            self._end()
            raise
        return self

    def __exit__(self, *_reason):
        self._end()

    def _end(self):
        for process in reversed(self._processes):
            process.kill()
            process.wait()
        self._processes.clear()
        shutil.rmtree(self._folder, ignore_errors=True)

    def start(self, *command, **options):
        """Starts a program on this screen. It ends with this process, even if this one is killed."""
        options.setdefault("stdout", subprocess.DEVNULL)
        options.setdefault("stderr", subprocess.DEVNULL)
        process = subprocess.Popen(["setpriv", "--pdeathsig", "KILL", *command], env=self.environment,
                                   stdin=subprocess.DEVNULL, **options)
        self._processes.append(process)
        return process

    def _start_and_read(self, *command):
        """Starts a server that tells one line about itself on the descriptor put for {fd}; returns the line."""
        reader, writer = os.pipe()
        try:
            self.start(*(part.replace("{fd}", str(writer)) for part in command), pass_fds=[writer])
            os.close(writer)
            told = b""
            while not told.endswith(b"\n"):
                if not select.select([reader], [], [], 30)[0] or not (piece := os.read(reader, 4096)):
                    raise TimeLimit(f"{command[0]} did not start")
                told += piece
            return told.decode().strip()
        finally:
            os.close(reader)

    def _run(self, *command, check=True):
        return subprocess.run(command, env=self.environment, check=check, timeout=60, text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)

    def _await_window_manager(self):
        """Gives it a small task and waits for the outcome; by then it has done all that came before."""
        self._desktops = 5 - self._desktops
        self._run("xdotool", "set_num_desktops", str(self._desktops))
        wait_until(lambda: self._run("xdotool", "get_num_desktops").stdout.strip() == str(self._desktops),
                   "the window manager's answer")

    # Mouse, keys, pictures ------------------------------------------------------------------------------------

    def click(self, x, y, button=1, times=1):
        self._run("xdotool", "mousemove", str(x), str(y), "click", "--repeat", str(times), "--delay", "40",
                  str(button))

    def move(self, x, y):
        self._run("xdotool", "mousemove", str(x), str(y))

    def press(self, *keys):
        """Presses keys by their X names, as "Tab" or "ctrl+a", one after the other."""
        self._run("xdotool", "key", "--delay", "40", *keys)

    def type_text(self, text):
        """Types the text key by key. A Chinese character comes from a spare key that is given to it before."""
        self._give_keys([character for character in dict.fromkeys(text) if not character.isascii()])
        self._run("xdotool", "type", "--delay", "30", "--", text)

    def _give_keys(self, characters):
        wanted = [character for character in characters if character not in self._keys]
        if not wanted:
            return
        layout = self._run("xmodmap", "-pke").stdout.splitlines()
        spare = [line.split()[1] for line in layout if line.rstrip().endswith("=")]
        # Keys run out; those of characters that this text does not need are given anew.
        for character in [other for other in self._keys if other not in characters]:
            if len(spare) >= len(wanted):
                break
            spare.append(self._keys.pop(character))
        if len(spare) < len(wanted):
            raise ValueError(f"no spare key for {''.join(wanted[len(spare):])}")
        given = dict(zip(wanted, spare))
        self._run("xmodmap", *(part for character, key in given.items()
                               for part in ("-e", f"keycode {key} = U{ord(character):04X}")))
        self._keys.update(given)
        self._await_window_manager()

    def active_process(self):
        """The id of the process to whose window the window manager gives the keys; 0 when there is none."""
        return int(self._run("xdotool", "getactivewindow", "getwindowpid", check=False).stdout or 0)

    def picture(self, path, area=None):
        """Writes a PNG of the screen, or of the area (x, y, width, height)."""
        part = ["--autoselect", ",".join(map(str, area))] if area else []
        self._run("scrot", "--silent", "--overwrite", "--pointer", *part, str(path))


def main():
    with VirtualScreen() as screen:
        return screen.start(*sys.argv[1:], stdout=None, stderr=None).wait()


if __name__ == "__main__":
    sys.exit(main())
