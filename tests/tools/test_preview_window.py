"""What the preview window's buttons let a listener hear: two tests of the Windows layer, run with a sound device
that keeps the samples. Runs in the caller's Wine prefix and on the caller's screen."""

import os
import pathlib
import subprocess

from building import WINDOWS_BUILD
from sound_device import Device

PROGRAM = pathlib.Path(os.environ.get("TONEX_WINDOWS_TESTS", WINDOWS_BUILD / "tests/windows/windows_tests.exe"))


def samples(seconds):
    """What the test's WAV file holds."""
    return bytes(i * 37 % 256 for i in range(22050 * seconds))


def run(test, device):
    done = subprocess.run(["wine", str(PROGRAM), f"--gtest_filter=PreviewWindow.{test}"], env=device.environment(),
                          stdin=subprocess.DEVNULL, capture_output=True, timeout=60)
    assert done.returncode == 0, done.stdout.decode(errors="replace")
    assert b"1 test ran" in done.stdout or b"Running 1 test" in done.stdout, "the test is missing"


def test_sound_starts_on_load_and_again_on_play(tmp_path):
    first = tmp_path / "every"
    first.mkdir()
    device = Device(first, append=True)
    run("SoundStartsOnLoadAndAgainOnPlay", device)
    assert device.sound().count(samples(1)) == 2


def test_stop_cuts_the_sound_short(tmp_path):
    device = Device(tmp_path, real_time=22050)
    run("StopCutsTheSoundShort", device)
    heard = device.sound().rstrip(b"\x80")
    # Three seconds more may be on their way to the device when Stop is pressed.
    assert 22050 // 2 < len(heard) < 22050 * 15
    assert samples(30).startswith(heard)
