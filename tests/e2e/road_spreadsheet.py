"""As one who lives in spreadsheets: 60 light sources of a maker's table and a data sheet's factors, from another
program's clipboard; undone, sorted, found, plotted and previewed."""

import screen
from road_factor_table import factors_of, leave_table, open_table

CATEGORY = "LED灯"
SOURCES = [("LED灯管", f"SHEET-{watts}W/{colour}", watts * 100 + colour, watts, "示范照明")
           for watts in range(5, 65, 5) for colour in (827, 830, 840, 850, 865)]
HEADINGS = [(ceiling, wall, 20) for ceiling in (80, 70, 50, 30) for wall in (50, 30, 10)][:10]
RATIOS = [0.6, 0.8, 1, 1.25, 1.5, 2, 2.5, 3, 4, 5, 10]
FACTORS = {(*heading, ratio): round(0.3 + 0.004 * sum(heading[:2]) * ratio / (1 + ratio) / 2, 2)
           for heading in HEADINGS for ratio in RATIOS}


def paste(window, rows):
    screen.copy_elsewhere("".join("\t".join(map(str, row)) + "\r\n" for row in rows))
    screen.press("ctrl+v")


def spreadsheet_road(story):
    window, folder = story.window, story.folder
    before = folder.everything()
    story.tell(f"pasting {len(SOURCES)} light sources of another program")
    window.show_tab("光源库")
    window.choose("按光源类型显示", CATEGORY)
    row = window.append_row()
    window.click_cell(row, "名    称")
    paste(window, SOURCES)
    wait_for_rows(story, row + len(SOURCES))
    story.show("sources-pasted")
    story.tell("undoing and redoing it, sorting by flux, finding by pinyin initials")
    screen.press("ctrl+z")
    wait_for_rows(story, row)
    screen.press("ctrl+y")
    wait_for_rows(story, row + len(SOURCES))
    window.click_cell(-1, "光通量", from_right=8)
    def shown(): return [float(window.cell(row, "光通量").get_name()) for row in range(9)]
    story.program.wait_until(lambda: shown() == sorted(shown()), "the rows sorted")
    story.show("sorted")
    screen.press("ctrl+Home", "ctrl+f")
    screen.type_text("sfzm")
    story.program.hear("accessible-name", "label", f"第 1 个,共 {len(SOURCES)} 个")
    story.show("found")
    screen.press("Escape")
    for _ in ("descending", "as it was"):
        window.click_cell(-1, "光通量", from_right=8)
    window.wait_for_cell(0, "序号", "1")
    story.submit()
    _, now, new = story.changes(before, "光源")["光源"]
    columns = ("LamphouseName", "LamphouseModel", "LuminousFlux", "LamphousePower", "Factory")
    story.expect(not now and [tuple(row[name] for name in columns) for row in new] == SOURCES,
                 "the new light sources are not those that were pasted")
    factor_road(story)


def factor_road(story):
    stored, table = open_table(story, CATEGORY, story.folder.everything())
    story.tell("pasting the factors of a data sheet with their headings, plotting and previewing them")
    table.click_cell(0, table.headings()[1])
    paste(table, [("", *values) for values in zip(*HEADINGS)]
          + [(ratio, *(FACTORS[*heading, ratio] for heading in HEADINGS)) for ratio in RATIOS])
    question = story.program.message("是否粘贴?")
    story.show("factors-question")
    question.press_button("是")
    table.row_of("0.60")
    story.show("factors-pasted")
    for command, picture in (("曲线图…", "plot"), ("打印预览…", "print-preview")):
        table.choose_in_menu(command)
        window_of_it = story.program.other_window(table)
        story.show(picture)
        screen.press("alt+F4")
        window_of_it.wait_until_closed()
    leave_table(story, table)
    now = factors_of(stored["ID"], story.folder.everything())
    story.expect(now == {key: now[key] for key in now} | FACTORS, "the factors are not those that were pasted")


def wait_for_rows(story, last):
    story.program.wait_until(lambda: story.window.append_row() == last, f"{last} rows")
