"""Saving is all or nothing: a full disk, a folder that is gone, a program killed in the middle of saves."""

import os
import random
import shutil
import signal
import subprocess
import time

from melody import Melody
from wine_paths import windows_path
from words import ASK, UNTITLED, WRITE_ERROR
from xscreen import wait_until


KILLS = int(os.environ.get("TONEX_KILLS", "25"))  # tests/kill_run asks for more


def fill(folder):
    """Takes the room that is left."""
    with open(folder / "filler", "wb", buffering=0) as filler:
        try:
            while filler.write(b"x" * 512):
                pass
        except OSError:
            pass


def test_on_a_full_disk_the_old_file_stays_whole(start, small_disk):
    path = Melody.build(small_disk / "FULL.SND", Melody.scale(200))
    before = path.read_bytes()
    editor = start(windows_path(path))
    editor.screen.key("end")
    editor.click_key("c8")
    fill(small_disk)
    caption = editor.caption()
    editor.screen.key("ctrl+s")
    editor.message(WRITE_ERROR)
    assert path.read_bytes() == before
    assert sorted(os.listdir(small_disk)) == ["FULL.SND", "filler"], "no temporary file is left"
    assert editor.caption() == caption
    # The changes are still unsaved.
    editor.close()
    editor.message(ASK, "Cancel")
    # With room again the same command succeeds.
    (small_disk / "filler").unlink()
    editor.screen.key("ctrl+s")
    wait_until(lambda: Melody.text(path)[-1] == "c8 1/4", 8, "the saved file")
    editor.close()
    editor.wait_end()


def test_on_a_full_disk_a_new_file_leaves_nothing(start, small_disk):
    editor = start()
    editor.click_key("c4")
    fill(small_disk)
    editor.save_as(small_disk / "NEW.SND")
    editor.message(WRITE_ERROR)
    assert os.listdir(small_disk) == ["filler"]
    assert editor.caption() == UNTITLED


def test_a_folder_that_is_gone_is_a_write_error(start, tmp_path):
    folder = tmp_path / "gone"
    folder.mkdir()
    editor = start(windows_path(Melody.build(folder / "GONE.SND", "tempo 120\nc4 1/4\n")))
    editor.screen.key("end")
    editor.click_key("d4")
    editor.wait_names(["c4, Quarter note", "d4, Quarter note", "End"])
    shutil.rmtree(folder)
    editor.screen.key("ctrl+s")
    editor.message(WRITE_ERROR)
    assert editor.caption() == "Sound Editor - PC:GONE.SND"
    editor.close()
    editor.message(ASK, "Cancel")


def whole_melodies(tmp_path):
    """Two files of different length: the old and the new content."""
    old = Melody.build(tmp_path / "OLDONE.SND", Melody.scale(300)).read_bytes()
    new = Melody.build(tmp_path / "NEWONE.SND", Melody.scale(300) + "c8 1/4\n").read_bytes()
    assert old != new
    return old, new


def test_killed_at_any_moment_of_a_save_the_file_is_whole(start, tmp_path):
    old, new = whole_melodies(tmp_path)
    path = tmp_path / "KILLED.SND"
    chance = random.Random(20)
    seen = {"old": 0, "new": 0}
    for _ in range(KILLS):
        path.write_bytes(old)
        editor = start(windows_path(path))
        editor.screen.key("end")
        editor.click_key("c8")
        editor.screen.key("ctrl+s", pause=0)
        time.sleep(chance.uniform(0, 0.012))
        editor.kill()
        content = path.read_bytes()
        assert content in (old, new), f"{len(content)} bytes, neither the old nor the new melody"
        seen["old" if content == old else "new"] += 1
    print(seen)


def test_killed_between_writing_and_renaming_the_old_file_is_whole(start, tmp_path):
    """The system's flush of the new bytes is the last call before the rename: the program dies in it."""
    old, new = whole_melodies(tmp_path)
    path = tmp_path / "FLUSH.SND"
    path.write_bytes(old)
    editor = start(windows_path(path))
    editor.screen.key("end")
    editor.click_key("c8")
    tracer = subprocess.Popen(["strace", "-f", "-q", "-o", str(tmp_path / "trace"), "-e", "trace=fsync,fdatasync",
                               "-e", "inject=fsync,fdatasync:signal=SIGKILL", "-p", str(editor.process.pid)],
                              stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    wait_until(lambda: "TracerPid:\t0" not in open(f"/proc/{editor.process.pid}/status", encoding="ascii").read(),
               5, "the tracer")
    editor.screen.key("ctrl+s")
    assert editor.process.wait(10) == -signal.SIGKILL, "the program did not flush the file"
    tracer.wait(10)
    assert path.read_bytes() == old
    left = [name for name in os.listdir(tmp_path) if name not in ("FLUSH.SND", "OLDONE.SND", "NEWONE.SND", "trace")]
    # What the killed program left behind does not stand in the way of the next save.
    again = start(windows_path(path))
    again.screen.key("end")
    again.click_key("c8")
    again.screen.key("ctrl+s")
    wait_until(lambda: path.read_bytes() == new, 8, "the saved file")
    assert len(left) <= 1, left


def test_a_write_error_of_the_system_is_told(start, tmp_path):
    """Every write to a file fails as on a full disk, in the middle of the program's own calls."""
    path = Melody.build(tmp_path / "ENOSPC.SND", "tempo 120\nc4 1/4\n")
    before = path.read_bytes()
    editor = start(windows_path(path))
    editor.screen.key("end")
    editor.click_key("c8")
    tracer = subprocess.Popen(["strace", "-f", "-q", "-o", str(tmp_path / "trace"), "-e", "trace=fsync,fdatasync",
                               "-e", "inject=fsync,fdatasync:error=EIO", "-p", str(editor.process.pid)],
                              stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    wait_until(lambda: "TracerPid:\t0" not in open(f"/proc/{editor.process.pid}/status", encoding="ascii").read(),
               5, "the tracer")
    try:
        editor.screen.key("ctrl+s")
        editor.message(WRITE_ERROR)
        assert path.read_bytes() == before
    finally:
        tracer.terminate()
        tracer.wait(10)


def test_a_start_deletes_what_killed_runs_left_and_nothing_else(start, prefix):
    day = 24 * 60 * 60
    ages = {"$$123456.snd": 2 * day, "$$123456.wav": 2 * day, "SndA1B2.tmp": 2 * day, "~snd77.tmp": 2 * day,
            "$$123457.snd": 60, "Snd1.tmp": 60, "Sndbox.tmp": 2 * day, "$$999999.wav": 2 * day}
    for folder in prefix.temporary_folders():
        for name, age in ages.items():
            (folder / name).write_bytes(b"x")
            os.utime(folder / name, (time.time() - age,) * 2)
    editor = start()
    kept = {"$$123457.snd", "Snd1.tmp", "Sndbox.tmp", "$$999999.wav"}
    wait_until(lambda: any(set(ages) & set(os.listdir(folder)) == kept for folder in prefix.temporary_folders()), 5,
               "a swept folder for temporary files")
    editor.close()
    editor.wait_end()
