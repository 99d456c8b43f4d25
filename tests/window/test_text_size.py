"""Texts fit their places whatever they say and however large the system's message font is, and follow a new one."""

import pytest

from editor import Editor
from melody import Melody
from prefix import Prefix
from wine_paths import windows_path
from xscreen import wait_until

WM_COMMAND = 0x111
SIZES = [11, 16, 22, 30, 44]  # heights of the message font, in pixels
SCALES = [96, 144]
# Of every letter; with a sharp where there is one.
SHARPS = "tempo 120\nc4# 1/4\nd4# 1/4\ne4 1/4\nf4# 1/4\ng4# 1/4\na4# 1/4\nb4 1/4\n"
# How often which command, what it is taken back by, and an entry that then is in view.
OCTAVES = [("Up &an octave", 31, "Down an &octave", "c35#, Quarter note"),
           # Below the lowest octaves only a sharp of a has a name.
           ("Down an &octave", 6, "Up &an octave", "a-2#, Quarter note"),
           ("Down an &octave", 15, "Up &an octave", "a-11#, Quarter note")]


@pytest.fixture(scope="module", params=SCALES)
def scaled(screen, request, tmp_path_factory):
    """An editor with a note of every letter at a scale; the tests leave it as they find it."""
    prefix = Prefix(f"text-size-{request.param}", dpi=request.param)
    path = Melody.build(tmp_path_factory.mktemp("text") / "SHARPS.SND", SHARPS)
    editor = Editor(prefix, screen, windows_path(path)).wait_ready()
    editor.dpi = request.param
    yield editor
    editor.kill()
    prefix.end()


def set_message_font(editor, size):
    assert editor.prefix.ask("messagefont", editor.hwnd, size * editor.dpi // 96)


def labels(editor):
    return {child["text"]: child for child in editor.children() if child["class"] == "Static" and child["text"]}


def text_size(editor, control):
    return editor.prefix.ask("textsize", control["hwnd"])


# --- the texts beside the tempo box


@pytest.mark.parametrize("size", SIZES)
def test_labels_fit_their_places(scaled, size):
    set_message_font(scaled, size)
    scaled.type_tempo("90")
    wait_until(lambda: "Moderato" in labels(scaled), 5, "the longest name")
    shown = labels(scaled)
    assert set(shown) == {"Tempo", "Length", "Moderato"}
    for text, label in shown.items():
        left, top, right, bottom = label["rect"]
        width, height = text_size(scaled, label)
        assert width <= right - left and height <= bottom - top, f"{text} {width} x {height} in {label['rect']}"
    box, buttons = scaled.child("ComboBox")["rect"], scaled.items("TonexLengths")
    assert shown["Tempo"]["rect"][2] <= box[0] and box[2] <= shown["Moderato"]["rect"][0]
    assert shown["Moderato"]["rect"][2] <= buttons[0]["rect"][0]
    assert box[3] <= shown["Length"]["rect"][1], "the box leaves the row below alone"
    edit = scaled.child("Edit")
    left, top, right, bottom = edit["rect"]
    width, height = text_size(scaled, edit)
    assert width <= right - left and height <= bottom - top, f"the number {width} x {height} in {edit['rect']}"


def test_a_new_message_font_is_taken_at_once(scaled):
    def heights():
        return [text_size(scaled, labels(scaled)[text])[1] for text in ("Tempo", "Length")]

    set_message_font(scaled, 11)
    usual = heights()
    set_message_font(scaled, 7)
    smaller = heights()
    assert all(small < large for small, large in zip(smaller, usual))
    set_message_font(scaled, 14)
    assert all(large > small for large, small in zip(heights(), usual))
    set_message_font(scaled, 11)
    assert heights() == usual


# --- the cells


def inked_columns(editor, rect):
    """Which columns of pixels of a cell show more than its ground."""
    left, top, right, bottom = rect
    width, height = right - left, bottom - top
    picture = editor.screen.picture(left, top + 1, width, height - 2)
    ground = picture.getpixel((width // 2, 0))
    return [x for x in range(width - 1)  # the last column is the line between two cells
            if any(picture.getpixel((x, y)) != ground for y in range(height - 2))]


def assert_no_cell_is_cut(editor):
    editor.screen.move(2, 2)
    editor.picture(f"cells-{editor.dpi}.png")  # waits until it looks the same for a while
    cells = editor.cells()
    named = [cell for cell in cells[1:-1] if "," in cell["name"]]  # the first one shows the frame, the last the cursor
    assert named
    for cell in named:
        inked = inked_columns(editor, cell["rect"])
        last = cell["rect"][2] - cell["rect"][0] - 2
        assert inked, f"{cell['name']} shows nothing"
        assert inked[0] > 0 and inked[-1] < last, f"{cell['name']} is cut: {inked[0]} to {inked[-1]} of {last}"


@pytest.mark.parametrize("size", [11, 30])
@pytest.mark.parametrize("caption, times, back, name", OCTAVES)
def test_names_of_every_octave_fit_their_cells(scaled, caption, times, back, name, size):
    set_message_font(scaled, size)
    menu = scaled.menu()

    def transpose(which):
        for _ in range(times):
            scaled.prefix.ask("post", scaled.hwnd, WM_COMMAND, menu[which]["id"], 0)

    assert_no_cell_is_cut(scaled)
    transpose(caption)
    wait_until(lambda: name in scaled.names(), 5, name)
    assert_no_cell_is_cut(scaled)
    transpose(back)
    wait_until(lambda: scaled.names()[0].startswith("c4#,"), 5, "the melody as it was")


# --- the keys


def written_rows(editor, rect):
    """How many rows of pixels of an area show dark letters."""
    grey = editor.screen.picture(rect[0], rect[1], rect[2] - rect[0], rect[3] - rect[1]).convert("L")
    dark = grey.point(lambda value: 255 if value < 120 else 0).getbbox()
    assert dark, f"nothing is written in {rect}"
    return dark[3] - dark[1]


def test_captions_of_white_keys_are_not_as_small_as_the_longer_ones_of_black_keys_must_be(scaled):
    scaled.screen.move(2, 2)
    scaled.picture()
    white, black = scaled.item("TonexPiano", "c6")["rect"], scaled.item("TonexPiano", "c6#")["rect"]
    unit = scaled.dpi // 48
    on_white = written_rows(scaled, [white[0] + unit, white[3] - 11 * unit, white[2] - unit, white[3] - 2 * unit])
    over_black = written_rows(scaled, [black[0], black[1] - 7 * unit, black[2], black[1] - 1])
    assert on_white > over_black
