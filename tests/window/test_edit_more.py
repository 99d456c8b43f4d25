"""More of the edit commands in the real window: the strip's pop-up menu, enabling after every command with a sound
device, and the limits of a full score."""

import pytest

from commands import by_menu, by_popup, by_shortcut, by_strip_popup, by_toolbar
from melody import C, D, E, FIVE, G, R, Melody
from wine_paths import windows_path
from words import ASK, PAIRS, PREVIEW_TOOL
from xscreen import wait_until


MOST_ENTRIES = 509
BLANK = "Separator"


def shifted(steps):
    return [f"{name}, {length}" for name, length in zip(steps, ("Quarter note", "Eighth note", "Half note"))]


# --- the pop-up menu of the strip


def test_strip_popup_cuts_and_pastes(five):
    five.screen.key("shift+right")
    five.wait_selected([0, 1])
    by_strip_popup(five, "Cu&t")
    five.wait_names([E, R, G, "End"])
    by_strip_popup(five, "&Paste")
    wait_until(lambda: len(five.names()) == 6, 5, "the pasted entries")
    assert five.names() == [C, D, E, R, G, "End"]


def test_strip_popup_copies_inserts_deletes_and_undoes(five):
    by_strip_popup(five, "&Copy")
    wait_until(lambda: five.menu()["&Paste"]["enabled"], 5, "something to paste")
    by_strip_popup(five, "&Insert")
    five.wait_names([BLANK, C, D, E, R, G, "End"])
    five.screen.key("home")
    five.wait_selected([0])
    five.screen.key("right")
    five.wait_selected([1])
    by_strip_popup(five, "&Delete")
    five.wait_names([BLANK, D, E, R, G, "End"])
    by_strip_popup(five, "&Undo")
    five.wait_names([BLANK, C, D, E, R, G, "End"])
    by_strip_popup(five, "&Undo")
    five.wait_names([BLANK, D, E, R, G, "End"])


TRANSPOSITIONS = [("Up &an octave", ("c5", "d5", "e5")), ("Up &half a tone", ("c4#", "d4#", "f4")),
                  ("Down an &octave", ("c3", "d3", "e3")), ("Down half a to&ne", ("b3", "c4#", "d4#"))]


@pytest.mark.parametrize("way", [by_menu, by_popup, by_strip_popup])
@pytest.mark.parametrize("caption, steps", TRANSPOSITIONS)
def test_transposition_and_undo(five, way, caption, steps):
    before = five.names()
    way(five, caption, None, None)
    wait_until(lambda: five.names()[:3] == shifted(steps), 5, f"{steps}, not {five.names()[:3]}")
    assert five.names()[3] == R
    way(five, "&Undo", None, None)
    five.wait_names(before)
    way(five, "&Undo", None, None)
    wait_until(lambda: five.names()[:3] == shifted(steps), 5, "the shifted melody again")


# --- ranges


@pytest.mark.parametrize("way", [by_menu, by_toolbar, by_shortcut, by_popup, by_strip_popup])
def test_range_selected_with_the_mouse_is_deleted_and_comes_back(five, way):
    five.select_columns(3, 1)
    five.wait_selected([1, 2, 3])
    way(five, "&Delete", "Delete", "delete")
    five.wait_names([C, G, "End"])
    five.screen.key("ctrl+z")
    five.wait_names([C, D, E, R, G, "End"])
    five.wait_selected([1, 2, 3])


def test_range_that_ends_on_the_end_column_is_copied_up_to_the_entry_before_it(five):
    five.screen.key("end")
    five.wait_selected([5])
    five.screen.key("shift+left")
    five.wait_selected([4, 5])
    five.screen.key("ctrl+c")
    wait_until(lambda: five.menu()["&Paste"]["enabled"], 5, "something to paste")
    five.screen.key("home")
    five.wait_selected([0])
    five.screen.key("ctrl+v")
    five.wait_names([G, C, D, E, R, G, "End"])


def test_octave_up_of_rests_only_changes_nothing_but_the_undo_copy(start, melody):
    editor = start(windows_path(melody("RESTS.SND", "tempo 120\nr 1/4\nr 1/4\nr 1/4\n")))
    editor.screen.key("home")
    editor.wait_selected([0])
    editor.screen.key("delete")
    rests = ["Quarter rest"] * 2 + ["End"]
    editor.wait_names(rests)
    editor.screen.key("end")
    editor.wait_selected([2])
    editor.choose("Up &an octave")
    editor.screen.key("home")
    editor.wait_selected([0])
    assert editor.names() == rests
    editor.screen.key("ctrl+z")  # back to before the octave, not to before the deletion
    editor.wait_selected([2])
    assert editor.names() == rests


# --- enabling, menu and toolbar together


def may_be_used(entries, clipboard):
    """The commands that a score of so many entries allows, by tooltip."""
    end_count = entries + 1
    allowed = {"Cut", "Copy", "Delete", PREVIEW_TOOL} if entries else set()
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
            wait_until(lambda: len(editor.names()) == entries + 1, 5, f"{entries} entries")
        except AssertionError as failure:
            raise AssertionError(f"after {what}: {failure}") from failure
    editor.click_tool("New")
    editor.message(ASK, "No")
    wait_usable(editor, 0, True)
    editor.prefix.ask("drop", editor.hwnd, windows_path(melody("FIVE.SND", FIVE)))
    editor.wait_caption("Sound Editor - PC:FIVE.SND")
    wait_usable(editor, 5, True)


@pytest.mark.parametrize("entries", [507, 508, 509])
def test_enabling_of_a_nearly_full_score(sound, start, melody, entries):  # noqa: F811
    editor = start(windows_path(melody("LONG.SND", long_score(entries))))
    wait_usable(editor, entries, False)
    editor.screen.key("home")
    editor.wait_selected([0])
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
    editor.wait_selected([0])
    editor.select_columns(0, count - 1)
    editor.wait_selected(list(range(count)))


def test_insert_of_20_at_end_count_500_makes_9_separators(start, melody, tmp_path):
    before = long_score(499)
    editor = start(windows_path(melody("BEFORE.SND", before)))
    select_first(editor, 20)
    editor.screen.key("ctrl+i")
    wait_until(lambda: editor.names()[:9] == [BLANK] * 9, 5, "the separators")
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
    wait_until(lambda: len(editor.names()) == 30, 5, "the last columns")
    assert "End" not in editor.names()
    editor.screen.key("delete")
    wait_until(lambda: editor.names()[-1] == "End", 5, "the end column")
    assert saved(editor, tmp_path / "AFTER.SND") == lines_of(full)[:-1]
    editor.screen.key("ctrl+z")
    wait_until(lambda: "End" not in editor.names(), 5, "the full score again")
    assert saved(editor, tmp_path / "AGAIN.SND") == lines_of(full)
