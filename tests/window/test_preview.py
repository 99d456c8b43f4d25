"""Preview in the real window: what is heard, the converting window, the wait for the player, every failure."""

import os
import pathlib
import shutil
import signal
import subprocess
import threading
import time

import pytest

from Xlib import X
from building import WINDOWS_BUILD, program
from editor import WM_CLOSE
from melody import Melody
from prefix import PREVIEWS, SCREEN_SIZE
from sound_device import NoDevice, assert_heard_at_last
from wine_paths import windows_path
from words import ASK, NO_PLAYER, PREVIEW_ITEM, PREVIEW_TOOL, WRITE_ERROR
from xscreen import holds, wait_until

PLAYER = "sndrec32.exe"
PLAYER_TITLE = "Sound Player"
CONVERTING = "Sound Editor Now Converting..."
WM_NULL = 0
WAV_HEADER = 44  # bytes
KEPT_WAITING = 45  # seconds: the longest that an editor may wait for a player that does not end

TUNE = ["c4 1/4", "d4# 1/8", "|", "r 1/8", "g4 1/2.", "|", "c5 1/16", "e5 1/4", "r 1/4", "c6 1/2"]
SHORT = ["c5 1/16", "e5 1/16", "g5 1/16"]


def text_of(lines, tempo=128):
    return "\n".join([f"tempo {tempo}", *lines]) + "\n"


class Folder:
    """A folder of the test with the editor in it and, when wanted, a player beside it."""

    def __init__(self, path, player=None):
        path.mkdir()
        self.path = path
        self.editor = pathlib.Path(shutil.copy(program(WINDOWS_BUILD, "Tonex.exe"), path / "Tonex.exe"))
        if player:
            shutil.copy(program(WINDOWS_BUILD, player), path / PLAYER)

    # Of the stand-in player:

    def starts(self):
        """The command lines with which the stand-in player was started."""
        try:
            return (self.path / "started.txt").read_text(encoding="utf-8").splitlines()
        except FileNotFoundError:
            return []

    def heard(self):
        return (self.path / "heard.wav").read_bytes()[44:]

    def end(self):
        (self.path / "end").touch()


@pytest.fixture(autouse=True)
def no_files_left_from_before(prefix):
    """What an editor that was killed has left behind."""
    for path in prefix.temporary_files(PREVIEWS):
        path.unlink()


@pytest.fixture
def stand_in(sound, tmp_path):
    """The editor with the stand-in player beside it; the player ends with the test."""
    folder = Folder(tmp_path / "with stand-in", "stand_in_player.exe")
    yield folder
    folder.end()


@pytest.fixture
def alone(sound, tmp_path):
    """The editor without a player beside it."""
    return Folder(tmp_path / "alone")


@pytest.fixture
def play_verb(prefix):
    """Registers a program for the verb "Play" of WAV files: play_verb(command)."""
    extension, kind = "HKEY_CLASSES_ROOT\\.wav", "HKEY_CLASSES_ROOT\\Tonex.TestSound"

    def reg(*words):
        subprocess.run(["wine", "reg", *words], env=prefix.environment, cwd=prefix.path, check=True, timeout=60,
                       stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def register(command):
        reg("add", extension, "/ve", "/d", "Tonex.TestSound", "/f")
        reg("add", kind + "\\shell\\Play\\command", "/ve", "/d", command, "/f")

    yield register
    reg("delete", extension, "/ve", "/f")
    reg("delete", kind, "/f")


def enabled(editor):
    window = editor.main()
    return bool(window) and window["enabled"]


def preview(editor):
    editor.click_tool(PREVIEW_TOOL)


def wait_playing(editor):
    wait_until(lambda: not enabled(editor), 20, "the main window to be disabled")


def wait_back(editor, timeout=30):
    """Enabled, in front, the keyboard on the grid, no file left."""
    wait_until(lambda: enabled(editor) and editor.screen.find(CONVERTING) is None, timeout, "the window to be enabled")
    editor.prefix.wait_no_files(PREVIEWS)
    try:
        wait_until(lambda: editor.screen.focused_title().startswith("Sound Editor - "), 5)
    except AssertionError:
        raise AssertionError(f"{editor.screen.focused_title()!r} is in front") from None
    wait_until(lambda: (editor.focus() or {}).get("class") == "TonexGrid", 5, "the keyboard on the grid")


def still_works(editor):
    """The editor takes keys and edits."""
    editor.screen.key("home")
    editor.wait_selected([0])
    before = editor.names()
    editor.screen.key("delete")
    wait_until(lambda: editor.names() == before[1:], 5, "the deleted entry")
    editor.screen.key("ctrl+z")
    wait_until(lambda: editor.names() == before, 5, "the entry again")


# --- what is heard


@pytest.mark.parametrize("way", ["toolbar", "menu"])
def test_whole_melody_is_heard_sample_by_sample(sound, start, melody, way):
    path = melody("TUNE.SND", text_of(TUNE))
    editor = start(windows_path(path))
    editor.screen.key("home")
    editor.wait_selected([0])

    def play():
        if way == "toolbar":
            preview(editor)
        else:
            editor.choose(PREVIEW_ITEM)
        wait_playing(editor)
        wait_back(editor)

    samples = Melody.samples(path)
    assert len(samples) > 22050
    assert_heard_at_last(sound, samples, play)
    still_works(editor)


@pytest.mark.parametrize("backwards", [False, True])
def test_selection_is_heard_sample_by_sample(sound, start, melody, tmp_path, backwards):
    editor = start(windows_path(melody("TUNE.SND", text_of(TUNE))))
    editor.select_columns(*((6, 1) if backwards else (1, 6)))
    editor.wait_selected(list(range(1, 7)))

    def play():
        preview(editor)
        wait_playing(editor)
        wait_back(editor)

    part = Melody.build(tmp_path / "PART.SND", text_of(TUNE[1:7]))
    assert_heard_at_last(sound, Melody.samples(part), play)
    editor.wait_selected(list(range(1, 7)))


def test_separators_are_left_out(stand_in, start, melody, tmp_path):
    stand_in.end()
    lines = ["|", "|", "c5 1/8", "|", "|", "|", "d5 1/8", "|"]
    editor = start(windows_path(melody("BARS.SND", text_of(lines))), program_path=stand_in.editor)
    preview(editor)
    wait_until(stand_in.starts, 20, "the player")
    wait_back(editor)
    notes = Melody.build(tmp_path / "NOTES.SND", text_of([line for line in lines if line != "|"]))
    assert stand_in.heard() == Melody.samples(notes)


def test_chosen_tempo_is_heard(stand_in, start, melody, tmp_path):
    stand_in.end()
    editor = start(windows_path(melody("SLOW.SND", text_of(SHORT, 60))), program_path=stand_in.editor)
    editor.type_tempo("240")
    preview(editor)
    wait_until(stand_in.starts, 20, "the player")
    wait_back(editor)
    assert stand_in.heard() == Melody.samples(Melody.build(tmp_path / "FAST.SND", text_of(SHORT, 240)))


def test_unsaved_changes_are_heard_and_stay_unsaved(stand_in, start, melody, tmp_path):
    stand_in.end()
    path = melody("SAVED.SND", text_of(SHORT))
    saved = path.read_bytes()
    editor = start(windows_path(path), program_path=stand_in.editor)
    editor.choose("Up &an octave")
    preview(editor)
    wait_until(stand_in.starts, 20, "the player")
    wait_back(editor)
    shifted = [line.replace("5 ", "6 ") for line in SHORT]
    assert stand_in.heard() == Melody.samples(Melody.build(tmp_path / "UP.SND", text_of(shifted)))
    assert path.read_bytes() == saved
    assert editor.caption() == "Sound Editor - PC:SAVED.SND"
    editor.close()
    editor.message(ASK, "No")


# --- the player


def test_player_is_the_one_beside_the_program():
    folder = program(WINDOWS_BUILD, "Tonex.exe").parent
    assert (folder / PLAYER).is_file()


def test_player_gets_its_documented_command_line(stand_in, start, melody):
    editor = start(windows_path(melody("SHORT.SND", text_of(SHORT))), program_path=stand_in.editor)
    preview(editor)
    wait_until(stand_in.starts, 20, "the player")
    line, = stand_in.starts()
    assert line.startswith("sndrec32 /play /close ")
    path = line.removeprefix("sndrec32 /play /close ")
    name = path.rsplit("\\", 1)[1]
    assert name.startswith("$$") and name.endswith(".wav") and len(name) == len("$$hhmmss.wav")
    assert name[2:8].isdigit()
    files = [file.name for file in editor.prefix.temporary_files(PREVIEWS)]
    assert name in files and len(files) == 2 and any(file.endswith(".snd") for file in files)
    stand_in.end()
    wait_back(editor)


def test_main_window_is_disabled_while_the_player_runs(stand_in, start, melody):
    editor = start(windows_path(melody("SHORT.SND", text_of(SHORT))), program_path=stand_in.editor)
    before = editor.names()
    preview(editor)
    wait_playing(editor)
    wait_until(stand_in.starts, 20, "the player")
    editor.click_key("c4")
    editor.screen.key("delete")
    editor.screen.key("ctrl+z")
    rect = editor.toolbar()[PREVIEW_TOOL]["rect"]
    editor.screen.click(*editor.centre(rect))
    holds(lambda: editor.names() == before and not enabled(editor), 0.5, "nothing that was pressed is done")
    stand_in.end()
    wait_back(editor)
    assert len(stand_in.starts()) == 1
    assert editor.names() == before, "nothing that was pressed meanwhile is done afterwards"


def test_preview_again_after_preview(stand_in, start, melody):
    stand_in.end()
    editor = start(windows_path(melody("SHORT.SND", text_of(SHORT))), program_path=stand_in.editor)
    for times in range(1, 5):
        preview(editor)
        wait_until(lambda: len(stand_in.starts()) == times, 20, "the player")
        wait_back(editor)
    still_works(editor)


def test_killed_player(slow_sound, start, melody):
    editor = start(windows_path(melody("LONG.SND", text_of(["c5 1/1"] * 20, 60))))
    preview(editor)
    wait_playing(editor)
    wait_until(slow_sound.sound, 20, "the sound")
    process = wait_until(lambda: editor.prefix.process_of(PLAYER), 10, "the player's process")
    os.kill(process, signal.SIGKILL)
    wait_back(editor, 10)
    still_works(editor)


def test_player_stopped_by_its_button(slow_sound, start, melody):
    editor = start(windows_path(melody("LONG.SND", text_of(["c5 1/1"] * 20, 60))))
    preview(editor)
    wait_playing(editor)
    wait_until(slow_sound.sound, 20, "the sound")
    wait_until(lambda: editor.screen.focused_title().startswith(PLAYER_TITLE), 10, "the player in front")
    editor.screen.key("enter")
    wait_back(editor, 10)
    assert len(slow_sound.sound()) < 22050 * 60
    still_works(editor)


def test_player_shows_the_melodys_name_where_it_was_given_one(slow_sound, start, melody):
    def shown(editor):
        player = wait_until(lambda: next((window for window in editor.prefix.ask("windows", PLAYER)
                                          if window["text"] == PLAYER_TITLE), None), 20, "the player")
        wait_until(lambda: editor.screen.focused_title().startswith(PLAYER_TITLE), 10, "the player in front")
        texts = [child["text"] for child in editor.children(player["hwnd"])]
        editor.screen.key("enter")
        wait_back(editor, 10)
        return texts[0]

    editor = start(windows_path(melody("LONG.SND", text_of(["c5 1/1"] * 20, 60))))
    preview(editor)
    assert shown(editor) == "LONG.SND"
    editor.choose("&New")
    editor.click_key("c4")
    preview(editor)
    assert shown(editor).startswith("$$")


def test_player_that_runs_long_past_its_sound_is_waited_for(stand_in, start, melody):
    editor = start(windows_path(melody("SHORT.SND", text_of(SHORT))), program_path=stand_in.editor)
    preview(editor)
    wait_playing(editor)
    wait_until(stand_in.starts, 20, "the player")
    holds(lambda: not enabled(editor) and len(editor.prefix.temporary_files(PREVIEWS)) == 2, 5, "the wait")
    stand_in.end()
    wait_back(editor, 5)
    still_works(editor)


def test_player_that_never_ends_does_not_lock_the_user_out(stand_in, start, melody):
    editor = start(windows_path(melody("SHORT.SND", text_of(SHORT))), program_path=stand_in.editor)
    preview(editor)
    wait_playing(editor)
    wait_back(editor, KEPT_WAITING)
    assert editor.prefix.process_of(PLAYER) is not None, "the player runs on"
    still_works(editor)


def test_player_that_can_not_open_the_file(alone, start, melody, play_verb):
    player = windows_path(program(WINDOWS_BUILD, PLAYER))
    play_verb(f'"{player}" /play /close "%1.missing"')
    editor = start(windows_path(melody("SHORT.SND", text_of(SHORT))), program_path=alone.editor)
    preview(editor)
    wait_playing(editor)
    wait_until(lambda: editor.screen.find(PLAYER_TITLE), 20, "the player")
    wait_back(editor)
    still_works(editor)


def test_play_verb_where_there_is_no_player(alone, stand_in, start, melody, play_verb, tmp_path):
    play_verb(f'"{windows_path(stand_in.path / PLAYER)}" /play /close %1')
    path = melody("SHORT.SND", text_of(SHORT))
    editor = start(windows_path(path), program_path=alone.editor)
    preview(editor)
    wait_until(stand_in.starts, 20, "the player")
    wait_playing(editor)
    holds(lambda: not enabled(editor), 1, "its end is waited for as well")
    assert stand_in.heard() == Melody.samples(path)
    stand_in.end()
    wait_back(editor)
    still_works(editor)


def test_no_player_at_all(alone, start, melody):
    editor = start(windows_path(melody("SHORT.SND", text_of(SHORT))), program_path=alone.editor)
    preview(editor)
    editor.message(NO_PLAYER)
    wait_back(editor)
    still_works(editor)


# --- what is refused


def test_score_of_separators_has_no_notes(stand_in, start, melody):
    editor = start(windows_path(melody("BARS.SND", text_of(["|", "|", "|"]))), program_path=stand_in.editor)
    preview(editor)
    editor.message("Cannot find music notes.")
    wait_until(lambda: enabled(editor), 5, "the window")
    editor.prefix.wait_no_files(PREVIEWS)
    assert stand_in.starts() == []
    still_works(editor)


def test_selection_of_separators_has_no_notes(stand_in, start, melody):
    editor = start(windows_path(melody("BARS.SND", text_of(["c5 1/4", "|", "|", "d5 1/4"]))),
                   program_path=stand_in.editor)
    editor.select_columns(1, 2)
    editor.wait_selected([1, 2])
    preview(editor)
    editor.message("Cannot find music notes.")
    editor.prefix.wait_no_files(PREVIEWS)
    assert stand_in.starts() == []


def test_tempo_that_no_file_can_hold(stand_in, start, melody):
    editor = start(windows_path(melody("SHORT.SND", text_of(SHORT))), program_path=stand_in.editor)
    editor.type_tempo("7")
    preview(editor)
    editor.message(WRITE_ERROR)
    wait_until(lambda: enabled(editor), 5, "the window")
    editor.prefix.wait_no_files(PREVIEWS)
    assert stand_in.starts() == []


def test_notes_that_do_not_fit_are_told_and_the_rest_is_heard(stand_in, start, melody):
    stand_in.end()
    # Dotted whole notes take two records each: a file has no room for 300 of them.
    editor = start(windows_path(melody("HALF.SND", text_of(["c5 1/1."] * 150, 640))), program_path=stand_in.editor)
    editor.screen.key("home")
    editor.screen.key("shift+end")
    editor.screen.key("ctrl+c")
    editor.screen.key("ctrl+v")
    wait_until(lambda: editor.toolbar()["Paste"]["enabled"], 5, "300 notes")
    editor.screen.key("home")
    editor.wait_selected([0])
    preview(editor)
    box = editor.wait_dialog("Sound Editor")
    shown = " ".join(child["text"] for child in editor.children(box["hwnd"]))
    assert "Cannot input the last" in shown and "music notes." in shown, shown
    left_out = int(shown.split("Cannot input the last")[1].split("music")[0])
    assert 0 < left_out < 300
    editor.answer(box, "OK")
    wait_until(stand_in.starts, 60, "the player")
    wait_back(editor, 60)
    note = Melody.samples(Melody.build(stand_in.path / "ONE.SND", text_of(["c5 1/1."], 640)))
    assert len(stand_in.heard()) == (300 - left_out) * len(note)


def test_empty_score_has_nothing_to_preview(sound, start):
    editor = start()
    assert not editor.menu()[PREVIEW_ITEM]["enabled"]
    assert not editor.toolbar()[PREVIEW_TOOL]["enabled"]
    editor.click_key("c4")
    wait_until(lambda: editor.toolbar()[PREVIEW_TOOL]["enabled"], 5, "Preview")
    assert editor.menu()[PREVIEW_ITEM]["enabled"]


def test_no_sound_device(start, melody):
    editor = start(windows_path(melody("SHORT.SND", text_of(SHORT))), environment=NoDevice().variables())
    for _ in range(2):
        assert not editor.menu()[PREVIEW_ITEM]["enabled"]
        assert not editor.toolbar()[PREVIEW_TOOL]["enabled"]
        editor.click_key("c4")
        wait_until(lambda: "c4, Quarter note" in editor.names(), 5, "the note")
    editor.screen.click(*editor.centre(editor.toolbar()[PREVIEW_TOOL]["rect"]))
    holds(lambda: enabled(editor) and editor.prefix.temporary_files(PREVIEWS) == [], 0.5, "no preview")


# --- the converting window


@pytest.fixture
def longest(stand_in, start, melody):
    """An editor with the longest melody: 509 half notes at the slowest tempo."""
    editor = start(windows_path(melody("LONGEST.SND", text_of(["c5 1/2"] * 509, 30))), program_path=stand_in.editor)
    editor.screen.key("home")
    editor.wait_selected([0])
    return editor


class Disk:
    """What strace does to the writes of the next previews' sound files."""

    def __init__(self, editor, injection):
        now = time.time()
        paths = [option for folder in editor.prefix.temporary_folders() for second in range(60)
                 for option in ("-P", str(folder / time.strftime("$$%H%M%S.wav", time.localtime(now + second))))]
        self.editor = editor.prefix.process_of("Tonex.exe")
        self.strace = subprocess.Popen(["strace", "-o", "/dev/null", "-p", str(self.editor), *paths,
                                        "-e", "trace=write", "-e", f"inject=write:{injection}"],
                                       stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE,
                                       text=True)
        wait_until(lambda: "attached" in self.strace.stderr.readline(), 10, "strace")

    def go_on(self):
        os.kill(self.editor, signal.SIGCONT)

    def end(self):
        self.strace.terminate()
        self.strace.communicate(timeout=10)


@pytest.fixture
def slow_disk(longest):
    """Every note of the next previews takes milliseconds to write, so that there is time to look and to click."""
    disk = Disk(longest, "delay_enter=4000")
    yield longest
    disk.end()


@pytest.fixture
def stopped_disk(longest):
    """The editor stands still behind the first write to a sound file, which is the header's."""
    longest.disk = Disk(longest, "signal=SIGSTOP:when=1")
    yield longest
    longest.disk.go_on()
    longest.disk.end()


class Watch:
    """Looks at the converting window from another thread and with a connection of its own."""

    def __init__(self, screen_type):
        self.screen = screen_type()
        self.appeared = self.gone = None
        self.bars = []
        self.window = None
        self.stop = False
        self.thread = threading.Thread(target=self.run, daemon=True)
        self.thread.start()

    def run(self):
        while not self.stop and self.gone is None:
            window = self.screen.find(CONVERTING)
            if window is not None and self.appeared is None:
                self.appeared, self.window = time.monotonic(), window
            if window is None and self.appeared is not None:
                self.gone = time.monotonic()
            if window is not None:
                self.look(window)
            time.sleep(0.004)

    def look(self, window):
        """How much of the bar is filled, in pixels of its own colour."""
        try:
            image = self.screen.picture_of(window, frame=False)
        except Exception:  # it closed under our hands
            return
        colours = image.getcolors(100000)
        blue = sum(count for count, (red, green, blue) in colours if blue > red + 60)
        self.bars.append(blue)

    def end(self):
        self.stop = True
        self.thread.join(10)


def preview_and_watch(editor, screen):
    """Clicks Preview; gives what was seen until the converting window was gone."""
    watch = Watch(type(screen))
    screen.move(*editor.centre(editor.toolbar()[PREVIEW_TOOL]["rect"]))
    editor.picture()  # with the button as it looks under the pointer
    screen.button(True)
    screen.button(False)
    wait_until(lambda: watch.gone, 60, "the conversion")
    watch.end()
    wait_back(editor, 60)
    return watch


def test_converting_window_of_the_longest_melody_appears_before_anything_is_written(stopped_disk, stand_in, screen):
    stand_in.end()
    preview(stopped_disk)
    sizes = lambda: [path.stat().st_size for path in stopped_disk.prefix.temporary_files("$$*.wav")]  # noqa: E731
    wait_until(lambda: sizes() == [WAV_HEADER], 20, "the first write")
    wait_until(lambda: screen.find(CONVERTING), 5, "the converting window")
    assert sizes() == [WAV_HEADER], "the editor went on, and the window may have come later"
    # The stop follows the write by a moment; a word to go on that comes before it is lost.
    wait_until(lambda: stopped_disk.disk.go_on() or stand_in.starts(), 60, "the player")
    wait_back(stopped_disk, 60)
    assert len(stand_in.heard()) == 509 * 4 * 22050


def test_bar_moves_while_converting(slow_disk, stand_in, screen):
    stand_in.end()
    bars = preview_and_watch(slow_disk, screen).bars
    while bars and bars[-1] == 0:
        bars.pop()  # a picture of the window as it went
    assert len(set(bars)) >= 10, f"the bar stood at {sorted(set(bars))}"
    fallen = [(one, next_one) for one, next_one in zip(bars, bars[1:]) if next_one < one]
    assert not fallen, f"the bar went back: {fallen}"


def test_converting_window_says_what_happens_in_the_middle_of_the_screen(slow_disk, stand_in, screen):
    preview(slow_disk)
    window = wait_until(lambda: next((w for w in slow_disk.windows() if w["text"] == CONVERTING and w["visible"]), None),
                        10, "the converting window")
    texts = [child["text"] for child in slow_disk.children(window["hwnd"])]
    assert "Now converting Veloxa Sound to WAV..." in texts and "Wait for a moment." in texts
    left, top, right, bottom = window["rect"]
    assert [left + right, top + bottom] == pytest.approx(SCREEN_SIZE, abs=60)
    wait_until(stand_in.starts, 60, "the player")
    assert screen.find(CONVERTING) is None
    stand_in.end()
    wait_back(slow_disk, 60)


class Cover:
    """A window of another program in front of a place of the screen."""

    def __init__(self, screen, left, top, width, height):
        self.screen, self.place = screen, (left, top, width, height)
        self.window = screen.root.create_window(left, top, width, height, 0, X.CopyFromParent, X.InputOutput,
                                                X.CopyFromParent, background_pixel=0xFF00FF, override_redirect=True)
        self.window.map()
        screen.display.sync()

    def lift(self):
        self.window.destroy()
        self.screen.display.sync()


def test_main_window_repaints_while_converting(slow_disk, stand_in, screen):
    stand_in.end()
    left, top, right, bottom = slow_disk.child("TonexPiano")["rect"]
    place = (left + 20, top + 20, right - left - 40, bottom - top - 40)
    slow_disk.picture()  # waits until nothing moves
    uncovered = screen.picture(*place).tobytes()
    own = type(screen)()
    cover = Cover(own, *place)
    wait_until(lambda: own.picture(*place).getpixel((5, 5)) == (255, 0, 255), 5, "the cover")
    x, y = slow_disk.centre(slow_disk.toolbar()[PREVIEW_TOOL]["rect"])
    screen.click(x, y)
    wait_until(lambda: own.find(CONVERTING), 10, "the converting window", step=0.002)
    cover.lift()
    # The converting window itself stands in the middle of the screen: only the strip beside it is compared.
    wait_until(lambda: own.picture(*place).tobytes()[:30000] == uncovered[:30000], 2, "the repainted window", step=0.002)
    assert own.find(CONVERTING) is not None, "it was repainted after the conversion only"
    wait_back(slow_disk, 60)


def test_preview_while_converting_does_nothing(slow_disk, stand_in, screen):
    stand_in.end()
    x, y = slow_disk.centre(slow_disk.toolbar()[PREVIEW_TOOL]["rect"])
    screen.click(x, y)
    wait_until(lambda: screen.find(CONVERTING), 10, "the converting window", step=0.002)
    screen.click(x, y)
    assert screen.find(CONVERTING) is not None, "the second click came too late to be a test"
    wait_until(stand_in.starts, 60, "the player")
    wait_back(slow_disk, 60)
    holds(lambda: not slow_disk.dialogs() and len(stand_in.starts()) == 1, 0.8, "one preview")


# --- closing while a preview runs


def test_closing_while_converting_is_refused(slow_disk, stand_in, screen):
    stand_in.end()
    slow_disk.prefix.ask("post", slow_disk.hwnd, WM_NULL, 0, 0)
    screen.click(*slow_disk.centre(slow_disk.toolbar()[PREVIEW_TOOL]["rect"]))
    wait_until(lambda: screen.find(CONVERTING), 10, "the converting window", step=0.002)
    slow_disk.close()
    assert screen.find(CONVERTING) is not None, "the close came too late to be a test"
    wait_until(stand_in.starts, 60, "the player")
    wait_back(slow_disk, 60)
    slow_disk.screen.key("shift+right")
    slow_disk.wait_selected([0, 1])


@pytest.mark.parametrize("way", ["message", "key", "logging off"])
def test_closing_while_the_player_runs_is_refused(stand_in, start, melody, way):
    editor = start(windows_path(melody("SHORT.SND", text_of(SHORT))), program_path=stand_in.editor)
    preview(editor)
    wait_playing(editor)
    wait_until(stand_in.starts, 20, "the player")
    if way == "message":
        editor.close()
    elif way == "key":
        editor.screen.key("alt+f4")
        editor.wait_input_done()
    else:
        editor.prefix.log_off().wait(30)
    holds(lambda: editor.process.poll() is None and editor.main() is not None and not editor.dialogs(), 1.4,
          "the window without a question")
    stand_in.end()
    wait_back(editor)
    still_works(editor)
    editor.close()
    editor.message(ASK, "No")
    editor.wait_end()
    editor.prefix.wait_no_files(PREVIEWS)


def test_closing_the_converting_window_is_refused(slow_disk, stand_in, screen):
    stand_in.end()
    preview(slow_disk)
    window = wait_until(lambda: next((w for w in slow_disk.windows() if w["text"] == CONVERTING and w["visible"]), None),
                        10, "the converting window")
    slow_disk.prefix.ask("post", window["hwnd"], WM_CLOSE, 0, 0)
    wait_until(stand_in.starts, 60, "the player")
    assert len(stand_in.heard()) == 509 * 4 * 22050
    wait_back(slow_disk, 60)
