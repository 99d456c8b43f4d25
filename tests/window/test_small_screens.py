"""The window on small screens: it fits, shrinks by whole staff pixels and comes back as it was left."""

import pytest

from editor import Editor
from melody import Melody
from prefix import SETTINGS, Prefix, virtual_screen, window_manager
from tidiness import (SHOWCASE, expect_columns_under_strip, expect_tidy_controls, expect_tidy_items, inside,
                      overlap, staff_space)
from wine_paths import windows_path
from xscreen import Screen, wait_until

# Screen, dots an inch, and the largest staff space whose content fits with menu and frame.
SMALL_SCREENS = [((800, 600), 96, 7), ((1024, 768), 96, 8), ((1024, 768), 144, 9), ((1366, 768), 144, 10),
                 ((1920, 1080), 192, 15), ((640, 480), 96, 5), ((1280, 1024), 120, 10)]


def frame_rect(screen):
    """The window with the manager's frame: left, top, right, bottom."""
    left, top, width, height = screen.rect_of(screen.frame_of(screen.find("Sound Editor - ")))
    return [left, top, left + width, top + height]


@pytest.mark.parametrize("size, dpi, space", SMALL_SCREENS)
def test_the_first_window_fits_the_screen_and_shows_everything(tmp_path, size, dpi, space):
    with virtual_screen(size) as name, window_manager(name):
        screen = Screen(name)
        prefix = Prefix(f"small-{size[0]}-{dpi}", dpi=dpi, environment={"DISPLAY": name})
        editor = Editor(prefix, screen, windows_path(Melody.build(tmp_path / "SHOW.SND", SHOWCASE)))
        try:
            editor.wait_ready()
            editor.picture(f"screen-{size[0]}x{size[1]}-{dpi}.png")
            assert inside(editor.main()["rect"], [0, 0, *size])
            assert inside(frame_rect(screen), [0, 0, *size])
            assert staff_space(editor) == pytest.approx(space, abs=0.05)
            expect_tidy_controls(editor)
            expect_tidy_items(editor)
            expect_columns_under_strip(editor)
            editor.click_cell(2)
            editor.wait_selected([2])
            editor.click_length("Half note")
            wait_until(lambda: editor.cells()[2]["name"] == "e4, Half note", 5, "the half note")
        finally:
            editor.kill()
            prefix.end()


@pytest.mark.parametrize("size, dpi", [((1024, 768), 144), ((1920, 1080), 192), ((800, 600), 96)])
def test_the_tempos_list_leaves_the_box_under_the_pointer_free(tmp_path, size, dpi):
    """Where all of it has no room above or below, a list over the box would take the clicks on its arrow."""
    with virtual_screen(size) as name, window_manager(name):
        screen = Screen(name)
        prefix = Prefix(f"list-{size[0]}-{dpi}", dpi=dpi, environment={"DISPLAY": name})
        editor = Editor(prefix, screen, windows_path(Melody.build(tmp_path / "LIST.SND", "tempo 64\nc5 1/4\n")))
        try:
            editor.wait_ready()
            box = editor.child("ComboBox")["rect"]
            arrow = box[2] - 8, (box[1] + box[3]) // 2
            screen.click(*arrow)
            open_list = wait_until(lambda: [w["rect"] for w in editor.windows()
                                            if w["class"] == "ComboLBox" and w["visible"]], 5, "the open list")[0]
            assert inside(open_list, [0, 0, *size]) and not overlap(open_list, box)
            assert editor.tempo_box()["selected"] == editor.tempo_box()["items"].index(" 64")
            screen.click(*arrow)
            wait_until(lambda: not editor.list_dropped(), 5, "the closed list")
            assert editor.tempo_box()["text"] == " 64"
        finally:
            editor.kill()
            prefix.end()


def resize(editor, width, height):
    """Gives the client area a size; the X server counts the menu in."""
    window = editor.screen.find("Sound Editor - ")

    def client():
        left, top, right, bottom = editor.main()["client"]
        return right - left, bottom - top
    menu = editor.screen.rect_of(window)[3] - client()[1]
    window.configure(width=width, height=height + menu)
    editor.screen.display.sync()
    wait_until(lambda: client() == (width, height), 5, f"{width} x {height}")


def test_a_window_made_smaller_shrinks_its_content_by_whole_staff_pixels(start, melody):
    editor = start(windows_path(melody("SHRINK.SND", SHOWCASE)))
    for width, height, space in ((855, 510, 7), (749, 510, 7), (748, 510, 6), (856, 400, 6), (600, 510, 5),
                                 (535, 326, 5), (642, 390, 6), (856, 510, 8)):
        resize(editor, width, height)
        wait_until(lambda: staff_space(editor) == pytest.approx(space, abs=0.05), 5,
                   f"a staff space of {space} at {width} x {height}, not {staff_space(editor)}")
        expect_tidy_controls(editor)
        expect_tidy_items(editor)
        expect_columns_under_strip(editor)


def test_the_texts_of_the_tempo_can_be_read_in_a_small_window_of_a_large_scale(screen, tmp_path):
    """Where the arrow of the box, which does not shrink, leaves the number little room."""
    prefix = Prefix("small-window-144", dpi=144)
    editor = Editor(prefix, screen, windows_path(Melody.build(tmp_path / "SHRINK.SND", SHOWCASE))).wait_ready()
    try:
        for width, height, text_height in ((800, 520, 11), (700, 480, 9)):
            resize(editor, width, height)
            for label in (child for child in editor.children() if child["class"] == "Static"):
                assert prefix.ask("textsize", label["hwnd"])[1] >= text_height, f"{label['text']} at {width} x {height}"
            expect_tidy_controls(editor)
    finally:
        editor.kill()
        prefix.end()


MARGINS = """<?xml version="1.0"?><openbox_config xmlns="http://openbox.org/3.4/rc">
<margins><top>70</top><left>90</left><bottom>0</bottom><right>0</right></margins></openbox_config>
"""


def test_a_task_bar_at_the_top_and_left_moves_the_window_at_no_start(tmp_path):
    config = tmp_path / "rc.xml"
    config.write_text(MARGINS)
    with virtual_screen((1280, 800)) as name, window_manager(name, "--config-file", str(config)):
        screen = Screen(name)
        prefix = Prefix("task-bar", environment={"DISPLAY": name})
        try:
            places = []
            for _ in range(3):
                editor = Editor(prefix, screen).wait_ready()
                places.append((editor.main()["rect"], frame_rect(screen)))
                editor.close()
                editor.wait_end()
            assert places[0] == places[1] == places[2]
            assert inside(places[0][1], [90, 70, 1280, 800])
            prefix.ask("setreg", SETTINGS, "WindwInformation", "1,640,200,1100,100")
            editor = Editor(prefix, screen).wait_ready()
            stored = editor.main()["rect"]
            editor.close()
            editor.wait_end()
            assert prefix.ask("getreg", SETTINGS, "WindwInformation") == "1,640,200,1100,100", stored
        finally:
            editor.kill()
            prefix.end()
