"""Logging off, and what other programs send while a box is open: one question at a time, and nothing is lost."""

import pytest

from editor import WM_CLOSE
from link_libraries import only_libraries
from melody import TUNE, Melody
from prefix import SETTINGS
from wine_paths import windows_path
from words import ASK, UNTITLED
from xscreen import holds

WM_QUERYENDSESSION, WM_ENDSESSION = 0x11, 0x16
PLACE = "WindwInformation"
NEITHER_BOX_NOR_END = 1.0  # seconds


@pytest.fixture
def linked(start, link, melody):
    """An editor with a melody from a file, the calls of its link libraries noted."""
    return start(windows_path(melody("TUNE.SND", TUNE)), environment=link.environment())


def change(editor):
    editor.screen.key("end")
    editor.click_key("d4")


def stored(prefix):
    return prefix.ask("getreg", SETTINGS, PLACE)


def disconnects(link):
    return len(link.calls("Cor_DoDisconnect"))


# At the end of the session.

@only_libraries
def test_logging_off_disconnects_and_stores_the_place(linked, link, prefix):
    prefix.log_off().wait(30)
    linked.wait_end()
    assert disconnects(link) == 1
    assert len(stored(prefix).split(",")) == 5


@only_libraries
@pytest.mark.parametrize("answer", ["No", "Yes"])
def test_logging_off_asks_about_changes_before_all_else(linked, link, prefix, tmp_path, answer):
    change(linked)
    asking = prefix.log_off()
    box = linked.wait_message(ASK)
    assert disconnects(link) == 0 and stored(prefix) is None
    linked.prefix.ask("press", box["hwnd"], {"No": 7, "Yes": 6}[answer])
    asking.wait(30)
    linked.wait_end()
    assert disconnects(link) == 1
    assert len(stored(prefix).split(",")) == 5
    assert len(Melody.text(tmp_path / "TUNE.SND")) == (4 if answer == "Yes" else 3)


@only_libraries
def test_a_cancelled_logging_off_leaves_all_as_it_was(linked, link, prefix):
    change(linked)
    asking = prefix.log_off()
    linked.message(ASK, "Cancel")
    asking.wait(30)
    linked.no_dialog(NEITHER_BOX_NOR_END)
    assert linked.process.poll() is None
    assert disconnects(link) == 0 and stored(prefix) is None
    linked.close()
    linked.message(ASK, "No")
    linked.wait_end()
    assert disconnects(link) == 1


@only_libraries
def test_when_another_program_keeps_the_session_nothing_was_given_up(linked, link, prefix):
    change(linked)
    prefix.ask("post", linked.hwnd, WM_QUERYENDSESSION, 0, 0)
    linked.message(ASK, "No")
    prefix.ask("post", linked.hwnd, WM_ENDSESSION, 0, 0)
    linked.no_dialog()
    assert disconnects(link) == 0 and stored(prefix) is None
    linked.close()
    linked.message(ASK, "No")  # the melody is still unsaved
    linked.wait_end()


# While a box is open.

@pytest.mark.parametrize("sent", ["close", "drop", "query"])
def test_a_second_box_does_not_open_over_a_prompt(start, melody, prefix, sent):
    other = melody("OTHER.SND", TUNE)
    editor = start()
    editor.click_key("c4")
    editor.close()
    box = editor.wait_message(ASK)
    if sent == "close":
        prefix.ask("post", editor.hwnd, WM_CLOSE, 0, 0)
    elif sent == "drop":
        prefix.ask("drop", editor.hwnd, windows_path(other))
    else:
        prefix.ask("post", editor.hwnd, WM_QUERYENDSESSION, 0, 0)
    holds(lambda: [dialog["hwnd"] for dialog in editor.dialogs()] == [box["hwnd"]], NEITHER_BOX_NOR_END, "one box")
    editor.answer(box, "Cancel")
    editor.no_dialog()
    assert editor.caption() == UNTITLED
    editor.wait_names(["c4, Quarter note", "End"])


def test_a_file_dialog_is_not_closed_over(editor, prefix):
    editor.choose("&Open on PC...")
    dialog = editor.wait_dialog("Open on PC")
    prefix.ask("post", editor.hwnd, WM_CLOSE, 0, 0)
    holds(lambda: [window["hwnd"] for window in editor.dialogs()] == [dialog["hwnd"]], NEITHER_BOX_NOR_END, "one box")
    assert editor.process.poll() is None
    editor.file_dialog("Open on PC")
    editor.close()
    editor.wait_end()
