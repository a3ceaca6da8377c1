"""Mouse, keys and pictures of the screen that this process runs on."""

import subprocess
import time

_desktops = 2
_spare_keys = []


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


def run(*command, check=True):
    return subprocess.run(command, check=check, timeout=60, text=True, stdout=subprocess.PIPE,
                          stderr=subprocess.DEVNULL).stdout


def click(x, y, button=1, times=1):
    run("xdotool", "mousemove", str(x), str(y), "click", "--repeat", str(times), "--delay", "40", str(button))


def move(x, y):
    run("xdotool", "mousemove", str(x), str(y))


def press(*keys):
    """Presses keys by their X names, as "Tab" or "ctrl+a", one after the other."""
    run("xdotool", "key", "--delay", "40", *keys)


def type_text(text):
    """Types the text key by key. A Chinese character comes from a spare key that is given to it before."""
    characters = [character for character in dict.fromkeys(text) if not character.isascii()]
    if characters:
        _give_keys(characters)
    run("xdotool", "type", "--delay", "30", "--", text)


def _give_keys(characters):
    global _spare_keys, _desktops
    _spare_keys = _spare_keys or [line.split()[1] for line in run("xmodmap", "-pke").splitlines()
                                  if line.rstrip().endswith("=")]
    run("xmodmap", *(part for character, key in zip(characters, _spare_keys, strict=False)
                     for part in ("-e", f"keycode {key} = U{ord(character):04X}")))
    # The window manager grabs its keys anew. It has done so when it has done a small task given afterwards.
    _desktops = 5 - _desktops
    run("xdotool", "set_num_desktops", str(_desktops))
    wait_until(lambda: run("xdotool", "get_num_desktops").strip() == str(_desktops), "the window manager's answer")


def copy_elsewhere(text):
    """Lets another program put the text on the clipboard."""
    subprocess.run(["xclip", "-selection", "clipboard"], input=text, text=True, check=True, timeout=60,
                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


def active_process():
    """The id of the process to whose window the window manager gives the keys; 0 when there is none."""
    return int(run("xdotool", "getactivewindow", "getwindowpid", check=False) or 0)


def picture(path, area=None):
    """Writes a PNG of the screen, or of the area (x, y, width, height)."""
    part = ["--autoselect", ",".join(map(str, area))] if area else []
    run("scrot", "--silent", "--overwrite", "--pointer", *part, str(path))
