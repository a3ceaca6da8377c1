"""Light sources and illuminance requirements: a value typed over, the append row filled, submitted."""

CATEGORY = "T5直管荧光灯"
LIGHT_SOURCE = {"LamphouseName": "三基色直管荧光灯", "LamphouseModel": "DEMO-T5-28W/840", "LuminousFlux": 2750,
                "LamphousePower": 28, "Factory": "示范照明"}
TRADE, BUILDING = "公共建筑", "办公建筑"
PLACE = {"Location": "开放式办公区", "ReferencePlane": "0.75m水平面", "ActualLPD": 13.5, "ObjectiveLPD": 11,
         "IlluminanceStandard": 400, "UGR": 19, "Ra": 80}


def light_source_road(story):
    story.tell(f"choosing the category “{CATEGORY}”")
    story.window.choose("按光源类型显示", CATEGORY)
    categories = {row["LamphouseType"]: row["ID"] for row in story.folder.everything()["光源类别"]}
    edit_and_append(story, "光源", {"LuminousFlux": 2645}, LIGHT_SOURCE, {"LamphouseType": categories[CATEGORY]},
                    ("名    称", "光源型号", "光通量", "功  率", "厂    家"),
                    ("main-window", "luminous-flux", "light-sources-append", "light-sources-submitted"))


def requirement_road(story):
    story.tell(f"choosing “{BUILDING}” under “{TRADE}”")
    story.window.show_tab("照度要求及功率密度")
    story.window.expand(TRADE)
    story.window.click_tree(BUILDING)
    edit_and_append(story, "照度要求及功率密度", {"IlluminanceStandard": 350}, PLACE,
                    {"Vocation": TRADE, "BuildingType": BUILDING},
                    ("场所", "参考平面", "现行功率密度", "目标功率密度", "照度标准值", "统一眩光值", "显色指数"),
                    ("requirements", "illuminance", "new-place", "requirements-submitted"))


def edit_and_append(story, table, typed_over, added, beside, headings, pictures):
    """Types a value over that of the first row, and the values `added` into the append row, under the headings. The
    table must then be changed by just these; the new row holds the values `beside` as well."""
    window, folder = story.window, story.folder
    before = folder.everything()
    window.wait_for_cell(0, "序号", "1")
    story.show(pictures[0])
    heading_of = dict(zip(added, headings))
    ((column, value),) = typed_over.items()
    first = window.row_texts(0)
    story.tell(f"typing {value} over {first[heading_of[column]]}, {heading_of[column]} of {first[headings[0]]}")
    window.enter(0, heading_of[column], f"{value}")
    story.show(pictures[1])

    row = window.append_row()
    story.tell(f"filling the append row with {', '.join(map(str, added.values()))}")
    window.type_along(row, dict(zip(headings, map(str, added.values()))))
    story.show(pictures[2])
    story.expect(folder.everything() == before, "the file was changed before the data were submitted")
    story.submit()
    window.wait_for_cell(row, "序号", f"{row + 1}")
    story.show(pictures[3])

    old, now, new = story.changes(before, table)[table]
    named = {column: first[heading_of[column]] for column in list(added)[:2]}
    story.expect(len(now) == 1 and now[0] == {**old[0], **named, **typed_over} and old[0] == {**old[0], **named},
                 f"the changed rows are {now}")
    story.expect(len(new) == 1 and new[0] == {**new[0], **added, **beside}, f"the new rows are {new}")
