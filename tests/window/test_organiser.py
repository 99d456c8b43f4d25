"""The device commands in the real program: without the link libraries, and with them installed."""

import os
import shutil
import time

import pytest

from editor import GLOBAL_SETTINGS, Melody, SETTINGS, WINDOWS_BUILD, wait_until, windows_path
from test_compose import names, wait_names

ASK = "Do you want to save the changes?"
REMINDER = "Transfer all data by PC Ferry to Corvane after close\r\n[Sound Editor]"
TUNE = "tempo 120\nc5 1/4\ne5 1/8\n"


@pytest.fixture(params=["own device", "link libraries"])
def link(request, prefix, tmp_path):
    """Starts editors with or without the libraries in the installation folder. link.calls: what the libraries saw."""
    class Link:
        with_libraries = request.param == "link libraries"
        log = tmp_path / "calls.log"

        def environment(self, *faults):
            return {"TONEX_LINK_LOG": windows_path(self.log), "TONEX_LINK_FAULT": ",".join(faults)}

        def calls(self):
            return self.log.read_text(errors="replace").splitlines() if self.log.exists() else []

    names_of_libraries = ("CorCalen.dll", "Corfldlg.dll")
    for name in names_of_libraries:
        target = prefix.install_dir / name
        target.unlink(missing_ok=True)
        if Link.with_libraries:
            shutil.copy(WINDOWS_BUILD / "link" / name, target)
    shutil.rmtree(prefix.cache_dir)
    prefix.cache_dir.mkdir()
    yield Link()
    for name in names_of_libraries:
        (prefix.install_dir / name).unlink(missing_ok=True)


def cache(prefix):
    return sorted(name.upper() for name in os.listdir(prefix.cache_dir))


def used(link, function):
    """With the libraries the function was called in them; without, nothing was."""
    found = any(line.startswith(function) for line in link.calls())
    assert found == link.with_libraries, f"{function}: {link.calls()}"


def temporary_files(prefix):
    folder = prefix.path / "drive_c" / "users"
    return [path for path in folder.rglob("Snd*") if path.is_file()]


def close_with_reminder(editor, tick=False):
    editor.close()
    box = editor.wait_message(REMINDER)
    if tick:
        check = next(c for c in editor.children(box["hwnd"]) if c["text"] == "Do not show this dialog in the next time.")
        editor.screen.click(*editor.centre(check["rect"]))
    button = next(c for c in editor.children(box["hwnd"]) if c["class"] == "Button" and c["text"].strip("&") == "OK")
    editor.screen.click(*editor.centre(button["rect"]))
    editor.wait_end()


def test_open_from_the_organiser(start, prefix, link):
    Melody.build(prefix.cache_dir / "TUNE.SND", TUNE)
    editor = start(environment=link.environment())
    editor.choose("Open on Velo&xa...")
    editor.wait_dialog("Open on Veloxa")
    editor.screen.key("enter")
    editor.wait_caption("Sound Editor - Veloxa:TUNE.SND")
    wait_names(editor, ["c5, Quarter note", "e5, Eighth note", "End"])
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
    wait_names(editor, ["b4, Quarter note", "End"])


def test_open_from_the_organiser_cancelled(start, prefix, link):
    Melody.build(prefix.cache_dir / "TUNE.SND", TUNE)
    editor = start(environment=link.environment())
    editor.choose("Open on Velo&xa...")
    editor.wait_dialog("Open on Veloxa")
    editor.screen.key("escape")
    editor.no_dialog()
    assert editor.caption() == "Sound Editor - Untitled"
    assert names(editor) == ["End"]


def test_save_to_the_organiser_as_then_save_again(start, prefix, link):
    editor = start(environment=link.environment())
    editor.click_key("c4")
    editor.choose("Save &to Veloxa as...")
    editor.wait_dialog("Save to Veloxa as")
    editor.screen.key("ctrl+a")
    editor.screen.type_text("FRESH")
    editor.screen.key("enter")
    wait_until(lambda: editor.caption().upper() == "SOUND EDITOR - VELOXA:FRESH.SND", 8, "the title")
    assert cache(prefix) == ["FRESH.SND"]
    saved = next(prefix.cache_dir.iterdir())
    assert Melody.text(saved)[1:] == ["c4 1/4"]
    used(link, "Cor_PutFile")
    editor.click_key("d4")
    editor.click_tool("Save to Veloxa")
    wait_until(lambda: saved.exists() and Melody.text(saved)[1:] == ["c4 1/4", "d4 1/4"], 8, "the second save")
    assert temporary_files(prefix) == []
    close_with_reminder(editor)


def test_save_to_the_organiser_on_an_untitled_score_asks_for_a_name(start, prefix, link):
    editor = start(environment=link.environment())
    editor.click_key("c4")
    editor.choose("Save to Ve&loxa")
    editor.wait_dialog("Save to Veloxa as")
    editor.screen.key("escape")
    editor.no_dialog()
    assert editor.caption() == "Sound Editor - Untitled" and cache(prefix) == []


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
    editor.message("File name cannot exceed 8 characters.  Change the file name.")
    editor.wait_dialog("Save to Veloxa as")
    editor.screen.key("ctrl+a")
    editor.screen.type_text("EIGHTCHR")
    editor.screen.key("enter")
    wait_until(lambda: editor.caption().upper() == "SOUND EDITOR - VELOXA:EIGHTCHR.SND", 8, "the title")
    assert cache(prefix) == ["EIGHTCHR.SND", "NINECHARS.SND"]


def test_the_device_commands_of_a_dropped_device_file(start, prefix, link):
    path = Melody.build(prefix.cache_dir / "DROPPED.SND", TUNE)
    editor = start(environment=link.environment())
    editor.prefix.ask("drop", editor.hwnd, "C:\\Link\\pcferry\\cache\\System\\sound\\DROPPED.SND")
    editor.wait_caption("Sound Editor - Veloxa:DROPPED.SND")
    editor.screen.key("end")
    editor.click_key("c4")
    editor.choose("Save to Ve&loxa")
    wait_until(lambda: path.exists() and Melody.text(path)[-1] == "c4 1/4", 8, "the saved file")


def test_the_last_device_document_is_opened_again(start, prefix, link):
    path = Melody.build(prefix.cache_dir / "AGAIN.SND", TUNE)
    prefix.ask("delreg", SETTINGS, "File1")
    editor = start(environment=link.environment())
    editor.prefix.ask("drop", editor.hwnd, "C:\\Link\\pcferry\\cache\\System\\sound\\AGAIN.SND")
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
    assert gone.caption() == "Sound Editor - Untitled"
    gone.no_dialog()


def test_the_reminder_is_shown_after_device_work_until_it_is_not_wanted(start, prefix, link):
    Melody.build(prefix.cache_dir / "WORK.SND", TUNE)
    prefix.ask("delreg", GLOBAL_SETTINGS, "MsgDsp")
    editor = start(environment=link.environment())
    item = "&Verify to transfer all data"
    assert editor.menu()[item]["checked"]
    editor.prefix.ask("drop", editor.hwnd, "C:\\Link\\pcferry\\cache\\System\\sound\\WORK.SND")
    editor.wait_caption("Sound Editor - Veloxa:WORK.SND")
    editor.choose("Save to Ve&loxa")
    editor.no_dialog(0.3)
    close_with_reminder(editor, tick=True)
    assert prefix.ask("getreg", GLOBAL_SETTINGS, "MsgDsp").strip() == "1"
    editor = start("C:\\Link\\pcferry\\cache\\System\\sound\\WORK.SND", environment=link.environment())
    assert not editor.menu()[item]["checked"]
    editor.choose("Save to Ve&loxa")
    editor.no_dialog(0.3)
    editor.close()
    editor.wait_end()  # nothing is shown
    editor = start(environment=link.environment())
    editor.choose(item)
    wait_until(lambda: editor.menu()[item]["checked"], 5, "the tick")
    assert prefix.ask("getreg", GLOBAL_SETTINGS, "MsgDsp").strip() == "0"


def test_no_reminder_without_device_work(start, link):
    editor = start(environment=link.environment())
    editor.close()
    editor.wait_end()


# Faults that only the libraries can be told to have.

only_libraries = pytest.mark.parametrize("link", ["link libraries"], indirect=True)


@only_libraries
def test_a_refused_upload_leaves_the_melody_in_the_editor(start, prefix, link):
    Melody.build(prefix.cache_dir / "REFUSED.SND", TUNE)
    editor = start("C:\\Link\\pcferry\\cache\\System\\sound\\REFUSED.SND",
                   environment=link.environment("putfile"))
    editor.wait_caption("Sound Editor - Veloxa:REFUSED.SND")
    editor.screen.key("end")
    editor.click_key("g4")
    editor.choose("Save to Ve&loxa")
    editor.message("File translate error when upload to Veloxa!")
    wait_names(editor, ["c5, Quarter note", "e5, Eighth note", "g4, Quarter note", "End"])
    assert temporary_files(prefix) == []
    editor.close()
    editor.message(ASK, "Cancel")
    assert editor.main()["visible"]


@only_libraries
def test_a_refused_disconnect_keeps_the_window_open(start, prefix, link):
    editor = start(environment=link.environment("disconnect"))
    before = prefix.ask("getreg", SETTINGS, "WindwInformation")
    editor.close()
    wait_until(lambda: any(line.startswith("Cor_DoDisconnect") for line in link.calls()), 5, "the call")
    editor.no_dialog()
    assert editor.process.poll() is None and editor.main()["visible"]
    assert prefix.ask("getreg", SETTINGS, "WindwInformation") == before
    editor.click_key("c4")
    wait_names(editor, ["c4, Quarter note", "End"])


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
    wait_until(lambda: "e4, Quarter note" in names(editor), 5, "a working window")


@only_libraries
def test_disconnection_setup_is_the_librarys(start, link):
    editor = start(environment=link.environment("setup"))
    editor.choose("Dis&connection Setup...")
    wait_until(lambda: any(line.startswith("Cor_SetupDisconnection") for line in link.calls()), 5, "the call")


@only_libraries
def test_a_pc_document_is_reopened_with_no_other_call_than_the_question_where_it_lies(start, link, melody):
    path = melody("PCFILE.SND", TUNE)
    editor = start(windows_path(path), environment=link.environment())
    editor.close()
    editor.wait_end()
    link.log.unlink()
    again = start(environment=link.environment())
    assert again.caption() == "Sound Editor - PC:PCFILE.SND"
    assert {line.split("\t")[0].split(" ")[0].split("(")[0] for line in link.calls()} == {"Cor_IsOnPcFile"}
