#!/usr/bin/python3
"""Whole roads through the real program on a virtual screen: starting and leaving.

    virtual_screen test_roads.py BINARIES Roads.test_...
"""

import os
import shutil
import sys
import tempfile
import unittest
from pathlib import Path

import screen
from driver import Atspi, Program, ProgramFolder, children, do, has, press_by_bus

BINARIES = Path(sys.argv.pop(1)).resolve()
# What is typed over the first row under each tab: tab, how its rows are chosen, heading, text; table and column.
EDITS = (("光源库", lambda window: window.choose("按光源类型显示", "T5直管荧光灯"), "光通量", "4321",
          "光源", "LuminousFlux"),
         ("灯具库", lambda window: window.choose("灯具类型:", "混光灯"), "灯具效率", "43.25",
          "灯具", "LuminaireEfficiency"),
         ("照度要求及功率密度", lambda window: (window.expand("公共建筑"), window.click_tree("办公建筑")),
          "照度标准值", "4327", "照度要求及功率密度", "IlluminanceStandard"))


class Roads(unittest.TestCase):
    def setUp(self):
        place = Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, place, ignore_errors=True)
        self.folder = ProgramFolder(place / "installed", BINARIES)

    def run(self, result=None):
        """When the test fails, keeps a picture of the screen."""
        result = super().run(result)
        if not result.wasSuccessful():
            picture = BINARIES.parent / f"{self.id()}.png"
            screen.picture(picture)
            print("picture:", picture, file=sys.stderr)
        return result

    def start(self, *arguments):
        return Program(self.folder, *arguments)

    def start_and_edit(self):
        """Types the EDITS; no change between the tabs asks anything, and nothing is in the file yet."""
        before = self.folder.everything()
        program = self.start()
        window = program.main_window()
        for tab, choose_rows, heading, text, *_ in EDITS:
            window.show_tab(tab)
            choose_rows(window)
            window.wait_for_cell(0, "序号", "1")
            window.enter(0, heading, text)
        self.assertEqual(self.folder.everything(), before)
        return program, before

    def expect_edits_in_the_file(self, before):
        after = self.folder.everything()
        for *_, text, table, column in EDITS:
            changed = [(old, new) for old, new in zip(before.pop(table), after.pop(table), strict=True) if old != new]
            self.assertEqual([new for _, new in changed], [{**changed[0][0], column: float(text)}], table)
        self.assertEqual(after, before)

    def kept_files(self):
        return (Path(os.environ["XDG_CONFIG_HOME"]) / "quorvane").glob("edits-*.cbor")

    def test_second_start_ends_silently_while_the_first_runs(self):
        first = self.start()
        first.main_window()
        second = self.start()
        self.assertEqual(second.wait_for_end(), 0)
        self.assertEqual(self.folder.log.read_text(), "")
        first.process.kill()  # what it leaves behind must not stand in the way
        first.wait_for_end()
        third = self.start()
        third.main_window().press_button("退出")
        self.assertEqual(third.wait_for_end(), 0)

    def test_last_argument_chooses_the_tab(self):
        for arguments, tab in ((["灯具管理器"], "灯具库"), (["照度管理器"], "照度要求及功率密度"),
                               (["照度管理器", "其他"], "光源库"), (["照度管理器 "], "光源库")):
            program = self.start(*arguments)
            window = program.main_window()
            self.assertEqual(window.shown_tab(), tab, arguments)
            window.press_button("退出")
            program.wait_for_end()

    def test_edits_outlive_a_killed_program(self):
        program, before = self.start_and_edit()
        screen.wait_until(lambda: any(all(page in file.read_bytes() for page in (b"page 0", b"page 1", b"page 2"))
                                      for file in self.kept_files()), "the edits of all pages are kept")
        program.process.kill()
        program.wait_for_end()
        program = self.start()
        question = program.message("上次有 3 处未提交的修改,是否恢复?")
        question.press_button("是")
        question.wait_until_closed()
        window = program.main_window()
        self.assertEqual(self.folder.everything(), before)
        for tab, _, heading, text, *_ in EDITS:
            window.show_tab(tab)
            window.wait_for_cell(0, heading, text)
            window.submit()
        window.press_button("退出")
        self.assertEqual(program.wait_for_end(), 0)
        self.expect_edits_in_the_file(before)
        self.assertEqual(list(self.kept_files()), [])
        program = self.start()  # nothing is left to be asked
        program.main_window().press_button("退出")
        self.assertEqual(program.wait_for_end(), 0)

    def test_a_screen_reader_does_the_road_of_light_sources(self):
        """By what the accessibility bus tells, does and sends; no mouse, no keys of the screen."""
        down, enter = 0xFF54, 0xFF0D
        before = self.folder.everything()
        program = self.start()
        window = program.main_window()
        box = window.find("combo box", "按光源类型显示")
        do(box, "ShowMenu")
        category = "T5直管荧光灯"
        entries = program.wait_until(lambda: children(program.popup("list")), "the categories")
        for entry in entries[1:[entry.get_name() for entry in entries].index(category) + 1]:
            press_by_bus(down)
            program.hear("focused", "list item", entry.get_name())
        press_by_bus(enter)
        program.hear("accessible-name", "combo box", category)
        self.assertEqual(box.get_description(), "按光源类型显示")
        row = window.append_row()
        for cell, text in ((window.cell(0, "光通量"), "4321"), (window.cell(row, "光源型号"), "BUS-1")):
            self.assertTrue(has(cell, "EDITABLE") and not has(window.cell(row, "序号"), "EDITABLE"))
            do(cell, "SetFocus")
            program.hear("focused", "table cell", cell.get_name())
            do(cell, "Press")
            Atspi.EditableText.set_text_contents(program.popup("text"), text)
            press_by_bus(enter)
            program.hear("accessible-name", "table cell", text)
        flux = window.cell(0, "光通量")
        self.assertRegex(flux.get_description(), "^已修改\n文件中的值: ")
        do(window.find("push button", "提交"), "Press")
        program.wait_until(lambda: not flux.get_description(), "the end of the submit")
        do(window.find("push button", "退出"), "Press")
        self.assertEqual(program.wait_for_end(), 0)
        after = self.folder.everything()
        self.assertEqual(after["光源"][0], {**before["光源"][0], "LuminousFlux": 4321})
        self.assertEqual([row["LamphouseModel"] for row in after["光源"][len(before["光源"]):]], ["BUS-1"])

    def test_without_a_database_it_says_so_and_ends(self):
        self.folder.database.unlink()
        before = list(self.folder.database.parent.iterdir())
        program = self.start()
        message = program.message("数据库连接失败!")
        self.assertEqual(program.windows(), [message.element])
        screen.press("Return")
        program.wait_for_end()
        self.assertEqual(list(self.folder.database.parent.iterdir()), before)

    def test_leaving_settles_the_edits_of_every_page(self):
        for answer in ("否", "是"):
            program, before = self.start_and_edit()
            screen.press("alt+F4")  # the window manager's own way to close a window
            program.message("数据未提交,是否提交?").press_button(answer)
            self.assertEqual(program.wait_for_end(), 0)
            if answer == "否":
                self.assertEqual(self.folder.everything(), before)
        self.expect_edits_in_the_file(before)


if __name__ == "__main__":
    unittest.main(verbosity=2)
