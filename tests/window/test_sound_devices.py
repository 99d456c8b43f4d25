"""Sound devices that come and go, and what a grey Preview says about it."""

import pytest

from building import WINDOWS_BUILD, program
from editor import RESTORE
from melody import TUNE
from sound_device import NoDevice
from wine_paths import windows_path
from words import PREVIEW_TOOL
from xscreen import wait_until

EMPTY, DEAF = PREVIEW_TOOL + " (the melody is empty)", PREVIEW_TOOL + " (there is no sound device)"


def tooltip(editor):
    return editor.toolbar()[PREVIEW_TOOL]["tooltip"]


class Plug:
    """A sound device that is plugged in and out."""

    def __init__(self, folder):
        self.file = folder / "device"
        self.environment = {"TONEX_TEST_DEVICE": windows_path(self.file),
                            "WINEDLLOVERRIDES": "mscoree,mshtml=;winemenubuilder.exe=d;winmm=n"}

    def plug_in(self):
        self.file.touch()

    def pull_out(self):
        self.file.unlink()


@pytest.fixture
def device(prefix, tmp_path):
    """The stand-in sound library in the place of Wine's own, which looks for devices once a process."""
    library = prefix.path / "drive_c" / "windows" / "system32" / "winmm.dll"
    own = library.rename(library.with_name("winmm.own"))  # never written to: all prefixes share this file
    library.write_bytes(program(WINDOWS_BUILD, "stand_in_winmm.dll").read_bytes())
    yield Plug(tmp_path)
    own.rename(library)


def test_the_tooltip_of_a_grey_preview_says_why(start, melody, sound):
    editor = start()
    assert tooltip(editor) == EMPTY
    editor.click_key("c4")
    wait_until(lambda: tooltip(editor) == PREVIEW_TOOL, 5, "Preview")


def test_the_tooltip_shows_over_the_grey_button(start, melody):
    editor = start(windows_path(melody("DEAF.SND", TUNE)), environment=NoDevice().variables())
    assert not editor.toolbar()[PREVIEW_TOOL]["enabled"]
    x, y = editor.centre(editor.toolbar()[PREVIEW_TOOL]["rect"])
    editor.screen.move(x - 100, y)
    editor.screen.move(x, y)
    editor.screen.move(x + 1, y)
    wait_until(lambda: editor.shown_tooltip() == DEAF, 5, "the tooltip")


def come_back(editor):
    editor.minimise()
    editor.prefix.ask("post", editor.hwnd, *RESTORE)


def open_the_edit_menu(editor):
    editor.screen.key("alt+e")
    editor.wait_popup()
    editor.screen.key("escape")
    editor.screen.key("escape")


@pytest.mark.parametrize("occasion", [come_back, open_the_edit_menu])
def test_devices_that_came_or_went_are_counted_afresh(start, melody, device, occasion):
    editor = start(windows_path(melody("DEAF.SND", TUNE)), environment=device.environment)
    preview = lambda: editor.toolbar()[PREVIEW_TOOL]  # noqa: E731
    assert not preview()["enabled"] and preview()["tooltip"] == DEAF
    for change, there in ((device.plug_in, True), (device.pull_out, False)):
        change()
        assert preview()["enabled"] != there, "nothing happened yet"
        occasion(editor)
        wait_until(lambda: preview()["enabled"] == there, 5, f"Preview {there}")  # noqa: B023
        assert preview()["tooltip"] == (PREVIEW_TOOL if there else DEAF)
