"""The device commands in the real program: without the link libraries, and with them installed."""

import time

import pytest

from link_libraries import only_libraries
from melody import TUNE, Melody
from prefix import DEVICE_FOLDER, GLOBAL_SETTINGS, SETTINGS, UPLOADS
from wine_paths import windows_path
from words import ASK, REFUSED, REMINDER_ITEM, TOO_LONG, UNTITLED
from xscreen import wait_until


def used(link, function):
    """With the libraries the function was called in them; without, nothing was."""
    assert bool(link.calls(function)) == link.with_libraries, f"{function}: {link.calls()}"


def test_open_from_the_organiser(start, prefix, link):
    Melody.build(prefix.cache_dir / "TUNE.SND", TUNE)
    editor = start(environment=link.environment())
    editor.choose("Open on Velo&xa...")
    editor.wait_dialog("Open on Veloxa")
    editor.screen.key("enter")
    editor.wait_caption("Sound Editor - Veloxa:TUNE.SND")
    editor.wait_names(["c5, Quarter note", "e5, Eighth note", "End"])
    used(link, "Cor_PIMOpenFileDialog")
    stored = prefix.ask("getreg", SETTINGS, "File1")
    assert stored.startswith("0,Veloxa:TUNE.SND,C:\\Link\\")


def test_open_from_the_organiser_by_the_second_name_and_toolbar(start, prefix, link):
    Melody.build(prefix.cache_dir / "A.SND", "tempo 120\na4 1/4\n")
    Melody.build(prefix.cache_dir / "B.SND", "tempo 120\nb4 1/4\n")
    editor = start(environment=link.environment())
    editor.click_tool("Open on Veloxa")
    editor.wait_dialog("Open on Veloxa")
    editor.screen.key("down")
    editor.screen.key("enter")
    editor.wait_caption("Sound Editor - Veloxa:B.SND")
    editor.wait_names(["b4, Quarter note", "End"])


def test_open_from_the_organiser_cancelled(start, prefix, link):
    Melody.build(prefix.cache_dir / "TUNE.SND", TUNE)
    editor = start(environment=link.environment())
    editor.choose("Open on Velo&xa...")
    editor.wait_dialog("Open on Veloxa")
    editor.screen.key("escape")
    editor.no_dialog()
    assert editor.caption() == UNTITLED
    assert editor.names() == ["End"]


def test_save_to_the_organiser_as_then_save_again(start, prefix, link):
    editor = start(environment=link.environment())
    editor.click_key("c4")
    editor.choose("Save &to Veloxa as...")
    editor.wait_dialog("Save to Veloxa as")
    editor.screen.key("ctrl+a")
    editor.screen.type_text("FRESH")
    editor.screen.key("enter")
    wait_until(lambda: editor.caption().upper() == "SOUND EDITOR - VELOXA:FRESH.SND", 8, "the title")
    assert prefix.on_device() == ["FRESH.SND"]
    saved = next(prefix.cache_dir.iterdir())
    assert Melody.text(saved)[1:] == ["c4 1/4"]
    used(link, "Cor_PutFile")
    editor.click_key("d4")
    editor.click_tool("Save to Veloxa")
    wait_until(lambda: Melody.saved_entries(saved) == ["c4 1/4", "d4 1/4"], 8, "the second save")
    prefix.wait_no_files(UPLOADS)
    editor.close_with_reminder()


@pytest.fixture
def foreign_folder(prefix):
    """The system's folder for temporary files, of a user whose name the code page can not spell."""
    folder = prefix.path / "drive_c" / "users" / "张三" / "Temp"
    folder.mkdir(parents=True, exist_ok=True)
    for name in ("TMP", "TEMP"):
        prefix.ask("setreg", "Environment", name, "C:\\users\\张三\\Temp")
    yield folder
    for name in ("TMP", "TEMP"):
        prefix.ask("delreg", "Environment", name)


def test_a_user_of_another_script_saves_to_the_organiser(start, prefix, link, foreign_folder):
    path = Melody.build(prefix.cache_dir / "TUNE.SND", TUNE)
    editor = start(DEVICE_FOLDER + "TUNE.SND", environment=link.environment())
    editor.wait_caption("Sound Editor - Veloxa:TUNE.SND")
    editor.screen.key("end")
    editor.click_key("c4")
    editor.choose("Save to Ve&loxa")
    wait_until(lambda: Melody.saved_entries(path)[-1:] == ["c4 1/4"], 8, "the saved file")
    editor.no_dialog()
    assert list(foreign_folder.iterdir()) == []
    if link.with_libraries:
        line = link.calls("Cor_PutFile")[-1]
        assert "\\Temp\\Snd" in line and line.isascii(), line
    editor.close_with_reminder()


def test_save_to_the_organiser_on_an_untitled_score_asks_for_a_name(start, prefix, link):
    editor = start(environment=link.environment())
    editor.click_key("c4")
    editor.choose("Save to Ve&loxa")
    editor.wait_dialog("Save to Veloxa as")
    editor.screen.key("escape")
    editor.no_dialog()
    assert editor.caption() == UNTITLED and prefix.on_device() == []


def test_a_name_of_nine_characters_is_asked_for_again_at_the_next_save(start, prefix, link):
    Melody.build(prefix.cache_dir / "NINECHARS.SND", TUNE)
    editor = start(environment=link.environment())
    editor.choose("Open on Velo&xa...")
    editor.wait_dialog("Open on Veloxa")
    editor.screen.key("enter")
    editor.wait_caption("Sound Editor - Veloxa:NINECHARS.SND")
    editor.screen.key("end")
    editor.click_key("c4")
    editor.choose("Save to Ve&loxa")
    editor.message(TOO_LONG)
    editor.wait_dialog("Save to Veloxa as")
    editor.screen.key("ctrl+a")
    editor.screen.type_text("EIGHTCHR")
    editor.screen.key("enter")
    wait_until(lambda: editor.caption().upper() == "SOUND EDITOR - VELOXA:EIGHTCHR.SND", 8, "the title")
    assert prefix.on_device() == ["EIGHTCHR.SND", "NINECHARS.SND"]


def test_the_device_commands_of_a_dropped_device_file(start, prefix, link):
    path = Melody.build(prefix.cache_dir / "DROPPED.SND", TUNE)
    editor = start(environment=link.environment())
    editor.prefix.ask("drop", editor.hwnd, DEVICE_FOLDER + "DROPPED.SND")
    editor.wait_caption("Sound Editor - Veloxa:DROPPED.SND")
    editor.screen.key("end")
    editor.click_key("c4")
    editor.choose("Save to Ve&loxa")
    wait_until(lambda: Melody.saved_entries(path)[-1:] == ["c4 1/4"], 8, "the saved file")


def test_the_last_device_document_is_opened_again(start, prefix, link):
    path = Melody.build(prefix.cache_dir / "AGAIN.SND", TUNE)
    prefix.ask("delreg", SETTINGS, "File1")
    editor = start(environment=link.environment())
    editor.prefix.ask("drop", editor.hwnd, DEVICE_FOLDER + "AGAIN.SND")
    editor.wait_caption("Sound Editor - Veloxa:AGAIN.SND")
    editor.close()
    editor.wait_end()
    again = start(environment=link.environment())
    assert again.caption() == "Sound Editor - Veloxa:AGAIN.SND"
    used(link, "Cor_GetFile")
    again.close()
    again.wait_end()
    path.unlink()
    gone = start(environment=link.environment())
    assert gone.caption() == UNTITLED
    gone.no_dialog()


def test_the_reminder_is_shown_after_device_work_until_it_is_not_wanted(start, prefix, link):
    Melody.build(prefix.cache_dir / "WORK.SND", TUNE)
    prefix.ask("delreg", GLOBAL_SETTINGS, "MsgDsp")
    editor = start(environment=link.environment())
    assert editor.menu()[REMINDER_ITEM]["checked"]
    editor.prefix.ask("drop", editor.hwnd, DEVICE_FOLDER + "WORK.SND")
    editor.wait_caption("Sound Editor - Veloxa:WORK.SND")
    editor.choose("Save to Ve&loxa")
    editor.no_dialog(0.3)
    editor.close_with_reminder(tick=True)
    assert prefix.ask("getreg", GLOBAL_SETTINGS, "MsgDsp").strip() == "1"
    editor = start(DEVICE_FOLDER + "WORK.SND", environment=link.environment())
    assert not editor.menu()[REMINDER_ITEM]["checked"]
    editor.choose("Save to Ve&loxa")
    editor.no_dialog(0.3)
    editor.close()
    editor.wait_end()  # nothing is shown
    editor = start(environment=link.environment())
    editor.choose(REMINDER_ITEM)
    wait_until(lambda: editor.menu()[REMINDER_ITEM]["checked"], 5, "the tick")
    assert prefix.ask("getreg", GLOBAL_SETTINGS, "MsgDsp").strip() == "0"


def test_no_reminder_without_device_work(start, link):
    editor = start(environment=link.environment())
    editor.close()
    editor.wait_end()


# Faults that only the libraries can be told to have.

@only_libraries
def test_a_refused_upload_leaves_the_melody_in_the_editor(start, prefix, link):
    Melody.build(prefix.cache_dir / "REFUSED.SND", TUNE)
    editor = start(DEVICE_FOLDER + "REFUSED.SND", environment=link.environment("putfile"))
    editor.wait_caption("Sound Editor - Veloxa:REFUSED.SND")
    editor.screen.key("end")
    editor.click_key("g4")
    editor.choose("Save to Ve&loxa")
    editor.message(REFUSED)
    editor.wait_names(["c5, Quarter note", "e5, Eighth note", "g4, Quarter note", "End"])
    prefix.wait_no_files(UPLOADS)
    editor.close()
    editor.message(ASK, "Cancel")
    assert editor.main()["visible"]


@only_libraries
def test_a_refused_disconnect_keeps_the_window_open(start, prefix, link):
    editor = start(environment=link.environment("disconnect"))
    before = prefix.ask("getreg", SETTINGS, "WindwInformation")
    editor.close()
    wait_until(lambda: link.calls("Cor_DoDisconnect"), 5, "the call")
    editor.no_dialog()
    assert editor.process.poll() is None and editor.main()["visible"]
    assert prefix.ask("getreg", SETTINGS, "WindwInformation") == before
    editor.click_key("c4")
    editor.wait_names(["c4, Quarter note", "End"])


@only_libraries
@pytest.mark.parametrize("fault", ["full", "nonul", "convnegative", "convbig", "conv0", "dbcs", "unknown", "getfile"])
def test_whatever_a_library_answers_the_editor_lives(start, prefix, link, fault):
    Melody.build(prefix.cache_dir / "TUNE.SND", TUNE)
    editor = start(environment=link.environment(fault, "open", "save"))
    editor.click_key("c4")
    for caption in ("Save &to Veloxa as...", "Save to Ve&loxa", "Open on Velo&xa..."):
        editor.choose(caption)
        # Some end in silence, some in a message; the window answers afterwards.
        for _ in range(8):
            for box in editor.dialogs():
                ids = {child["id"] for child in editor.children(box["hwnd"])}
                editor.answer(box, "No" if 7 in ids else "OK")
            assert editor.process.poll() is None, "the program has ended"
            time.sleep(0.05)
    assert editor.main()["visible"] and editor.process.poll() is None
    editor.screen.key("end")
    editor.click_key("e4")
    wait_until(lambda: "e4, Quarter note" in editor.names(), 5, "a working window")


@only_libraries
def test_disconnection_setup_is_the_librarys(start, link):
    editor = start(environment=link.environment("setup"))
    editor.choose("Dis&connection Setup...")
    wait_until(lambda: link.calls("Cor_SetupDisconnection"), 5, "the call")


@only_libraries
def test_a_pc_document_is_reopened_with_no_other_call_than_the_question_where_it_lies(start, link, melody):
    path = melody("PCFILE.SND", TUNE)
    editor = start(windows_path(path), environment=link.environment())
    editor.close()
    editor.wait_end()
    link.log.unlink()
    again = start(environment=link.environment())
    assert again.caption() == "Sound Editor - PC:PCFILE.SND"
    assert set(link.functions()) == {"Cor_IsOnPcFile"}
