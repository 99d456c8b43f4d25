"""Composing with mouse and keyboard: lengths, keys, grid, strip, names, tempo."""

import pytest

from melody import Melody
from prefix import SETTINGS
from wine_paths import windows_path
from words import ASK, DOREMI, READ_ERROR, UNTITLED
from xscreen import wait_until


def test_starts_with_an_empty_score_and_a_quarter_as_length(editor):
    assert editor.caption() == UNTITLED
    assert editor.names() == ["End"]
    editor.click_key("c4")
    editor.wait_names(["c4, Quarter note", "End"])


def test_mouse_lengths_and_keys_write_notes_and_rests(editor):
    editor.click_length("Eighth note")
    editor.click_key("c4")
    editor.click_key("g4#")
    editor.click_length("Dotted half rest")
    editor.click_length("Triplet sixteenth note")
    editor.click_key("c8")
    editor.wait_names(["c4, Eighth note", "g4#, Eighth note", "Dotted half rest", "c8, Triplet sixteenth note", "End"])


def test_every_piano_key_writes_the_note_it_is_named_after(editor):
    keys = [item["name"] for item in editor.items("TonexPiano")]
    assert len(keys) == 49 and keys[:4] == ["c4", "c4#", "d4", "d4#"] and keys[-1] == "c8"
    for key in keys:
        editor.click_key(key)
    wait_until(lambda: len(editor.cells()) == 30, 5, "a full grid")
    # 49 entries and the end column; the last 30 columns are shown.
    editor.wait_names([f"{key}, Quarter note" for key in keys[20:]] + ["End"])


def test_every_length_button_writes_its_entry(editor):
    buttons = [item["name"] for item in editor.items("TonexLengths")]
    assert len(buttons) == 40
    notes, rests = buttons[:20], buttons[20:]
    assert [name.replace(" note", "") for name in notes] == [name.replace(" rest", "") for name in rests]
    for name in notes:
        editor.click_length(name)
        editor.click_key("e5")
    editor.wait_names([f"e5, {name}" for name in notes] + ["End"])
    editor.choose("&New")
    editor.message(ASK, "No")
    editor.wait_names(["End"])
    for name in rests:
        editor.click_length(name)
    editor.wait_names(rests + ["End"])


def test_key_on_a_note_changes_its_pitch_only(editor):
    editor.click_length("Half note")
    editor.click_key("c4")
    editor.screen.key("home")
    editor.click_key("d5#")
    editor.wait_names(["d5#, Half note", "End"])
    editor.wait_selected([1])


def test_key_on_a_rest_makes_a_note_of_the_current_length(editor):
    editor.click_length("Whole rest")
    editor.screen.key("home")
    editor.click_key("a6")
    editor.wait_names(["a6, Quarter note", "End"])


def test_length_on_a_note_changes_it_and_moves_on(editor):
    editor.click_key("c4")
    editor.click_key("d4")
    editor.screen.key("home")
    wait_until(lambda: editor.chosen_length() == ["Quarter note"] and editor.lit_keys() == ["c4"], 5, "the shown entry")
    editor.click_length("Sixteenth note")
    editor.wait_names(["c4, Sixteenth note", "d4, Quarter note", "End"])
    editor.wait_selected([1])
    # The length for new notes is still the quarter.
    editor.screen.key("end")
    editor.click_key("e4")
    editor.wait_names(["c4, Sixteenth note", "d4, Quarter note", "e4, Quarter note", "End"])


def test_with_a_range_selected_keys_and_lengths_do_nothing(editor):
    for key in ("c4", "d4", "e4"):
        editor.click_key(key)
    before = editor.names()
    editor.select_columns(0, 1)
    editor.wait_selected([0, 1])
    editor.click_key("b7")
    editor.click_length("Half rest")
    editor.click_length("Half note")
    editor.screen.key("end")
    editor.wait_selected([3])
    assert editor.names() == before


def test_plus_and_minus_raise_and_lower_and_walk_on(editor):
    editor.click_key("e4")
    editor.click_key("c8")
    editor.click_key("c4")
    editor.screen.key("home")
    editor.screen.key("+")
    editor.wait_names(["f4, Quarter note", "c8, Quarter note", "c4, Quarter note", "End"])
    editor.wait_selected([1])
    editor.screen.key("+")  # the highest key goes no higher, and the cursor stays
    editor.screen.key("-")
    editor.wait_names(["f4, Quarter note", "b7, Quarter note", "c4, Quarter note", "End"])
    editor.screen.key("-")  # the lowest goes no lower
    editor.screen.key("right")
    editor.wait_names(["f4, Quarter note", "b7, Quarter note", "c4, Quarter note", "End"])


def test_grid_arrows_shift_home_and_end(start, melody):
    editor = start(windows_path(melody("GRID.SND", Melody.scale(50))))
    editor.screen.key("home")
    editor.wait_selected([0])
    editor.screen.key("right")
    editor.screen.key("right")
    editor.wait_selected([2])
    editor.screen.key("shift+right")
    editor.screen.key("shift+right")
    editor.wait_selected([2, 3, 4])
    editor.screen.key("left")
    editor.wait_selected([3])
    editor.screen.key("shift+home")
    editor.wait_selected([0, 1, 2, 3])
    editor.screen.key("end")
    wait_until(lambda: editor.names()[-1] == "End" and editor.selected() == [29], 5, "the end in view")
    editor.screen.key("shift+left")
    editor.wait_selected([28, 29])
    editor.screen.key("home")
    editor.wait_selected([0])
    assert editor.names()[0] == "c4, Quarter note"


def strip(editor):
    return [item["name"] for item in editor.items("TonexStaff")]


def test_scroll_bar_and_wheel_move_grid_and_strip_together(start, melody):
    editor = start(windows_path(melody("SCROLL.SND", Melody.scale(100))))
    editor.screen.key("home")
    before = editor.names()
    grid = editor.child("TonexGrid")
    right_arrow = grid["rect"][2] - 8, grid["rect"][3] - 6
    editor.screen.click(*right_arrow, times=3)
    wait_until(lambda: editor.names()[:27] == before[3:], 5, "three columns")
    assert strip(editor) == editor.names()
    editor.screen.move(*editor.centre(grid["client"]))
    editor.screen.button(True, 5)
    editor.screen.button(False, 5)
    wait_until(lambda: editor.names()[:24] == before[6:], 5, "three more columns")
    assert strip(editor) == editor.names()
    for _ in range(4):
        editor.screen.button(True, 4)
        editor.screen.button(False, 4)
    editor.wait_names(before)


def test_click_on_a_strip_picture_moves_the_cursor(start, melody):
    editor = start(windows_path(melody("STRIP.SND", Melody.scale(20))))
    item = editor.items("TonexStaff")[7]
    editor.screen.click(*editor.centre(item["rect"]))
    editor.wait_selected([7])
    wait_until(lambda: editor.lit_keys() == ["c5"], 5, "the key of the entry")


def test_the_tooltip_of_the_strip_names_what_is_under_the_mouse_after_scrolling_too(start, melody):
    editor = start(windows_path(melody("LONG.SND", Melody.scale(60))))
    names = editor.names()
    x, y = editor.centre(editor.items("TonexStaff")[3]["rect"])
    editor.screen.move(x - 200, y)  # outside
    editor.screen.move(x, y)
    editor.screen.move(x + 1, y)
    wait_until(lambda: editor.shown_tooltip() == names[3], 10, "the tooltip of the fourth picture")
    editor.screen.click(x, y, 5)  # the wheel
    wait_until(lambda: editor.names()[3] == names[6], 5, "the fourth picture three columns on")
    wait_until(lambda: editor.shown_tooltip() != names[3], 5, "no tooltip of what is there no more")
    for place in (x + 2, x + 1):  # without leaving the picture
        editor.screen.move(place, y)
    wait_until(lambda: editor.shown_tooltip() == names[6], 10, "the tooltip of the seventh")


@pytest.mark.parametrize("where", ["TonexGrid", "TonexStaff"])
def test_right_button_opens_the_edit_menu(start, melody, where):
    editor = start(windows_path(melody("POPUP.SND", Melody.scale(5))))
    editor.screen.key("home")
    item = editor.items(where)[0]
    editor.screen.click(*editor.centre(item["rect"]), 3)
    editor.wait_popup()
    editor.screen.key("i")
    wait_until(lambda: editor.names()[0] == "Separator", 5, "the inserted entry")


def test_doremi_names_everywhere_and_kept(start, prefix, melody):
    path = windows_path(melody("DOREMI.SND", "tempo 120\nc4 1/4\nf4# 1/8\na4# 1/8\n"))
    editor = start(path)
    assert not editor.menu()[DOREMI]["checked"]
    editor.screen.key("home")
    editor.choose(DOREMI)
    editor.wait_names(["ド, Quarter note", "ﾌｧ#, Eighth note", "ラ#, Eighth note", "End"])
    assert editor.menu()[DOREMI]["checked"]
    keys = [key["name"] for key in editor.items("TonexPiano")]
    assert keys[:12] == ["ド", "ド#", "レ", "レ#", "ミ", "ﾌｧ", "ﾌｧ#", "ソ", "ソ#", "ラ", "ラ#", "シ"]
    assert keys[-1] == "ド"
    assert editor.selected() == [0]
    assert prefix.ask("getreg", SETTINGS, "DoremiFlag") == "-1"
    editor.close()
    editor.no_dialog()
    editor.wait_end()
    again = start(path)
    again.wait_names(["ド, Quarter note", "ﾌｧ#, Eighth note", "ラ#, Eighth note", "End"])
    assert again.menu()[DOREMI]["checked"]
    again.choose(DOREMI)
    again.wait_names(["c4, Quarter note", "f4#, Eighth note", "a4#, Eighth note", "End"])
    assert prefix.ask("getreg", SETTINGS, "DoremiFlag") == "0"


def tempo_name(editor):
    """The texts beside the controls but for their captions: what is left is the tempo's classical name."""
    texts = [child["text"].replace("&", "") for child in editor.children() if child["class"].lower() == "static"]
    return [text for text in texts if text not in ("", "Tempo", "Length")]


def test_tempo_typed_and_chosen_is_saved(editor, tmp_path):
    editor.click_key("c4")
    box = editor.child("ComboBox")
    items = [item.strip() for item in editor.tempo_box()["items"]]
    assert items[0] == "640" and items[-1] == "30" and "60" in items and "120" in items
    editor.screen.click(box["rect"][0] + 20, (box["rect"][1] + box["rect"][3]) // 2)
    editor.screen.key("ctrl+a")
    editor.screen.type_text("60")
    wait_until(lambda: editor.tempo_box()["text"].strip() == "60", 5, "the typed tempo")
    assert tempo_name(editor) == ["Adagio"]
    editor.screen.key("enter")
    editor.save_as(tmp_path / "SLOW.SND")
    editor.wait_caption("Sound Editor - PC:SLOW.SND")
    assert Melody.text(tmp_path / "SLOW.SND")[0] == "tempo 60"
    # Opened again, the list stands on the tempo of the file; one step down from there.
    editor.prefix.ask("drop", editor.hwnd, windows_path(tmp_path / "SLOW.SND"))
    wait_until(lambda: editor.tempo_box()["selected"] == items.index("60"), 5, "the tempo of the file")
    following = items[items.index("60") + 1]
    editor.screen.click(box["rect"][2] - 8, (box["rect"][1] + box["rect"][3]) // 2)
    wait_until(editor.list_dropped, 5, "the open list")
    editor.screen.key("down")
    editor.screen.key("enter")
    wait_until(lambda: editor.tempo_box()["text"].strip() == following, 5, "the chosen tempo")
    editor.screen.key("ctrl+s")
    wait_until(lambda: Melody.text(tmp_path / "SLOW.SND")[0] == f"tempo {following}", 5, "the saved tempo")


def test_a_tempo_outside_the_list_is_a_read_error_at_saving(editor, tmp_path):
    editor.click_key("c4")
    editor.type_tempo("31")
    editor.screen.key("enter")
    editor.save_as(tmp_path / "ODD.SND")
    editor.message(READ_ERROR)
    assert not (tmp_path / "ODD.SND").exists()


def after_key(editor, key):
    """What has the keyboard after a key that moves it."""
    before = editor.focused_item()
    editor.screen.key(key)
    wait_until(lambda: editor.focused_item() != before, 5, f"what follows {before}")
    return editor.focused_item()


def test_tab_reaches_everything_and_space_presses_it(editor):
    editor.click_key("c4")  # an entry, so that the strip has something to reach
    seen = []
    assert editor.focused_item()[0] == "TonexGrid"
    for _ in range(120):
        seen.append(after_key(editor, "tab"))
        if seen[-1][0] == "TonexGrid":
            break
    lengths = [item["name"] for item in editor.items("TonexLengths")]
    keys = [item["name"] for item in editor.items("TonexPiano")]
    assert [name for kind, name in seen if kind == "TonexLengths"] == lengths
    assert [name for kind, name in seen if kind == "TonexPiano"] == keys
    assert any(kind in ("Edit", "ComboBox") for kind, _ in seen), "the tempo box"
    assert any(kind == "ToolbarWindow32" for kind, _ in seen), "the toolbar"
    assert any(kind == "TonexStaff" for kind, _ in seen), "the strip"
    assert seen[-1][0] == "TonexGrid"


def test_f6_goes_from_pane_to_pane_as_tab_does_and_each_keeps_its_place(editor):
    editor.click_key("c4")  # an entry, so that the strip has something to reach
    after_key(editor, "tab")
    place = after_key(editor, "right")
    assert place == ("TonexLengths", "Triplet thirty-second note")
    panes = [after_key(editor, "F6")[0] for _ in range(5)]
    assert panes == ["Edit", "TonexPiano", "ToolbarWindow32", "TonexStaff", "TonexGrid"]
    assert after_key(editor, "F6") == place
    assert after_key(editor, "shift+F6")[0] == "TonexGrid"


def test_composing_by_keyboard_alone(editor):
    key = editor.screen.key
    assert after_key(editor, "tab") == ("TonexLengths", "Thirty-second note")
    for _ in range(6):
        key("right")
    wait_until(lambda: editor.focused_item()[1] == "Eighth note", 5, "the eighth")
    key("space")
    key("down")
    key("enter")  # an eighth rest at once
    editor.wait_names(["Eighth rest", "End"])
    while after_key(editor, "shift+tab")[0] != "TonexGrid":
        pass
    while after_key(editor, "shift+tab")[0] != "TonexPiano":  # strip and toolbar first
        pass
    assert editor.focused_item() == ("TonexPiano", "c8")
    key("left")
    key("space")
    editor.wait_names(["Eighth rest", "b7, Eighth note", "End"])
    key("left")
    key("enter")
    editor.wait_names(["Eighth rest", "b7, Eighth note", "a7#, Eighth note", "End"])


def test_509_entries_and_not_one_more(start, melody, tmp_path):
    path = melody("FULL.SND", "tempo 120\n" + "c4 1/4\nr 1/8\n|\n" * 169)
    editor = start(windows_path(path))
    editor.screen.key("end")
    for _ in range(2):
        editor.click_key("c5")
    wait_until(lambda: len(editor.cells()) == 30 and editor.names()[-1] == "c5, Quarter note", 5, "the last entry")
    editor.click_key("d5")  # the last column of a full score is rewritten
    wait_until(lambda: editor.names()[-1] == "d5, Quarter note", 5, "the rewritten entry")
    assert editor.names()[-2] == "c5, Quarter note"
    editor.save_as(tmp_path / "FULL2.SND")
    editor.wait_caption("Sound Editor - PC:FULL2.SND")
    assert len(Melody.text(tmp_path / "FULL2.SND")) == 510  # the tempo and 509 entries
