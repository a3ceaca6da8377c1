"""What the roads of the demonstration have at hand: the window, the file, and ways to tell, show and compare."""

import unicodedata

from driver import Program, framed


class Failure(Exception):
    """The file does not hold what was typed."""


class Story:
    def __init__(self, screen, folder):
        self.screen, self.folder = screen, folder
        self.program = Program(screen, folder)
        self.window = self.program.main_window()
        self._front = self.window.element
        self._pictures = 0

    def tell(self, text):
        print(f"demo: {text}", flush=True)

    def show(self, name):
        """A picture of the window in front, numbered in the order of the story."""
        self._front = next((window for window in self.program.windows() if window.is_("active")), self._front)
        self._pictures += 1
        picture = self.folder.folder / f"{self._pictures:02}-{name}.png"
        self.screen.picture(picture, framed(self._front.rectangle))
        print(f"      picture {picture}", flush=True)

    def expect(self, holds, what):
        if not holds:
            raise Failure(what)

    def submit(self):
        self.tell("submitting")
        self.window.press_button("提交")

    def append_and_submit(self, headings, values, before, pictures):
        """Types the values into the cells of the append row under the headings, and submits. One picture each."""
        row = self.window.append_row()
        self.window.type_along(row, dict(zip(headings, map(str, values))))
        self.show(pictures[0])
        self.expect(self.folder.everything() == before, "the file was changed before the data were submitted")
        self.submit()
        self.window.wait_for_cell(row, "序号", f"{row + 1}")
        self.show(pictures[1])

    def expect_one_changed_one_new(self, table, before, beside, changed, added):
        """Fails unless the table was changed by just these two: a row that is now `changed`, given as what it
        was told by and what was typed over, and a new one with the values `added`."""
        after = self.folder.everything()
        changes = Changes(table, before[table], after[table])
        changes.show(beside)
        self.expect(len(changes.changed) == 1 and len(changes.new) == 1 and not changes.gone,
                    f"one row changed and one new were expected, not {len(changes.changed)} and {len(changes.new)}")
        (now,), (new,) = changes.changed, changes.new
        old = changes.old[now["ID"]]
        told_by, typed = changed
        self.expect({**old, **told_by} == old and now == {**old, **typed}, f"the changed row is {now}")
        self.expect({**new, **added} == new, f"the new row is {new}")
        self.expect_only(after, before, table)

    def expect_only(self, after, before, *tables):
        """Fails when a table that is not among the named ones was changed."""
        changed = [table for table in before if table not in tables and after[table] != before[table]]
        self.expect(not changed, f"other tables of the file were changed: {changed}")


class Changes:
    """The rows of one table before and after: which were changed, and which came new."""

    def __init__(self, table, before, after):
        self.table, self.before, self.after = table, before, after
        self.old = {row["ID"]: row for row in before}
        now = {row["ID"]: row for row in after}
        self.new = [row for row in after if row["ID"] not in self.old]
        self.changed = [row for row in after if row["ID"] in self.old and row != self.old[row["ID"]]]
        self.gone = [row for row in before if row["ID"] not in now]

    def show(self, beside=lambda row: False):
        """Prints the changed rows, and those for which beside(row) holds, before and after."""
        touched = {row["ID"] for row in self.new + self.changed + self.gone}
        marks = {row["ID"]: "new" for row in self.new} | {row["ID"]: "changed" for row in self.changed}
        for title, rows in (("before", self.before), ("after", self.after)):
            print_rows(f"{title}: {self.table} in the file ({len(rows)} rows in all)",
                       [row for row in rows if row["ID"] in touched or beside(row)], marks)


def columns_of(text):
    """How many columns of a terminal a text takes: a Chinese character takes two."""
    return sum(2 if unicodedata.east_asian_width(character) in "WF" else 1 for character in text)


def print_rows(title, rows, marks, most=24):
    """Prints rows as a table, the middle left out when there are many; marks tells what stands before a row."""
    print(f"\n  {title}")
    left_out = len(rows) - most
    if left_out > 1:
        rows = rows[:most // 2] + rows[-most // 2:]
    lines = [list(rows[0])] + [[f"{value}" for value in row.values()] for row in rows] if rows else []
    widths = [max(columns_of(line[column]) for line in lines) for column in range(len(lines[0]))] if lines else []
    for number, line in enumerate(lines):
        mark = marks.get(rows[number - 1]["ID"], "") if number else ""
        padded = (text + " " * (width - columns_of(text)) for text, width in zip(line, widths))
        print(f"    {mark:<8}{'  '.join(padded)}".rstrip())
        if left_out > 1 and number == most // 2:
            print(f"            ... {left_out} more rows")
    print("" if lines else "            none\n", flush=True)
