#!/usr/bin/python3
"""Plants includes in a small tree of folders and sees which of them the check refuses."""

import subprocess
import tempfile
from pathlib import Path

CHECK = Path(__file__).resolve().parents[2] / ".ci" / "check-includes"

ALLOWED = [
    ("app/main_dialog.cpp", '"data/store/store_factory.h"'), ("app/main_dialog.cpp", '"grid/grid_ctrl.h"'),
    ("app/main_dialog.cpp", "<QDialog>"),
    ("editors/page.cpp", '"data/lighting_database.h"'), ("editors/page.cpp", '"model/text_checks.h"'),
    ("editors/page.cpp", '"widgets/message_box.h"'), ("editors/page.cpp", '"page.moc"'),
    ("grid/grid_ctrl.h", '"grid/grid_cell.h"'), ("model/records/working_records.h", '"data/records.h"'),
    ("data/lighting_database.cpp", '"data/store/store_factory.h"'), ("data/lighting_database.cpp", "<QtCore/QFile>"),
    ("data/store/sqlite_connection.cpp", '"data/connection.h"'), ("data/store/sqlite_connection.cpp", "<sqlite3.h>"),
    ("tools/sample_database.cpp", "<sqlite3.h>"), ("tests/data/test_dialect.cpp", '"data/store/dialect.h"'),
]
REFUSED = [
    ("widgets/image_button.h", '"grid/grid_cell.h"'),
    ("grid/grid_ctrl.cpp", '"data/records.h"'), ("grid/grid_ctrl.cpp", '"../data/records.h"'),
    ("grid/grid_ctrl.cpp", '"widgets/image_button.h"'),
    ("model/records/working_records.h", '"widgets/message_box.h"'), ("model/records/working_records.h", "<QColor>"),
    ("editors/page.h", '"app/main_dialog.h"'), ("editors/page.h", '"data/connection.h"'),
    ("editors/page.h", '"data/store/store_factory.h"'), ("app/main.cpp", '"data/store/dialect.h"'),
    ("data/records.h", "<QtWidgets/QLabel>"), ("data/records.h", "<sqlite3.h>"),
    ("data/lighting_database.cpp", '"data/store/sqlite_connection.h"'),
    ("data/store/dialect.cpp", '"tools/database_schema.h"'), ("tools/sample_database.cpp", '"data/store/dialect.h"'),
]


def checked(places):
    """The status of the check, and what it says, in a tree with these includes."""
    with tempfile.TemporaryDirectory() as tree:
        for name, include in places:
            file = Path(tree) / name
            file.parent.mkdir(parents=True, exist_ok=True)
            with file.open("a") as opened:
                opened.write(f"#include {include}\n")
        run = subprocess.run([CHECK, tree], capture_output=True, text=True, timeout=30)
        return run.returncode, run.stderr


assert checked(ALLOWED) == (0, ""), checked(ALLOWED)
status, said = checked(ALLOWED + REFUSED)
assert status == 1 and len(said.splitlines()) == len(REFUSED), said
for place, refused in REFUSED:
    assert any(line.startswith(f"{place}:") and refused in line for line in said.splitlines()), (place, refused, said)
