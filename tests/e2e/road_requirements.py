"""Illuminance requirements: a building type chosen in the tree, a value typed over, a place added, submitted."""

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
    story.show("requirements")

    first = window.row_texts(0)
    story.tell(f"typing {NEW_ILLUMINANCE} lx over {first['照度标准值']} lx for {first['场所']}")
    window.enter(0, "照度标准值", f"{NEW_ILLUMINANCE}")
    story.show("illuminance")

    story.tell(f"filling the append row with {NEW_PLACE['Location']}")
    story.append_and_submit(HEADINGS, NEW_PLACE.values(), before, ("new-place", "requirements-submitted"))
    story.expect_one_changed_one_new(
        "照度要求及功率密度", before, told_by={"Location": first["场所"]}, typed={"IlluminanceStandard": NEW_ILLUMINANCE},
        added={**NEW_PLACE, "Vocation": TRADE, "BuildingType": BUILDING})
