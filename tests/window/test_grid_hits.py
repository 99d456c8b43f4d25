"""A click or drag on the grid hits the cells that are painted under it, at every scale and in every size of the
window."""

import pytest

from editor import Editor
from melody import Melody
from prefix import Prefix
from wine_paths import windows_path
from xscreen import wait_until

INSIDE = 2  # pixels from a cell's edge
COLUMNS_SHOWN = 30
MELODY = "tempo 120\n" + "c4 1/4\n" * 40


def open_at(screen, folder, dpi):
    prefix = Prefix(f"grid-hits-{dpi}", dpi=dpi)
    path = Melody.build(folder / "FORTY.SND", MELODY)
    return prefix, Editor(prefix, screen, windows_path(path)).wait_ready()


def assert_every_cell_is_hit(editor):
    cells = editor.cells()
    assert len(cells) == COLUMNS_SHOWN
    for index, cell in enumerate(cells):
        left, top, right, bottom = cell["rect"]
        for x in (left + INSIDE, right - 1 - INSIDE):
            editor.screen.click(x, (top + bottom) // 2)
            try:
                editor.wait_selected([index])
            except AssertionError as failure:
                raise AssertionError(f"cell {index} {cell['rect']}, clicked at {x}: {failure}") from failure
    for first, last in ((0, 29), (29, 7), (28, 29), (14, 13)):
        # From one cell's far edge to the other's near one.
        inward = 1 if first < last else -1
        edges = [cells[first]["rect"][::2], cells[last]["rect"][::2]][::inward]
        ends = [edges[0][1] - 1 - INSIDE, edges[1][0] + INSIDE][::inward]
        editor.screen.drag(ends[0], (top + bottom) // 2, ends[1], (top + bottom) // 2)
        editor.wait_selected(list(range(min(first, last), max(first, last) + 1)))
    # Nothing scrolled on the way.
    assert [cell["rect"] for cell in editor.cells()] == [cell["rect"] for cell in cells]


@pytest.mark.parametrize("dpi", [96, 120, 144, 168, 192])
def test_a_click_hits_the_cell_that_is_painted_there(screen, tmp_path, dpi):
    prefix, editor = open_at(screen, tmp_path, dpi)
    try:
        assert_every_cell_is_hit(editor)
    finally:
        editor.kill()
        prefix.end()


@pytest.mark.parametrize("times", [1.25, 1.6, 0.75])
def test_a_click_hits_the_cell_that_is_painted_there_in_another_size_of_window(screen, tmp_path, times):
    prefix, editor = open_at(screen, tmp_path, 96)
    try:
        window = screen.find("Sound Editor - ")
        _, _, width, height = screen.rect_of(window)
        before = editor.child("TonexGrid")["rect"]
        window.configure(width=round(width * times), height=round(height * times))
        screen.display.sync()
        wait_until(lambda: editor.child("TonexGrid")["rect"] != before, 5, "the other grid")
        assert_every_cell_is_hit(editor)
    finally:
        editor.kill()
        prefix.end()
