"""An entry that no program of the organiser is known to write: all of the melody stays within reach."""

import struct

import pytest

from melody import C, D
from wine_paths import windows_path

UNKNOWN = "Unknown entry"
NOTE_C4, NOTE_D4, QUARTER, EIGHTH = 26, 28, 10, 6
FOREIGN = 120
ENTRIES = [(NOTE_C4, QUARTER), (NOTE_D4, FOREIGN), (NOTE_D4, EIGHTH), *[(NOTE_C4, QUARTER)] * 40]


@pytest.fixture
def foreign(start, tmp_path):
    """An editor with c4, an entry of the file code 120, d4 and forty notes more."""
    path = tmp_path / "FOREIGN.SND"
    path.write_bytes(struct.pack("<HHHHH", 7, 4, 0xFFFF, 0, 120) + bytes(b for entry in ENTRIES for b in entry) +
                     b"\xff\xff")
    editor = start(windows_path(path))
    editor.screen.key("home")
    editor.wait_selected([0])
    return editor


def pictures(editor):
    return [item["name"] for item in editor.items("TonexStaff")]


def test_it_has_a_name_and_the_strip_has_its_thirty_items(foreign):
    assert pictures(foreign) == foreign.names() == [C, UNKNOWN, D, *[C] * 27]


def test_it_is_shown_by_a_dark_sign(foreign):
    foreign.picture()
    left, top, right, bottom = foreign.items("TonexStaff")[1]["rect"]
    picture = foreign.screen.picture(left, top, right - left, bottom - top).convert("L")
    dark = sum(picture.histogram()[:80])
    # A filled box, 16 pixels by 22, less its question mark; staff lines alone are not as dark.
    assert dark > 200


def test_the_mouse_reaches_it_and_what_is_behind_it(foreign):
    for index in (1, 2, 29):
        foreign.screen.click(*foreign.centre(foreign.items("TonexStaff")[index]["rect"]))
        foreign.wait_selected([index])


def test_the_keyboard_reaches_it_and_what_is_behind_it(foreign):
    screen = foreign.screen
    screen.key("shift+F6")  # from the grid back to the strip
    screen.key("home")
    heard = [foreign.focused_item()]
    for _ in range(2):
        screen.key("right")
        heard.append(foreign.focused_item())
    assert heard == [("TonexStaff", name) for name in (C, UNKNOWN, D)]
    screen.key("end")
    screen.key("enter")
    foreign.wait_selected([29])


def test_saving_says_which_entry_it_is_and_puts_the_cursor_on_it(foreign, tmp_path):
    before = (tmp_path / "FOREIGN.SND").read_bytes()
    foreign.screen.key("end")
    foreign.wait_selected([29])
    foreign.screen.key("ctrl+s")
    foreign.message("Entry 2 is unknown and cannot be saved.")
    assert foreign.selected_items("TonexGrid") == [UNKNOWN]
    assert (tmp_path / "FOREIGN.SND").read_bytes() == before
    foreign.screen.key("delete")
    foreign.screen.key("ctrl+s")
    foreign.no_dialog()
    assert len((tmp_path / "FOREIGN.SND").read_bytes()) > 12
    assert (tmp_path / "FOREIGN.SND").read_bytes() != before
