"""More of the edit commands in the real window: the strip's pop-up menu, enabling after every command with a sound
device, and the limits of a full score."""

import time

import pytest

from editor import Melody, wait_until, windows_path
from test_compose import names, wait_names, wait_selected
from test_edit import C, D, E, FIVE, G, PAIRS, R, by_menu, by_popup, by_shortcut, by_toolbar
from test_preview import sound  # noqa: F401  (a fixture)

MOST_ENTRIES = 509
BLANK = "Separator"


@pytest.fixture
def five(start, melody):
    """An editor with five entries, the cursor on the first."""
    editor = start(windows_path(melody("FIVE.SND", FIVE)))
    editor.screen.key("home")
    wait_selected(editor, [0])
    return editor


def wait_popup(editor):
    wait_until(lambda: any(w["class"] == "#32768" and w["visible"] for w in editor.windows()), 5, "the pop-up menu")
    time.sleep(0.15)


def by_strip_popup(editor, caption, _tooltip=None, _shortcut=None):
    """The right button on the strip's first picture, then the item's letter."""
    picture = editor.accessible("TonexStaff")["children"][0]
    editor.screen.click(*editor.centre(picture["rect"]), 3)
    wait_popup(editor)
    editor.screen.key(caption[caption.index("&") + 1].lower())


def shifted(steps):
    return [f"{name}, {length}" for name, length in zip(steps, ("Quarter note", "Eighth note", "Half note"))]


# --- the pop-up menu of the strip


def test_strip_popup_cuts_and_pastes(five):
    five.screen.key("shift+right")
    wait_selected(five, [0, 1])
    by_strip_popup(five, "Cu&t")
    wait_names(five, [E, R, G, "End"])
    by_strip_popup(five, "&Paste")
    wait_until(lambda: len(names(five)) == 6, 5, "the pasted entries")
    assert names(five) == [C, D, E, R, G, "End"]


def test_strip_popup_copies_inserts_deletes_and_undoes(five):
    by_strip_popup(five, "&Copy")
    wait_until(lambda: five.menu()["&Paste"]["enabled"], 5, "something to paste")
    by_strip_popup(five, "&Insert")
    wait_names(five, [BLANK, C, D, E, R, G, "End"])
    five.screen.key("home")
    wait_selected(five, [0])
    five.screen.key("right")
    wait_selected(five, [1])
    by_strip_popup(five, "&Delete")
    wait_names(five, [BLANK, D, E, R, G, "End"])
    by_strip_popup(five, "&Undo")
    wait_names(five, [BLANK, C, D, E, R, G, "End"])
    by_strip_popup(five, "&Undo")
    wait_names(five, [BLANK, D, E, R, G, "End"])


TRANSPOSITIONS = [("Up &an octave", ("c5", "d5", "e5")), ("Up &half a tone", ("c4#", "d4#", "f4")),
                  ("Down an &octave", ("c3", "d3", "e3")), ("Down half a to&ne", ("b3", "c4#", "d4#"))]


@pytest.mark.parametrize("way", [by_menu, by_popup, by_strip_popup])
@pytest.mark.parametrize("caption, steps", TRANSPOSITIONS)
def test_transposition_and_undo(five, way, caption, steps):
    before = names(five)
    way(five, caption, None, None)
    wait_until(lambda: names(five)[:3] == shifted(steps), 5, f"{steps}, not {names(five)[:3]}")
    assert names(five)[3] == R
    way(five, "&Undo", None, None)
    wait_names(five, before)
    way(five, "&Undo", None, None)
    wait_until(lambda: names(five)[:3] == shifted(steps), 5, "the shifted melody again")


# --- ranges


@pytest.mark.parametrize("way", [by_menu, by_toolbar, by_shortcut, by_popup, by_strip_popup])
def test_range_selected_with_the_mouse_is_deleted_and_comes_back(five, way):
    five.select_columns(3, 1)
    wait_selected(five, [1, 2, 3])
    way(five, "&Delete", "Delete", "delete")
    wait_names(five, [C, G, "End"])
    five.screen.key("ctrl+z")
    wait_names(five, [C, D, E, R, G, "End"])
    wait_selected(five, [1, 2, 3])


def test_range_that_ends_on_the_end_column_is_copied_up_to_the_entry_before_it(five):
    five.screen.key("end")
    wait_selected(five, [5])
    five.screen.key("shift+left")
    wait_selected(five, [4, 5])
    five.screen.key("ctrl+c")
    wait_until(lambda: five.menu()["&Paste"]["enabled"], 5, "something to paste")
    five.screen.key("home")
    wait_selected(five, [0])
    five.screen.key("ctrl+v")
    wait_names(five, [G, C, D, E, R, G, "End"])


def test_octave_up_of_rests_only_changes_nothing_but_the_undo_copy(start, melody):
    editor = start(windows_path(melody("RESTS.SND", "tempo 120\nr 1/4\nr 1/4\nr 1/4\n")))
    editor.screen.key("home")
    wait_selected(editor, [0])
    editor.screen.key("delete")
    rests = ["Quarter rest"] * 2 + ["End"]
    wait_names(editor, rests)
    editor.choose("Up &an octave")
    time.sleep(0.3)
    assert names(editor) == rests
    editor.screen.key("ctrl+z")  # back to before the octave, not to before the deletion
    time.sleep(0.3)
    assert names(editor) == rests


# --- enabling, menu and toolbar together


def may_be_used(entries, clipboard):
    """The commands that a score of so many entries allows, by tooltip."""
    end_count = entries + 1
    allowed = {"Cut", "Copy", "Delete", "Preview Sound"} if entries else set()
    if entries and end_count < 509:
        allowed.add("Insert")
    if clipboard and end_count <= 509:
        allowed.add("Paste")
    return allowed


def shown_enabled(editor):
    menu, toolbar = editor.menu(), editor.toolbar()
    in_menu = {tooltip for caption, tooltip in PAIRS.items() if menu[caption]["enabled"]}
    in_toolbar = {tooltip for tooltip in PAIRS.values() if toolbar[tooltip]["enabled"]}
    return in_menu, in_toolbar


def wait_usable(editor, entries, clipboard):
    expected = may_be_used(entries, clipboard)
    try:
        wait_until(lambda: shown_enabled(editor) == (expected, expected), 5)
    except AssertionError:
        in_menu, in_toolbar = shown_enabled(editor)
        raise AssertionError(f"menu {in_menu}, toolbar {in_toolbar}, wanted {expected}") from None


def test_enabling_after_every_command(sound, start, melody):  # noqa: F811
    editor = start()
    key = editor.screen.key
    steps = [
        ("start", lambda: None, 0, False),
        ("a note", lambda: editor.click_key("c4"), 1, False),
        ("a rest", lambda: editor.click_length("Quarter rest"), 2, False),
        ("a transposition", lambda: editor.choose("Up &half a tone"), 2, False),
        ("copying nothing on the end column", lambda: key("ctrl+c"), 2, False),
        ("the first entry", lambda: key("home"), 2, False),
        ("Insert", lambda: key("ctrl+i"), 3, False),
        ("Delete", lambda: key("delete"), 2, False),
        ("Delete", lambda: key("delete"), 1, False),
        ("Delete of the last entry", lambda: key("delete"), 0, False),
        ("Undo", lambda: key("ctrl+z"), 1, False),
        ("Undo again", lambda: key("ctrl+z"), 0, False),
        ("Undo once more", lambda: key("ctrl+z"), 1, False),
        ("the first entry", lambda: key("home"), 1, False),
        ("Copy", lambda: editor.click_tool("Copy"), 1, True),
        ("Cut", lambda: editor.click_tool("Cut"), 0, True),
        ("Paste", lambda: editor.click_tool("Paste"), 1, True),
        ("Paste", lambda: editor.choose("&Paste"), 2, True),
    ]
    for what, act, entries, clipboard in steps:
        act()
        try:
            wait_usable(editor, entries, clipboard)
            wait_until(lambda: len(names(editor)) == entries + 1, 5, f"{entries} entries")
        except AssertionError as failure:
            raise AssertionError(f"after {what}: {failure}") from failure
    editor.click_tool("New")
    editor.message("Do you want to save the changes?", "No")
    wait_usable(editor, 0, True)
    editor.prefix.ask("drop", editor.hwnd, windows_path(melody("FIVE.SND", FIVE)))
    editor.wait_caption("Sound Editor - PC:FIVE.SND")
    wait_usable(editor, 5, True)


@pytest.mark.parametrize("entries", [507, 508, 509])
def test_enabling_of_a_nearly_full_score(sound, start, melody, entries):  # noqa: F811
    editor = start(windows_path(melody("LONG.SND", long_score(entries))))
    wait_usable(editor, entries, False)
    editor.screen.key("home")
    wait_selected(editor, [0])
    editor.screen.key("ctrl+c")
    wait_usable(editor, entries, True)


# --- the limits of a full score


def long_score(entries):
    lines = ["c4 1/4", "d4 1/8", "|", "|"]
    return "\n".join(["tempo 120", *(lines[i % 4] for i in range(entries))]) + "\n"


def lines_of(text):
    return text.splitlines()[1:]


def saved(editor, path):
    editor.save_as(path)
    wait_until(path.exists, 8, "the saved file")
    editor.wait_caption(f"Sound Editor - PC:{path.name}")
    return Melody.text(path)[1:]


def select_first(editor, count):
    editor.screen.key("home")
    wait_selected(editor, [0])
    editor.select_columns(0, count - 1)
    wait_selected(editor, list(range(count)))


def test_insert_of_20_at_end_count_500_makes_9_separators(start, melody, tmp_path):
    before = long_score(499)
    editor = start(windows_path(melody("BEFORE.SND", before)))
    select_first(editor, 20)
    editor.screen.key("ctrl+i")
    wait_until(lambda: names(editor)[:9] == [BLANK] * 9, 5, "the separators")
    assert not editor.toolbar()["Insert"]["enabled"]
    assert saved(editor, tmp_path / "AFTER.SND") == ["|"] * 9 + lines_of(before)


def test_paste_goes_one_further_than_insert(start, melody, tmp_path):
    before = long_score(499)
    editor = start(windows_path(melody("BEFORE.SND", before)))
    select_first(editor, 20)
    editor.screen.key("ctrl+c")
    editor.screen.key("ctrl+v")
    wait_until(lambda: not editor.toolbar()["Paste"]["enabled"], 5, "a full score")
    entries = lines_of(before)
    assert saved(editor, tmp_path / "AFTER.SND") == entries[:10] + entries


def test_full_score_shows_no_end_column_and_its_last_entry_can_be_deleted(start, melody, tmp_path):
    full = long_score(MOST_ENTRIES)
    editor = start(windows_path(melody("FULL.SND", full)))
    editor.screen.key("end")
    wait_until(lambda: len(names(editor)) == 30, 5, "the last columns")
    assert "End" not in names(editor)
    editor.screen.key("delete")
    wait_until(lambda: names(editor)[-1] == "End", 5, "the end column")
    assert saved(editor, tmp_path / "AFTER.SND") == lines_of(full)[:-1]
    editor.screen.key("ctrl+z")
    wait_until(lambda: "End" not in names(editor), 5, "the full score again")
    assert saved(editor, tmp_path / "AGAIN.SND") == lines_of(full)
