"""Every call that the program makes to the system's files fails in turn, in the real program: its import table leads
to calls that refuse. Each time the old file is whole or the new one, the user is told, no file of ours is left."""

import os

import pytest

from melody import Melody
from prefix import DEVICE_FOLDER, PREVIEWS, UPLOADS
from test_preview import SHORT, Folder, text_of
from wine_paths import windows_path
from words import NO_PLAYER, PREVIEW_TOOL, REFUSED, WRITE_ERROR
from xscreen import wait_until

MOST_CALLS = 200  # of one command: more would be a loop


class Faults:
    """A command of an editor, run with one of its file calls failing."""

    def __init__(self, editor, order):
        self.editor = editor
        self.order = order
        self.made, self.failed = 0, ""

    def points(self):
        """The numbers of the calls, until a run has made no call with the number."""
        for number in range(MOST_CALLS):
            self.editor.prefix.ask(self.order, self.editor.hwnd, number)
            yield number
            if self.made <= number:
                return
        raise AssertionError(f"more than {MOST_CALLS} calls")

    def end(self):
        """From here on all goes well. Notes how many calls there were and which one failed."""
        self.made, self.failed = self.editor.prefix.ask(self.order, self.editor.hwnd, -1)

    def boxes(self):
        """The message boxes; the converting window is a dialog too."""
        return [box for box in self.editor.dialogs() if box["text"] == "Sound Editor"]

    def outcome(self, done):
        """Waits until the command is done or has told why not; gives the texts that it told."""
        wait_until(lambda: self.boxes() or done(), 20, "the command's end")
        told = []
        while self.boxes():
            box = self.boxes()[0]
            texts = [child["text"] for child in self.editor.children(box["hwnd"]) if child["class"] == "Static"]
            told.append("".join(texts))
            self.editor.answer(box, "OK")
        return told


def old_and_new(tmp_path):
    """The bytes on the disk and those that the editor's melody gives."""
    old = Melody.build(tmp_path / "OTHER.SND", Melody.scale(40)).read_bytes()
    new = Melody.build(tmp_path / "TUNE.SND", Melody.scale(60)).read_bytes()
    assert old != new
    (tmp_path / "OTHER.SND").unlink()
    return old, new


@pytest.mark.parametrize("order", ["failcall", "failfrom"])
def test_every_call_of_a_save_fails(start, tmp_path, order):
    old, new = old_and_new(tmp_path)
    path = tmp_path / "TUNE.SND"
    editor = start(windows_path(path))
    faults = Faults(editor, order)
    refused = 0
    for number in faults.points():
        path.write_bytes(old)
        editor.screen.key("ctrl+s")
        told = faults.outcome(lambda: path.read_bytes() == new)
        faults.end()
        kept = path.read_bytes() == old
        assert kept or path.read_bytes() == new, f"call {number}, {faults.failed}: {path.stat().st_size} bytes, neither old nor new"
        assert told == ([WRITE_ERROR] if kept else []), f"call {number}, {faults.failed}"
        if order == "failcall":
            assert os.listdir(tmp_path) == ["TUNE.SND"], f"call {number}, {faults.failed}"
        refused += kept
    assert refused > 3, "the calls that matter were not met"
    assert number >= 8
    print(number, "calls,", refused, "refused")
    path.write_bytes(old)
    editor.screen.key("ctrl+s")
    wait_until(lambda: path.read_bytes() == new, 8, "the next save")


def test_every_call_of_an_upload_fails(start, prefix, tmp_path):
    """On the organiser of folders, whose files the program itself writes."""
    old, new = old_and_new(tmp_path)
    path = prefix.cache_dir / "TUNE.SND"
    path.write_bytes(new)
    editor = start(DEVICE_FOLDER + "TUNE.SND")
    editor.wait_caption("Sound Editor - Veloxa:TUNE.SND")
    faults = Faults(editor, "failcall")
    refused = 0
    for number in faults.points():
        path.write_bytes(old)
        editor.choose("Save to Ve&loxa")
        told = faults.outcome(lambda: path.exists() and path.read_bytes() == new)
        faults.end()
        taken = path.exists() and path.read_bytes() == new
        # The organiser's copy goes first; what is there is whole.
        assert taken or not path.exists() or path.read_bytes() == old, f"call {number}, {faults.failed}: {path.stat().st_size} bytes"
        assert told in ([[]] if taken else [[WRITE_ERROR], [REFUSED]]), f"call {number}, {faults.failed}: {told}"
        prefix.wait_no_files(UPLOADS, f"after call {number}, {faults.failed}")
        refused += not taken
        path.unlink(missing_ok=True)
        for left in prefix.cache_dir.iterdir():
            raise AssertionError(f"call {number}, {faults.failed} left {left.name}")
    assert refused > 3, "the calls that matter were not met"
    print(number, "calls,", refused, "refused")
    editor.choose("Save to Ve&loxa")
    wait_until(lambda: path.exists() and path.read_bytes() == new, 8, "the next save")


def test_every_call_of_a_preview_fails(start, prefix, sound, melody, tmp_path):
    folder = Folder(tmp_path / "with stand-in", "stand_in_player.exe")
    folder.end()
    path = melody("SHORT.SND", text_of(SHORT))
    before = path.read_bytes()
    editor = start(windows_path(path), program_path=folder.editor)
    faults = Faults(editor, "failcall")
    heard = set()
    refused = 0

    def back():
        return (len(folder.starts()) > starts and editor.main()["enabled"] and
                not prefix.temporary_files(PREVIEWS))

    for number in faults.points():
        starts = len(folder.starts())
        editor.click_tool(PREVIEW_TOOL)
        told = faults.outcome(back)
        faults.end()
        if told:
            assert told in ([WRITE_ERROR], [NO_PLAYER]), f"call {number}, {faults.failed}: {told}"
            refused += 1
        else:
            heard.add(folder.heard())
        prefix.wait_no_files(PREVIEWS, f"after call {number}, {faults.failed}")
    assert heard == {Melody.samples(path)}, "every preview that was heard is the whole melody"
    assert refused > 3, "the calls that matter were not met"
    assert path.read_bytes() == before
    print(number, "calls,", refused, "refused")
