"""The device's dialogs by keyboard and mouse, Japanese names, libraries of other makes, and uploads that fail."""

import contextlib
import os
import shutil
import subprocess

import pytest

import link_libraries
from building import BUILD, WINDOWS_BUILD
from editor import Editor
from link_libraries import only_libraries
from melody import TUNE, Melody
from prefix import DEVICE_FOLDER, SETTINGS, SOUND_FOLDER, UPLOADS, Prefix
from words import ASK, REFUSED, REMINDER, TOO_LONG, UNTITLED
from xscreen import wait_until


LIST, NAME = 1002, 1004


def part(editor, dialog, control):
    return next(child for child in editor.children(dialog["hwnd"]) if child["id"] == control)


def box_with(editor, text):
    """The message box that shows a text, once it has the keyboard."""
    def found():
        for dialog in editor.dialogs():
            if text in [child["text"] for child in editor.children(dialog["hwnd"])]:
                return dialog
        return None
    return wait_until(found, 8, text)


def save_as_on_device(editor, name):
    editor.choose("Save &to Veloxa as...")
    dialog = editor.wait_dialog("Save to Veloxa as")
    wait_until(lambda: editor.focus()["id"] == NAME, 5, "the keyboard in the name field")
    editor.screen.key("ctrl+a")
    editor.screen.type_text(name)
    editor.screen.key("enter")
    return dialog


def wait_device_caption(editor, name):
    """The typed letters and the extension come in any case."""
    wait_until(lambda: editor.caption().upper() == "SOUND EDITOR - VELOXA:" + name, 8, f"{name} in the title")


# The open dialog.

def test_a_double_click_opens(start, prefix, link):
    Melody.build(prefix.cache_dir / "A.SND", "tempo 120\na4 1/4\n")
    Melody.build(prefix.cache_dir / "B.SND", "tempo 120\nb4 1/4\n")
    editor = start(environment=link.environment())
    editor.choose("Open on Velo&xa...")
    dialog = editor.wait_dialog("Open on Veloxa")
    left, top, right, _ = part(editor, dialog, LIST)["rect"]
    editor.screen.click((left + right) // 2, top + 24, times=2)  # the second row
    editor.wait_caption("Sound Editor - Veloxa:B.SND")


def test_the_open_dialogs_keys(start, prefix, link):
    """A letter finds its row; Tab goes from the list to Open and Cancel; Enter on Cancel leaves all as it was."""
    for name in ("ALPHA.SND", "BETA.SND", "GAMMA.SND"):
        Melody.build(prefix.cache_dir / name, TUNE)
    editor = start(environment=link.environment())
    editor.choose("Open on Velo&xa...")
    dialog = editor.wait_dialog("Open on Veloxa")
    wait_until(lambda: editor.focus()["id"] == LIST, 5, "the keyboard in the list")
    for text in ("&Open", "Cancel"):
        editor.screen.key("tab")
        wait_until(lambda: editor.focus()["text"] == text, 5, text)
    editor.screen.key("enter")
    wait_until(lambda: not editor.dialogs(), 5, "the dialog's end")
    assert editor.caption() == UNTITLED
    assert not editor.main()["text"].endswith("SND") and editor.main()["enabled"]
    editor.choose("Open on Velo&xa...")
    dialog = editor.wait_dialog("Open on Veloxa")
    wait_until(lambda: editor.focus()["id"] == LIST, 5, "the keyboard in the list")
    editor.screen.key("g")
    editor.screen.key("alt+o")
    editor.wait_caption("Sound Editor - Veloxa:GAMMA.SND")
    assert dialog["owner"] == editor.hwnd


def test_an_empty_organiser_can_only_be_cancelled(start, link):
    editor = start(environment=link.environment())
    editor.choose("Open on Velo&xa...")
    dialog = editor.wait_dialog("Open on Veloxa")
    assert not part(editor, dialog, 1)["enabled"]
    editor.screen.key("enter")
    editor.screen.key("escape")
    wait_until(lambda: not editor.dialogs(), 5, "the dialog's end")
    assert editor.caption() == UNTITLED


def test_opening_asks_for_unsaved_changes_first(start, prefix, link):
    Melody.build(prefix.cache_dir / "TUNE.SND", TUNE)
    editor = start(environment=link.environment())
    editor.click_key("c4")
    editor.choose("Open on Velo&xa...")
    editor.message(ASK, "Cancel")
    editor.no_dialog()
    assert editor.names() == ["c4, Quarter note", "End"]


# The save dialog.

def test_a_name_of_nine_characters_is_refused_and_asked_for_again(start, prefix, link):
    editor = start(environment=link.environment())
    editor.click_key("c4")
    dialog = save_as_on_device(editor, "NINECHARS")
    editor.answer(box_with(editor, TOO_LONG), "OK")
    assert prefix.on_device() == []
    wait_until(lambda: editor.focus() and editor.focus()["id"] == NAME, 5, "the keyboard in the name field")
    assert part(editor, dialog, NAME)["text"] == "NINECHARS"
    editor.prefix.ask("settext", part(editor, dialog, NAME)["hwnd"], "EIGHTCHR.snd")
    editor.prefix.ask("press", dialog["hwnd"], 1)
    wait_device_caption(editor, "EIGHTCHR.SND")
    assert prefix.on_device() == ["EIGHTCHR.SND"]


def test_an_existing_melody_is_only_replaced_after_a_question(start, prefix, link):
    path = Melody.build(prefix.cache_dir / "TUNE.SND", TUNE)
    before = path.read_bytes()
    editor = start(environment=link.environment())
    editor.click_key("c4")
    dialog = save_as_on_device(editor, "TUNE")
    question = wait_until(lambda: next((d for d in editor.dialogs() if d["owner"] == dialog["hwnd"]), None), 8,
                          "the question")
    editor.screen.key("enter")  # No is the default
    wait_until(lambda: len(editor.dialogs()) == 1, 5, "the question's end")
    assert path.read_bytes() == before
    editor.prefix.ask("press", dialog["hwnd"], 1)
    question = wait_until(lambda: next((d for d in editor.dialogs() if d["owner"] == dialog["hwnd"]), None), 8,
                          "the question")
    editor.answer(question, "Yes")
    wait_device_caption(editor, "TUNE.SND")
    wait_until(lambda: [Melody.saved_entries(saved) for saved in prefix.cache_dir.iterdir()] == [["c4 1/4"]], 5,
               "the new melody")
    # Question and dialog have ended together, and the keyboard is back in the window.
    wait_until(lambda: editor.screen.focused_title().upper() == editor.caption().upper(), 5, "the keyboard's focus")
    editor.screen.key("home")
    editor.screen.key("delete")
    editor.wait_names(["End"])


def test_the_proposed_name_is_the_current_files(start, prefix, link):
    editor = start(environment=link.environment())
    editor.choose("Save &to Veloxa as...")
    dialog = editor.wait_dialog("Save to Veloxa as")
    assert part(editor, dialog, NAME)["text"] == "Untitled"
    editor.screen.key("escape")
    wait_until(lambda: not editor.dialogs(), 5, "the dialog's end")
    path = Melody.build(prefix.sound_dir / "MINE.SND", TUNE)
    editor.prefix.ask("drop", editor.hwnd, SOUND_FOLDER + path.name)
    editor.wait_caption("Sound Editor - PC:MINE.SND")
    editor.choose("Save to Ve&loxa")  # a PC file: a place on the device is asked for
    dialog = editor.wait_dialog("Save to Veloxa as")
    assert part(editor, dialog, NAME)["text"] == "MINE.SND"
    editor.screen.key("enter")
    editor.wait_caption("Sound Editor - Veloxa:MINE.SND")
    assert prefix.on_device() == ["MINE.SND"]


def test_a_device_file_of_another_folder_makes_that_folder_the_dialogs(start, prefix, link):
    folder = prefix.cache_dir.parent / "other"
    folder.mkdir(exist_ok=True)
    Melody.build(folder / "THERE.SND", TUNE)
    editor = start(environment=link.environment())
    editor.prefix.ask("drop", editor.hwnd, "C:\\Link\\pcferry\\cache\\System\\other\\THERE.SND")
    editor.wait_caption("Sound Editor - Veloxa:THERE.SND")
    editor.choose("Open on Velo&xa...")
    dialog = editor.wait_dialog("Open on Veloxa")
    assert part(editor, dialog, 1001)["text"] == "&Melodies in \\System\\other:"
    editor.screen.key("escape")


# What goes wrong.

def break_device(prefix):
    """A file stands where the device's folder was: nothing can be put there."""
    shutil.rmtree(prefix.cache_dir)
    prefix.cache_dir.write_text("in the way")


@pytest.fixture
def mended(prefix):
    yield
    if prefix.cache_dir.is_file():
        prefix.cache_dir.unlink()
        prefix.cache_dir.mkdir()


@pytest.mark.parametrize("link", ["own device"], indirect=True)
def test_an_upload_that_the_folder_refuses(start, prefix, link, mended):
    Melody.build(prefix.cache_dir / "LOST.SND", TUNE)
    editor = start(DEVICE_FOLDER + "LOST.SND")
    editor.screen.key("end")
    editor.click_key("g4")
    break_device(prefix)
    editor.choose("Save to Ve&loxa")
    editor.message(REFUSED)
    editor.wait_names(["c5, Quarter note", "e5, Eighth note", "g4, Quarter note", "End"])
    prefix.wait_no_files(UPLOADS)
    editor.close()
    editor.message(ASK, "No")
    editor.wait_end()  # nothing was transferred: no reminder


@only_libraries
@pytest.mark.parametrize("answer", ["Yes", "No"])
def test_after_a_refused_upload_closing_asks_and_never_loses_the_melody_by_yes(start, prefix, link, answer):
    Melody.build(prefix.cache_dir / "REFUSED.SND", TUNE)
    editor = start(DEVICE_FOLDER + "REFUSED.SND", environment=link.environment("putfile"))
    editor.screen.key("end")
    editor.click_key("g4")
    editor.choose("Save to Ve&loxa")
    editor.message(REFUSED)
    editor.close()
    editor.message(ASK, answer)
    if answer == "No":
        editor.wait_end()
        return
    editor.message(REFUSED)
    editor.no_dialog()
    assert editor.process.poll() is None and editor.main()["visible"]
    editor.wait_names(["c5, Quarter note", "e5, Eighth note", "g4, Quarter note", "End"])
    prefix.wait_no_files(UPLOADS)
    assert not link.calls("Cor_DoDisconnect")


@only_libraries
def test_a_path_that_can_not_be_converted_ends_the_save_with_the_copy_gone(start, prefix, link):
    """The cache copy is deleted before the path is asked for: kept as it is."""
    path = Melody.build(prefix.cache_dir / "CONV.SND", TUNE)
    editor = start(DEVICE_FOLDER + "CONV.SND", environment=link.environment("conv0"))
    editor.wait_caption("Sound Editor - Veloxa:CONV.SND")
    editor.screen.key("end")
    editor.click_key("g4")
    editor.choose("Save to Ve&loxa")
    wait_until(lambda: not path.exists(), 5, "the copy's end")
    editor.no_dialog()
    assert not link.calls("Cor_PutFile")
    for caption in ("Save &to Veloxa as...", "Open on Velo&xa..."):
        editor.choose(caption)
        if caption.startswith("Open"):
            editor.message(ASK, "No")
        editor.no_dialog()
    editor.wait_names(["c5, Quarter note", "e5, Eighth note", "g4, Quarter note", "End"])
    editor.close()
    editor.message(ASK, "Cancel")
    assert editor.process.poll() is None


@only_libraries
@pytest.mark.parametrize("fault", ["unknown", "getfile", "conv0"])
def test_a_last_device_document_that_the_library_does_not_give(start, prefix, link, fault):
    Melody.build(prefix.cache_dir / "LAST.SND", TUNE)
    editor = start(DEVICE_FOLDER + "LAST.SND", environment=link.environment())
    editor.wait_caption("Sound Editor - Veloxa:LAST.SND")
    editor.close()
    editor.wait_end()
    again = start(environment=link.environment(fault))
    again.no_dialog()
    assert again.caption() == UNTITLED
    again.click_key("c4")
    again.choose("Save to Ve&loxa")  # with no path it is Save as
    if fault == "conv0":
        again.no_dialog()
    else:
        again.wait_dialog("Save to Veloxa as")
        again.screen.key("escape")


@only_libraries
def test_a_device_document_is_reopened_by_asking_for_it_and_fetching_it(start, prefix, link):
    Melody.build(prefix.cache_dir / "LAST.SND", TUNE)
    editor = start(DEVICE_FOLDER + "LAST.SND", environment=link.environment())
    editor.close()
    editor.wait_end()
    link.log.unlink()
    again = start(environment=link.environment())
    assert again.caption() == "Sound Editor - Veloxa:LAST.SND"
    assert link.functions() == ["Cor_IsOnPcFile", "Cor_ConvPathCacheToCorvane", "Cor_IsExist", "Cor_GetFile",
                                "Cor_IsOnPcFile"]


@pytest.mark.parametrize("shape", ["decorated", "partial"])
def test_libraries_of_another_shape(start, prefix, tmp_path, shape):
    """Decorated names are found; what a library lacks the editor's own device does."""
    link = link_libraries.Link(tmp_path / "calls.log", True)
    link_libraries.remove(prefix)
    link_libraries.install(prefix, WINDOWS_BUILD / "link" / shape)
    try:
        Melody.build(prefix.cache_dir / "SHAPE.SND", TUNE)
        editor = start(environment=link.environment())
        editor.choose("Open on Velo&xa...")
        editor.wait_dialog("Open on Veloxa")
        editor.screen.key("end")
        editor.screen.key("enter")
        editor.wait_caption("Sound Editor - Veloxa:SHAPE.SND")
        editor.choose("Save to Ve&loxa")
        editor.no_dialog()
        editor.close()
        editor.message(REMINDER)
        editor.wait_end()
        called = set(link.functions())
        if shape == "partial":
            assert called == {"Cor_DoDisconnect"}
        else:
            assert called >= {"Cor_PIMOpenFileDialog", "Cor_PutFile", "Cor_DoDisconnect"}
    finally:
        link_libraries.remove(prefix)


# Japanese names.

@pytest.fixture(scope="module")
def japanese(screen):
    """A prefix whose programs run with code page 932."""
    folder = BUILD / "locales"
    if not (folder / "ja_JP.UTF-8").exists():
        # Made aside and moved into its place, as another worker may want it at the same moment.
        own = folder / str(os.getpid()) / "ja_JP.UTF-8"
        own.parent.mkdir(parents=True, exist_ok=True)
        subprocess.run(["localedef", "-i", "ja_JP", "-f", "UTF-8", str(own)], check=True)
        with contextlib.suppress(OSError):
            own.rename(folder / own.name)
        shutil.rmtree(own.parent)
    prefix = Prefix("japanese", environment={"LOCPATH": str(folder), "LC_ALL": "ja_JP.UTF-8"})
    yield prefix
    prefix.end()


@pytest.mark.parametrize("libraries", [False, True])
# 表 and ソ have a backslash as their second byte.
@pytest.mark.parametrize("name", ["音符.SND", "表ソ.SND", "ﾒﾛﾃﾞｨｰ.SND", "ソソソソ.SND"])
def test_japanese_names_on_the_device(japanese, screen, name, libraries):
    link_libraries.remove(japanese)
    if libraries:
        link_libraries.install(japanese)
    for path in japanese.cache_dir.iterdir():
        path.unlink()
    japanese.forget_settings()
    path = Melody.build(japanese.cache_dir / name, TUNE)
    editor = Editor(japanese, screen).wait_ready()
    try:
        editor.choose("Open on Velo&xa...")
        editor.wait_dialog("Open on Veloxa")
        editor.screen.key("enter")
        editor.wait_caption("Sound Editor - Veloxa:" + name)
        assert japanese.ask("getreg", SETTINGS, "File1") == f"0,Veloxa:{name},{DEVICE_FOLDER}{name}"
        editor.screen.key("end")
        editor.click_key("g4")
        editor.choose("Save to Ve&loxa")
        wait_until(lambda: Melody.saved_entries(path)[-1:] == ["g4 1/4"], 8, "the saved melody")
        assert [entry.name for entry in japanese.cache_dir.iterdir()] == [name]
        editor.close()
        editor.message(REMINDER)
        editor.wait_end()
        editor = Editor(japanese, screen).wait_ready()
        assert editor.caption() == "Sound Editor - Veloxa:" + name
    finally:
        editor.kill()


def test_a_japanese_name_of_nine_bytes(japanese, screen):
    for path in japanese.cache_dir.iterdir():
        path.unlink()
    japanese.forget_settings()
    path = Melody.build(japanese.cache_dir / "ソソソソa.SND", TUNE)
    editor = Editor(japanese, screen, DEVICE_FOLDER + path.name).wait_ready()
    try:
        editor.choose("Save to Ve&loxa")
        editor.message(TOO_LONG)
        dialog = editor.wait_dialog("Save to Veloxa as")
        editor.screen.key("enter")
        editor.answer(box_with(editor, TOO_LONG), "OK")
        editor.prefix.ask("settext", part(editor, dialog, NAME)["hwnd"], "ソソソa")
        editor.prefix.ask("press", dialog["hwnd"], 1)
        editor.wait_caption("Sound Editor - Veloxa:ソソソa.snd")
    finally:
        editor.kill()
