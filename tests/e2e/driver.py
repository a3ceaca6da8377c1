"""Drives the program from outside: finds things as a screen reader does, acts by keys and mouse alone.

    with VirtualScreen() as screen:
        folder = ProgramFolder(Path("somewhere"), Path("build/release/bin"))
        window = Program(screen, folder).main_window()
        window.choose("按光源类型显示", "直管荧光灯")
        window.enter(0, "光通量", "2650")
        window.press_button("提交")
        print(folder.rows("光源"))
"""

import shutil
import sqlite3
import subprocess
import tempfile
from pathlib import Path

from accessible import Desktop, Gone, Table
from virtual_screen import TimeLimit, VirtualScreen, wait_until

__all__ = ["MAIN_TITLE", "MainWindow", "Program", "ProgramFolder", "TimeLimit", "VirtualScreen", "wait_until"]

MAIN_TITLE = "照度计算数据库维护"


def framed(rectangle):
    """The rectangle of a window with the window manager's frame around it."""
    left, top, width, height = rectangle
    return left - 1, top - 21, width + 2, height + 22


class ProgramFolder:
    """A program laid out as it is installed, FOLDER/bin beside FOLDER/Vexal, with a database of its own."""

    def __init__(self, folder, binaries):
        self.folder = Path(folder)
        self.program = self.folder / "bin" / "quorvane"
        self.database = self.folder / "Vexal" / "灯具数据库.mdb"
        self.log = self.folder / "program.log"  # what the program says on its standard output and error
        self.program.parent.mkdir(parents=True)
        self.database.parent.mkdir()
        # A copy, because the program looks for its data beside the folder that it was really started from.
        shutil.copy2(Path(binaries) / "quorvane", self.program)
        subprocess.run([Path(binaries) / "quorvane-sample-database", self.database], check=True, timeout=120,
                       stdout=subprocess.DEVNULL)

    def query(self, statement, *values):
        """The rows of a statement as dictionaries, read past the program from its file. Ask while it is idle."""
        # From a copy: a reader of the file itself could stand in the way of the program's writing, and could
        # not roll back what a killed program left half done.
        with tempfile.TemporaryDirectory() as place:
            copy = shutil.copytree(self.database.parent, Path(place) / "copy",
                                   ignore=shutil.ignore_patterns("LuminairePhotoLib", "*-shm"))
            connection = sqlite3.connect(copy / self.database.name)
            connection.row_factory = sqlite3.Row
            try:
                return [dict(row) for row in connection.execute(statement, values)]
            finally:
                connection.close()

    def first_category(self):
        """Id and name of the first category that the page offers and that has light sources."""
        return self.query("select ID, LamphouseType as name from 光源类别 where LamphouseType not in "
                          "('混光灯', '常用灯具') and ID in (select LamphouseType from 光源) order by ID")[0]

    def photos(self):
        """Name -> content of the files in the photo library."""
        library = self.database.parent / "LuminairePhotoLib"
        return {file.name: file.read_bytes() for file in sorted(library.iterdir())} if library.is_dir() else {}

    def rows(self, table):
        return self.query(f"select * from [{table}] order by ID")

    def everything(self):
        """Table name -> its rows."""
        tables = self.query("select name from sqlite_master where type = 'table' and name not like 'sqlite%'")
        return {table["name"]: self.rows(table["name"]) for table in tables}


class Program:
    """One running copy of the program."""

    def __init__(self, screen, folder, *arguments):
        self.screen = screen
        with open(folder.log, "ab") as log:
            self.process = screen.start(folder.program, *arguments, stdout=log, stderr=log)
        self._desktop = Desktop(screen.environment["DBUS_SESSION_BUS_ADDRESS"])

    def windows(self):
        try:
            application = self._desktop.application(self.process.pid)
            return application.children() if application else []
        except Gone:
            return []

    def _has_keys(self, window):
        """Whether both the program and the window manager hold the window for the active one."""
        return window.is_("active") and self.screen.active_process() == self.process.pid

    def window(self, title):
        """The window with that title, once it takes the keys."""
        return self.wait_until(lambda: next((window for window in self.windows()
                                             if window.name == title and self._has_keys(window)), None),
                               f"a window “{title}”")

    def main_window(self):
        return MainWindow(self, self.window(MAIN_TITLE))

    def dialog(self, title):
        """The dialog with that title, once it takes the keys."""
        return Window(self, self.window(title))

    def focused(self, role):
        """What has the focus, when it is of that role."""
        element = self._desktop.focused()
        return element if element and element.role == role and element.is_("showing") else None

    def popup(self, role):
        """The list that has dropped down, once it has the focus."""
        return self.wait_until(lambda: self.focused(role), f"a {role} dropped down")

    def message(self, text):
        """The message box that says the text, once it takes the keys."""
        def says(window):
            return self._has_keys(window) and any(text in label.name for label in window.find_all("label"))
        return self.wait_until(lambda: next((Window(self, window) for window in self.windows() if says(window)), None),
                               f"a message “{text}”")

    def wait_until(self, condition, what, limit=30.0):
        """As wait_until, but gives up at once when the program has ended, and goes on while it is not there yet or
        is just changing what it shows."""
        def asked():
            try:
                if (answer := condition()):
                    return answer
            except Gone:
                pass
            if (status := self.process.poll()) is not None:
                raise TimeLimit(f"the program ended with status {status} before this: {what}")
            return None
        return wait_until(asked, what, limit)

    def wait_for_end(self, limit=30.0):
        """The status with which the program ends."""
        wait_until(lambda: self.process.poll() is not None, "the end of the program", limit)
        return self.process.returncode

    def kill(self):
        self.process.kill()
        self.process.wait()


class Window:
    """A window, with its buttons, trees and lists, and the grid that shows in it."""

    def __init__(self, program, element):
        self.program, self.screen, self.element = program, program.screen, element

    def find(self, role, caption=None):
        """The thing of that role and caption, once it shows."""
        return self.program.wait_until(lambda: self.element.find(role, caption),
                                       f"a {role} “{caption or ''}” in a window")

    def click(self, element, times=1):
        self.screen.click(*element.centre, times=times)

    def press_button(self, caption):
        self.click(self.find("push button", caption))

    def is_open(self):
        return self.element in self.program.windows()

    def wait_until_closed(self):
        wait_until(lambda: not self.is_open(), "the closing of a window")

    # Lists ----------------------------------------------------------------------------------------------------

    def list_beside(self, caption):
        """The drop-down list to the right of the radio button or label with that caption, on the same line."""
        label = next(element for role in ("radio button", "label") if (element := self.element.find(role, caption)))
        height = label.centre[1]
        lists = [(box.rectangle[0], box) for box in self.element.find_all("combo box")
                 if box.rectangle[0] > label.rectangle[0]
                 and box.rectangle[1] <= height <= box.rectangle[1] + box.rectangle[3]]
        return min(lists, key=lambda pair: pair[0])[1]

    def open_list(self, caption):
        """Opens the list beside the caption with the mouse; returns its entries."""
        box = self.list_beside(caption)
        self.click(box)
        entries = self.program.wait_until(lambda: box.children()[0], "the entries")
        self.program.wait_until(lambda: entries.is_("showing") and entries.children(), "the opened list")
        return entries

    def choose(self, caption, entry):
        """Chooses an entry of the list beside the caption, with the mouse."""
        self._click_entry(self.open_list(caption), entry)
        self.program.wait_until(lambda: self.list_beside(caption).name == entry, f"“{entry}” chosen")

    def _click_entry(self, entries, name):
        names = [child.name for child in entries.children()]
        if name not in names:
            raise LookupError(f"no entry “{name}” among {names}")
        self._click_inside(entries, lambda: entries.children()[names.index(name)])

    # The grid -------------------------------------------------------------------------------------------------

    def grid(self):
        return Table(self.find("table"))

    def append_row(self):
        """The number of the row “追加”, in which a new record is begun."""
        return self.grid().row_count - 1

    def click_cell(self, row, heading, times=1):
        grid = self.grid()
        cell = grid.cell(row, heading)
        self._click_inside(grid.element, lambda: cell, times)

    def press_in_cell(self, row, heading):
        """Clicks the button of a cell, or the arrow of one with a list; it stands at the right edge."""
        grid = self.grid()
        cell = grid.cell(row, heading)
        self._click_inside(grid.element, lambda: cell, from_right=8)

    def choose_in_cell(self, row, heading, entry):
        """Chooses an entry of a cell's list, with the mouse."""
        self.press_in_cell(row, heading)
        self._click_entry(self.program.popup("list"), entry)
        self.wait_for_cell(row, heading, entry)

    def enter(self, row, heading, text, becomes=None):
        """Types a text over a cell's old one and ends it with Enter; waits until the cell shows it."""
        self.click_cell(row, heading, times=2)
        self._clear_sight()
        self.screen.press("ctrl+a")
        self.screen.type_text(text)
        self.screen.press("Return")
        self.wait_for_cell(row, heading, text if becomes is None else becomes)

    def type_along(self, row, texts):
        """Types texts (heading -> text) into cells that follow each other, from cell to cell with Tab."""
        self.click_cell(row, next(iter(texts)))
        self._clear_sight()
        for heading, text in texts.items():
            self.screen.type_text(text)
            self.screen.press("Tab")
            self.wait_for_cell(row, heading, text)

    def _clear_sight(self):
        """Moves the pointer off what is being typed."""
        left, top, width, height = self.grid().element.rectangle
        self.screen.move(left + width - 40, top + height - 40)

    def wait_for_cell(self, row, heading, text):
        self.program.wait_until(lambda: self.grid().cell(row, heading).name == text,
                                f"“{text}” in row {row} under “{heading}”")

    # Trees ----------------------------------------------------------------------------------------------------

    def tree_item(self, name):
        """The item of the tree that bears the name, once there is one; of several the last."""
        def found():
            items = [item for item in self.find("tree").children() if item.role == "cell" and item.name == name]
            return items[-1] if items else None
        return self.program.wait_until(found, f"“{name}” in a tree")

    def click_tree(self, name, button=1):
        self._click_inside(self.find("tree"), lambda: self.tree_item(name), button=button)

    def expand(self, *names):
        """Opens the items one after the other, each inside the one before."""
        for name in names:
            self.click_tree(name)
            self.screen.press("Right")

    def choose_from_menu(self, name, command, seen=lambda: None):
        """Chooses a command of the menu that a right click on an item of the tree opens."""
        self.click_tree(name, button=3)
        # A menu tells of itself only when one of its commands is reached; Down goes to the first enabled one.
        self.screen.press("Down")
        entry = self.program.popup("menu item")
        seen()
        self.click(next(other for other in entry.parent.children() if other.name == command))

    def _click_inside(self, frame, item, times=1, button=1, from_right=None):
        """Turns the mouse wheel over frame until item() shows wholly inside it, and clicks it there."""
        for _ in range(300):
            left, top, width, height = frame.rectangle
            target = item()
            item_left, item_top, item_width, item_height = target.rectangle
            middle = item_left + item_width // 2
            x, y = middle if from_right is None else item_left + item_width - from_right, item_top + item_height // 2
            is_level = item_height and top <= item_top and item_top + item_height <= top + height
            # Wide things are clicked on what can be seen of them.
            if from_right is None and item_width > width // 2:
                x = max(left + 4, min(x, left + width - 4))
            if is_level and left <= x <= left + width - 2 and target.is_("showing"):
                self.screen.click(x, y, button=button, times=times)
                return
            if is_level:
                wheel, distance, size = (6 if x < left else 7), abs(x - left - width // 2), width
            else:
                wheel, distance, size = (4 if item_top < top else 5), abs(y - top - height // 2), height
            self.screen.click(left + width // 2, top + height // 2, button=wheel,
                              times=max(1, min(20, distance // size * 2)))
        raise TimeLimit("could not bring an item into sight")


class MainWindow(Window):
    """The main window and its tabs."""

    def show_tab(self, caption):
        self.click(self.find("page tab", caption))
        self.program.wait_until(lambda: self.shown_tab() == caption, f"the tab “{caption}” in front")

    def shown_tab(self):
        return self.find("page tab list").name  # a bar of tabs is told under the name of the one in front

    def tick_categories(self, row, names, seen=lambda: None):
        """Ticks just these names in the list that a click on the cell “灯具类别” drops down, and closes it."""
        self.click_cell(row, "灯具类别")
        entries = self.program.popup("list")
        for entry in entries.children():
            if entry.is_("checked") != (entry.name in names):
                wanted = entry.name in names
                self.click(entry)
                self.program.wait_until(lambda: entry.is_("checked") == wanted, f"the tick of “{entry.name}”")
        seen()
        self.screen.press("Return")
