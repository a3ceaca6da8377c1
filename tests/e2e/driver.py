"""Drives the program from outside: finds things as a screen reader does, acts by keys and mouse alone.

What is found are objects of Debian's bindings to AT-SPI. It runs under tests/e2e/virtual_screen.
"""

import json
import os
import re
import shutil
import sqlite3
import subprocess
import tempfile
from pathlib import Path

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402  (the version must be chosen first)

import screen  # noqa: E402
from screen import TimeLimit, wait_until  # noqa: E402

MAIN_TITLE = "照度计算数据库维护"
# Their children are counted in thousands; they are asked for one by one.
LARGE_ROLES = ("table", "tree table", "tree", "list")

Gone = GLib.Error  # the program answered no more, or the thing asked about is no longer there
_focused = []
heard = []  # what was told of names and focus: (kind, role, name)


Atspi.set_timeout(20000, 20000)  # milliseconds; a program that writes to a slow disk answers late


def _told(event):
    try:
        heard.append((event.type.rpartition(":")[2], role(event.source), event.source.get_name()))
    except Gone:
        return
    if event.detail1 and heard[-1][0] == "focused":
        _focused[:] = [event.source]


# Pop-ups stand in no window's tree; like a screen reader, one hears of them when they take the focus.
_listener = Atspi.EventListener.new(_told)


def role(element):
    return element.get_role().value_nick.replace("-", " ")


def has(element, state):
    return element.get_state_set().contains(getattr(Atspi.StateType, state))


def caption(element):
    """The name without the mark of an access key, which Chinese texts carry as "(Y)" at their end, and without the
    "*" of unsubmitted edits."""
    return re.sub(r"(\(.\))?\*?$", "", element.get_name())


def children(element):
    return [child for number in range(element.get_child_count()) if (child := element.get_child_at_index(number))]


def rectangle(element):
    """Left, top, width and height in pixels of the screen."""
    place = Atspi.Component.get_extents(element, Atspi.CoordType.SCREEN)
    return place.x, place.y, place.width, place.height


def centre(element):
    left, top, width, height = rectangle(element)
    return left + width // 2, top + height // 2


def do(element, action):
    """Carries out one of the element's own actions, as assistive technology does."""
    names = [Atspi.Action.get_action_name(element, number) for number in range(Atspi.Action.get_n_actions(element))]
    Atspi.Action.do_action(element, names.index(action))


def press_by_bus(symbol):
    """A key, sent over the accessibility bus."""
    Atspi.generate_keyboard_event(symbol, None, Atspi.KeySynthType.SYM)


def find_all(element, wanted, name=None):
    """Everything inside that shows, of that role and with that caption; the insides of tables and lists left out."""
    found, level = [], [element]
    while level:
        found += [one for one in level if role(one) == wanted and has(one, "SHOWING") and name in (None, caption(one))]
        level = [child for one in level if role(one) not in LARGE_ROLES for child in children(one)]
    return found


def access_tables(file):
    """Name and rows of each table, as mdbtools read them. They leave out what is empty, and write a digit too many."""
    for table in screen.run("mdb-tables", "-1", file).split():
        rows = [json.loads(line, parse_float=lambda text: float(f"{float(text):.15g}"))
                for line in screen.run("mdb-json", file, table).splitlines()]
        assert len(rows) == int(screen.run("mdb-count", file, table)), f"{table} counts more or less than its rows"
        empty = {name: "" for row in rows for name in row}
        yield table, [empty | row for row in rows]


def sqlite_tables(file):
    database = sqlite3.connect(file)
    database.row_factory = sqlite3.Row
    for (table,) in database.execute("select name from sqlite_master where type = 'table' and name not like 'sqlite%'"):
        yield table, [dict(row) for row in database.execute(f"select * from [{table}]")]


class ProgramFolder:
    """A program laid out as it is installed, FOLDER/bin beside FOLDER/Vexal, with a database of its own, which is an
    Access file, or an SQLite file when DATABASE_KIND is sqlite."""

    def __init__(self, folder, binaries, kind=os.environ.get("DATABASE_KIND", "access")):
        option, self.read = {"access": ((), access_tables), "sqlite": (("--sqlite",), sqlite_tables)}[kind]
        self.folder = Path(folder)
        self.program = self.folder / "bin" / "quorvane"
        self.database = self.folder / "Vexal" / "灯具数据库.mdb"
        self.log = self.folder / "program.log"  # what the program says on its standard output and error
        self.program.parent.mkdir(parents=True)
        self.database.parent.mkdir()
        # A copy, because the program looks for its data beside the folder that it was really started from.
        shutil.copy2(Path(binaries) / "quorvane", self.program)
        subprocess.run([Path(binaries) / "quorvane-sample-database", *option, self.database], check=True, timeout=120,
                       stdout=subprocess.DEVNULL)

    def photos(self):
        """Name -> content of the files in the photo library."""
        return {file.name: file.read_bytes() for file in self.database.parent.glob("LuminairePhotoLib/*")}

    def everything(self, file=None):
        """Table name -> its rows by their IDs, read past the program from its file, or from a copy of that. Ask while
        it is idle."""
        # From a copy: a reader of the file itself could stand in the way of the program's writing.
        with tempfile.TemporaryDirectory() as place:
            copy = shutil.copytree(self.database.parent, Path(place) / "copy",
                                   ignore=shutil.ignore_patterns("LuminairePhotoLib", "*-shm"))
            return {table: sorted(rows, key=lambda row: row["ID"])
                    for table, rows in self.read(copy / (file or self.database).name)}


class Program:
    """One running copy of the program."""

    def __init__(self, folder, *arguments):
        Atspi.get_desktop(0).set_cache_mask(Atspi.Cache.NONE)  # every question goes to the program anew
        for event in ("state-changed:focused", "property-change:accessible-name", "property-change:accessible-value"):
            _listener.register(f"object:{event}")
        with open(folder.log, "ab") as log:
            self.process = subprocess.Popen([folder.program, *arguments], stdin=subprocess.DEVNULL, stdout=log,
                                            stderr=log)

    def windows(self):
        try:
            return [window for application in children(Atspi.get_desktop(0))
                    if application.get_process_id() == self.process.pid for window in children(application)]
        except Gone:
            return []

    def _window_that(self, holds, what):
        """The window for which holds(window), once both the program and the window manager give it the keys."""
        return self.wait_until(lambda: next((window for window in self.windows()
                                             if holds(window) and has(window, "ACTIVE")
                                             and screen.active_process() == self.process.pid), None), what)

    def dialog(self, title):
        return Window(self, self._window_that(lambda window: caption(window) == title, f"a window “{title}”"))

    def main_window(self):
        return self.dialog(MAIN_TITLE)

    def other_window(self, than):
        """The window that has opened over another one."""
        return Window(self, self._window_that(lambda window: window != than.element, "another window"))

    def message(self, text):
        """The message box that says the text."""
        return Window(self, self._window_that(
            lambda window: any(text in label.get_name() for label in find_all(window, "label")), f"a message “{text}”"))

    def focused(self, wanted):
        """What has the focus, when it is of that role."""
        while GLib.MainContext.default().iteration(False):
            pass
        return next((element for element in _focused if role(element) == wanted and has(element, "SHOWING")), None)

    def hear(self, kind, wanted, name):
        """Waits until the program has told this of something of that role and name."""
        self.wait_until(lambda: (self.focused(wanted), (kind, wanted, name) in heard)[1], f"{kind} {wanted} “{name}”")
        heard.clear()

    def popup(self, wanted):
        """The list that has dropped down, once it has the focus."""
        return self.wait_until(lambda: self.focused(wanted), f"a {wanted} dropped down")

    def wait_until(self, condition, what, limit=30.0):
        """As wait_until, but gives up at once when the program has ended, and goes on while it is just changing
        what it shows."""
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

    def wait_for_end(self):
        """The status with which the program ends."""
        return self.process.wait(timeout=30)


class Window:
    """A window, with its buttons, trees and lists, and the grid that shows in it."""

    def __init__(self, program, element):
        self.program, self.element = program, element

    def find(self, wanted, name=None):
        """The thing of that role and caption, once it shows."""
        return self.program.wait_until(lambda: next(iter(find_all(self.element, wanted, name)), None),
                                       f"a {wanted} “{name or ''}” in a window")

    def press_button(self, name):
        screen.click(*centre(self.find("push button", name)))

    def submit(self):
        """Presses 提交 and waits for its end: what is clicked during a long submit is lost. The button has the focus
        once the press has arrived, and is disabled while the data are written."""
        self.press_button("提交")
        button = self.find("push button", "提交")
        self.program.wait_until(lambda: has(button, "FOCUSED") and has(button, "SENSITIVE"), "the end of a submit")

    def wait_until_closed(self):
        wait_until(lambda: self.element not in self.program.windows(), "the closing of a window")

    def show_tab(self, name):
        screen.click(*centre(self.find("page tab", name)))
        self.program.wait_until(lambda: self.shown_tab() == name, f"the tab “{name}” in front")

    def shown_tab(self):
        return caption(self.find("page tab list"))  # a bar of tabs is told under the name of the one in front

    # Lists ----------------------------------------------------------------------------------------------------

    def choose(self, beside, entry):
        """Chooses an entry of the list to the right of the caption, on the same line."""
        label = next(one for kind in ("radio button", "label") for one in find_all(self.element, kind, beside))
        x, y = centre(label)
        box = min((box for box in find_all(self.element, "combo box")
                   if rectangle(box)[0] > x and abs(centre(box)[1] - y) < rectangle(box)[3]), key=rectangle)
        screen.click(*centre(box))
        entries = self.program.wait_until(lambda: children(box)[0], "the entries")
        self.program.wait_until(lambda: has(entries, "SHOWING") and children(entries), "the opened list")
        self._click_entry(entries, entry)
        self.program.wait_until(lambda: box.get_name() == entry, f"“{entry}” chosen")

    def _click_entry(self, entries, name):
        number = [child.get_name() for child in children(entries)].index(name)
        self._click_inside(entries, lambda: entries.get_child_at_index(number))

    # The grid -------------------------------------------------------------------------------------------------

    def _heading_rows(self, grid):
        return next(row for row in range(Atspi.Table.get_n_rows(grid) + 1)
                    if row == Atspi.Table.get_n_rows(grid)
                    or role(Atspi.Table.get_accessible_at(grid, row, 0)) not in ("column header", "table column header"))

    def headings(self):
        """A column's heading; where there are several heading rows, their texts joined by commas."""
        grid = self.find("table")
        return [",".join(filter(None, (Atspi.Table.get_accessible_at(grid, row, column).get_name()
                                       for row in range(self._heading_rows(grid)))))
                for column in range(Atspi.Table.get_n_columns(grid))]

    def cell(self, row, heading):
        """The cell under the heading, in a row counted from 0 on without the heading rows."""
        grid = self.find("table")
        return Atspi.Table.get_accessible_at(grid, row + self._heading_rows(grid), self.headings().index(heading))

    def row_texts(self, row):
        """Heading -> text of one row."""
        return {heading: self.cell(row, heading).get_name() for heading in self.headings()}

    def row_of(self, first_text):
        """The number of the row that begins with the text."""
        return next(row for row in range(self.append_row() + 1)
                    if self.cell(row, self.headings()[0]).get_name() == first_text)

    def append_row(self):
        """The number of the last row, in which a new record is begun."""
        grid = self.find("table")
        return Atspi.Table.get_n_rows(grid) - self._heading_rows(grid) - 1

    def click_cell(self, row, heading, times=1, from_right=None):
        cell = self.cell(row, heading)
        self._click_inside(self.find("table"), lambda: cell, times, from_right=from_right)

    def press_in_cell(self, row, heading):
        """Clicks the button of a cell, or the arrow of one with a list; it stands at the right edge."""
        self.click_cell(row, heading, from_right=8)

    def choose_in_cell(self, row, heading, entry):
        """Chooses an entry of a cell's list, with the mouse."""
        self.press_in_cell(row, heading)
        self._click_entry(self.program.popup("list"), entry)
        self.wait_for_cell(row, heading, entry)

    def enter(self, row, heading, text):
        """Types a text over a cell's old one and ends it with Enter; waits until the cell shows it."""
        self.click_cell(row, heading, times=2)
        self._clear_sight()
        screen.press("ctrl+a")
        screen.type_text(text)
        screen.press("Return")
        self.wait_for_cell(row, heading, text)

    def type_along(self, row, texts):
        """Types texts (heading -> text) into cells that follow each other, from cell to cell with Tab."""
        self.click_cell(row, next(iter(texts)))
        self._clear_sight()
        for heading, text in texts.items():
            screen.type_text(text)
            screen.press("Tab")
            self.wait_for_cell(row, heading, text)

    def _clear_sight(self):
        """Moves the pointer off what is being typed."""
        left, top, width, height = rectangle(self.find("table"))
        screen.move(left + width - 40, top + height - 40)

    def wait_for_cell(self, row, heading, text):
        self.program.wait_until(lambda: self.cell(row, heading).get_name() == text,
                                f"“{text}” in row {row} under “{heading}”")

    def tick_categories(self, row, names, seen=lambda: None):
        """Ticks just these names in the list that a click on the cell “灯具类别” drops down, and closes it."""
        self.click_cell(row, "灯具类别")
        for entry in children(self.program.popup("list")):
            wanted = entry.get_name() in names
            if has(entry, "CHECKED") != wanted:
                screen.click(*centre(entry))
                self.program.wait_until(lambda: has(entry, "CHECKED") == wanted, f"the tick of “{entry.get_name()}”")
        seen()
        screen.press("Return")
        self.wait_for_cell(row, "灯具类别", ",".join(names))

    def choose_in_menu(self, command):
        """Chooses a command of the menu of the grid's focus cell."""
        screen.press("Menu", "Down")
        entry = self.program.popup("menu item")
        screen.click(*centre(next(one for one in children(entry.get_parent()) if one.get_name() == command)))

    # Trees ----------------------------------------------------------------------------------------------------

    def tree_item(self, name):
        """The item of the tree that bears the name, once there is one; of several the last."""
        return self.program.wait_until(
            lambda: next((item for item in reversed(children(self.find("tree"))) if item.get_name() == name), None),
            f"“{name}” in a tree")

    def click_tree(self, name, button=1):
        self._click_inside(self.find("tree"), lambda: self.tree_item(name), button=button)

    def expand(self, *names):
        """Opens the items one after the other, each inside the one before."""
        for name in names:
            self.click_tree(name)
            screen.press("Right")

    def choose_from_menu(self, name, command, seen=lambda: None):
        """Chooses a command of the menu that a right click on an item of the tree opens."""
        self.click_tree(name, button=3)
        # A menu tells of itself only when one of its commands is reached; Down goes to the first enabled one.
        screen.press("Down")
        entry = self.program.popup("menu item")
        seen()
        screen.click(*centre(next(one for one in children(entry.get_parent()) if one.get_name() == command)))

    def _click_inside(self, frame, item, times=1, button=1, from_right=None):
        """Turns the mouse wheel over frame until item() shows wholly inside it, and clicks it there."""
        for _ in range(300):
            left, top, width, height = rectangle(frame)
            item_left, item_top, item_width, item_height = rectangle(item())
            y = item_top + item_height // 2
            x = item_left + (item_width // 2 if from_right is None else item_width - from_right)
            # Wide things are clicked on what can be seen of them.
            if from_right is None and item_width > width // 2:
                x = max(left + 4, min(x, left + width - 4))
            is_level = item_height and top <= item_top and item_top + item_height <= top + height
            if is_level and left <= x <= left + width - 2 and has(item(), "SHOWING"):
                screen.click(x, y, button=button, times=times)
                return
            if is_level:
                wheel, turns = (6 if x < left else 7), abs(x - left - width // 2) // width
            else:
                wheel, turns = (4 if item_top < top else 5), abs(y - top - height // 2) // height
            screen.click(left + width // 2, top + height // 2, button=wheel, times=max(1, min(20, turns * 2)))
        raise TimeLimit("could not bring an item into sight")
