#!/usr/bin/python3
"""Plants includes in a small tree of folders and sees that the check refuses each. That it allows what is allowed shows
when it runs over the project itself."""

import subprocess
import tempfile
from pathlib import Path

CHECK = Path(__file__).resolve().parents[2] / ".ci" / "check-includes"

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


with tempfile.TemporaryDirectory() as tree:
    for place, refused in REFUSED:
        file = Path(tree) / place
        file.parent.mkdir(parents=True, exist_ok=True)
        with file.open("a") as opened:
            opened.write(f"#include {refused}\n")
    run = subprocess.run([CHECK, tree], capture_output=True, text=True, timeout=30)
said = run.stderr.splitlines()
assert run.returncode == 1 and len(said) == len(REFUSED), said
for place, refused in REFUSED:
    assert any(line.startswith(f"{place}:") and refused in line for line in said), (place, refused, said)
