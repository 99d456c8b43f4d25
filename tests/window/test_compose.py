"""Composing with mouse and keyboard: lengths, keys, grid, strip, names, tempo."""

import time

import pytest

from editor import Melody, SETTINGS, wait_until, windows_path

STATE_SELECTED, STATE_FOCUSED = 0x2, 0x4


def names(editor):
    return [cell["name"] for cell in editor.cells()]


def wait_names(editor, expected):
    try:
        wait_until(lambda: names(editor) == expected, 5)
    except AssertionError:
        raise AssertionError(f"cells {names(editor)}, wanted {expected}") from None


def selected(editor):
    return [i for i, cell in enumerate(editor.cells()) if cell["state"] & STATE_SELECTED]


def chosen_length(editor):
    return [item["name"] for item in editor.accessible("TonexLengths")["children"] if item["state"] & STATE_SELECTED]


def lit_keys(editor):
    return [item["name"] for item in editor.accessible("TonexPiano")["children"] if item["state"] & STATE_SELECTED]


def wait_selected(editor, expected):
    try:
        wait_until(lambda: selected(editor) == expected, 5)
    except AssertionError:
        raise AssertionError(f"selected {selected(editor)}, wanted {expected}") from None


def focused_item(editor):
    """Class of the window with the keyboard and the name of the item that has it."""
    focus = editor.focus()
    if not focus or not focus["class"].startswith("Tonex"):
        return (focus or {}).get("class"), None
    for item in editor.prefix.ask("accessible", focus["hwnd"])["children"]:
        if item["state"] & STATE_FOCUSED:
            return focus["class"], item["name"]
    return focus["class"], None


def test_starts_with_an_empty_score_and_a_quarter_as_length(editor):
    assert editor.caption() == "Sound Editor - Untitled"
    assert names(editor) == ["End"]
    editor.click_key("c4")
    wait_names(editor, ["c4, Quarter note", "End"])


def test_mouse_lengths_and_keys_write_notes_and_rests(editor):
    editor.click_length("Eighth note")
    editor.click_key("c4")
    editor.click_key("g4#")
    editor.click_length("Dotted half rest")
    editor.click_length("Triplet sixteenth note")
    editor.click_key("c8")
    wait_names(editor, ["c4, Eighth note", "g4#, Eighth note", "Dotted half rest", "c8, Triplet sixteenth note", "End"])


def test_every_piano_key_writes_the_note_it_is_named_after(editor):
    keys = [item["name"] for item in editor.accessible("TonexPiano")["children"]]
    assert len(keys) == 49 and keys[:4] == ["c4", "c4#", "d4", "d4#"] and keys[-1] == "c8"
    for key in keys:
        editor.click_key(key)
    wait_until(lambda: len(editor.cells()) == 30, 5, "a full grid")
    # 49 entries and the end column; the last 30 columns are shown.
    wait_names(editor, [f"{key}, Quarter note" for key in keys[20:]] + ["End"])


def test_every_length_button_writes_its_entry(editor):
    buttons = [item["name"] for item in editor.accessible("TonexLengths")["children"]]
    assert len(buttons) == 40
    notes, rests = buttons[:20], buttons[20:]
    assert [name.replace(" note", "") for name in notes] == [name.replace(" rest", "") for name in rests]
    for name in notes:
        editor.click_length(name)
        editor.click_key("e5")
    wait_names(editor, [f"e5, {name}" for name in notes] + ["End"])
    editor.choose("&New")
    editor.message("Do you want to save the changes?", "No")
    wait_names(editor, ["End"])
    for name in rests:
        editor.click_length(name)
    wait_names(editor, rests + ["End"])


def test_key_on_a_note_changes_its_pitch_only(editor):
    editor.click_length("Half note")
    editor.click_key("c4")
    editor.screen.key("home")
    editor.click_key("d5#")
    wait_names(editor, ["d5#, Half note", "End"])
    wait_selected(editor, [1])


def test_key_on_a_rest_makes_a_note_of_the_current_length(editor):
    editor.click_length("Whole rest")
    editor.screen.key("home")
    editor.click_key("a6")
    wait_names(editor, ["a6, Quarter note", "End"])


def test_length_on_a_note_changes_it_and_moves_on(editor):
    editor.click_key("c4")
    editor.click_key("d4")
    editor.screen.key("home")
    wait_until(lambda: chosen_length(editor) == ["Quarter note"] and lit_keys(editor) == ["c4"], 5, "the shown entry")
    editor.click_length("Sixteenth note")
    wait_names(editor, ["c4, Sixteenth note", "d4, Quarter note", "End"])
    wait_selected(editor, [1])
    # The length for new notes is still the quarter.
    editor.screen.key("end")
    editor.click_key("e4")
    wait_names(editor, ["c4, Sixteenth note", "d4, Quarter note", "e4, Quarter note", "End"])


def test_with_a_range_selected_keys_and_lengths_do_nothing(editor):
    for key in ("c4", "d4", "e4"):
        editor.click_key(key)
    before = names(editor)
    editor.select_columns(0, 1)
    wait_selected(editor, [0, 1])
    editor.click_key("b7")
    editor.click_length("Half rest")
    editor.click_length("Half note")
    editor.screen.key("end")
    wait_selected(editor, [3])
    assert names(editor) == before


def test_plus_and_minus_raise_and_lower_and_walk_on(editor):
    editor.click_key("e4")
    editor.click_key("c8")
    editor.click_key("c4")
    editor.screen.key("home")
    editor.screen.key("+")
    wait_names(editor, ["f4, Quarter note", "c8, Quarter note", "c4, Quarter note", "End"])
    wait_selected(editor, [1])
    editor.screen.key("+")  # the highest key goes no higher, and the cursor stays
    editor.screen.key("-")
    wait_names(editor, ["f4, Quarter note", "b7, Quarter note", "c4, Quarter note", "End"])
    editor.screen.key("-")  # the lowest goes no lower
    editor.screen.key("right")
    wait_names(editor, ["f4, Quarter note", "b7, Quarter note", "c4, Quarter note", "End"])


def test_grid_arrows_shift_home_and_end(start, melody):
    editor = start(windows_path(melody("GRID.SND", Melody.scale(50))))
    editor.screen.key("home")
    wait_selected(editor, [0])
    editor.screen.key("right")
    editor.screen.key("right")
    wait_selected(editor, [2])
    editor.screen.key("shift+right")
    editor.screen.key("shift+right")
    wait_selected(editor, [2, 3, 4])
    editor.screen.key("left")
    wait_selected(editor, [3])
    editor.screen.key("shift+home")
    wait_selected(editor, [0, 1, 2, 3])
    editor.screen.key("end")
    wait_until(lambda: names(editor)[-1] == "End" and selected(editor) == [29], 5, "the end in view")
    editor.screen.key("shift+left")
    wait_selected(editor, [28, 29])
    editor.screen.key("home")
    wait_selected(editor, [0])
    assert names(editor)[0] == "c4, Quarter note"


def strip(editor):
    return [item["name"] for item in editor.accessible("TonexStaff")["children"]]


def test_scroll_bar_and_wheel_move_grid_and_strip_together(start, melody):
    editor = start(windows_path(melody("SCROLL.SND", Melody.scale(100))))
    editor.screen.key("home")
    before = names(editor)
    grid = editor.child("TonexGrid")
    right_arrow = grid["rect"][2] - 8, grid["rect"][3] - 6
    editor.screen.click(*right_arrow, times=3)
    wait_until(lambda: names(editor)[:27] == before[3:], 5, "three columns")
    assert strip(editor) == names(editor)
    editor.screen.move(*editor.centre(grid["client"]))
    editor.screen.button(True, 5)
    editor.screen.button(False, 5)
    wait_until(lambda: names(editor)[:24] == before[6:], 5, "three more columns")
    assert strip(editor) == names(editor)
    for _ in range(4):
        editor.screen.button(True, 4)
        editor.screen.button(False, 4)
    wait_names(editor, before)


def test_click_on_a_strip_picture_moves_the_cursor(start, melody):
    editor = start(windows_path(melody("STRIP.SND", Melody.scale(20))))
    item = editor.accessible("TonexStaff")["children"][7]
    editor.screen.click(*editor.centre(item["rect"]))
    wait_selected(editor, [7])
    wait_until(lambda: lit_keys(editor) == ["c5"], 5, "the key of the entry")


@pytest.mark.parametrize("where", ["TonexGrid", "TonexStaff"])
def test_right_button_opens_the_edit_menu(start, melody, where):
    editor = start(windows_path(melody("POPUP.SND", Melody.scale(5))))
    editor.screen.key("home")
    item = editor.accessible(where)["children"][0]
    editor.screen.click(*editor.centre(item["rect"]), 3)
    wait_until(lambda: any(w["class"] == "#32768" and w["visible"] for w in editor.windows()), 5, "the menu")
    time.sleep(0.15)
    editor.screen.key("i")
    wait_until(lambda: names(editor)[0] == "Separator", 5, "the inserted entry")


def test_doremi_names_everywhere_and_kept(start, prefix, melody):
    path = windows_path(melody("DOREMI.SND", "tempo 120\nc4 1/4\nf4# 1/8\na4# 1/8\n"))
    editor = start(path)
    item = "ﾄﾞﾚﾐ表示(&D)"
    assert not editor.menu()[item]["checked"]
    editor.screen.key("home")
    editor.choose(item)
    wait_names(editor, ["ド, Quarter note", "ﾌｧ#, Eighth note", "ラ#, Eighth note", "End"])
    assert editor.menu()[item]["checked"]
    keys = [key["name"] for key in editor.accessible("TonexPiano")["children"]]
    assert keys[:12] == ["ド", "ド#", "レ", "レ#", "ミ", "ﾌｧ", "ﾌｧ#", "ソ", "ソ#", "ラ", "ラ#", "シ"]
    assert keys[-1] == "ド"
    assert selected(editor) == [0]
    assert prefix.ask("getreg", SETTINGS, "DoremiFlag") == "-1"
    editor.close()
    editor.no_dialog()
    editor.wait_end()
    again = start(path)
    wait_names(again, ["ド, Quarter note", "ﾌｧ#, Eighth note", "ラ#, Eighth note", "End"])
    assert again.menu()[item]["checked"]
    again.choose(item)
    wait_names(again, ["c4, Quarter note", "f4#, Eighth note", "a4#, Eighth note", "End"])
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
    time.sleep(0.2)
    editor.screen.key("down")
    editor.screen.key("enter")
    wait_until(lambda: editor.tempo_box()["text"].strip() == following, 5, "the chosen tempo")
    editor.screen.key("ctrl+s")
    wait_until(lambda: Melody.text(tmp_path / "SLOW.SND")[0] == f"tempo {following}", 5, "the saved tempo")


def test_a_tempo_outside_the_list_is_a_read_error_at_saving(editor, tmp_path):
    editor.click_key("c4")
    box = editor.child("ComboBox")
    editor.screen.click(box["rect"][0] + 20, (box["rect"][1] + box["rect"][3]) // 2)
    editor.screen.key("ctrl+a")
    editor.screen.type_text("31")
    editor.screen.key("enter")
    editor.save_as(tmp_path / "ODD.SND")
    editor.message("Read error!")
    assert not (tmp_path / "ODD.SND").exists()


def test_tab_reaches_everything_and_space_presses_it(editor):
    editor.click_key("c4")  # an entry, so that the strip has something to reach
    seen = []
    assert focused_item(editor)[0] == "TonexGrid"
    for _ in range(120):
        editor.screen.key("tab", pause=0.03)
        at = focused_item(editor)
        seen.append(at)
        if at[0] == "TonexGrid":
            break
    lengths = [item["name"] for item in editor.accessible("TonexLengths")["children"]]
    keys = [item["name"] for item in editor.accessible("TonexPiano")["children"]]
    assert [name for kind, name in seen if kind == "TonexLengths"] == lengths
    assert [name for kind, name in seen if kind == "TonexPiano"] == keys
    assert any(kind in ("Edit", "ComboBox") for kind, _ in seen), "the tempo box"
    assert any(kind == "ToolbarWindow32" for kind, _ in seen), "the toolbar"
    assert any(kind == "TonexStaff" for kind, _ in seen), "the strip"
    assert seen[-1][0] == "TonexGrid"


def test_composing_by_keyboard_alone(editor):
    key = editor.screen.key
    key("tab")
    assert focused_item(editor) == ("TonexLengths", "Thirty-second note")
    for _ in range(6):
        key("right")
    wait_until(lambda: focused_item(editor)[1] == "Eighth note", 5, "the eighth")
    key("space")
    key("down")
    key("enter")  # an eighth rest at once
    wait_names(editor, ["Eighth rest", "End"])
    key("shift+tab")
    while focused_item(editor)[0] != "TonexGrid":
        key("shift+tab", pause=0.03)
    key("shift+tab")  # backwards from the grid: strip, toolbar, piano
    while focused_item(editor)[0] != "TonexPiano":
        key("shift+tab", pause=0.03)
    assert focused_item(editor) == ("TonexPiano", "c8")
    key("left")
    key("space")
    wait_names(editor, ["Eighth rest", "b7, Eighth note", "End"])
    key("left")
    key("enter")
    wait_names(editor, ["Eighth rest", "b7, Eighth note", "a7#, Eighth note", "End"])


def test_509_entries_and_not_one_more(start, melody, tmp_path):
    path = melody("FULL.SND", "tempo 120\n" + "c4 1/4\nr 1/8\n|\n" * 169)
    editor = start(windows_path(path))
    editor.screen.key("end")
    for _ in range(2):
        editor.click_key("c5")
    wait_until(lambda: len(editor.cells()) == 30 and names(editor)[-1] == "c5, Quarter note", 5, "the last entry")
    editor.click_key("d5")  # the last column of a full score is rewritten
    wait_until(lambda: names(editor)[-1] == "d5, Quarter note", 5, "the rewritten entry")
    assert names(editor)[-2] == "c5, Quarter note"
    editor.save_as(tmp_path / "FULL2.SND")
    editor.wait_caption("Sound Editor - PC:FULL2.SND")
    assert len(Melody.text(tmp_path / "FULL2.SND")) == 510  # the tempo and 509 entries
