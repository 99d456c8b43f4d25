"""The staff drawn column by column looks as if it had been drawn anew: no neighbour leaves or takes ink, and a picture
stands alike in every column."""

import pytest

from editor import STATE_SELECTED, TITLE, Editor
from melody import Melody
from prefix import Prefix
from wine_paths import windows_path
from xscreen import wait_until

# Ink from the lowest ledger line to the highest, every sort beside every other, and more than the strip shows.
TALL = "tempo 120\n" + ("c4# 1/16..\nf7# 1/32\na4# 1/32t\n|\nc8 1/2..\nr 1/32t\nb7 1/8t\nc4 1/16.\ng5# 1/1..\n"
                        "d6# 1/4..\nr 1/1..\n") * 5
WHEEL_UP, WHEEL_DOWN = 4, 5


@pytest.fixture(scope="module", params=[96, 120, 168, 192])
def tall(request, screen, tmp_path_factory):
    """An editor with the tall melody at a scale."""
    prefix = Prefix(f"redraw-{request.param}", dpi=request.param)
    path = Melody.build(tmp_path_factory.mktemp("tall") / "TALL.SND", TALL)
    editor = Editor(prefix, screen, windows_path(path)).wait_ready()
    editor.screen.key("home")
    editor.wait_selected([0])
    yield editor
    editor.kill()
    prefix.end()


def staff_picture(editor):
    """The staff as the screen shows it, the mouse elsewhere."""
    editor.screen.move(2, 2)
    whole = editor.picture()
    left, top = editor.screen.rect_of(editor.screen.frame_of(editor.screen.find(TITLE)))[:2]
    rect = editor.child("TonexStaff")["rect"]
    return whole.crop((rect[0] - left, rect[1] - top, rect[2] - left, rect[3] - top))


def draw_anew(editor):
    """A wider window moves the staff, and a panel that moves is drawn whole; then the same back."""
    window = editor.screen.find(TITLE)
    width, height = editor.screen.rect_of(window)[2:]
    place = editor.child("TonexStaff")["rect"]
    for wider in (60, 0):
        window.configure(width=width + wider, height=height)
        editor.screen.display.sync()
        wait_until(lambda: (editor.child("TonexStaff")["rect"] != place) == (wider > 0), 8, "the staff's place")


def assert_as_drawn_anew(editor):
    before = staff_picture(editor)
    draw_anew(editor)
    after = staff_picture(editor)
    assert before.size == after.size
    differing = [x for x in range(before.width)
                 if before.crop((x, 0, x + 1, before.height)).tobytes()
                 != after.crop((x, 0, x + 1, after.height)).tobytes()]
    assert not differing, f"columns of pixels that differ: {differing}"


def test_a_note_stands_at_one_place_of_every_column(tall):
    """Columns are not all as wide, and their box is moved by the staff's offset: neither moves a head."""
    left, top = tall.child("TonexStaff")["rect"][:2]
    picture, first, compared = staff_picture(tall), {}, 0
    for item in tall.items("TonexStaff"):
        if item["state"] & STATE_SELECTED:
            continue
        x1, y1, x2, y2 = item["rect"]
        column = picture.crop((x1 - left, y1 - top, x2 - left, y2 - top))
        other = first.setdefault(item["name"], column)
        both = 0, 0, min(column.width, other.width), column.height
        assert column.crop(both).tobytes() == other.crop(both).tobytes(), item["name"]
        compared += column is not other
    assert compared > 10


def test_a_click_at_the_edge_of_a_column_means_the_column(tall):
    """Also above the heads and on a sharp: the ink of a picture never leaves its column."""
    for column in (4, 5):
        left, top, right, bottom = tall.items("TonexStaff")[column]["rect"]
        for x in (left, right - 1):
            for y in (top + 3, (top + bottom) // 2):
                tall.screen.key("home")
                tall.wait_selected([0])
                tall.screen.click(x, y)
                tall.wait_selected([column])


def test_after_scrolling(tall):
    """Down, up, and down twice: with the last step nothing changes but the pictures."""
    tall.screen.move(*tall.centre(tall.child("TonexGrid")["client"]))
    for button in (WHEEL_DOWN, WHEEL_UP, WHEEL_DOWN, WHEEL_DOWN):
        before = tall.names()
        tall.screen.button(True, button)
        tall.screen.button(False, button)
        wait_until(lambda: tall.names() != before, 5, "the scrolled grid")
    assert_as_drawn_anew(tall)


def test_after_the_cursor_and_a_selection_went_over_it(tall):
    tall.screen.key("home")
    tall.wait_selected([0])
    for _ in range(6):
        tall.screen.key("shift+right")
    tall.wait_selected([0, 1, 2, 3, 4, 5, 6])
    for _ in range(3):
        tall.screen.key("shift+left")
    tall.wait_selected([0, 1, 2, 3])
    assert_as_drawn_anew(tall)


def test_after_notes_became_others(tall):
    """The lowest notes become the highest and long values short ones: nothing of the old ink stays."""
    tall.screen.key("home")
    tall.wait_selected([0])
    tall.click_key("c8")
    tall.wait_selected([1])
    tall.click_key("c4")
    tall.wait_selected([2])
    tall.click_length("Whole note")
    tall.wait_selected([3])
    tall.screen.key("right")
    tall.wait_selected([4])
    tall.click_length("Thirty-second note")
    tall.wait_selected([5])
    assert_as_drawn_anew(tall)


def test_after_entries_came_and_went_before_others(tall):
    """All pictures behind the cursor move on by columns: none leaves ink where it stood."""
    tall.screen.key("home")
    tall.wait_selected([0])
    for keys in ("ctrl+i", "delete", "ctrl+c", "ctrl+v", "ctrl+z"):
        before = tall.names()
        tall.screen.key(keys)
        if keys == "ctrl+c":
            wait_until(lambda: tall.menu()["&Paste"]["enabled"], 5, "something to paste")
        else:
            wait_until(lambda: tall.names() != before, 5, f"other entries after {keys}")
        assert_as_drawn_anew(tall)
