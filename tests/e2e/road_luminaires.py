"""Luminaires: one with a photo and factors, one of mixed light, one copied and pasted, submitted."""

import shutil
import tempfile
from contextlib import contextmanager
from pathlib import Path

from driver import Atspi, find_all
from road_factor_table import factors_of, fill_table, leave_table

CATEGORY = "T5直管荧光灯"
PLAIN = {"灯具名称": "高效格栅灯盘", "灯具型号": "DEMO-GS228", "灯具效率": "78", "A-A": "1.35", "B-B": "1.26"}
PLAIN_CATEGORIES = ["T5直管荧光灯", "常用灯具"]
PLAIN_SOURCE = "T5高效型荧光灯:CY5-28/840"
HEADINGS = [(80, 50, 20), (50, 50, 20)]
FACTORS = {(80, 50, 20, 0.6): 0.35, (50, 50, 20, 0.6): 0.33, (80, 50, 20, 2): 0.6, (50, 50, 20, 2): 0.56}
MIXED = {"灯具名称": "混光高天棚灯", "灯具型号": "DEMO-HG400", "灯具效率": "75", "A-A": "1.1", "B-B": "1.1"}
MIXED_CATEGORIES = ["常用灯具", "混光灯"]
MIXED_SOURCES = [("金属卤化物灯", "石英金属卤化物灯:JLZ250", 1), ("高压钠灯", "高压钠灯:NG150", 2)]


def luminaire_road(story):
    window, folder = story.window, story.folder
    window.show_tab("灯具库")
    window.choose("灯具类型:", CATEGORY)
    before, photos = folder.everything(), folder.photos()

    plain, mixed = window.append_row(), window.append_row() + 1
    add_plain_luminaire(story, plain)
    with picture_folder(folder) as pictures:
        photo = pictures["格栅灯盘"]
        choose_photo(story, plain, photo)
        fill_factor_table(story, plain)
        photo_bytes = photo.read_bytes()
    add_mixed_luminaire(story, mixed)
    copy_and_paste(story, plain)

    story.submit()
    window.wait_for_cell(mixed, "序号", f"{mixed + 1}")
    window.click_cell(plain, "灯具名称")
    story.show("luminaires-submitted")

    after = folder.everything()
    changes = story.changes(before, "灯具", "利用系数")
    (_, now, new), (_, other_factors, _) = changes["灯具"], changes["利用系数"]
    story.expect(not now and not other_factors and len(new) == 3, f"changed: {now} {other_factors}, new: {new}")
    compare(story, after, new)
    added = {name: content for name, content in folder.photos().items() if photos.get(name) != content}
    twins = [row["ID"] for row in new if row["LampModel"] == PLAIN["灯具型号"]]
    story.expect(added == {f"{number}{photo.suffix}": photo_bytes for number in twins} and len(twins) == 2,
                 f"the new photos are {list(added)}")


def add_plain_luminaire(story, row):
    window = story.window
    story.tell(f"a new luminaire {PLAIN['灯具型号']} from the append row, its categories from the chooser")
    window.type_along(row, PLAIN)
    story.show("luminaire-append-row")
    window.tick_categories(row, PLAIN_CATEGORIES, seen=lambda: story.show("type-chooser"))
    window.choose_in_cell(row, "默认光源", PLAIN_SOURCE)
    window.enter(row, "光源个数", "2")
    window.choose_in_cell(row, "利用系数类别", "RI")
    story.show("luminaire-light-source")


@contextmanager
def picture_folder(folder):
    """A folder outside the program's own, with two pictures to choose from; name -> file."""
    drawn = sorted((folder.database.parent / "LuminairePhotoLib").glob("*.jpg"))
    with tempfile.TemporaryDirectory(prefix="quorvane-", dir="/var/tmp") as place:
        pictures = Path(place) / "灯具图片"
        pictures.mkdir()
        yield {name: Path(shutil.copy2(file, pictures / f"{name}.jpg"))
               for name, file in zip(("三防灯", "格栅灯盘"), reversed(drawn[:2]))}


def choose_photo(story, row, photo):
    story.tell(f"choosing the photo {photo.name}")
    story.window.press_in_cell(row, "灯具图片")
    dialog = story.program.dialog(f"{PLAIN['灯具名称']} 图片设置")
    first, *folders = photo.parent.parts
    dialog.expand(first, *folders)
    dialog.click_tree(photo.name)
    story.program.wait_until(lambda: any(str(photo) in Atspi.Text.get_text(edit, 0, -1)
                                         for edit in find_all(dialog.element, "text")),
                             "the path of the photo")
    story.show("photo")
    dialog.press_button("确定")
    story.window.wait_for_cell(row, "灯具图片", str(photo))


def fill_factor_table(story, row):
    story.window.press_in_cell(row, "利用系数表")
    table = story.program.dialog(f"{PLAIN['灯具名称']} 利用系数表")
    fill_table(story, table, "室形系数RI", HEADINGS, sorted({key[3] for key in FACTORS}), FACTORS)
    story.show("luminaire-factors")
    leave_table(story, table)


def add_mixed_luminaire(story, row):
    window = story.window
    story.tell(f"a new mixed-light luminaire {MIXED['灯具型号']}, its light sources from their dialog")
    window.type_along(row, MIXED)
    window.tick_categories(row, MIXED_CATEGORIES, seen=lambda: story.show("mixed-light-chooser"))
    window.press_in_cell(row, "默认光源")
    dialog = story.program.dialog("混合光源设置")
    for number, (category, source, count) in enumerate(MIXED_SOURCES):
        dialog.choose_in_cell(number, "光源类别", category)
        dialog.choose_in_cell(number, "光源", source)
        dialog.enter(number, "数量", f"{count}")
    story.show("mixed-light")
    dialog.press_button("确定")
    dialog.wait_until_closed()
    window.wait_for_cell(row, "默认光源", ",".join(source for _, source, _ in MIXED_SOURCES))
    window.wait_for_cell(row, "光源个数", ",".join(str(count) for *_, count in MIXED_SOURCES))
    story.show("mixed-light-row")


def copy_and_paste(story, row):
    window = story.window
    story.tell("copying the first of them and pasting it into the append row")
    window.click_cell(row, "灯具名称")
    window.press_button("复制")
    target = window.append_row()
    window.click_cell(target, "灯具名称")
    window.press_button("粘贴")
    window.wait_for_cell(target, "灯具型号", PLAIN["灯具型号"])
    story.show("pasted")


def compare(story, after, new):
    """The new rows of the file against what was typed and chosen."""
    categories = {row["LamphouseType"]: row["ID"] for row in after["光源类别"]}
    sources = {f"{row['LamphouseName']}:{row['LamphouseModel']}": row["ID"] for row in after["光源"]}
    for row in new:
        is_plain = row["LampModel"] == PLAIN["灯具型号"]
        typed, ticked, chosen = ((PLAIN, PLAIN_CATEGORIES, [(PLAIN_SOURCE, 2)]) if is_plain else
                                 (MIXED, MIXED_CATEGORIES, [(source, count) for _, source, count in MIXED_SOURCES]))
        name, model, *numbers = typed.values()
        wanted = {"LampName": name, "LampModel": model, "UtilizationFactorType": int(is_plain),
                  **dict(zip(("LuminaireEfficiency", "MaxLhAA", "MaxLhBB"), map(float, numbers))),
                  "LamphouseTypeID": ",".join(str(categories[category]) for category in ticked),
                  "DefaultLamphouse": ",".join(str(sources[source]) for source, _ in chosen),
                  "LamphouseCount": ",".join(str(count) for _, count in chosen),
                  "LampPhoto": f"\\Vexal\\LuminairePhotoLib\\{row['ID']}.jpg" if is_plain else ""}
        story.expect({**row, **wanted} == row, f"a new luminaire is {row}")
        story.expect(factors_of(row["ID"], after) == (FACTORS if is_plain else {}),
                     f"the factors of {row['LampName']} are {factors_of(row['ID'], after)}")
