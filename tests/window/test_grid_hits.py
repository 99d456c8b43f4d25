"""A click on the grid hits the cell that is painted under it, at every scale and in every size of the window."""

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


@pytest.mark.parametrize("times", [1.25, 1.6])
def test_a_click_hits_the_cell_that_is_painted_there_in_a_larger_window(screen, tmp_path, times):
    prefix, editor = open_at(screen, tmp_path, 96)
    try:
        window = screen.find("Sound Editor - ")
        _, _, width, height = screen.rect_of(window)
        before = editor.child("TonexGrid")["rect"]
        window.configure(width=round(width * times), height=round(height * times))
        screen.display.sync()
        wait_until(lambda: editor.child("TonexGrid")["rect"] != before, 5, "the larger grid")
        assert_every_cell_is_hit(editor)
    finally:
        editor.kill()
        prefix.end()
