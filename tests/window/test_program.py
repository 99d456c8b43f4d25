"""The program as a whole: one instance, placement, help, About, what it does without the link software."""

import os
import re
import shutil

import pytest

from building import ROOT
from editor import Editor
from melody import Melody
from prefix import SETTINGS, Prefix
from wine_paths import windows_path
from words import UNTITLED
from xscreen import settled, wait_until



def test_a_second_copy_brings_the_first_to_the_front_and_ends(start, melody):
    first = start()
    first.click_key("c4")
    other = first.prefix.start(["wine", "notepad"])
    wait_until(lambda: "Notepad" in first.screen.focused_title(), 10, "another program in front")
    wait_until(lambda: first.prefix.ask("foreground") != first.hwnd, 5, "another program in front")
    second = start(windows_path(melody("SECOND.SND", "tempo 120\nd4 1/4\n")), ready=False)
    assert second.wait_end() == 0
    # Wine counts the first copy's window as the one in front; it leaves the X focus to the window manager.
    wait_until(lambda: first.prefix.ask("foreground") == first.hwnd, 8, "the first copy in front")
    # The file of the second copy's command line is not handed over; nothing was asked.
    first.no_dialog()
    first.wait_names(["c4, Quarter note", "End"])
    assert first.caption() == UNTITLED
    other.kill()
    other.wait(10)


def test_a_second_copy_restores_a_minimised_first(start):
    first = start()
    first.minimise()
    second = start(ready=False)
    assert second.wait_end() == 0
    wait_until(lambda: not first.main()["minimised"], 5, "the restored window")


def test_two_copies_started_at_once_leave_one(start, prefix, screen):
    for _ in range(5):
        copies = [start(ready=False) for _ in range(2)]
        wait_until(lambda: sum(copy.process.poll() is not None for copy in copies) == 1, 20, "the end of one copy")
        running = [copy for copy in copies if copy.process.poll() is None]
        assert len(running) == 1
        running[0].wait_ready()
        running[0].close()
        running[0].wait_end()


def test_the_window_is_owned_by_a_hidden_window_of_the_program(editor):
    windows = {window["hwnd"]: window for window in editor.windows()}
    owner = windows[editor.main()["owner"]]
    assert not owner["visible"]


@pytest.mark.parametrize("dpi", [96, 144])
def test_the_placement_is_kept_over_a_restart(screen, dpi):
    prefix = Prefix(f"placement-{dpi}", dpi=dpi)
    try:
        editor = Editor(prefix, screen).wait_ready()
        window = screen.find("Sound Editor - ")
        size = screen.rect_of(window)
        window.configure(width=size[2] + 90, height=size[3] + 60)
        screen.frame_of(window).configure(x=123, y=77)
        screen.display.sync()
        wait_until(lambda: screen.rect_of(screen.find("Sound Editor - "))[2] == size[2] + 90, 5, "the new size")
        before = settled(lambda: editor.main()["rect"])
        editor.close()
        editor.wait_end()
        stored = prefix.ask("getreg", SETTINGS, "WindwInformation").split(",")
        assert [int(field) for field in stored] == [1, before[3], before[0], before[2], before[1]]
        again = Editor(prefix, screen).wait_ready()
        wait_until(lambda: again.main()["rect"] == pytest.approx(before, abs=2), 5,
                   f"{again.main()['rect']} to become {before}")
        again.kill()
    finally:
        prefix.end()


@pytest.mark.parametrize("stored", ["", "1,2,3", "a,b,c,d,e", "99999999999,1,2,3,4", "1,900,90000,91000,90000",
                                    "2,600,100,500,200"])
def test_any_stored_placement_gives_a_window_on_the_screen(screen, prefix, stored):
    prefix.forget_settings()
    prefix.ask("setreg", SETTINGS, "WindwInformation", stored)
    editor = Editor(prefix, screen)
    try:
        editor.wait_ready()
        left, top, right, bottom = editor.main()["rect"]
        assert left >= -10 and top >= -30 and right <= 1930 and bottom <= 1210
        assert not editor.main()["minimised"]
    finally:
        editor.kill()


@pytest.mark.parametrize("way", ["f1", "menu"])
def test_f1_and_the_menu_open_the_guide_where_there_is_no_help_reader(start, prefix, tmp_path, way):
    note = prefix.opened_pages(tmp_path)
    editor = start()
    if way == "f1":
        editor.screen.key("f1")
    else:
        editor.choose("&Help Topics")
    wait_until(note.exists, 15, "the opened guide")
    wait_until(lambda: note.read_text().strip(), 5, "its address")
    assert "Veloxa.htm" in note.read_text()
    editor.no_dialog()


def test_about_shows_name_and_version_and_closes(editor):
    editor.choose("&About Sound Editor...")
    box = editor.wait_dialog("About Sound Editor")
    texts = " ".join(child["text"] for child in editor.children(box["hwnd"]))
    version = re.search(r"VERSION ([\d.]+)", (ROOT / "CMakeLists.txt").read_text().partition("project(")[2])[1]
    assert "Sound Editor" in texts and version in texts
    editor.screen.key("enter")
    wait_until(lambda: not editor.dialogs(), 5, "the box's end")
    assert editor.main()["enabled"]


def test_without_the_link_softwares_entry_the_program_ends_in_silence(screen):
    prefix = Prefix("no-entry", link_entry=False)
    try:
        editor = Editor(prefix, screen)
        assert editor.wait_end(20) == 0
        assert editor.windows() == []
    finally:
        prefix.end()


def test_without_the_folders_one_warning_is_shown_and_the_program_goes_on(screen):
    prefix = Prefix("no-folders")
    try:
        shutil.rmtree(prefix.install_dir)
        editor = Editor(prefix, screen)
        editor.message("Directory does not exist.\r\nPlease install the PC Application again.")
        editor.wait_ready()
        editor.no_dialog()
        editor.kill()
    finally:
        prefix.end()


def test_no_library_is_loaded_from_a_documents_folder(start, tmp_path):
    """A library planted beside a melody stays where it is."""
    path = Melody.build(tmp_path / "BAIT.SND", "tempo 120\nc4 1/4\n")
    for name in ("CorCalen.dll", "Corfldlg.dll", "oleacc.dll", "winmm.dll", "comdlg32.dll", "uxtheme.dll"):
        (tmp_path / name).write_bytes(b"MZ planted")
    editor = start(windows_path(path), cwd=tmp_path)
    editor.wait_caption("Sound Editor - PC:BAIT.SND")
    maps = open(f"/proc/{editor.process.pid}/maps", encoding="utf-8").read()
    assert str(tmp_path) not in maps
    assert os.listdir(tmp_path)
