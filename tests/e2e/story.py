"""What the roads of the demonstration have at hand: the window, the file, and ways to tell, show and compare."""

import screen
from driver import Program, has, rectangle


class Failure(Exception):
    """The file does not hold what was typed."""


class Story:
    def __init__(self, folder):
        self.folder = folder
        self.program = Program(folder)
        self.window = self.program.main_window()
        self._pictures = 0

    def tell(self, text):
        print(f"demo: {text}", flush=True)

    def show(self, name):
        """A picture of the window in front with its frame, numbered in the order of the story."""
        front = next((window for window in self.program.windows() if has(window, "ACTIVE")), self.window.element)
        left, top, width, height = rectangle(front)
        self._pictures += 1
        picture = self.folder.folder / f"{self._pictures:02}-{name}.png"
        screen.picture(picture, (left - 1, top - 21, width + 2, height + 22))
        print(f"      picture {picture}", flush=True)

    def expect(self, holds, what):
        if not holds:
            raise Failure(what)

    def submit(self):
        self.tell("submitting")
        self.window.submit()

    def changes(self, before, *tables):
        """Table -> (what changed rows were, what they are now, new rows), printed for the reader. Fails when a row
        is gone, or when a table that is not among the named ones was changed."""
        after, result = self.folder.everything(), {}
        for table, rows in before.items():
            old = {row["ID"]: row for row in rows}
            now = {row["ID"]: row for row in after[table]}
            self.expect(table in tables or now == old, f"{table} was changed")
            self.expect(now.keys() >= old.keys(), f"rows of {table} are gone")
            changed = [number for number in old if now[number] != old[number]]
            result[table] = ([old[number] for number in changed], [now[number] for number in changed],
                             [row for number, row in now.items() if number not in old])
            for title, shown in zip(("before ", "after  ", "new    "), result[table]):
                for row in shown:
                    print(f"  {title}{table}: {', '.join(f'{name} {value}' for name, value in row.items())}")
        return result
