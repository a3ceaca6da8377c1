#!/usr/bin/python3
"""Writes Wine's type library of ADO under the version for which Wine's ADO looks: ado_library.py PREFIX

Wine 8 registers its library as version 2.8 and asks for 1.0, so that no member of its objects is found by name.
"""

import sys
from pathlib import Path

VERSION = 0x18  # where the version stands in a library

folder = Path(sys.argv[1]) / "drive_c/Program Files/Common Files/System/ADO"
content = bytearray((folder / "msado15.dll").read_bytes())
start = content.index(b"MSFT\x02\x00\x01\x00")
content[start + VERSION:start + VERSION + 4] = b"\x01\x00\x00\x00"
(folder / "msado10.tlb").write_bytes(content)
