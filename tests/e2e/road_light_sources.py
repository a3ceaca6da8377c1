"""Light sources: a luminous flux typed over, the append row filled, submitted."""

NEW_FLUX = 2645
NEW_SOURCE = {"LamphouseName": "三基色直管荧光灯", "LamphouseModel": "DEMO-T5-28W/840", "LuminousFlux": 2750,
              "LamphousePower": 28, "Factory": "示范照明"}


def light_source_road(story):
    window, folder = story.window, story.folder
    category = folder.first_category()
    before = folder.everything()

    story.tell(f"choosing the category “{category['LamphouseType']}”")
    window.choose("按光源类型显示", category["LamphouseType"])
    story.show("main-window")

    first = window.row_texts(0)
    story.tell(f"typing {NEW_FLUX} lm over {first['光通量']} lm of {first['光源型号']}")
    window.enter(0, "光通量", f"{NEW_FLUX}")
    story.show("luminous-flux")

    story.tell(f"filling the append row with {NEW_SOURCE['LamphouseModel']}")
    headings = ("名    称", "光源型号", "光通量", "功  率", "厂    家")
    story.append_and_submit(headings, NEW_SOURCE.values(), before, ("light-sources-append", "light-sources-submitted"))
    story.expect_one_changed_one_new(
        "光源", before, told_by={"LamphouseModel": first["光源型号"]}, typed={"LuminousFlux": NEW_FLUX},
        added={**NEW_SOURCE, "LamphouseType": category["ID"]})
