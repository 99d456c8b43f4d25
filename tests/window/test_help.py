"""Help where the system has a reader for help files: the real window opens its file."""

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
