"""How the window looks: nothing overlapping or clipped at any scale, pictures of it for the eye, the smallest size."""

import pytest

from editor import Editor
from melody import Melody
from prefix import Prefix
from tidiness import (PANELS, SHOWCASE, expect_columns_under_strip, expect_tidy_controls, expect_tidy_items,
                      staff_space)
from wine_paths import windows_path
from words import DOREMI
from xscreen import wait_until


SCALES = [96, 120, 144, 192]
FIRST_CLIENT = 12840 / 15, 7650 / 15  # pixels at 96 dpi
SMALLEST_CLIENT = 12840 * 5 / 120, 7650 * 5 / 120  # at 5 pixels a staff space, the same at every scale


@pytest.fixture(scope="module", params=SCALES)
def scaled(request, screen, tmp_path_factory):
    """An editor with the showcase melody at a scale."""
    prefix = Prefix(f"scale-{request.param}", dpi=request.param)
    path = Melody.build(tmp_path_factory.mktemp("look") / "SHOWCASE.SND", SHOWCASE)
    editor = Editor(prefix, screen, windows_path(path)).wait_ready()
    editor.dpi = request.param
    yield editor
    editor.kill()
    prefix.end()


def test_the_scale_is_the_screens(scaled):
    width = scaled.main()["client"][2] - scaled.main()["client"][0]
    assert abs(width - FIRST_CLIENT[0] * scaled.dpi / 96) <= 60 * scaled.dpi / 96


def test_no_controls_overlap_and_all_lie_inside_the_window(scaled):
    expect_tidy_controls(scaled)


def test_items_lie_inside_their_panels_and_beside_each_other(scaled):
    expect_tidy_items(scaled)


def test_grid_columns_stand_under_the_strip(scaled):
    expect_columns_under_strip(scaled)


def test_white_keys_share_one_width_and_touch(scaled):
    keys = [item for item in scaled.items("TonexPiano") if not item["name"].endswith("#")]
    assert len(keys) == 29
    widths = {key["rect"][2] - key["rect"][0] for key in keys}
    assert max(widths) - min(widths) <= 1
    for left, right in zip(keys, keys[1:]):
        assert abs(left["rect"][2] - right["rect"][0]) <= 1


def test_every_control_shows_something(scaled):
    """A panel that was not painted would be of one colour."""
    picture = scaled.picture(f"scale-{scaled.dpi}.png")
    frame = scaled.screen.rect_of(scaled.screen.frame_of(scaled.screen.find("Sound Editor - ")))
    for kind in PANELS + ["ToolbarWindow32", "ComboBox"]:
        left, top, right, bottom = scaled.child(kind)["rect"]
        part = picture.crop((left - frame[0], top - frame[1], right - frame[0], bottom - frame[1]))
        colours = len(part.getcolors(part.width * part.height))
        assert colours > 2, f"{kind} is of {colours} colours"


def test_doremi_names_fit_their_cells_and_keys(scaled):
    scaled.choose(DOREMI)
    wait_until(lambda: scaled.cells()[0]["name"].startswith("ド"), 5, "the names")
    scaled.picture(f"doremi-{scaled.dpi}.png")
    expect_tidy_controls(scaled)
    scaled.choose(DOREMI)
    wait_until(lambda: scaled.cells()[0]["name"].startswith("c4"), 5, "the letters")


def test_the_window_does_not_get_smaller_than_its_smallest_content(scaled):
    window = scaled.screen.find("Sound Editor - ")
    _, _, width, height = scaled.screen.rect_of(window)
    window.configure(width=300, height=200)
    scaled.screen.display.sync()
    wait_until(lambda: staff_space(scaled) < 5.5, 5, "the smallest content")
    scaled.picture(f"smallest-{scaled.dpi}.png")
    client = scaled.main()["client"]
    assert client[2] - client[0] >= SMALLEST_CLIENT[0] - 2
    assert client[3] - client[1] >= SMALLEST_CLIENT[1] - 2
    expect_tidy_controls(scaled)
    expect_tidy_items(scaled)
    window.configure(width=width, height=height)
    scaled.screen.display.sync()
    wait_until(lambda: abs(staff_space(scaled) - 8 * scaled.dpi / 96) < 0.1, 5, "the content as it was")


def test_a_larger_window_keeps_the_content_together(start):
    editor = start()
    window = editor.screen.find("Sound Editor - ")
    before = editor.main()["client"]
    window.configure(width=before[2] - before[0] + 400, height=before[3] - before[1] + 200)
    editor.screen.display.sync()
    wait_until(lambda: editor.main()["client"][2] - editor.main()["client"][0] > before[2] - before[0] + 300, 5,
               "the larger window")
    editor.picture("larger.png")
    expect_tidy_controls(editor)
    staff, client = editor.child("TonexStaff")["rect"], editor.main()["client"]
    assert abs((staff[0] - client[0]) - (client[2] - staff[2])) <= 2, "the content stands in the middle"


def test_only_what_changed_is_drawn_again(start, melody):
    """A note at the end changes its column and the cursor's, not the rest of strip and grid."""
    editor = start(windows_path(melody("PAINT.SND", "tempo 120\n" + "c5 1/4\n" * 5)))
    editor.screen.move(5, 5)
    before = editor.picture()
    editor.screen.key("end")
    editor.click_key("c5")
    wait_until(lambda: len(editor.cells()) == 7, 5, "the new note")
    editor.screen.move(5, 5)
    after = editor.picture()
    frame = editor.screen.rect_of(editor.screen.frame_of(editor.screen.find("Sound Editor - ")))
    cells = editor.cells()
    left, top = cells[0]["rect"][0] - frame[0], cells[0]["rect"][1] - frame[1]
    right, bottom = cells[4]["rect"][0] - frame[0], cells[4]["rect"][3] - frame[1]
    assert before.crop((left, top, right, bottom)).tobytes() == after.crop((left, top, right, bottom)).tobytes()


def test_high_contrast_colours_are_respected(screen, tmp_path):
    prefix = Prefix("high-contrast")
    try:
        prefix.register("Control Panel\\Colors", {
            "Window": "0 0 0", "WindowText": "255 255 255", "ButtonFace": "0 0 0", "ButtonText": "255 255 0",
            "Hilight": "0 255 0", "HilightText": "0 0 0", "GrayText": "0 255 0", "Menu": "0 0 0",
            "MenuText": "255 255 255", "MenuBar": "0 0 0"})
        prefix.register("Control Panel\\Accessibility\\HighContrast", {"Flags": "127"})
        editor = Editor(prefix, screen, windows_path(Melody.build(tmp_path / "DARK.SND", SHOWCASE))).wait_ready()
        picture = editor.picture("high-contrast.png")
        frame = screen.rect_of(screen.frame_of(screen.find("Sound Editor - ")))
        for kind in ("TonexStaff", "TonexGrid", "TonexLengths"):
            left, top, right, bottom = editor.child(kind)["client"]
            part = picture.crop((left - frame[0], top - frame[1], right - frame[0], bottom - frame[1])).convert("L")
            dark = sum(count for count, value in part.getcolors(256) if value < 64)
            assert dark > 0.6 * part.size[0] * part.size[1], f"{kind} is not dark"
            assert max(value for _, value in part.getcolors(256)) > 200, f"{kind} shows nothing bright"
        # The scissors' blades are light on a dark toolbar; their rings are blue.
        left, top, right, bottom = editor.toolbar()["Cut"]["rect"]
        blades = picture.crop((left - frame[0], top - frame[1], right - frame[0], bottom - frame[1])).convert("L")
        assert max(value for _, value in blades.getcolors(256)) > 180
        # The selection is as solid as text's: notes and staff lines on it have the colour of selected text.
        for column in (1, 10):
            editor.click_cell(column)
            editor.wait_selected([column])
            left, top, right, bottom = editor.items("TonexStaff")[column]["rect"]
            part = editor.picture().crop((left - frame[0], top + 2 - frame[1], right - frame[0], bottom - 2 - frame[1]))
            colours = [colour for _, colour in part.getcolors(part.width * part.height)]
            assert (0, 255, 0) in colours and (0, 0, 0) in colours
            assert all(red == 0 and blue == 0 for red, _, blue in colours), column
        editor.kill()
    finally:
        prefix.end()


def test_a_much_larger_window_magnifies_its_content(start, melody):
    """Staff spaces grow by whole pixels, keys and buttons with them; back at the old size all is as it was."""
    editor = start(windows_path(melody("ZOOM.SND", "tempo 120\n" + "c5 1/4\n" * 8)))
    window = editor.screen.find("Sound Editor - ")
    client = editor.main()["client"]
    width, height = client[2] - client[0], client[3] - client[1]
    rect = editor.screen.rect_of(window)
    before = editor.child("TonexStaff")["rect"]

    def staff_width():
        staff = editor.child("TonexStaff")["rect"]
        return staff[2] - staff[0]

    def resize(times):
        window.configure(width=round(rect[2] + (times - 1) * width), height=round(rect[3] + (times - 1) * height))
        editor.screen.display.sync()

    resize(1.6)
    wait_until(lambda: staff_width() >= 1.5 * (before[2] - before[0]), 5, "the larger staff")
    editor.picture("magnified.png")
    expect_tidy_controls(editor)
    expect_columns_under_strip(editor)
    editor.click_key("e5")
    wait_until(lambda: len(editor.cells()) == 10, 5, "a note by the larger keys")
    resize(1)
    wait_until(lambda: staff_width() == before[2] - before[0], 5, "the staff as it was")
    expect_tidy_controls(editor)
