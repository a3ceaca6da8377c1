#!/usr/bin/python3
"""Plants includes in a small tree of folders and sees which of them the check refuses."""

import subprocess
import tempfile
import unittest
from pathlib import Path

CHECK = Path(__file__).resolve().parents[2] / ".ci" / "check-includes"

ALLOWED = {
    "app/main_dialog.cpp": ['"editors/page.h"', '"data/store/store_factory.h"', '"grid/grid_ctrl.h"', "<QDialog>"],
    "editors/page.cpp": ['"data/lighting_database.h"', '"widgets/message_box.h"', '"page.moc"'],
    "grid/grid_ctrl.h": ['"grid/grid_cell.h"', "<QPainter>"],
    "model/working_records.h": ['"data/records.h"', '"model/text_checks.h"', "<QFile>"],
    "widgets/image_button.cpp": ['"widgets/image_button.h"', "<QPushButton>"],
    "data/lighting_database.cpp": ['"data/store/store_factory.h"', "<QString>", "<QtCore/QFile>", "<vector>"],
    "data/store/sqlite_connection.cpp": ['"data/store/dialect.h"', '"data/connection.h"', "<sqlite3.h>"],
    "tools/sample_database.cpp": ["<sqlite3.h>", "<QImage>", '"tools/database_schema.h"'],
    "tests/data/test_dialect.cpp": ['"data/store/dialect.h"', "<sqlite3.h>"],
}
REFUSED = [
    ("widgets/image_button.h", '"grid/grid_cell.h"'),
    ("grid/grid_ctrl.cpp", '"data/records.h"'),
    ("grid/grid_ctrl.cpp", '"widgets/image_button.h"'),
    ("model/working_records.h", '"widgets/message_box.h"'),
    ("model/working_records.h", "<QColor>"),
    ("grid/grid_ctrl.cpp", '"../data/records.h"'),
    ("editors/page.h", '"app/main_dialog.h"'),
    ("editors/page.h", '"data/connection.h"'),
    ("editors/page.h", '"data/store/store_factory.h"'),
    ("app/main.cpp", '"data/store/dialect.h"'),
    ("data/records.h", "<QPixmap>"),
    ("data/records.h", "<QtWidgets/QLabel>"),
    ("data/records.h", "<sqlite3.h>"),
    ("data/lighting_database.cpp", '"data/store/sqlite_connection.h"'),
    ("data/store/dialect.cpp", '"tools/database_schema.h"'),
    ("tools/sample_database.cpp", '"data/store/dialect.h"'),
]


class CheckIncludes(unittest.TestCase):
    def setUp(self):
        self.tree = Path(self.enterContext(tempfile.TemporaryDirectory()))
        for name, includes in ALLOWED.items():
            for include in includes:
                self.plant(name, include)

    def plant(self, name, include):
        path = self.tree / name
        path.parent.mkdir(parents=True, exist_ok=True)
        with path.open("a") as file:
            file.write(f"#include {include}\n")

    def check(self):
        run = subprocess.run([CHECK, self.tree], capture_output=True, text=True, timeout=30)
        return run.returncode, run.stderr

    def test_includes_along_the_arrows_pass(self):
        self.assertEqual(self.check(), (0, ""))

    def test_each_include_against_them_is_named(self):
        for name, include in REFUSED:
            with self.subTest(name=name, include=include):
                path = self.tree / name
                kept = path.read_text() if path.exists() else ""
                self.plant(name, include)
                status, told = self.check()
                self.assertEqual(status, 1)
                self.assertIn(f"{name}:", told)
                self.assertIn(include, told)
                path.write_text(kept)


if __name__ == "__main__":
    unittest.main(verbosity=2)
