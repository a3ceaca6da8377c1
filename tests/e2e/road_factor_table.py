"""A luminaire's utilization factors: a heading and a row added in the tree, factors typed, submitted."""

import screen

CATEGORY = "T5直管荧光灯"
NEW_HEADING = (60, 40, 20)
NEW_ROW = 12
FACTORS = {(60, 40, 20, 0): 0.68, (60, 40, 20, 1): 0.61, (80, 70, 20, 12): 0.21}


def factor_table_road(story):
    folder = story.folder
    before = folder.everything()
    stored, table = open_table(story, CATEGORY, before)
    story.show("factor-table-opened")

    fill_table(story, table, "室空间比RCR", [NEW_HEADING], [NEW_ROW], FACTORS)
    story.show("factor-table")
    story.expect(folder.everything() == before, "the file was changed before the factors were submitted")
    leave_table(story, table)

    _, now, new = story.changes(before, "利用系数")["利用系数"]
    story.expect(factors_of(stored["ID"], folder.everything()) == expected(stored["ID"], before),
                 "the factors of the luminaire are not those that were typed")
    story.expect(not now and all(row["LuminaireID"] == stored["ID"] for row in new), "other factors were changed")


def open_table(story, category, before):
    """The first luminaire of the category as the file holds it, and the window of its table."""
    window = story.window
    story.tell(f"opening the factor table of the first luminaire of “{category}”")
    window.show_tab("灯具库")
    window.choose("灯具类型:", category)
    window.wait_for_cell(0, "序号", "1")
    luminaire = window.row_texts(0)
    story.show("luminaires")
    (stored,) = (row for row in before["灯具"] if row["LampModel"] == luminaire["灯具型号"])
    window.press_in_cell(0, "利用系数表")
    return stored, story.program.dialog(f"{luminaire['灯具名称']} 利用系数表")


def fill_table(story, table, row_label, headings, ratios, factors):
    story.tell(f"adding headings {headings} and rows {ratios}, typing {len(factors)} factors")
    labels = [",".join(map(str, heading)) for heading in headings]
    for root, typed, label in ([("列表头", label, label) for label in labels]
                               + [(row_label, f"{ratio}", f"{ratio:.2f}") for ratio in ratios]):
        table.choose_from_menu(root, f"新建{root}", seen=lambda: story.show("factor-menu"))
        story.program.wait_until(lambda: story.program.focused("text"), "the label to type")
        screen.press("ctrl+a")
        screen.type_text(typed)
        screen.press("Return")
        table.tree_item(label)
    for (*reflectances, ratio), factor in factors.items():
        table.enter(table.row_of(f"{ratio:.2f}"), ",".join(map(str, reflectances)), f"{factor}")


def leave_table(story, table):
    story.tell("submitting the table and leaving it with 确定")
    table.submit()
    table.press_button("确定")
    table.wait_until_closed()


def factors_of(luminaire, tables):
    """(ceiling, wall, floor, ratio) -> factor."""
    return {(row["Pcc"], row["Pw"], row["Pf"], row["RCR_RI"]): row["UtilizationFactor"]
            for row in tables["利用系数"] if row["LuminaireID"] == luminaire}


def expected(luminaire, before):
    """The old factors, zeros in the new column and row, and what was typed."""
    old = factors_of(luminaire, before)
    headings = {key[:3] for key in old} | {NEW_HEADING}
    ratios = {key[3] for key in old} | {NEW_ROW}
    return {(*heading, ratio): 0.0 for heading in headings for ratio in ratios} | old | FACTORS
