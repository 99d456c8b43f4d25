"""How the window looks: nothing overlapping or clipped at any scale, pictures of it for the eye, the smallest size."""

import pytest

from editor import Editor
from melody import Melody
from prefix import Prefix
from wine_paths import windows_path
from words import DOREMI
from xscreen import wait_until


# Every length and rest, a separator, sharps, and pitches over the whole keyboard.
SHOWCASE = ("tempo 120\nc4 1/4\nd4# 1/8\ne4 1/8.\nf4# 1/16\ng4 1/16..\na4# 1/32\nb4 1/8t\nc5 1/8t\nd5 1/8t\n|\n"
            "e5 1/2\nf5# 1/2.\ng5 1/1\na5 1/4t\nb5 1/4.\nc6# 1/4..\nr 1/4\nr 1/8\nr 1/16.\nr 1/32\nr 1/2\nr 1/1\n|\n"
            "d6 1/8\ne6 1/16\nf6 1/32\ng7# 1/4\nb7 1/2..\nc8 1/4\n")
SCALES = [96, 120, 144, 192]
PANELS = ["TonexStaff", "TonexGrid", "TonexLengths", "TonexPiano"]
MIN_CLIENT = 12840 / 15, 7650 / 15  # pixels at 96 dpi


def overlap(a, b):
    return a[0] < b[2] and b[0] < a[2] and a[1] < b[3] and b[1] < a[3]


def inside(a, b):
    return b[0] <= a[0] and b[1] <= a[1] and a[2] <= b[2] and a[3] <= b[3]


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


def controls(editor):
    return [child for child in editor.children() if child["visible"] and child["parent"] == editor.hwnd]


def test_the_scale_is_the_screens(scaled):
    width = scaled.main()["client"][2] - scaled.main()["client"][0]
    assert abs(width - MIN_CLIENT[0] * scaled.dpi / 96) <= 60 * scaled.dpi / 96


def place_of(editor, control):
    """Where a control shows something: the lengths' panel reaches round the tempo box to the current length."""
    if control["class"] != "TonexLengths":
        return control["rect"]
    rects = [item["rect"] for item in editor.items("TonexLengths")]
    return [min(r[0] for r in rects), min(r[1] for r in rects), max(r[2] for r in rects), max(r[3] for r in rects)]


def test_no_controls_overlap_and_all_lie_inside_the_window(scaled):
    client = scaled.main()["client"]
    found = [(control["class"], place_of(scaled, control)) for control in controls(scaled)]
    assert len(found) >= 8
    for i, (name, rect) in enumerate(found):
        assert inside(rect, client), f"{name} {rect} leaves the window {client}"
        for other_name, other in found[i + 1:]:
            assert not overlap(rect, other), f"{name} {rect} lies over {other_name} {other}"


def test_items_lie_inside_their_panels_and_beside_each_other(scaled):
    for kind in PANELS:
        panel = scaled.child(kind)["client"]
        items = scaled.items(kind)
        assert items, kind
        for item in items:
            assert inside(item["rect"], panel), f"{kind}: {item['name']} {item['rect']} leaves {panel}"
        if kind in ("TonexGrid", "TonexLengths"):
            for i, one in enumerate(items):
                for other in items[i + 1:]:
                    assert not overlap(one["rect"], other["rect"]), f"{one['name']} lies over {other['name']}"


def test_grid_columns_stand_under_the_strip(scaled):
    cells, pictures = (scaled.items(kind) for kind in ("TonexGrid", "TonexStaff"))
    for cell, picture in zip(cells, pictures):
        assert abs(cell["rect"][0] - picture["rect"][0]) <= 2


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
    test_no_controls_overlap_and_all_lie_inside_the_window(scaled)
    scaled.choose(DOREMI)
    wait_until(lambda: scaled.cells()[0]["name"].startswith("c4"), 5, "the letters")


def test_the_window_does_not_get_smaller_than_its_content(scaled):
    window = scaled.screen.find("Sound Editor - ")
    window.configure(width=300, height=200)
    scaled.screen.display.sync()
    wait_until(lambda: scaled.screen.rect_of(window)[2] >= 300, 5, "an answer")
    scaled.picture(f"smallest-{scaled.dpi}.png")
    client = scaled.main()["client"]
    factor = scaled.dpi / 96
    assert client[2] - client[0] >= MIN_CLIENT[0] * factor - 2
    assert client[3] - client[1] >= MIN_CLIENT[1] * factor - 2
    test_no_controls_overlap_and_all_lie_inside_the_window(scaled)


def test_a_larger_window_keeps_the_content_together(start):
    editor = start()
    window = editor.screen.find("Sound Editor - ")
    before = editor.main()["client"]
    window.configure(width=before[2] - before[0] + 400, height=before[3] - before[1] + 200)
    editor.screen.display.sync()
    wait_until(lambda: editor.main()["client"][2] - editor.main()["client"][0] > before[2] - before[0] + 300, 5,
               "the larger window")
    editor.picture("larger.png")
    test_no_controls_overlap_and_all_lie_inside_the_window(editor)
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
    test_no_controls_overlap_and_all_lie_inside_the_window(editor)
    test_grid_columns_stand_under_the_strip(editor)
    editor.click_key("e5")
    wait_until(lambda: len(editor.cells()) == 10, 5, "a note by the larger keys")
    resize(1)
    wait_until(lambda: staff_width() == before[2] - before[0], 5, "the staff as it was")
    test_no_controls_overlap_and_all_lie_inside_the_window(editor)
