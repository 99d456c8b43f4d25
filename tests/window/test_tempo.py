"""The tempo box: what it shows, the name beside it and what is saved are one tempo, whatever the list does."""

import pytest

from melody import Melody
from wine_paths import windows_path
from words import ASK
from xscreen import wait_until


NAMES = {"64": "Adagio", "48": "Largo", "32": "", "120": "Allegro", "100": "Moderato"}


def tempo_name(editor):
    """The classical name beside the box; empty when none is shown."""
    texts = [child["text"] for child in editor.children() if child["class"].lower() == "static"]
    return "".join(text for text in texts if text not in ("", "Tempo", "Length"))


def shown_tempo(editor):
    return editor.tempo_box()["text"].strip()


def open_list(editor, how):
    left, top, right, bottom = editor.child("ComboBox")["rect"]
    if how == "F4":
        editor.screen.key("f4")
    else:
        editor.screen.click(right - 8, (top + bottom) // 2)
    wait_until(editor.list_dropped, 5, "the open list")


def close_list(editor, how):
    if how == "Escape":
        editor.screen.key("escape")
    else:
        left, top, right, bottom = editor.child("ComboBox")["rect"]
        editor.screen.click(right - 8, (top + bottom) // 2)
    wait_until(lambda: not editor.list_dropped(), 5, "the closed list")


def is_changed(editor):
    """Whether closing would ask; the question is cancelled."""
    editor.close()
    wait_until(lambda: editor.process.poll() is not None or editor.dialogs(), 8, "a question or the end")
    if editor.process.poll() is not None:
        return False
    editor.message(ASK, "Cancel")
    return True


def selected_in_list(editor):
    box = editor.tempo_box()
    return box["items"][box["selected"]].strip() if box["selected"] >= 0 else None


@pytest.fixture(params=["64", "48", "32"])
def loaded(request, start, melody):
    editor = start(windows_path(melody("SLOW.SND", f"tempo {request.param}\nc5 1/4\n")))
    editor.tempo = request.param
    editor.click_tempo()
    return editor


@pytest.mark.parametrize("leave", ["Escape", "arrow"])
@pytest.mark.parametrize("opened", ["F4", "arrow"])
def test_a_list_opened_and_left_keeps_the_tempo(loaded, opened, leave):
    open_list(loaded, opened)
    assert selected_in_list(loaded) == loaded.tempo, "the list opens on the tempo in force"
    close_list(loaded, leave)
    assert (shown_tempo(loaded), tempo_name(loaded)) == (loaded.tempo, NAMES[loaded.tempo])
    assert not is_changed(loaded)


def test_enter_in_the_open_list_chooses_the_tempo_in_force(loaded, tmp_path):
    open_list(loaded, "F4")
    loaded.screen.key("enter")
    wait_until(lambda: not loaded.list_dropped(), 5, "the closed list")
    assert (shown_tempo(loaded), tempo_name(loaded)) == (loaded.tempo, NAMES[loaded.tempo])
    loaded.save_as(tmp_path / "SAME.SND")
    loaded.wait_caption("Sound Editor - PC:SAME.SND")
    assert Melody.text(tmp_path / "SAME.SND")[0] == f"tempo {loaded.tempo}"


@pytest.mark.parametrize("typed", ["120", "64", "100"])
def test_a_list_opened_and_left_keeps_a_typed_tempo(editor, typed):
    editor.type_tempo(typed)
    open_list(editor, "F4")
    assert selected_in_list(editor) == (typed if typed != "100" else None)
    close_list(editor, "Escape")
    assert (shown_tempo(editor), tempo_name(editor)) == (typed, NAMES[typed])


def test_escape_takes_back_what_the_arrows_chose_in_the_open_list(start, melody, tmp_path):
    editor = start(windows_path(melody("BROWSE.SND", "tempo 64\nc5 1/4\n")))
    editor.click_tempo()
    open_list(editor, "F4")
    for key in ("down", "down", "down"):
        editor.screen.key(key)
    wait_until(lambda: (shown_tempo(editor), tempo_name(editor)) == ("54", "Lento"), 5, "the tempo of the third item")
    close_list(editor, "Escape")
    assert (shown_tempo(editor), tempo_name(editor)) == ("64", "Adagio")
    assert not is_changed(editor)


@pytest.mark.parametrize("leave", ["Escape", "piano"])
def test_what_is_typed_over_the_open_list_stays_when_it_is_left(start, melody, leave):
    editor = start(windows_path(melody("TYPED.SND", "tempo 64\nc5 1/4\n")))
    editor.click_tempo()
    open_list(editor, "F4")
    editor.screen.key("ctrl+a")
    editor.screen.type_text("90")
    if leave == "Escape":
        close_list(editor, leave)
    else:
        left, top, right, _ = editor.child("TonexPiano")["rect"]
        editor.screen.click(left - 10, top)
        wait_until(lambda: not editor.list_dropped(), 5, "the closed list")
    wait_until(lambda: (shown_tempo(editor), tempo_name(editor)) == ("90", "Moderato"), 5,
               f"90, not {shown_tempo(editor)} {tempo_name(editor)}")
    assert is_changed(editor)


@pytest.mark.parametrize("typed,down,up", [("120", "108", "128"), ("64", "60", "70"), ("100", "96", "108"),
                                           ("30", "30", "32"), ("640", "480", "640"), ("7", "7", "30"),
                                           ("900", "640", "900"), ("x", "x", "30")])
def test_the_arrows_lead_from_a_typed_tempo_to_its_neighbours(editor, typed, down, up):
    for key, expected in (("down", down), ("up", up)):
        editor.type_tempo(typed)
        editor.screen.key(key)
        wait_until(lambda: shown_tempo(editor) == expected, 2, f"{expected} instead of {shown_tempo(editor)}")


def test_the_wheel_leads_to_the_neighbours_too(editor):
    editor.type_tempo("120")
    for button, expected in ((5, "108"), (5, "96"), (4, "108")):
        left, top, right, bottom = editor.child("ComboBox")["rect"]
        editor.screen.click(left + 20, (top + bottom) // 2, button)
        wait_until(lambda: shown_tempo(editor) == expected, 2, f"{expected} instead of {shown_tempo(editor)}")
