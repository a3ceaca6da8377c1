"""What a program shows, as a screen reader is told it: windows, buttons, lists, tables and their cells.

Nothing is acted upon through this; it only tells what stands where. Every question goes to the program anew.
"""

import re

import gi

gi.require_version("Gio", "2.0")
from gi.repository import Gio, GLib  # noqa: E402  (the version must be chosen first)

_A11Y = "org.a11y.atspi."
_STATES = {"active": 1, "checked": 4, "editable": 7, "enabled": 8, "focused": 12, "selected": 23, "showing": 25}
# Asked for by number, since the toolkit tells their names in the language of the machine.
_ROLES = {2: "alert", 7: "check box", 8: "check menu item", 10: "column header", 11: "combo box", 16: "dialog", 23: "frame", 29: "label",
          31: "list", 32: "list item", 33: "menu", 35: "menu item", 37: "page tab", 38: "page tab list", 39: "panel", 43: "push button",
          44: "radio button", 41: "popup menu", 55: "table", 56: "cell", 57: "column header", 58: "row header", 61: "text",
          65: "tree", 66: "tree table", 79: "text"}
# Their children are counted in thousands; they are asked for one by one.
_LARGE_ROLES = ("table", "tree table", "tree", "list")


class Gone(Exception):
    """The program answered no more, or the thing asked about is no longer there."""


def _connect(address):
    flags = Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION
    return Gio.DBusConnection.new_for_address_sync(address, flags, None, None)


def _call(bus, name, path, interface, method, arguments=None):
    try:
        return bus.call_sync(name, path, interface, method, arguments, None, Gio.DBusCallFlags.NONE, 20000,
                             None).unpack()
    except GLib.Error as error:
        raise Gone(f"{method}: {error.message}") from error


class Desktop:
    """The programs that show themselves on one session bus."""

    def __init__(self, session_address):
        self._session = _connect(session_address)
        (address,) = _call(self._session, "org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress")
        self._bus = _connect(address)
        self._root = Element(self._bus, _A11Y + "Registry", "/org/a11y/atspi/accessible/root")
        self._focused = None
        self._follow_focus()

    def _follow_focus(self):
        """Pop-ups stand in no window's tree; like a screen reader, one hears of them when they take the focus."""
        def told(_bus, owner, path, _interface, _signal, arguments):
            what, now = arguments.unpack()[:2]
            if what == "focused" and now:
                self._focused = Element(self._bus, owner, path)

        self._bus.signal_subscribe(None, _A11Y + "Event.Object", "StateChanged", None, None,
                                   Gio.DBusSignalFlags.NONE, told)
        _call(self._bus, _A11Y + "Registry", "/org/a11y/atspi/registry", _A11Y + "Registry", "RegisterEvent",
              GLib.Variant("(sass)", ("object:state-changed:focused", [], "")))

    def focused(self):
        """What last took the focus, in whichever program; None when nothing has yet."""
        while GLib.MainContext.default().iteration(False):
            pass
        return self._focused

    def application(self, process_id):
        """The program with that process id, or None as long as it has not shown itself."""
        for element in self._root.children():
            try:
                (owner,) = _call(self._bus, "org.freedesktop.DBus", "/org/freedesktop/DBus",
                                 "org.freedesktop.DBus", "GetConnectionUnixProcessID",
                                 GLib.Variant("(s)", (element.owner,)))
            except Gone:
                continue
            if owner == process_id:
                return element
        return None


class Element:
    """One thing on the screen."""

    def __init__(self, bus, owner, path):
        self._bus, self.owner, self._path = bus, owner, path

    def __eq__(self, other):
        return isinstance(other, Element) and (self.owner, self._path) == (other.owner, other._path)

    def __hash__(self):
        return hash((self.owner, self._path))

    def __repr__(self):
        try:
            return f"{self.role} “{self.name}”"
        except Gone:
            return f"gone {self._path}"

    def _ask(self, interface, method, signature=None, *arguments):
        variant = GLib.Variant(signature, arguments) if signature else None
        return _call(self._bus, self.owner, self._path, _A11Y + interface, method, variant)

    def _property(self, interface, name):
        arguments = GLib.Variant("(ss)", (_A11Y + interface, name))
        return _call(self._bus, self.owner, self._path, "org.freedesktop.DBus.Properties", "Get", arguments)[0]

    def _element(self, reference):
        return Element(self._bus, *reference)

    @property
    def name(self):
        return self._property("Accessible", "Name")

    @property
    def caption(self):
        """The name without the mark of an access key, which Chinese texts carry as "(Y)" at their end."""
        return re.sub(r"\(.\)$", "", self.name)

    @property
    def role(self):
        (number,) = self._ask("Accessible", "GetRole")
        return _ROLES.get(number, f"role {number}")

    @property
    def parent(self):
        return self._element(self._property("Accessible", "Parent"))

    def children(self):
        return [self._element(reference) for reference in self._ask("Accessible", "GetChildren")[0]]

    def is_(self, state):
        low, high = self._ask("Accessible", "GetState")[0]
        return bool((low | high << 32) >> _STATES[state] & 1)

    @property
    def rectangle(self):
        """Left, top, width and height in pixels of the screen."""
        return tuple(self._ask("Component", "GetExtents", "(u)", 0)[0])

    @property
    def centre(self):
        left, top, width, height = self.rectangle
        return left + width // 2, top + height // 2

    def text(self):
        """The text of something that holds text, as a line being typed."""
        return self._ask("Text", "GetText", "(ii)", 0, -1)[0]

    def walk(self):
        """Itself and everything inside it, outer things first; the insides of tables and lists are left out."""
        level = [self]
        while level:
            yield from level
            level = [child for element in level if element.role not in _LARGE_ROLES
                     for child in element.children()]

    def find_all(self, role, caption=None):
        """Everything of that role that shows on the screen, and that bears the caption when one is given."""
        return [element for element in self.walk()
                if element.role == role and element.is_("showing")
                and (caption is None or element.caption == caption)]

    def find(self, role, caption=None):
        """The first of find_all, or None."""
        return next(iter(self.find_all(role, caption)), None)


class Table:
    """A table, by headings and by row numbers from 0 on without the heading rows."""

    def __init__(self, element):
        self.element = element
        self._heading_rows = 0
        while self._heading_rows < self._rows() and self._at(self._heading_rows, 0).role == "column header":
            self._heading_rows += 1

    def _at(self, row, column):
        return self.element._element(self.element._ask("Table", "GetAccessibleAt", "(ii)", row, column)[0])

    def _rows(self):
        return self.element._property("Table", "NRows")

    @property
    def headings(self):
        """A column's heading; where there are several heading rows, their texts joined by commas."""
        columns = range(self.element._property("Table", "NColumns"))
        if not self._heading_rows:
            return [self.element._ask("Table", "GetColumnDescription", "(i)", column)[0] for column in columns]
        return [",".join(filter(None, (self._at(row, column).name for row in range(self._heading_rows))))
                for column in columns]

    @property
    def row_count(self):
        return self._rows() - self._heading_rows

    def cell(self, row, heading):
        headings = self.headings
        if heading not in headings:
            raise LookupError(f"no column “{heading}” among {headings}")
        return self._at(row + self._heading_rows, headings.index(heading))

    def row_texts(self, row):
        """Heading -> text of one row."""
        return {heading: self.cell(row, heading).name for heading in self.headings}

    def row_of(self, first_text):
        """The number of the row that begins with the text."""
        for row in range(self.row_count):
            if self._at(row + self._heading_rows, 0).name == first_text:
                return row
        raise LookupError(f"no row “{first_text}”")
