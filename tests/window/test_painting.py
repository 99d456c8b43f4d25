"""What is on the screen is what a fresh drawing would show: no remains of other places, no dark edges; texts that
belong together stand on one line."""

import pytest

from building import ROOT
from editor import Editor
from melody import Melody
from prefix import Prefix
from wine_paths import windows_path
from xscreen import wait_until

WM_SYSCOLORCHANGE = 0x15
RED = 0xC9, 0x3F, 0x38  # of the toolbar's cross
SCALES = [96, 120, 144, 192]


def resize(editor, width, height=None):
    """Gives the window another client width (and height)."""
    window = editor.screen.find("Sound Editor - ")
    rect = editor.screen.rect_of(window)
    window.configure(width=width, height=height or rect[3])
    editor.screen.display.sync()
    wait_until(lambda: editor.main()["client"][2] - editor.main()["client"][0] == width, 5, "the new width")


def part(editor, picture, rect):
    """A part of a picture of the window, by its place on the screen."""
    frame = editor.screen.rect_of(editor.screen.frame_of(editor.screen.find("Sound Editor - ")))
    return picture.crop((rect[0] - frame[0], rect[1] - frame[1], rect[2] - frame[0], rect[3] - frame[1]))


def static(editor, text):
    return next(child for child in editor.children() if child["class"].lower() == "static" and child["text"] == text)


@pytest.fixture
def grace(start, tmp_path):
    text = (ROOT / "samples" / "GRACE.txt").read_text(encoding="utf-8")
    editor = start(windows_path(Melody.build(tmp_path / "GRACE.SND", text)))
    editor.screen.move(5, 5)
    return editor


@pytest.mark.parametrize("widths", [(904, 1064), (1064, 904), (904, 1064, 1300, 860, 1000), (1700, 900)])
def test_a_resized_window_looks_as_if_drawn_afresh(grace, widths):
    assert static(grace, "Andante")["visible"]
    grace.screen.key("home")
    grace.wait_selected([0])
    for width in widths:
        resize(grace, width)
        resized = grace.picture(f"resized-{width}.png")
        grace.prefix.ask("post", grace.hwnd, WM_SYSCOLORCHANGE, 0, 0)
        # Keys come behind what was posted before: where they show, the colours have been taken.
        for key, column in (("right", 1), ("left", 0)):
            grace.screen.key(key)
            grace.wait_selected([column])
        afresh = grace.picture(f"afresh-{width}.png")
        assert part(grace, resized, grace.main()["client"]) == part(grace, afresh, grace.main()["client"]), width


# ---- the line of the tempo ----

def ink_rows(editor, picture, rect):
    """First and last row of the screen in an area where something is written: darker than half way from the area's
    own ground to black. None where nothing is written."""
    grey = part(editor, picture, rect).convert("L")
    ground = max(grey.getcolors(256))[1]
    dark = grey.point(lambda value: 255 if value < ground - 80 else 0)
    box = dark.getbbox()
    return box and (rect[1] + box[1], rect[1] + box[3] - 1)


def text_rows(editor, picture):
    """Rows of the number, of the capital "T" in front of it and of the "A" of the name behind it."""
    edit = next(child for child in editor.children() if child["class"] == "Edit")["rect"]
    height = edit[3] - edit[1]
    caption, name = static(editor, "Tempo")["rect"], static(editor, "Andante")["rect"]
    letter = height // 3
    return (ink_rows(editor, picture, edit),
            ink_rows(editor, picture, [caption[0], caption[1], caption[0] + letter, caption[3]]),
            ink_rows(editor, picture, [name[0], name[1], name[0] + letter, name[3]]))


def written_rows(editor, name):
    """The same as soon as all three are written: a window that stands still may still be about to draw."""
    def rows():
        found = text_rows(editor, editor.picture(name))
        return found if all(found) else None
    return wait_until(rows, 8, "the three texts")


@pytest.mark.parametrize("dpi", SCALES)
def test_the_texts_of_the_tempo_stand_on_one_line(screen, tmp_path, dpi):
    prefix = Prefix(f"line-{dpi}", dpi=dpi)
    editor = Editor(prefix, screen, windows_path(Melody.build(tmp_path / "LINE.SND", "tempo 80\nc5 1/4\n"))).wait_ready()
    try:
        screen.move(5, 5)
        client = editor.main()["client"]
        for width in (client[2] - client[0], min(1900, (client[2] - client[0]) * 5 // 4)):
            if width != client[2] - client[0]:
                resize(editor, width, (client[3] - client[1]) * 5 // 4)
            number, caption, name = written_rows(editor, f"tempo-line-{dpi}-{width}.png")
            assert number == caption == name, (dpi, width)
    finally:
        editor.kill()
        prefix.end()


# ---- the toolbar ----

def test_a_toolbar_icon_has_no_dark_edge(grace):
    """Its pixels lie between its own red and the window's face; where an edge is mixed with black they are darker."""
    left, top, right, bottom = grace.toolbar()["Delete"]["rect"]
    icon = part(grace, grace.picture(), [left + 2, top + 2, right - 2, bottom - 2])
    pixels = [colour for _, colour in icon.getcolors(10000)]
    assert RED in pixels and len(pixels) > 4, "the cross with soft edges"
    assert min(red for red, _, _ in pixels) >= RED[0] - 3


@pytest.mark.parametrize("dpi", SCALES)
def test_a_toolbar_icon_stands_in_the_middle_of_its_button(screen, dpi):
    """Also in a smaller window and in a larger one, which shrink and magnify both."""
    prefix = Prefix(f"icons-{dpi}", dpi=dpi)
    editor = Editor(prefix, screen).wait_ready()
    try:
        editor.click_key("c5")
        wait_until(lambda: editor.toolbar()["Delete"]["enabled"], 5, "Delete")
        screen.move(5, 5)
        left, top, right, bottom = editor.main()["client"]
        for times in (1, 0.75, min(1.25, 1900 / (right - left))):
            if times != 1:
                resize(editor, round((right - left) * times), round((bottom - top) * times))
            button = editor.toolbar()["Delete"]["rect"]
            icon = part(editor, editor.picture(), button)
            cross = [(x, y) for x in range(icon.width) for y in range(icon.height) if icon.getpixel((x, y)) == RED]
            for place, size in ((0, icon.width), (1, icon.height)):
                ends = min(at[place] for at in cross), max(at[place] for at in cross)
                assert abs(sum(ends) + 1 - size) <= 3, f"{ends} of {size} pixels at {times} times the size"
    finally:
        editor.kill()
        prefix.end()
