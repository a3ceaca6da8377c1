#!/usr/bin/python3
"""Tries the installer under Wine: virtual_screen try_installer.py BUILD

Installs, starts what was installed, installs again over a changed database, and uninstalls. Pictures go to
BUILD/package. An installation that is there before is removed.
"""

import os
import shutil
import sys
import zipfile
from pathlib import Path

from wine_session import Pixels, Wine, screen

BUILD = Path(sys.argv[1])
PACKAGE = BUILD / "package"
PREFIX = Path(os.environ["WINE_SYSTEM"]) / "prefix/drive_c"
HOME = next(folder for folder in (PREFIX / "users").iterdir() if folder.name != "Public")
PLACE = HOME / "AppData/Local/Programs/quorvane"
SHORTCUT = HOME / "AppData/Roaming/Microsoft/Windows/Start Menu/Programs/照度计算数据库维护.lnk"
INSTALL = f"wine {PACKAGE}/quorvane-setup.exe /S"
UNINSTALL_KEY = r"HKCU\Software\Microsoft\Windows\CurrentVersion\Uninstall\quorvane"


def expect(holds, what):
    print(f"{'ok' if holds else 'WRONG'}: {what}", flush=True)
    if not holds:
        sys.exit(1)


def inside(path):
    """The path as it is in the system with Wine, quoted for its shell."""
    return f"'/{path.relative_to(os.environ['WINE_SYSTEM'])}'"


def names(folder):
    return sorted(str(path.relative_to(folder)) for path in folder.rglob("*") if path.is_file())


def main():
    shutil.rmtree(PLACE, ignore_errors=True)
    wine, pixels = Wine(), Pixels()
    wine.start(f"wine {PACKAGE}/quorvane-setup.exe")
    pixels.settle()
    screen.picture(PACKAGE / "installer.png")
    wine.run("wine taskkill /f /im quorvane-setup.exe")

    status, _ = wine.run(INSTALL)
    laid_out = [name.replace("样本-", "") for name in names(PACKAGE / "quorvane")]
    expect(status == 0 and names(PLACE) == sorted([*laid_out, "uninstall.exe"]), "the files are in place")
    expect(SHORTCUT.exists(), "the start menu has the program")

    pixels.note()
    wine.start(f"wine start /wait /unix {inside(SHORTCUT)}")
    pixels.settle()
    screen.picture(PACKAGE / "installed.png")
    expect(screen.run("xdotool", "search", "--name", "^照度计算数据库维护$", check=False), "it starts from there")
    status, _ = wine.run(INSTALL)
    expect(status != 0, "nothing is installed over the running program")
    wine.run("wine taskkill /f /im quorvane.exe")

    status, report = wine.run(f"wine {inside(PLACE / 'bin/quorvane-self-check.exe')} "
                              f"{inside(PLACE / 'Vexal/灯具数据库.mdb')}")
    expect(status == 0, "the self-check of the installed database passes")
    (PACKAGE / "self-check.txt").write_text(report)

    database, photo = PLACE / "Vexal/灯具数据库.mdb", PLACE / "Vexal/LuminairePhotoLib/1.jpg"
    database.write_bytes(b"the user's database")
    photo.parent.mkdir(exist_ok=True)
    photo.write_bytes(b"the user's photo")
    kept = names(PLACE / "Vexal")
    status, _ = wine.run(INSTALL)
    expect(status == 0 and database.read_bytes() == b"the user's database" and
           photo.read_bytes() == b"the user's photo" and names(PLACE / "Vexal") == kept,
           "a second installation leaves database and photos alone")
    database.unlink()
    wine.run(INSTALL)
    expect(not database.exists() and photo.read_bytes() == b"the user's photo",
           "no sample database comes to photos of the user")
    database.write_bytes(b"the user's database")

    wine.run(f"wine {inside(PLACE / 'uninstall.exe')} /S")
    screen.wait_until(lambda: wine.run(f"wine reg query '{UNINSTALL_KEY}'")[0] != 0, "the end of the uninstallation")
    expect(names(PLACE) == [f"Vexal/{name}" for name in kept], "uninstalling leaves database and photos, nothing else")
    expect(not SHORTCUT.exists(), "and no entry in the start menu or the list of programs")
    wine.end()
    shutil.rmtree(PLACE)

    zipped = sorted(name.removeprefix("quorvane/") for name in zipfile.ZipFile(PACKAGE / "quorvane.zip").namelist()
                    if not name.endswith("/"))
    expect(zipped == names(PACKAGE / "quorvane"), "the zip holds the same files, the sample under another name")


if __name__ == "__main__":
    try:
        main()
    except screen.TimeLimit as limit:
        sys.exit(f"try_installer.py: {limit}")
