"""What the program keeps between two runs, help and the small windows, in the real program."""

import pytest

from building import WINDOWS_BUILD, program
from editor import MAXIMISE, RESTORE, WM_CLOSE, Editor
from link_libraries import only_libraries
from melody import Melody
from prefix import DEVICE_FOLDER, GLOBAL_SETTINGS, LINK_ENTRY, SCREEN_SIZE, SETTINGS, Prefix, virtual_screen
from wine_paths import windows_path
from words import ASK, DOREMI, NOT_AGAIN, READ_ERROR, REMINDER, REMINDER_ITEM, UNTITLED
from xscreen import holds, settled, wait_until


WS_MAXIMIZE = 0x01000000
WM_COMMAND = 0x111


def stored_placement(prefix):
    return [int(field) for field in prefix.ask("getreg", SETTINGS, "WindwInformation").split(",")]


def maximised(editor):
    return editor.main()["style"] & WS_MAXIMIZE != 0


def near(rect, slack=2):
    return pytest.approx(list(rect), abs=slack)


@pytest.fixture(params=[96, 144])
def scaled(request, screen):
    prefix = Prefix(f"settings-{request.param}", dpi=request.param)
    yield prefix
    prefix.end()


@pytest.fixture
def start_with(prefix, screen):
    """Starts an editor on a stored setting: start_with(section, name, text); without a text nothing is stored."""
    running = []

    def start_one(section, name, text, *arguments, ready=True):
        prefix.forget_settings()
        if text is not None:
            prefix.ask("setreg", section, name, text)
        running.append(Editor(prefix, screen, *arguments))
        return running[-1].wait_ready() if ready else running[-1]

    yield start_one
    for editor in running:
        editor.kill()


@pytest.fixture(scope="module")
def bare():
    """A prefix on a screen without a window manager, which would bring stray windows back by itself."""
    with virtual_screen() as name:
        prefix = Prefix("bare-screen", environment={"DISPLAY": name})
        yield prefix
        prefix.end()


# Placement.

def test_a_maximised_window_comes_back_maximised_over_the_same_normal_place(scaled, screen):
    first = Editor(scaled, screen).wait_ready()
    normal = first.main()["rect"]
    scaled.ask("post", first.hwnd, *MAXIMISE)
    wait_until(lambda: maximised(first), 5, "the maximised window")
    settled(lambda: first.main()["rect"])
    first.close()
    first.wait_end()
    stored = stored_placement(scaled)
    assert stored[0] == 3
    assert [stored[2], stored[4], stored[3], stored[1]] == near(normal)
    again = Editor(scaled, screen).wait_ready()
    wait_until(lambda: maximised(again), 5, "the maximised window")
    again.close()
    again.wait_end()
    assert stored_placement(scaled)[0] == 3
    again = Editor(scaled, screen).wait_ready()
    scaled.ask("post", again.hwnd, *RESTORE)
    wait_until(lambda: again.main()["rect"] == near(normal), 5, f"{again.main()['rect']} to become {normal}")
    again.kill()


def test_a_window_closed_while_minimised_comes_back_normal(scaled, screen):
    first = Editor(scaled, screen).wait_ready()
    normal = first.main()["rect"]
    first.minimise()
    first.close()
    first.wait_end()
    assert stored_placement(scaled)[0] == 2
    again = Editor(scaled, screen).wait_ready()
    assert not again.main()["minimised"] and not maximised(again)
    wait_until(lambda: again.main()["rect"] == near(normal), 5, f"{again.main()['rect']} to become {normal}")
    again.kill()


@pytest.mark.parametrize("stored", [None, "", "1", "1,2,3,4", "1,600,100,500", "1,600,100,500,", "one,600,100,500,200",
                                    "1,600,100,500,2x0", "1,99999999999999999999,100,500,200", "1,600,,500,200",
                                    "1,-2147483649,100,500,200", "1;600;100;500;200"])
def test_a_damaged_placement_centres_the_window(start_with, stored):
    editor = start_with(SETTINGS, "WindwInformation", stored)
    left, top, right, bottom = editor.main()["rect"]
    assert [left + right, top + bottom] == near(SCREEN_SIZE, 70), "the centre of the screen, but for the frame"


@pytest.mark.parametrize("stored", [
    "1,9000,9000,9900,8000", "1,-8000,-9900,-9000,-9000", "1,600,5000,5400,200",
    "1,2147483647,2147483000,2147483647,2147483000", "1,2147483647,-2147483647,2147483647,-2147483647",
    "1,-2147483647,2147483647,-2147483647,2147483647", "1,100,500,100,600", "2,9000,9000,9900,8000",
    "1,5000,-2000,3000,-100"])
def test_a_placement_outside_the_screens_is_brought_onto_one(bare, stored):
    bare.forget_settings()
    bare.ask("setreg", SETTINGS, "WindwInformation", stored)
    editor = Editor(bare, None)
    try:
        wait_until(lambda: editor.main() and editor.main()["visible"], 20, "the main window")
        left, top, right, bottom = editor.main()["rect"]
        assert left >= 0 and top >= 0 and right <= SCREEN_SIZE[0] and bottom <= SCREEN_SIZE[1], editor.main()["rect"]
        assert right - left >= 400 and bottom - top >= 300
        assert not editor.main()["minimised"]
    finally:
        editor.kill()


@pytest.mark.parametrize("stored, rect", [
    ("2,600,100,500,200", [100, 200, 500, 600]), ("1,600,100,500,200", [100, 200, 500, 600]),
    ("0,600,100,500,200", [100, 200, 500, 600]), ("-1,600,100,500,200", [100, 200, 500, 600]),
    ("7,600,100,500,200", [100, 200, 500, 600]), ("1,1000,100,1300,200", [100, 200, 1300, 1000]),
    ("1,1190,1700,2300,500", [1700, 500, 2300, 1190]), ("1,500,-500,200,100", [-500, 100, 200, 500]),
    ("1,1700,100,900,1100", [100, 1100, 900, 1700])])
def test_a_place_that_can_be_reached_is_restored_exactly(bare, stored, rect):
    """Also one smaller than the content, or partly outside; closing stores the same place again."""
    bare.forget_settings()
    bare.ask("setreg", SETTINGS, "WindwInformation", stored)
    editor = Editor(bare, None)
    try:
        wait_until(lambda: editor.main() and editor.main()["visible"], 20, "the main window")
        assert settled(lambda: editor.main()["rect"]) == rect
        assert not editor.main()["minimised"]
        editor.hwnd = editor.main()["hwnd"]
        editor.close()
        editor.wait_end()
        assert stored_placement(bare) == [1, rect[3], rect[0], rect[2], rect[1]]
    finally:
        editor.kill()


def test_a_stored_minimised_state_restores_the_place_as_normal(start_with):
    editor = start_with(SETTINGS, "WindwInformation", "2,1000,100,1300,200")
    assert not editor.main()["minimised"]
    assert editor.main()["rect"] == near([100, 200, 1300, 1000])


# The order of close.

@only_libraries
def test_a_cancelled_close_neither_disconnects_nor_stores(start, prefix, link):
    editor = start(environment=link.environment())
    editor.click_key("c4")
    editor.close()
    editor.message(ASK, "Cancel")
    editor.no_dialog()
    assert link.calls("Cor_DoDisconnect") == []
    assert prefix.ask("getreg", SETTINGS, "WindwInformation") is None
    editor.wait_names(["c4, Quarter note", "End"])
    editor.close()
    editor.message(ASK, "No")
    editor.wait_end()
    assert len(link.calls("Cor_DoDisconnect")) == 1
    assert len(stored_placement(prefix)) == 5


@only_libraries
def test_the_reminder_comes_after_disconnecting_and_before_the_place_is_stored(start, prefix, link):
    Melody.build(prefix.cache_dir / "WORK.SND", "tempo 120\nc5 1/4\n")
    editor = start(DEVICE_FOLDER + "WORK.SND", environment=link.environment())
    editor.choose("Save to Ve&loxa")
    wait_until(lambda: link.calls("Cor_PutFile"), 5, "the upload")
    editor.close()
    box = editor.wait_message(REMINDER)
    assert len(link.calls("Cor_DoDisconnect")) == 1
    assert prefix.ask("getreg", SETTINGS, "WindwInformation") is None
    assert editor.main()["visible"] and not editor.main()["enabled"]
    editor.answer(box, "Cancel")
    editor.wait_end()
    assert len(stored_placement(prefix)) == 5
    assert prefix.ask("getreg", GLOBAL_SETTINGS, "MsgDsp") is None


@only_libraries
def test_a_second_copy_makes_no_call_into_the_libraries(start, prefix, link):
    first = start(environment=link.environment())
    before = link.calls()
    assert start(ready=False, environment=link.environment()).wait_end() == 0
    assert link.calls() == before
    assert first.process.poll() is None


# The transfer reminder.

def work_on_device(start, prefix, link):
    Melody.build(prefix.cache_dir / "WORK.SND", "tempo 120\nc5 1/4\n")
    editor = start(DEVICE_FOLDER + "WORK.SND", environment=link.environment())
    assert editor.caption() == "Sound Editor - Veloxa:WORK.SND"
    editor.choose("Save to Ve&loxa")
    editor.no_dialog(0.3)
    return editor


def test_the_reminder_by_keyboard_alone(start, prefix, link):
    """The button has the keyboard first, then the check box; Enter closes; the mark is kept for the whole suite."""
    editor = work_on_device(start, prefix, link)
    editor.close()
    box = editor.wait_message(REMINDER)
    assert editor.focus()["text"] == "OK"
    editor.screen.key("tab")
    wait_until(lambda: editor.focus()["text"] == NOT_AGAIN, 5, "the check box with the keyboard")
    editor.screen.key("space")
    editor.screen.key("tab")
    wait_until(lambda: editor.focus()["text"] == "OK", 5, "the button with the keyboard")
    left, top, right, bottom = box["rect"]
    assert [left + right, top + bottom] == near(SCREEN_SIZE, 70)
    editor.screen.key("enter")
    editor.wait_end()
    assert prefix.ask("getreg", GLOBAL_SETTINGS, "MsgDsp") == "1"
    assert prefix.ask("getreg", SETTINGS, "MsgDsp") is None


@pytest.mark.parametrize("tick", [False, True])
def test_escape_closes_the_reminder_and_keeps_the_mark(start, prefix, link, tick):
    editor = work_on_device(start, prefix, link)
    editor.close()
    editor.wait_message(REMINDER)
    if tick:
        editor.screen.key("tab")
        editor.screen.key("space")
    editor.screen.key("escape")
    editor.wait_end()
    assert prefix.ask("getreg", GLOBAL_SETTINGS, "MsgDsp") == ("1" if tick else None)


def test_f1_in_the_reminder_opens_the_guide(start, prefix, link, tmp_path):
    note = prefix.opened_pages(tmp_path)
    editor = work_on_device(start, prefix, link)
    editor.close()
    box = editor.wait_message(REMINDER)
    editor.screen.key("f1")
    wait_until(lambda: note.exists() and note.read_text().strip(), 15, "the opened guide")
    assert any(window["hwnd"] == box["hwnd"] for window in editor.dialogs()), "the reminder waits on"
    editor.answer(box, "OK")
    editor.wait_end()


@pytest.mark.parametrize("stored, ticked", [(None, True), ("0", True), ("1", False), ("2", True), ("-1", True),
                                            ("11", True), ("", True), ("yes", True), (" 1 ", False)])
def test_the_setting_menus_tick(start_with, stored, ticked):
    editor = start_with(GLOBAL_SETTINGS, "MsgDsp", stored)
    assert editor.menu()[REMINDER_ITEM]["checked"] == ticked


def test_the_setting_menus_entry_goes_both_ways(start, prefix):
    editor = start()
    for wanted in ("1", "0", "1", "0"):
        editor.choose(REMINDER_ITEM)
        wait_until(lambda: prefix.ask("getreg", GLOBAL_SETTINGS, "MsgDsp") == wanted, 5, f"MsgDsp {wanted}")
        assert editor.menu()[REMINDER_ITEM]["checked"] == (wanted == "0")


def test_the_tick_follows_what_another_program_of_the_suite_stores(start, prefix):
    editor = start()
    assert editor.menu()[REMINDER_ITEM]["checked"]
    prefix.ask("setreg", GLOBAL_SETTINGS, "MsgDsp", "1")
    editor.screen.key("alt+s")  # the Setting menu opens and asks again
    wait_until(lambda: not editor.menu()[REMINDER_ITEM]["checked"], 5, "the tick's end")
    editor.screen.key("escape")
    editor.screen.key("escape")


# Note names.

def test_do_re_mi_is_kept_over_a_restart(start, prefix, melody):
    path = windows_path(melody("NAMES.SND", "tempo 120\nc5 1/4\n"))
    editor = start(path)
    letters = editor.names()
    editor.screen.key("alt+v")
    editor.wait_popup()
    editor.screen.key("d")
    wait_until(lambda: editor.names() != letters, 5, "do-re-mi names")
    doremi = editor.names()
    stored = prefix.ask("getreg", SETTINGS, "DoremiFlag")
    assert stored == "-1"
    editor.close()
    editor.wait_end()
    again = start(path)
    assert again.names() == doremi
    assert again.menu()[DOREMI]["checked"]


@pytest.mark.parametrize("stored, doremi", [("0", False), ("1", True), ("-1", True), ("65535", True), ("", False),
                                            ("no", False)])
def test_a_stored_note_name_setting(start_with, stored, doremi):
    editor = start_with(SETTINGS, "DoremiFlag", stored)
    assert editor.menu()[DOREMI]["checked"] == doremi


# The last document.

def test_the_last_pc_document_is_opened_again(start_with, melody):
    path = melody("LAST.SND", "tempo 96\nc5 1/4\ne5 1/8\n")
    editor = start_with(SETTINGS, "File1", "1,PC:LAST.SND," + windows_path(path))
    assert editor.caption() == "Sound Editor - PC:LAST.SND"
    editor.wait_names(["c5, Quarter note", "e5, Eighth note", "End"])
    editor.close()  # nothing has changed
    editor.wait_end()


@pytest.mark.parametrize("stored", [
    "1,PC:GONE.SND,C:\\Link\\userdata\\sound\\GONE.SND", "0,Veloxa:GONE.SND," + DEVICE_FOLDER + "GONE.SND",
    "1,PC:X.SND,Q:\\no such drive\\X.SND", "1", "1,PC:X.SND", ",,", "letters", "99999,PC:X.SND,", "1,PC:X.SND,C:\\Link",
    "1,PC:X.SND,C:\\Link\\userdata\\sound\\*.SND"])
def test_a_last_document_that_is_gone_gives_an_untitled_start(start_with, stored):
    editor = start_with(SETTINGS, "File1", stored)
    editor.no_dialog()
    assert editor.caption() == UNTITLED
    assert editor.names() == ["End"]
    editor.click_key("c4")
    editor.choose("&Save to PC")
    editor.wait_dialog("Save to PC")  # no path is left: a name is asked for
    editor.screen.key("escape")


def test_a_last_document_that_is_no_melody_tells_so(start_with, prefix):
    path = prefix.sound_dir / "BROKEN.SND"
    path.write_bytes(b"\x07\x00\x21\x00")
    editor = start_with(SETTINGS, "File1", "1,PC:BROKEN.SND,C:\\Link\\userdata\\sound\\BROKEN.SND", ready=False)
    editor.message(READ_ERROR)
    editor.wait_ready()
    assert editor.caption() == UNTITLED
    assert prefix.ask("getreg", SETTINGS, "File1") == "1,PC:,"


def test_the_command_line_wins_over_the_last_document(start_with, melody):
    last = melody("LAST.SND", "tempo 96\nc5 1/4\n")
    named = windows_path(melody("NAMED.SND", "tempo 96\nd5 1/4\n"))
    editor = start_with(SETTINGS, "File1", "1,PC:LAST.SND," + windows_path(last), named)
    assert editor.caption() == "Sound Editor - PC:NAMED.SND"


# Help and About.

@pytest.mark.parametrize("chord", ["shift+f1", "ctrl+f1"])
def test_f1_with_a_shift_key_opens_nothing(start, prefix, tmp_path, chord):
    note = prefix.opened_pages(tmp_path)
    editor = start()
    editor.screen.key(chord)
    holds(lambda: not note.exists(), 1.5, "no guide")
    editor.screen.key("f1")
    wait_until(lambda: note.exists() and note.read_text().count("Veloxa.htm") == 1, 15, "the opened guide")


def test_f1_from_every_control(start, prefix, tmp_path):
    """The tempo box, the piano and the toolbar pass F1 on."""
    note = prefix.opened_pages(tmp_path)
    editor = start()
    for stop in range(1, 7):
        editor.screen.key("f1")
        wait_until(lambda: note.exists() and note.read_text().count("Veloxa.htm") == stop, 15, f"guide {stop}")
        before = editor.focused_item()
        editor.screen.key("tab")
        wait_until(lambda: editor.focused_item() != before, 5, f"what follows {before}")


@pytest.mark.parametrize("way", ["enter", "escape", "click", "close"])
def test_about_is_modal_and_closes_in_every_way(editor, way):
    editor.choose("&About Sound Editor...")
    box = editor.wait_dialog("About Sound Editor")
    assert box["text"].startswith("About ")
    assert not editor.main()["enabled"]
    children = editor.children(box["hwnd"])
    buttons = [child["text"] for child in children if child["class"] == "Button"]
    assert buttons == ["OK", "&Details..."]
    assert editor.focus()["text"] == "OK"
    if way == "click":
        editor.screen.click(*editor.centre(next(c for c in children if c["text"] == "OK")["rect"]))
    elif way == "close":
        editor.prefix.ask("post", box["hwnd"], WM_CLOSE, 0, 0)
    else:
        editor.screen.key(way)
    wait_until(lambda: not editor.dialogs(), 5, "the box's end")
    assert editor.main()["enabled"]


def test_about_stands_on_the_screen_where_the_window_is_half_outside(bare):
    bare.forget_settings()
    bare.ask("setreg", SETTINGS, "WindwInformation", "1,500,-500,150,100")
    editor = Editor(bare, None)
    try:
        editor.hwnd = wait_until(lambda: (editor.main() or {}).get("visible") and editor.main()["hwnd"], 20,
                                 "the main window")
        bare.ask("post", editor.hwnd, WM_COMMAND, editor.menu()["&About Sound Editor..."]["id"], 0)
        left, top, right, bottom = wait_until(editor.dialogs, 8, "About")[0]["rect"]
        assert left >= 0 and top >= 0 and right <= SCREEN_SIZE[0] and bottom <= SCREEN_SIZE[1]
    finally:
        editor.kill()


def test_details_show_the_programs_own_about_window_in_the_middle_of_the_screen(editor):
    editor.choose("&About Sound Editor...")
    box = editor.wait_dialog("About Sound Editor")
    before = editor.screen.focused_id()
    editor.screen.key("alt+d")
    own = wait_until(lambda: next((d for d in editor.dialogs() if d["hwnd"] != box["hwnd"]), None), 5, "the details")
    editor.wait_keyboard_leaves(before)
    texts = [child["text"] for child in editor.children(own["hwnd"])]
    assert any(text.startswith("Version ") for text in texts)
    left, top, right, bottom = own["rect"]
    assert [left + right, top + bottom] == near(SCREEN_SIZE, 4)
    before = editor.screen.focused_id()
    editor.screen.key("enter")
    wait_until(lambda: len(editor.dialogs()) == 1, 5, "the details' end")
    editor.wait_keyboard_leaves(before)
    editor.screen.key("escape")
    wait_until(lambda: not editor.dialogs(), 5, "the box's end")


def test_the_silent_end_with_an_empty_entry(screen):
    prefix = Prefix("empty-entry")
    try:
        prefix.ask("setreg", LINK_ENTRY, "InstallDir", "")
        editor = Editor(prefix, screen)
        assert editor.wait_end(20) == 0
        assert editor.windows() == []
        assert prefix.ask("getreg", SETTINGS, "WindwInformation") is None
    finally:
        prefix.end()


def test_an_entry_of_a_single_backslash_goes_on(screen):
    """The backslash is trimmed and nothing is left: the folders count from the drive's root, where they are not."""
    prefix = Prefix("root-entry")
    try:
        prefix.ask("setreg", LINK_ENTRY, "InstallDir", "\\")
        editor = Editor(prefix, screen)
        editor.message("Directory does not exist.\r\nPlease install the PC Application again.")
        editor.wait_ready()
        assert editor.caption() == "Sound Editor - Untitled"
        editor.kill()
    finally:
        prefix.end()


def test_an_entry_with_a_backslash_at_its_end(screen):
    prefix = Prefix("backslash-entry")
    try:
        prefix.ask("setreg", LINK_ENTRY, "InstallDir", "C:\\Link\\")
        path = Melody.build(prefix.cache_dir / "TUNE.SND", "tempo 120\nc5 1/4\n")
        editor = Editor(prefix, screen, DEVICE_FOLDER + path.name).wait_ready()
        assert editor.caption() == "Sound Editor - Veloxa:TUNE.SND"
        editor.kill()
    finally:
        prefix.end()


def test_the_plain_user_data_folder_is_enough(screen):
    """Without a sound folder the PC dialogs start in UserData, and nothing is said."""
    prefix = Prefix("user-data")
    try:
        prefix.sound_dir.rmdir()
        Melody.build(prefix.install_dir / "userdata" / "HERE.SND", "tempo 120\nc5 1/4\n")
        editor = Editor(prefix, screen).wait_ready()
        editor.no_dialog()
        editor.choose("&Open on PC...")
        dialog = editor.wait_dialog("Open on PC")
        field = editor.file_name_field(dialog)
        wait_until(lambda: (editor.focus() or {}).get("hwnd") == field["hwnd"], 8, "the keyboard in the name field")
        editor.screen.type_text("HERE.SND")
        editor.screen.key("enter")
        editor.wait_caption("Sound Editor - PC:HERE.SND")
        editor.kill()
    finally:
        prefix.end()


def test_f1_opens_the_help_file_where_there_is_a_reader(screen):
    """The help file beside the program, shown by the system's reader."""
    assert program(WINDOWS_BUILD, "Tonex.exe").with_name("Veloxa.hlp").exists()
    prefix = Prefix("help-file")
    try:
        editor = Editor(prefix, screen).wait_ready()
        editor.screen.key("f1")
        wait_until(lambda: any(window["visible"] for window in prefix.ask("windows", "winhlp32.exe")), 15, "the help")
        editor.no_dialog()
        assert editor.main()["enabled"]
        editor.kill()
    finally:
        prefix.end()
