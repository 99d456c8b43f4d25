"""The small sound player as a user and the editor see it: what reaches the sound device, its window, its keys,
its exit status. Runs in the caller's Wine prefix and on the caller's screen."""

import os
import pathlib
import re
import subprocess
import time

import pefile
import pytest

from building import PRODUCT
from sound_device import Device, NoDevice, assert_heard, assert_heard_at_last, noise, wav_bytes
from wine_paths import windows_path
from xscreen import holds, wait_until

PLAYER = pathlib.Path(os.environ.get("TONEX_PLAYER", PRODUCT / "sndrec32.exe"))
TITLE = "Sound Player"
PLAYED, STOPPED, BAD_FILE, NO_DEVICE, WRONG_USAGE = range(5)


def start(device, *arguments):
    assert PLAYER.is_file(), f"{PLAYER} was not built"
    return subprocess.Popen(["wine", str(PLAYER), *arguments], env=device.environment(),
                            stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


def play(device, path, *options, timeout=60):
    """Plays to the end, with /play /close unless told otherwise; gives the exit status."""
    return start(device, *(options or ("/play", "/close")), windows_path(path)).wait(timeout)


def assert_plays(device, path, samples, silence=b"\x80"):
    """Plays to the end, and every sample reaches the device."""
    def play_once():
        assert play(device, path) == PLAYED
    assert_heard_at_last(device, samples, play_once, silence)


@pytest.fixture
def device(tmp_path):
    return Device(tmp_path)


@pytest.fixture
def long_sound(tmp_path):
    path = tmp_path / "long.wav"
    path.write_bytes(wav_bytes(noise(22050 * 20)))
    return path


@pytest.fixture
def player(screen, tmp_path, long_sound):
    """Starts players that play in real time, with their windows focused; ends what still runs."""
    running = []

    def start_one(*options):
        device = Device(tmp_path, real_time=22050)
        process = start(device, *options, windows_path(long_sound))
        running.append(process)
        process.device = device
        wait_until(lambda: screen.find(TITLE), 20, "the player's window")
        wait_until(lambda: screen.focused_title().startswith(TITLE), 10, "the player's window to have the keyboard")
        wait_until(device.sound, 10, "the sound to begin")
        return process

    yield start_one
    for process in running:
        if process.poll() is None:
            process.terminate()
            process.wait(10)


@pytest.mark.parametrize("count", [1, 2, 255, 256, 2755, 2756, 2757, 11025, 22050, 100000])
def test_every_sample_reaches_the_device(device, tmp_path, count):
    samples = noise(count, seed=count)
    path = tmp_path / "a.wav"
    path.write_bytes(wav_bytes(samples))
    assert_plays(device, path, samples)


def test_silence_in_front_and_behind_is_played_too(device, tmp_path):
    samples = b"\x80" * 5000 + noise(3000) + b"\x80" * 5000
    path = tmp_path / "a.wav"
    path.write_bytes(wav_bytes(samples))
    assert_plays(device, path, samples)
    assert len(device.sound()) >= len(samples)


def test_sixteen_bits_in_two_channels(device, tmp_path):
    samples = noise(44100 * 4)
    path = tmp_path / "a.wav"
    path.write_bytes(wav_bytes(samples, channels=2, rate=44100, bits=16))
    assert_plays(device, path, samples, b"\x00")


def test_sound_without_samples_ends_at_once(device, tmp_path):
    path = tmp_path / "a.wav"
    path.write_bytes(wav_bytes(b""))
    assert play(device, path, timeout=20) == PLAYED
    assert_heard(device, b"")


def test_two_plays_in_a_row_give_the_same_sound(tmp_path):
    path = tmp_path / "a.wav"
    samples = noise(30000)
    path.write_bytes(wav_bytes(samples))
    for name in ("first", "second"):
        (tmp_path / name).mkdir()
        device = Device(tmp_path / name)
        assert_plays(device, path, samples)


def command_line(device, line):
    """Starts the player with a command line as it stands: Python quotes nothing when cmd hands it on."""
    script = device.config.with_name("start.bat")
    script.write_text(f"@{line}\r\n@exit %errorlevel%\r\n")
    return subprocess.Popen(["wine", "cmd", "/c", windows_path(script)], env=device.environment(),
                            stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL).wait(60)


@pytest.mark.parametrize("form", ["/play /close {path}", '/play /close "{path}"', '/PLAY /Close "{path}"',
                                  '"{path}" /play /close', "/close /play {path}"])
def test_path_with_blanks(device, tmp_path, form):
    folder = tmp_path / "my  sounds"
    folder.mkdir()
    path = folder / "$$12 34 56.wav"
    samples = noise(2000)
    path.write_bytes(wav_bytes(samples))
    assert command_line(device, f'"{windows_path(PLAYER)}" ' + form.format(path=windows_path(path))) == PLAYED
    assert_heard(device, samples)


@pytest.fixture
def traced():
    """Lets Wine note the calls of one of the system's functions: traced(device, function, path) gives the lines that
    a play to the end leaves."""
    key = "HKCU\\Software\\Wine\\Debug"

    def reg(*words):
        subprocess.run(["wine", "reg", *words, "/f"], check=True, timeout=60, stdin=subprocess.DEVNULL,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def play_traced(device, function, path):
        reg("add", key, "/v", "RelayInclude", "/d", function)
        done = subprocess.run(["wine", str(PLAYER), "/play", "/close", windows_path(path)], timeout=60, check=True,
                              env={**device.environment(), "WINEDEBUG": "+relay"}, stdin=subprocess.DEVNULL,
                              stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
        return [line for line in done.stderr.decode(errors="replace").splitlines() if f"Call {function}(" in line]

    yield play_traced
    reg("delete", key, "/v", "RelayInclude")


def test_before_its_end_it_lets_any_program_come_to_the_front(traced, device, tmp_path):
    path = tmp_path / "a.wav"
    path.write_bytes(wav_bytes(noise(3000)))
    calls = traced(device, "user32.AllowSetForegroundWindow", path)
    assert [re.search(r"\((\w+)", call)[1] for call in calls] == ["ffffffff"]


def damaged():
    good = wav_bytes(noise(100))
    for size in (0, 3, 11, 12, 20, 43, 44, 100):
        yield f"cut after {size} bytes", good[:size]
    for offset, what in ((0, "RIFF"), (8, "WAVE"), (12, "fmt"), (36, "data")):
        yield f"wrong letters of {what}", good[:offset] + b"x" + good[offset + 1:]
    for offset, width, value, what in ((20, 2, 2, "compressed"), (22, 2, 0, "no channel"), (22, 2, 9, "nine channels"),
                                       (24, 4, 0, "rate 0"), (24, 4, 0xFFFFFFFF, "rate far too high"),
                                       (32, 2, 0, "frames of 0 bytes"), (34, 2, 7, "seven bits"),
                                       (16, 4, 0xFFFFFFF0, "format longer than the file"),
                                       (40, 4, 0xFFFFFFFF, "samples longer than the file")):
        yield what, good[:offset] + value.to_bytes(width, "little") + good[offset + width:]
    yield "a text", b"This is not a sound.\r\n" * 10


def test_damaged_files_are_refused_and_nothing_sounds(tmp_path):
    # The player shows for some seconds what is wrong: all of them at the same time.
    running = []
    for number, (what, content) in enumerate(damaged()):
        folder = tmp_path / str(number)
        folder.mkdir()
        (folder / "a.wav").write_bytes(content)
        device = Device(folder)
        running.append((what, device, start(device, "/play", "/close", windows_path(folder / "a.wav"))))
    for what, device, process in running:
        assert process.wait(60) == BAD_FILE, what
        assert device.sound() == b"", what


def test_missing_file(device, tmp_path):
    assert play(device, tmp_path / "none.wav") == BAD_FILE


def test_folder_instead_of_a_file(device, tmp_path):
    assert play(device, tmp_path) == BAD_FILE


def test_no_sound_device(tmp_path):
    path = tmp_path / "a.wav"
    path.write_bytes(wav_bytes(noise(100)))
    began = time.monotonic()
    assert play(NoDevice(), path) == NO_DEVICE
    assert time.monotonic() - began > 3, "what is wrong must stand there long enough to be read"


@pytest.mark.parametrize("arguments", [(), ("/close", "a.wav"), ("a.wav",), ("/play", "/close"), ("/loop", "/play", "a.wav")])
def test_wrong_usage_is_told(device, screen, arguments):
    process = start(device, *arguments)
    try:
        window = wait_until(lambda: screen.find(TITLE), 20, "the message")
        wait_until(lambda: screen.focused_title() == TITLE, 10, "the message to have the keyboard")
        screen.key("enter")
        assert process.wait(20) == WRONG_USAGE
        assert window
    finally:
        if process.poll() is None:
            process.kill()


@pytest.mark.parametrize("key", ["enter", "space", "escape", "alt+s"])
def test_stopping_by_the_keyboard(player, screen, key):
    process = player("/play", "/close")
    screen.key(key)
    assert process.wait(10) == STOPPED
    assert 0 < len(process.device.sound()) < 22050 * 19


def test_stopping_by_the_mouse(player, screen):
    process = player("/play", "/close")
    left, top, width, height = screen.rect_of(screen.find(TITLE))
    screen.click(left + width * 0.85, top + height * 0.78)
    assert process.wait(10) == STOPPED


def test_closing_the_window_stops(player, screen):
    process = player("/play", "/close")
    screen.key("alt+f4")
    assert process.wait(10) == STOPPED


def test_position_bar_moves(player, screen):
    player("/play", "/close")
    window = screen.find(TITLE)

    def filled():
        picture = screen.picture_of(window, frame=False)
        middle = int(picture.height * 0.40)
        row = picture.crop((0, middle, picture.width, middle + 1))
        return sum(count for count, (red, _, blue) in row.getcolors(row.width) if blue > red + 60)  # the bar's blue

    first = filled()
    wait_until(lambda: filled() > first + 5, 10, "a longer bar")


def test_without_close_the_window_stays_and_plays_again(device, screen, tmp_path):
    path = tmp_path / "a.wav"
    samples = noise(4000)
    path.write_bytes(wav_bytes(samples))
    process = start(device, "/play", windows_path(path))
    try:
        wait_until(lambda: screen.focused_title().startswith(TITLE), 20, "the player's window to have the keyboard")
        wait_until(lambda: len(device.sound()) >= len(samples), 10, "the sound")
        holds(lambda: process.poll() is None, 1, "the player stays")
        assert_heard(device, samples)
        device.kept.unlink()
        screen.key("enter")
        wait_until(lambda: len(device.sound()) >= len(samples), 10, "the sound again")
        assert_heard(device, samples)
        screen.settled_picture_of(screen.find(TITLE))  # of the end of the sound
        screen.key("escape")
        assert process.wait(10) == PLAYED
    finally:
        if process.poll() is None:
            process.kill()


def test_file_may_be_deleted_while_it_plays(player, screen, long_sound):
    process = player("/play", "/close")
    deleted = subprocess.run(["wine", "cmd", "/c", "del", windows_path(long_sound)], stdin=subprocess.DEVNULL,
                             stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, timeout=30)
    assert deleted.returncode == 0
    assert process.poll() is None
    screen.key("enter")
    assert process.wait(10) == STOPPED
    assert not long_sound.exists(), "the deletion takes effect with the player's end at the latest"


def test_small_program_on_the_system_alone():
    assert PLAYER.stat().st_size < 200_000
    libraries = {library.dll.decode().lower() for library in pefile.PE(PLAYER).DIRECTORY_ENTRY_IMPORT}
    assert libraries <= {"comctl32.dll", "kernel32.dll", "msvcrt.dll", "user32.dll", "winmm.dll"}
