"""The edit commands by menu, toolbar, shortcut and pop-up menu, and what is enabled when, in the real menu and toolbar."""

import time

import pytest

from editor import Melody, wait_until, windows_path
from test_compose import names, selected, wait_names, wait_selected

# Caption of the menu item and tooltip of the toolbar button that stand for the same command.
PAIRS = {
    "Cu&t": "Cut", "&Copy": "Copy", "&Paste": "Paste", "&Delete": "Delete", "&Insert": "Insert",
    "Pre&view": "Preview Sound",
}
ALWAYS = ["&New", "&Open on PC...", "&Save to PC", "Save to PC &as...", "Open on Velo&xa...", "Save to Ve&loxa",
          "Save &to Veloxa as...", "Dis&connection Setup...", "&Exit", "&Undo", "Up &an octave", "Down an &octave",
          "Up &half a tone", "Down half a to&ne", "ﾄﾞﾚﾐ表示(&D)", "&Verify to transfer all data", "&Help Topics",
          "&About Sound Editor..."]
MENU_BAR = [
    ("&File", ["&New", "-", "&Open on PC...\tCtrl+O", "&Save to PC\tCtrl+S", "Save to PC &as...", "-",
               "Open on Velo&xa...", "Save to Ve&loxa", "Save &to Veloxa as...", "-", "Dis&connection Setup...", "-",
               "&Exit"]),
    ("&Edit", ["&Undo\tCtrl+Z", "-", "Cu&t\tCtrl+X", "&Copy\tCtrl+C", "&Paste\tCtrl+V", "&Insert\tCtrl+I",
               "&Delete\tDel", "-", "Up &an octave", "Down an &octave", "Up &half a tone", "Down half a to&ne", "-",
               "Pre&view"]),
    ("&View", ["ﾄﾞﾚﾐ表示(&D)"]),
    ("&Setting", ["&Verify to transfer all data"]),
    ("&Help", ["&Help Topics", "-", "&About Sound Editor..."]),
]
TOOLTIPS = ["New", "Open on PC", "Save to PC", "Open on Veloxa", "Save to Veloxa", "Cut", "Copy", "Paste", "Delete",
            "Insert", "Preview Sound"]

FIVE = "tempo 120\nc4 1/4\nd4 1/8\ne4 1/2\nr 1/4\ng4 1/1\n"
C, D, E, R, G = "c4, Quarter note", "d4, Eighth note", "e4, Half note", "Quarter rest", "g4, Whole note"


@pytest.fixture
def five(start, melody):
    """An editor with five entries, the cursor on the first."""
    editor = start(windows_path(melody("FIVE.SND", FIVE)))
    editor.screen.key("home")
    wait_selected(editor, [0])
    return editor


def enabled(editor):
    """Captions of the commands that come and go with the score; menu and toolbar must agree."""
    menu, toolbar = editor.menu(), editor.toolbar()
    for caption, tooltip in PAIRS.items():
        assert menu[caption]["enabled"] == toolbar[tooltip]["enabled"], f"menu and toolbar differ in {caption}"
    for caption in ALWAYS:
        assert menu[caption]["enabled"], f"{caption} is always enabled"
    return {tooltip for caption, tooltip in PAIRS.items() if menu[caption]["enabled"]} - {"Preview Sound"}


def wait_enabled(editor, expected):
    try:
        wait_until(lambda: enabled(editor) == set(expected), 5)
    except AssertionError as failure:
        raise AssertionError(f"enabled {enabled(editor)}, wanted {set(expected)}") from failure


def test_the_menu_bar_is_the_documented_one(editor):
    shown = [(top["text"], [item["text"] for item in top["items"]])
             for top in editor.prefix.ask("menu", editor.hwnd)]
    assert shown == MENU_BAR


def test_the_toolbar_is_the_documented_one(editor):
    buttons = editor.prefix.ask("toolbar", editor.child("ToolbarWindow32")["hwnd"])
    assert [button["tooltip"] for button in buttons if not button["separator"]] == TOOLTIPS
    rects = [button["rect"] for button in buttons]
    assert rects == sorted(rects), "left to right"


def test_enabling_of_an_empty_score(editor):
    wait_enabled(editor, [])
    assert not editor.menu()["Pre&view"]["enabled"]


def test_enabling_follows_entries_and_clipboard(editor):
    editor.click_key("c4")
    wait_enabled(editor, ["Cut", "Copy", "Delete", "Insert"])
    editor.screen.key("home")
    editor.screen.key("ctrl+c")
    wait_enabled(editor, ["Cut", "Copy", "Delete", "Insert", "Paste"])
    editor.screen.key("delete")
    wait_names(editor, ["End"])
    wait_enabled(editor, ["Paste"])  # the clipboard is never emptied
    editor.screen.key("ctrl+v")
    wait_names(editor, [C, "End"])
    wait_enabled(editor, ["Cut", "Copy", "Delete", "Insert", "Paste"])


def test_with_508_entries_insert_is_disabled_and_paste_is_not(start, melody):
    editor = start(windows_path(melody("E508.SND", "tempo 120\n" + "c4 1/4\nr 1/8\n|\n|\n" * 127)))
    editor.screen.key("home")
    editor.screen.key("ctrl+c")
    wait_enabled(editor, ["Cut", "Copy", "Delete", "Paste"])
    editor.screen.key("ctrl+v")
    wait_enabled(editor, ["Cut", "Copy", "Delete"])  # 509 entries: nothing more can be pasted
    editor.screen.key("delete")
    wait_enabled(editor, ["Cut", "Copy", "Delete", "Paste"])
    editor.screen.key("delete")
    wait_enabled(editor, ["Cut", "Copy", "Delete", "Insert", "Paste"])


def test_without_a_sound_device_preview_stays_disabled(five):
    assert not five.menu()["Pre&view"]["enabled"]
    assert not five.toolbar()["Preview Sound"]["enabled"]


# How a command is given.
def by_menu(editor, caption, _tooltip, _shortcut):
    editor.choose(caption)


def by_toolbar(editor, _caption, tooltip, _shortcut):
    editor.click_tool(tooltip)


def by_shortcut(editor, _caption, _tooltip, shortcut):
    editor.screen.key(shortcut)


def by_popup(editor, caption, _tooltip, _shortcut):
    cell = next(cell for cell in editor.cells() if cell["state"] & 2)
    editor.screen.click(*editor.centre(cell["rect"]), 3)
    wait_until(lambda: any(w["class"] == "#32768" and w["visible"] for w in editor.windows()), 5, "the pop-up menu")
    time.sleep(0.15)
    editor.screen.key(caption[caption.index("&") + 1].lower())


WAYS = [by_menu, by_toolbar, by_shortcut, by_popup]


@pytest.mark.parametrize("way", WAYS)
def test_cut_and_paste_of_a_range(five, way):
    five.screen.key("shift+right")
    wait_selected(five, [0, 1])
    way(five, "Cu&t", "Cut", "ctrl+x")
    wait_names(five, [E, R, G, "End"])
    five.screen.key("end")
    wait_selected(five, [3])
    way(five, "&Paste", "Paste", "ctrl+v")
    wait_names(five, [E, R, G, C, D, "End"])


@pytest.mark.parametrize("way", WAYS)
def test_copy_delete_and_insert(five, way):
    five.screen.key("right")
    wait_selected(five, [1])
    way(five, "&Copy", "Copy", "ctrl+c")
    wait_until(lambda: five.menu()["&Paste"]["enabled"], 5, "something to paste")
    way(five, "&Delete", "Delete", "delete")
    wait_names(five, [C, E, R, G, "End"])
    five.screen.key("home")
    five.screen.key("shift+right")
    wait_selected(five, [0, 1])
    way(five, "&Insert", "Insert", "ctrl+i")
    wait_names(five, ["Separator", "Separator", C, E, R, G, "End"])
    five.screen.key("home")
    five.screen.key("ctrl+v")
    wait_names(five, [D, "Separator", "Separator", C, E, R, G, "End"])


@pytest.mark.parametrize("way", [by_menu, by_shortcut, by_popup])
def test_undo_and_undo_again(five, way):
    five.screen.key("delete")
    wait_names(five, [D, E, R, G, "End"])
    way(five, "&Undo", None, "ctrl+z")
    wait_names(five, [C, D, E, R, G, "End"])
    way(five, "&Undo", None, "ctrl+z")
    wait_names(five, [D, E, R, G, "End"])


@pytest.mark.parametrize("caption, first", [("Up &an octave", "c5"), ("Up &half a tone", "c4#")])
def test_transposing_up_and_down_shifts_the_whole_melody(five, caption, first):
    before = names(five)
    five.screen.key("shift+right")  # a selection does not matter
    five.choose(caption)
    wait_until(lambda: names(five)[0] == first + ", Quarter note", 5, "the shifted melody")
    assert names(five)[3] == R
    assert all(now != old for now, old in zip(names(five), before) if " note" in old)
    five.choose({"Up &an octave": "Down an &octave", "Up &half a tone": "Down half a to&ne"}[caption])
    wait_names(five, before)
    assert selected(five) == [0, 1]


def test_pitches_beyond_the_piano_stay_in_the_score_and_light_no_key(five):
    for _ in range(5):
        five.choose("Up &an octave")
    wait_until(lambda: names(five)[0] == "c9, Quarter note", 5, "the high melody")
    lit = [item["name"] for item in five.accessible("TonexPiano")["children"] if item["state"] & 2]
    assert lit == []
    for _ in range(5):
        five.choose("Down an &octave")
    wait_names(five, [C, D, E, R, G, "End"])


def test_selecting_with_the_mouse_and_deleting(five):
    five.select_columns(1, 3)
    wait_selected(five, [1, 2, 3])
    five.screen.key("delete")
    wait_names(five, [C, G, "End"])


def test_copy_on_the_end_column_copies_nothing(five):
    five.screen.key("end")
    five.screen.key("ctrl+c")
    time.sleep(0.2)
    wait_enabled(five, ["Cut", "Copy", "Delete", "Insert"])


def test_keys_of_the_tempo_box_edit_its_text_not_the_score(five):
    box = five.child("ComboBox")
    five.screen.click(box["rect"][0] + 20, (box["rect"][1] + box["rect"][3]) // 2)
    before = names(five)
    five.screen.key("ctrl+a")
    five.screen.key("ctrl+x")
    five.screen.key("delete")
    wait_until(lambda: five.tempo_box()["text"] == "", 5, "the empty box")
    assert names(five) == before


def test_an_edited_melody_is_saved_as_it_is_shown(five, tmp_path):
    five.screen.key("ctrl+i")
    five.choose("Up &half a tone")
    wait_until(lambda: names(five)[0] == "Separator" and names(five)[1].startswith("c4#"), 5, "the edits")
    five.save_as(tmp_path / "EDITED.SND")
    five.wait_caption("Sound Editor - PC:EDITED.SND")
    assert Melody.text(tmp_path / "EDITED.SND") == ["tempo 120", "|", "c4# 1/4", "d4# 1/8", "f4 1/2", "r 1/4", "g4# 1/1"]
