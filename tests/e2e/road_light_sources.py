"""Light sources: a luminous flux typed over, the append row filled, submitted."""

from story import Changes

NEW_FLUX = 2645
NEW_SOURCE = {"LamphouseName": "三基色直管荧光灯", "LamphouseModel": "DEMO-T5-28W/840", "LuminousFlux": 2750,
              "LamphousePower": 28, "Factory": "示范照明"}


def light_source_road(story):
    window, folder = story.window, story.folder
    category = folder.first_category()
    before = folder.everything()

    story.tell(f"choosing the category “{category['name']}”")
    window.choose("按光源类型显示", category["name"])
    story.show("category")

    first = window.grid().row_texts(0)
    story.tell(f"typing {NEW_FLUX} lm over {first['光通量']} lm of {first['光源型号']}")
    window.enter(0, "光通量", f"{NEW_FLUX}")
    story.show("luminous-flux")

    story.tell(f"filling the append row with {NEW_SOURCE['LamphouseModel']}")
    row = window.append_row()
    headings = ("名    称", "光源型号", "光通量", "功  率", "厂    家")
    window.type_along(row, dict(zip(headings, map(str, NEW_SOURCE.values()))))
    story.show("append-row")
    story.expect(folder.everything() == before, "the file was changed before the data were submitted")

    story.submit()
    window.wait_for_cell(row, "序号", f"{row + 1}")
    story.show("light-sources-submitted")

    after = folder.everything()
    changes = Changes("光源", before["光源"], after["光源"])
    changes.show(beside=lambda row: row["LamphouseType"] == category["ID"])
    story.expect(len(changes.changed) == 1 and len(changes.new) == 1 and not changes.gone,
                 f"one row changed and one new were expected, not {len(changes.changed)} and {len(changes.new)}")
    (changed,), (added,) = changes.changed, changes.new
    old = changes.old[changed["ID"]]
    story.expect(old["LamphouseModel"] == first["光源型号"] and changed == {**old, "LuminousFlux": NEW_FLUX},
                 f"the changed row is {changed}")
    story.expect({**added, **NEW_SOURCE, "LamphouseType": category["ID"]} == added, f"the new row is {added}")
    story.expect_only(after, before, "光源")
