"""Illuminance requirements: a building type chosen in the tree, a value typed over, a place added, submitted."""

from story import Changes

TRADE, BUILDING = "公共建筑", "办公建筑"
NEW_ILLUMINANCE = 350
NEW_PLACE = {"Location": "开放式办公区", "ReferencePlane": "0.75m水平面", "ActualLPD": 13.5, "ObjectiveLPD": 11,
             "IlluminanceStandard": 400, "UGR": 19, "Ra": 80}
HEADINGS = ("场所", "参考平面", "现行功率密度", "目标功率密度", "照度标准值", "统一眩光值", "显色指数")


def requirement_road(story):
    window, folder = story.window, story.folder
    before = folder.everything()

    story.tell(f"choosing “{BUILDING}” under “{TRADE}”")
    window.show_tab("照度要求及功率密度")
    window.expand(TRADE)
    window.click_tree(BUILDING)
    window.wait_for_cell(0, "序号", "1")
    story.show("building-type")

    first = window.grid().row_texts(0)
    story.tell(f"typing {NEW_ILLUMINANCE} lx over {first['照度标准值']} lx for {first['场所']}")
    window.enter(0, "照度标准值", f"{NEW_ILLUMINANCE}")
    story.show("illuminance")

    story.tell(f"filling the append row with {NEW_PLACE['Location']}")
    row = window.append_row()
    window.type_along(row, dict(zip(HEADINGS, map(str, NEW_PLACE.values()))))
    story.show("new-place")
    story.expect(folder.everything() == before, "the file was changed before the data were submitted")

    story.submit()
    window.wait_for_cell(row, "序号", f"{row + 1}")
    story.show("requirements-submitted")

    after = folder.everything()
    changes = Changes("照度要求及功率密度", before["照度要求及功率密度"], after["照度要求及功率密度"])
    changes.show(beside=lambda row: row["BuildingType"] == BUILDING)
    story.expect(len(changes.changed) == 1 and len(changes.new) == 1 and not changes.gone,
                 f"one row changed and one new were expected, not {len(changes.changed)} and {len(changes.new)}")
    (changed,), (added,) = changes.changed, changes.new
    old = changes.old[changed["ID"]]
    story.expect(old["Location"] == first["场所"] and changed == {**old, "IlluminanceStandard": NEW_ILLUMINANCE},
                 f"the changed row is {changed}")
    story.expect({**added, **NEW_PLACE, "Vocation": TRADE, "BuildingType": BUILDING} == added,
                 f"the new row is {added}")
    story.expect_only(after, before, "照度要求及功率密度")
