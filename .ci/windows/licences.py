#!/usr/bin/python3
"""Prints what the programs for Windows are linked with and under which licences.

    licences.py NOTES QT-VERSION SQLITE-VERSION ARCH

The facts come from the copyright files of Debian's packages and from the notes that Qt's sources carry about what they
bring; NOTES is the folder into which those notes were unpacked.
"""

import json
import sys
from pathlib import Path

NOTES, QT, SQLITE, ARCH = Path(sys.argv[1]), *sys.argv[2:]
MODULES = {"qtcore", "qtgui", "qtwidgets", "qtprintsupport"}
ELSEWHERE = {"android", "cocoa", "dbus-ifaces", "gradle", "VulkanMemoryAllocator", "wasm", "xcb"}  # parts for other systems

HEAD = f"""\
quorvane 静态链接了以下软件。quorvane is linked statically with the following.

Qt {QT}
    Qt Base (Core, Gui, Widgets, PrintSupport and the plugins for Windows, JPEG, GIF and ICO), under the GNU Lesser
    General Public License, version 3 (LGPL-3.0-only). Its sources are Debian's source package qt6-base {QT}:
    https://packages.debian.org/source/bookworm/qt6-base. Its text stands below, after that of the GPL to which it
    refers.
SQLite {SQLITE}
    In the public domain. Its sources are Debian's source package sqlite3 {SQLITE}.
Run-time libraries of the compiler (libgcc, libstdc++) and of mingw-w64 (with winpthreads)
    From Debian's packages g++-mingw-w64-{ARCH.replace("_", "-")}-posix and mingw-w64-{ARCH.replace("_", "-")}-dev.
The installer alone: NSIS, from Debian's package nsis.

如何以另一版本的 Qt 重新链接 How to link the program with another Qt

The archive quorvane-objects.zip, which is offered where this package is, holds the compiled objects of quorvane.exe
and the script relink.sh. On Debian 12 with {ARCH.replace("_", "-")} cross compiler and a static Qt 6.4 for Windows:
    ./relink.sh FOLDER-OF-QT
"""


def entries():
    for file in sorted(NOTES.glob("src/**/qt_attribution.json")):
        if not ELSEWHERE & set(file.parts):
            found = json.loads(file.read_text(), strict=False)  # some hold line breaks in texts
            for entry in found if isinstance(found, list) else [found]:
                if entry.get("QDocModule") in MODULES:
                    yield file.parent, entry


def licence_files(folder, entry):
    names = entry.get("LicenseFiles") or [entry.get("LicenseFile", "")]
    return [folder / name for name in names if name and (folder / name).is_file()]


def section(title):
    print(f"\n{'=' * 100}\n{title}\n{'=' * 100}\n")


def debian(package):
    file = Path("/usr/share/doc") / package / "copyright"
    section(f"{package}: {file.name} of the Debian package")
    print(file.read_text())


def main():
    print(HEAD)
    print(f"Qt {QT} 自带的软件 What Qt brings with it\n")
    for _, entry in entries():
        print(f"{entry['Name']} {entry.get('Version', '')}: {entry.get('License', '')}".replace(" :", ":"))
    for folder, entry in entries():
        section(entry["Name"])
        print(entry.get("Copyright") if isinstance(entry.get("Copyright"), str) else "\n".join(entry.get("Copyright", [])))
        for file in licence_files(folder, entry):
            print(f"\n{file.read_text(errors='replace')}")
    for name in ("GPL-3.0-only", "LGPL-3.0-only"):
        section(name)
        print((NOTES / "LICENSES" / f"{name}.txt").read_text())
    dashed = ARCH.replace("_", "-")
    for package in ("libsqlite3-0", f"g++-mingw-w64-{dashed}-posix", f"mingw-w64-{dashed}-dev", "nsis"):
        debian(package)


if __name__ == "__main__":
    main()
