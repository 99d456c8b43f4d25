"""One copy at a time in the real program: what a second copy finds and what it leaves alone."""

import time

import pytest

from editor import MINIMISE
from melody import Melody
from prefix import SETTINGS
from wine_paths import windows_path
from words import ASK, UNTITLED
from xscreen import wait_until


def in_front(editor):
    return editor.screen.focused_title().startswith("Sound Editor - ") and \
        "Notepad" not in editor.screen.focused_title()


@pytest.fixture
def decoy(prefix, screen, tmp_path):
    """Another program's unowned window whose caption begins with "Sound Editor - "."""
    path = tmp_path / "Sound Editor - x.txt"
    path.write_text("another program's document")
    process = prefix.start(["wine", "notepad", windows_path(path)])

    def shown():
        for window in prefix.ask("windows", "notepad.exe"):
            if window["visible"] and window["text"].startswith("Sound Editor - "):
                return window
        return None
    window = wait_until(shown, 15, "the other program's window")
    assert window["owner"] == 0
    yield window
    process.kill()
    process.wait(10)


def test_an_unowned_window_with_the_caption_is_not_taken(start, prefix, decoy):
    first = start()
    first.minimise()
    prefix.ask("post", decoy["hwnd"], *MINIMISE)
    minimised = lambda: prefix.ask("windows", "notepad.exe")[0]["minimised"]  # noqa: E731
    wait_until(minimised, 5, "the other program's minimised window")
    assert start(ready=False).wait_end() == 0
    wait_until(lambda: not first.main()["minimised"], 5, "the restored window")
    wait_until(lambda: in_front(first), 5, "the first copy in front")
    assert minimised()


def test_the_decoy_alone_does_not_keep_a_copy_from_running(start, decoy):
    first = start()
    wait_until(lambda: first.caption() == UNTITLED, 8, "a working copy")


def test_a_second_copy_leaves_unsaved_changes_and_settings_alone(start, prefix, melody):
    kept = melody("KEPT.SND", "tempo 120\nc5 1/4\n")
    first = start(windows_path(kept))
    first.screen.key("end")
    first.click_key("d4")
    first.wait_names(["c5, Quarter note", "d4, Quarter note", "End"])
    stored = prefix.ask("getreg", SETTINGS, "File1")
    assert stored.startswith("1,PC:KEPT.SND,")
    second = start(windows_path(melody("OTHER.SND", "tempo 60\ne5 1/2\n")), ready=False)
    assert second.wait_end() == 0
    first.no_dialog()
    assert first.caption() == "Sound Editor - PC:KEPT.SND"
    assert prefix.ask("getreg", SETTINGS, "File1") == stored
    assert prefix.ask("getreg", SETTINGS, "WindwInformation") is None
    first.wait_names(["c5, Quarter note", "d4, Quarter note", "End"])
    assert Melody.text(kept)[1:] == ["c5 1/4"]
    first.close()
    first.message(ASK, "No")  # still unsaved, still asked for
    first.wait_end()


def test_a_second_copy_brings_the_box_that_waits_for_an_answer(start, decoy, prefix):
    first = start()
    first.click_key("c4")
    first.close()
    box = first.wait_message(ASK)
    assert start(ready=False).wait_end() == 0
    wait_until(lambda: first.screen.focused_title() == "Sound Editor", 5, "the box in front")
    first.answer(box, "Cancel")
    assert first.process.poll() is None
    first.wait_names(["c4, Quarter note", "End"])


def test_a_second_copy_ends_within_a_moment(start):
    first = start()
    begin = time.monotonic()
    assert start(ready=False).wait_end() == 0
    assert time.monotonic() - begin < 3
    assert first.process.poll() is None


def test_after_a_copy_was_killed_the_next_one_runs(start):
    first = start()
    first.kill()
    again = start()
    assert again.caption() == UNTITLED


def test_many_copies_started_at_once_leave_one(start):
    copies = [start(ready=False) for _ in range(6)]
    wait_until(lambda: sum(copy.process.poll() is not None for copy in copies) == 5, 30, "the end of five copies")
    running = [copy for copy in copies if copy.process.poll() is None]
    assert len(running) == 1
    assert all(copy.process.returncode == 0 for copy in copies if copy is not running[0])
    running[0].wait_ready()
    running[0].no_dialog()
