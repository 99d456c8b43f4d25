"""Help where the system has a reader for help files: the real window opens its file."""

import pathlib
import shutil

import pytest

from building import WINDOWS_BUILD, program
from xscreen import wait_until



@pytest.mark.parametrize("way", ["f1", "menu"])
def test_f1_and_the_menu_open_the_help_file(start, way):
    assert program(WINDOWS_BUILD, "Veloxa.hlp").parent == program(WINDOWS_BUILD, "Tonex.exe").parent
    editor = start()
    screen = editor.screen
    if way == "f1":
        screen.key("f1")
    else:
        editor.choose("&Help Topics")
    reader = wait_until(lambda: screen.find("Wine Help") or screen.find("Guide to the Sound Editor"), 20,
                        "the help reader's window")
    picture = screen.settled_picture_of(reader)

    def green(colour):
        red, green_, blue = colour
        return green_ > red + 60 and green_ > blue + 60

    # The contents' links are green; an empty window or a message has none.
    links = sum(count for count, colour in picture.getcolors(1 << 24) if green(colour))
    assert links > 500
    assert not any(title.startswith("Error") for title, _ in screen.windows())
    editor.no_dialog()


def reader_windows(prefix):
    return [window for window in prefix.ask("windows", "winhlp32.exe") if window["visible"]]


def test_the_reader_goes_with_the_editor(editor, prefix):
    editor.screen.key("f1")
    wait_until(lambda: editor.screen.find("Wine Help") or editor.screen.find("Guide to the Sound Editor"), 20,
               "the help reader's window")
    editor.close()
    editor.wait_end()
    wait_until(lambda: not reader_windows(prefix), 10, "the end of the help reader")


def test_a_file_that_the_reader_refuses_leads_to_the_guide(start, prefix, tmp_path):
    note = prefix.opened_pages(tmp_path, keep_reader=True)
    whole = program(WINDOWS_BUILD, "Veloxa.hlp").read_bytes()
    (tmp_path / "Veloxa.hlp").write_bytes(whole[:4] + bytes(200) + b"no help" * 500)
    shutil.copy(program(WINDOWS_BUILD, "Veloxa.htm"), tmp_path)
    editor = start(program_path=pathlib.Path(shutil.copy(program(WINDOWS_BUILD, "Tonex.exe"), tmp_path)))
    opened = lambda: note.read_text().count("Veloxa.htm") if note.exists() else 0  # noqa: E731
    editor.screen.key("f1")
    box = wait_until(lambda: next(iter(reader_windows(prefix)), None), 20, "the reader's message")
    prefix.ask("press", box["hwnd"], 1)
    wait_until(lambda: opened() == 1, 15, "the guide")
    wait_until(lambda: not reader_windows(prefix), 10, "the end of the help reader")
    editor.click_key("c4")
    editor.screen.key("f1")  # the reader is not asked again
    wait_until(lambda: opened() == 2, 15, "the guide again")
    assert not reader_windows(prefix)
    editor.no_dialog()
