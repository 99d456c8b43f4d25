"""The edit commands by menu, toolbar, shortcut and pop-up menu, and what is enabled when, in the real menu and toolbar."""

import pytest

from commands import by_menu, by_popup, by_shortcut, by_toolbar
from melody import C, D, E, G, R, Melody
from wine_paths import windows_path
from words import DOREMI, PAIRS, PREVIEW_ITEM, PREVIEW_TOOL, REMINDER_ITEM
from xscreen import wait_until

ALWAYS = ["&New", "&Open on PC...", "&Save to PC", "Save to PC &as...", "Open on Velo&xa...", "Save to Ve&loxa",
          "Save &to Veloxa as...", "Dis&connection Setup...", "&Exit", "&Undo", "Up &an octave", "Down an &octave",
          "Up &half a tone", "Down half a to&ne", DOREMI, REMINDER_ITEM, "&Help Topics",
          "&About Sound Editor..."]
MENU_BAR = [
    ("&File", ["&New", "-", "&Open on PC...\tCtrl+O", "&Save to PC\tCtrl+S", "Save to PC &as...", "-",
               "Open on Velo&xa...", "Save to Ve&loxa", "Save &to Veloxa as...", "-", "Dis&connection Setup...", "-",
               "&Exit"]),
    ("&Edit", ["&Undo\tCtrl+Z", "-", "Cu&t\tCtrl+X", "&Copy\tCtrl+C", "&Paste\tCtrl+V", "&Insert\tCtrl+I",
               "&Delete\tDel", "-", "Up &an octave", "Down an &octave", "Up &half a tone", "Down half a to&ne", "-",
               PREVIEW_ITEM]),
    ("&View", [DOREMI]),
    ("&Setting", [REMINDER_ITEM]),
    ("&Help", ["&Help Topics", "-", "&About Sound Editor..."]),
]
TOOLTIPS = ["New", "Open on PC", "Save to PC", "Open on Veloxa", "Save to Veloxa", "Cut", "Copy", "Paste", "Delete",
            "Insert", PREVIEW_TOOL]

def enabled(editor):
    """Tooltips of the commands that come and go with the score. None where menu and toolbar do not agree, as between
    two questions they may for a moment."""
    menu, toolbar = editor.menu(), editor.toolbar()
    for caption in ALWAYS:
        assert menu[caption]["enabled"], f"{caption} is always enabled"
    in_menu = {tooltip for caption, tooltip in PAIRS.items() if menu[caption]["enabled"]}
    in_toolbar = {tooltip for tooltip in PAIRS.values() if toolbar[tooltip]["enabled"]}
    return in_menu - {PREVIEW_TOOL} if in_menu == in_toolbar else None


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
    assert [button["name"] for button in buttons if not button["separator"]] == TOOLTIPS
    rects = [button["rect"] for button in buttons]
    assert rects == sorted(rects), "left to right"


def test_enabling_of_an_empty_score(editor):
    wait_enabled(editor, [])
    assert not editor.menu()[PREVIEW_ITEM]["enabled"]


def test_enabling_follows_entries_and_clipboard(editor):
    editor.click_key("c4")
    wait_enabled(editor, ["Cut", "Copy", "Delete", "Insert"])
    editor.screen.key("home")
    editor.screen.key("ctrl+c")
    wait_enabled(editor, ["Cut", "Copy", "Delete", "Insert", "Paste"])
    editor.screen.key("delete")
    editor.wait_names(["End"])
    wait_enabled(editor, ["Paste"])  # the clipboard is never emptied
    editor.screen.key("ctrl+v")
    editor.wait_names([C, "End"])
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
    assert not five.menu()[PREVIEW_ITEM]["enabled"]
    assert not five.toolbar()[PREVIEW_TOOL]["enabled"]


WAYS = [by_menu, by_toolbar, by_shortcut, by_popup]


@pytest.mark.parametrize("way", WAYS)
def test_cut_and_paste_of_a_range(five, way):
    five.screen.key("shift+right")
    five.wait_selected([0, 1])
    way(five, "Cu&t", "Cut", "ctrl+x")
    five.wait_names([E, R, G, "End"])
    five.screen.key("end")
    five.wait_selected([3])
    way(five, "&Paste", "Paste", "ctrl+v")
    five.wait_names([E, R, G, C, D, "End"])


@pytest.mark.parametrize("way", WAYS)
def test_copy_delete_and_insert(five, way):
    five.screen.key("right")
    five.wait_selected([1])
    way(five, "&Copy", "Copy", "ctrl+c")
    wait_until(lambda: five.menu()["&Paste"]["enabled"], 5, "something to paste")
    way(five, "&Delete", "Delete", "delete")
    five.wait_names([C, E, R, G, "End"])
    five.screen.key("home")
    five.screen.key("shift+right")
    five.wait_selected([0, 1])
    way(five, "&Insert", "Insert", "ctrl+i")
    five.wait_names(["Separator", "Separator", C, E, R, G, "End"])
    five.screen.key("home")
    five.screen.key("ctrl+v")
    five.wait_names([D, "Separator", "Separator", C, E, R, G, "End"])


@pytest.mark.parametrize("way", [by_menu, by_shortcut, by_popup])
def test_undo_and_undo_again(five, way):
    five.screen.key("delete")
    five.wait_names([D, E, R, G, "End"])
    way(five, "&Undo", None, "ctrl+z")
    five.wait_names([C, D, E, R, G, "End"])
    way(five, "&Undo", None, "ctrl+z")
    five.wait_names([D, E, R, G, "End"])


@pytest.mark.parametrize("caption, first", [("Up &an octave", "c5"), ("Up &half a tone", "c4#")])
def test_transposing_up_and_down_shifts_the_whole_melody(five, caption, first):
    before = five.names()
    five.screen.key("shift+right")  # a selection does not matter
    five.choose(caption)
    wait_until(lambda: five.names()[0] == first + ", Quarter note", 5, "the shifted melody")
    assert five.names()[3] == R
    assert all(now != old for now, old in zip(five.names(), before) if " note" in old)
    five.choose({"Up &an octave": "Down an &octave", "Up &half a tone": "Down half a to&ne"}[caption])
    five.wait_names(before)
    assert five.selected() == [0, 1]


def test_pitches_beyond_the_piano_stay_in_the_score_and_light_no_key(five):
    for _ in range(5):
        five.choose("Up &an octave")
    wait_until(lambda: five.names()[0] == "c9, Quarter note", 5, "the high melody")
    assert five.lit_keys() == []
    for _ in range(5):
        five.choose("Down an &octave")
    five.wait_names([C, D, E, R, G, "End"])


def test_selecting_with_the_mouse_and_deleting(five):
    five.select_columns(1, 3)
    five.wait_selected([1, 2, 3])
    five.screen.key("delete")
    five.wait_names([C, G, "End"])


def test_copy_on_the_end_column_copies_nothing(five):
    five.screen.key("end")
    five.wait_selected([5])
    five.screen.key("ctrl+c")
    five.screen.key("home")  # keys are done in their order: where this one shows, the one before has been done
    five.wait_selected([0])
    wait_enabled(five, ["Cut", "Copy", "Delete", "Insert"])


def test_keys_of_the_tempo_box_edit_its_text_not_the_score(five):
    five.click_tempo()
    before = five.names()
    five.screen.key("ctrl+a")
    five.screen.key("ctrl+x")
    five.screen.key("delete")
    wait_until(lambda: five.tempo_box()["text"] == "", 5, "the empty box")
    assert five.names() == before


def test_an_edited_melody_is_saved_as_it_is_shown(five, tmp_path):
    five.screen.key("ctrl+i")
    five.choose("Up &half a tone")
    wait_until(lambda: five.names()[0] == "Separator" and five.names()[1].startswith("c4#"), 5, "the edits")
    five.save_as(tmp_path / "EDITED.SND")
    five.wait_caption("Sound Editor - PC:EDITED.SND")
    assert Melody.text(tmp_path / "EDITED.SND") == ["tempo 120", "|", "c4# 1/4", "d4# 1/8", "f4 1/2", "r 1/4", "g4# 1/1"]
