"""A killed program: its edit is offered at the next start, taken back and submitted."""

import os
from pathlib import Path

import screen
from driver import Program
from road_records import CATEGORY


def recovery_road(story):
    folder, settings = story.folder, Path(os.environ["XDG_CONFIG_HOME"]) / "quorvane"
    before = folder.everything()
    story.tell("typing a luminous flux, and killing the program")
    story.window.show_tab("光源库")
    story.window.choose("按光源类型显示", CATEGORY)
    told_by = {"LamphouseModel": story.window.row_texts(0)["光源型号"]}
    screen.wait_until(lambda: not any(settings.glob("edits-*.cbor")), "edits that were submitted are kept no more")
    story.window.enter(0, "光通量", "4321")
    screen.wait_until(lambda: any(settings.glob("edits-*.cbor")), "the edit is kept")
    story.program.process.kill()
    story.program.wait_for_end()

    story.tell("starting it again, and restoring the edit")
    story.program = Program(folder)
    question = story.program.message("上次有 1 处未提交的修改,是否恢复?")
    story.show("recovery")
    question.press_button("是")
    story.window = story.program.main_window()
    story.window.wait_for_cell(0, "光通量", "4321")
    story.submit()
    _, now, new = story.changes(before, "光源")["光源"]
    story.expect([{**row, **told_by, "LuminousFlux": 4321} for row in now] == now and len(now) == 1 and not new,
                 "the light sources were not changed as it was typed")
