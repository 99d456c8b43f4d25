"""New, Open, Save and Save as with the real dialogs and messages; titles; the save prompt; drops; the command line."""

import os

from melody import Melody
from prefix import SETTINGS
from wine_paths import windows_path
from words import ASK, NOT_SOUND, READ_ERROR, TOO_LONG, UNTITLED
from xscreen import wait_until


def write_notes(editor, *keys):
    for key in keys or ("c4", "e4", "g4"):
        editor.click_key(key)
    wait_until(lambda: "End" == editor.names()[-1] and len(editor.names()) > 1, 5, "the notes")


def test_new_score_is_untitled(editor):
    assert editor.caption() == UNTITLED


def test_command_line_file_is_opened(start, melody):
    editor = start(windows_path(melody("CMDLINE.SND", "tempo 96\nc4 1/4\nr 1/8\n|\nd5# 1/2.\n")))
    assert editor.caption() == "Sound Editor - PC:CMDLINE.SND"
    editor.wait_names(["c4, Quarter note", "Eighth rest", "Separator", "d5#, Dotted half note", "End"])
    assert editor.tempo_box()["text"].strip() == "96"


def test_command_line_path_with_blanks(start, tmp_path):
    folder = tmp_path / "my tunes"
    folder.mkdir()
    editor = start(windows_path(Melody.build(folder / "A B.SND", "tempo 120\nc4 1/4\n")))
    assert editor.caption() == "Sound Editor - PC:A B.SND"


def test_command_line_file_of_another_kind_is_refused(start, tmp_path):
    path = tmp_path / "TEXT.TXT"
    path.write_text("no melody")
    editor = start(windows_path(path), ready=False)
    editor.message(NOT_SOUND)
    editor.wait_ready()
    assert editor.caption() == UNTITLED


def test_save_as_writes_the_melody_and_the_title(editor, tmp_path):
    write_notes(editor, "c4", "e4", "g4#")
    editor.save_as(tmp_path / "FIRST.SND")
    editor.wait_caption("Sound Editor - PC:FIRST.SND")
    assert Melody.text(tmp_path / "FIRST.SND")[1:] == ["c4 1/4", "e4 1/4", "g4# 1/4"]
    editor.close()
    editor.wait_end()  # nothing is asked: the changes are saved


def test_save_as_adds_the_extension(editor, tmp_path):
    write_notes(editor)
    editor.save_as(tmp_path / "PLAIN")
    # The dialog takes the extension's case from its filter or from its default.
    wait_until(lambda: editor.caption().upper() == "SOUND EDITOR - PC:PLAIN.SND", 8, "the title")
    assert [name.upper() for name in os.listdir(tmp_path)] == ["PLAIN.SND"]


def test_save_as_cancelled_changes_nothing(editor, tmp_path):
    write_notes(editor)
    editor.choose("Save to PC &as...")
    editor.file_dialog("Save to PC")
    assert editor.caption() == UNTITLED
    editor.close()
    editor.message(ASK, "Cancel")


def test_save_on_an_untitled_score_asks_for_a_name(editor, tmp_path):
    write_notes(editor)
    editor.screen.key("ctrl+s")
    editor.file_dialog("Save to PC", windows_path(tmp_path / "ASKED.SND"))
    editor.wait_caption("Sound Editor - PC:ASKED.SND")
    assert Melody.text(tmp_path / "ASKED.SND")[1:] == ["c4 1/4", "e4 1/4", "g4 1/4"]


def test_save_replaces_the_file(start, melody):
    path = melody("REPLACE.SND", "tempo 120\nc4 1/4\n")
    editor = start(windows_path(path))
    editor.screen.key("end")
    editor.click_key("d4")
    editor.screen.key("ctrl+s")
    wait_until(lambda: Melody.text(path)[1:] == ["c4 1/4", "d4 1/4"], 5, "the saved file")
    assert editor.caption() == "Sound Editor - PC:REPLACE.SND"
    assert sorted(os.listdir(path.parent)) == ["REPLACE.SND"], "no temporary file is left"


def test_save_replaces_a_read_only_file(start, melody):
    path = melody("LOCKED.SND", "tempo 120\nc4 1/4\n")
    path.chmod(0o444)
    editor = start(windows_path(path))
    editor.screen.key("end")
    editor.click_key("d4")
    editor.screen.key("ctrl+s")
    wait_until(lambda: Melody.text(path)[1:] == ["c4 1/4", "d4 1/4"], 5, "the saved file")
    editor.no_dialog()


def test_a_name_of_nine_characters_is_refused_and_asked_again(editor, tmp_path):
    write_notes(editor)
    editor.choose("Save to PC &as...")
    editor.file_dialog("Save to PC", windows_path(tmp_path / "NINECHARS.SND"))
    editor.message(TOO_LONG)
    dialog = editor.wait_dialog("Save to PC")
    assert editor.prefix.ask("gettext", editor.file_name_field(dialog)["hwnd"]) == "NINECHARS.SND"
    editor.file_dialog("Save to PC", windows_path(tmp_path / "EIGHTCHR.SND"))
    editor.wait_caption("Sound Editor - PC:EIGHTCHR.SND")
    assert os.listdir(tmp_path) == ["EIGHTCHR.SND"]


def test_save_of_a_file_with_a_long_name_becomes_save_as(start, melody, tmp_path):
    path = melody("LONGNAMED.SND", "tempo 120\nc4 1/4\n")
    before = path.read_bytes()
    editor = start(windows_path(path))
    editor.screen.key("end")
    editor.click_key("d4")
    editor.screen.key("ctrl+s")
    editor.message(TOO_LONG)
    editor.file_dialog("Save to PC", windows_path(tmp_path / "SHORT.SND"))
    editor.wait_caption("Sound Editor - PC:SHORT.SND")
    assert path.read_bytes() == before


def test_save_as_over_another_file_asks_and_replaces(editor, melody):
    path = melody("THERE.SND", "tempo 120\nc4 1/4\n")
    write_notes(editor, "d4")
    editor.save_as(path)
    box = wait_until(lambda: [d for d in editor.dialogs()
                              if any(c["text"].replace("&", "") == "Yes" for c in editor.children(d["hwnd"]))
                              and d["class"] == "#32770" and len(editor.children(d["hwnd"])) < 10], 5, "the question")[0]
    editor.answer(box, "Yes")
    editor.wait_caption("Sound Editor - PC:THERE.SND")
    wait_until(lambda: Melody.text(path)[1:] == ["d4 1/4"], 5, "the replaced file")
    # The keyboard is back although there was a question.
    editor.wait_keyboard_at(editor.main())
    wait_until(lambda: editor.focus()["class"] == "TonexGrid", 5, "the keyboard on the grid")
    editor.screen.key("home")
    editor.wait_selected([0])
    editor.screen.key("+")
    wait_until(lambda: editor.cell_texts()[0] == "d4#", 5, "a raised note by the keyboard alone")


def test_open_by_the_dialog(editor, melody):
    editor.screen.key("ctrl+o")
    editor.file_dialog("Open on PC", windows_path(melody("OPENED.SND", "tempo 240\na5 1/16\n")))
    editor.wait_caption("Sound Editor - PC:OPENED.SND")
    editor.wait_names(["a5, Sixteenth note", "End"])
    assert editor.tempo_box()["text"].strip() == "240"


def test_open_cancelled_does_nothing(editor):
    write_notes(editor, "c4")
    editor.screen.key("ctrl+o")
    editor.message(ASK, "No")
    editor.file_dialog("Open on PC")
    assert editor.caption() == UNTITLED
    assert editor.names() == ["c4, Quarter note", "End"]


def test_open_starts_in_the_sound_folder_and_then_in_the_last_one(editor, melody, prefix):
    Melody.build(prefix.sound_dir / "HOME.SND", "tempo 120\nc4 1/4\n")
    editor.screen.key("ctrl+o")
    editor.file_dialog("Open on PC", "HOME.SND")  # by its bare name
    editor.wait_caption("Sound Editor - PC:HOME.SND")
    melody("FIRST.SND", "tempo 120\nc4 1/4\n")
    melody("SECOND.SND", "tempo 120\nd4 1/4\n")
    editor.screen.key("ctrl+o")
    editor.file_dialog("Open on PC", windows_path(melody("FIRST.SND", "tempo 120\nc4 1/4\n")))
    editor.wait_caption("Sound Editor - PC:FIRST.SND")
    editor.screen.key("ctrl+o")
    editor.file_dialog("Open on PC", "SECOND.SND")
    editor.wait_caption("Sound Editor - PC:SECOND.SND")


def test_open_of_another_extension_is_refused(editor, tmp_path):
    (tmp_path / "OTHER.WAV").write_bytes(b"RIFF")
    editor.screen.key("ctrl+o")
    editor.file_dialog("Open on PC", windows_path(tmp_path / "OTHER.WAV"))
    editor.message(NOT_SOUND)
    assert editor.caption() == UNTITLED


def test_a_broken_file_leaves_an_untitled_score(start, melody, tmp_path):
    editor = start(windows_path(melody("GOOD.SND", "tempo 120\nc4 1/4\n")))
    (tmp_path / "BROKEN.SND").write_bytes(b"\x00" * 7)
    editor.screen.key("ctrl+o")
    editor.file_dialog("Open on PC", windows_path(tmp_path / "BROKEN.SND"))
    editor.message(READ_ERROR)
    editor.wait_caption(UNTITLED)
    assert editor.names() == ["End"]


def test_new_asks_and_cancel_keeps_the_score(editor):
    write_notes(editor, "c4")
    editor.choose("&New")
    editor.message(ASK, "Cancel")
    assert editor.names() == ["c4, Quarter note", "End"]
    editor.choose("&New")
    editor.message(ASK, "No")
    editor.wait_names(["End"])
    assert editor.caption() == UNTITLED


def test_new_with_yes_saves_first(start, melody):
    path = melody("YES.SND", "tempo 120\nc4 1/4\n")
    editor = start(windows_path(path))
    editor.screen.key("end")
    editor.click_key("e5")
    editor.click_tool("New")
    editor.message(ASK, "Yes")
    editor.wait_caption(UNTITLED)
    assert Melody.text(path)[1:] == ["c4 1/4", "e5 1/4"]


def test_close_asks_yes_saves_no_discards_cancel_stays(start, melody):
    path = melody("CLOSE.SND", "tempo 120\nc4 1/4\n")
    editor = start(windows_path(path))
    editor.screen.key("end")
    editor.click_key("d4")
    editor.wait_names(["c4, Quarter note", "d4, Quarter note", "End"])  # the window manager's message would overtake it
    editor.screen.key("alt+f4")
    editor.message(ASK, "Cancel")
    assert editor.caption() == "Sound Editor - PC:CLOSE.SND"
    editor.choose("&Exit")
    editor.message(ASK, "No")
    assert editor.wait_end() == 0
    assert Melody.text(path)[1:] == ["c4 1/4"]
    editor = start(windows_path(path))
    editor.screen.key("end")
    editor.click_key("d4")
    editor.close()
    editor.message(ASK, "Yes")
    assert editor.wait_end() == 0
    assert Melody.text(path)[1:] == ["c4 1/4", "d4 1/4"]


def test_close_with_yes_on_an_untitled_score_asks_for_a_name(editor, tmp_path):
    write_notes(editor, "c4")
    editor.close()
    editor.message(ASK, "Yes")
    editor.file_dialog("Save to PC")  # cancelled: the window stays
    assert editor.caption() == UNTITLED
    editor.close()
    editor.message(ASK, "Yes")
    editor.file_dialog("Save to PC", windows_path(tmp_path / "TOOLONGNAME.SND"))
    editor.message(TOO_LONG)
    editor.file_dialog("Save to PC", windows_path(tmp_path / "ATLAST.SND"))
    assert editor.wait_end() == 0
    assert Melody.text(tmp_path / "ATLAST.SND")[1:] == ["c4 1/4"]


def test_separators_alone_are_never_asked_about(editor):
    write_notes(editor, "c4")
    editor.screen.key("home")
    editor.screen.key("ctrl+i")
    editor.wait_names(["Separator", "c4, Quarter note", "End"])
    editor.screen.key("end")
    editor.screen.key("left")
    editor.screen.key("delete")
    editor.wait_names(["Separator", "End"])
    editor.close()
    assert editor.wait_end() == 0


def test_a_dropped_file_is_opened(editor, melody):
    assert editor.prefix.ask("drop", editor.hwnd, windows_path(melody("DROP.SND", "tempo 120\nb4 1/1\n")))
    editor.wait_caption("Sound Editor - PC:DROP.SND")
    editor.wait_names(["b4, Whole note", "End"])


def test_of_several_dropped_files_the_first_is_opened(editor, melody):
    editor.prefix.ask("drop", editor.hwnd, windows_path(melody("ONE.SND", "tempo 120\nb4 1/1\n")),
                      windows_path(melody("TWO.SND", "tempo 120\nc4 1/1\n")))
    editor.wait_caption("Sound Editor - PC:ONE.SND")
    editor.wait_names(["b4, Whole note", "End"])
    editor.no_dialog()


def test_a_dropped_file_of_another_kind_is_refused(start, melody, tmp_path):
    editor = start(windows_path(melody("STAYS.SND", "tempo 120\nc4 1/4\n")))
    (tmp_path / "PICTURE.BMP").write_bytes(b"BM")
    editor.prefix.ask("drop", editor.hwnd, windows_path(tmp_path / "PICTURE.BMP"))
    editor.message(NOT_SOUND)
    assert editor.caption() == "Sound Editor - PC:STAYS.SND"
    assert editor.names() == ["c4, Quarter note", "End"]


def test_a_drop_on_a_changed_score_asks_first(editor, melody):
    write_notes(editor, "c4")
    path = windows_path(melody("DROPASK.SND", "tempo 120\nb4 1/1\n"))
    editor.prefix.ask("drop", editor.hwnd, path)
    editor.message(ASK, "Cancel")
    assert editor.names() == ["c4, Quarter note", "End"]
    editor.prefix.ask("drop", editor.hwnd, path)
    editor.message(ASK, "No")
    editor.wait_caption("Sound Editor - PC:DROPASK.SND")


def test_the_last_document_is_opened_again(start, prefix, melody):
    path = melody("LAST.SND", "tempo 120\nf5# 1/4\n")
    editor = start(windows_path(path))
    assert prefix.ask("getreg", SETTINGS, "File1") == f"1,PC:LAST.SND,{windows_path(path)}"
    editor.close()
    editor.wait_end()
    again = start()
    assert again.caption() == "Sound Editor - PC:LAST.SND"
    again.wait_names(["f5#, Quarter note", "End"])
    again.close()
    again.wait_end()
    path.unlink()
    gone = start()
    assert gone.caption() == UNTITLED
    gone.no_dialog()
