"""sndtool, every command, natively and as the Windows program."""
import io
import json
import os
import pty
import resource
import signal
import subprocess
import time
import wave

import pytest

from building import ROOT
from melodies import EMPTY_SND, EXAMPLE_PLAY, EXAMPLE_SECONDS, EXAMPLE_SND, EXAMPLE_TEXT, snd

RATE = 22050
# What the systems say of a file in a folder that is not there.
NO_FOLDER = {"native": "No such file or directory", "windows": "Path not found"}


@pytest.fixture
def example(tmp_path):
    (tmp_path / "tune.snd").write_bytes(EXAMPLE_SND)
    (tmp_path / "tune.txt").write_bytes(EXAMPLE_TEXT)
    return tmp_path


def expected_frames(units, tempo_byte):
    """Samples of records whose spans are whole numbers of samples when added up one by one."""
    return sum(int(u * tempo_byte * RATE / 64) for u in units)


# The command line

def test_no_command_is_wrong_usage(sndtool):
    assert "subcommand is required" in sndtool.bad(2)


@pytest.mark.parametrize("arguments, told", [
    (["bogus", "x.snd"], '"bogus" is no command or option'),
    (["--bogus"], '"--bogus" is no command or option'),
    (["-"], '"-" is no command or option'),
    (["info", "--bogus", "x.snd"], "not expected: --bogus"),
    (["check", "--json", "a.snd"], "not expected: --json"),
    (["wav", "--fit", "a.snd"], "not expected: --fit"),
    (["wav", "a.snd", "-o"], "--output"),
    (["text", "a.snd", "[b]"], '"[b]" is one too many'),
    (["build"], "IN.txt is required"),
])
def test_wrong_usage_names_the_word_at_fault(sndtool, arguments, told):
    text = sndtool.bad(2, *arguments)
    assert text.startswith("sndtool: ") and told in text


@pytest.mark.parametrize("arguments", [
    ["bogus"], ["--bogus"], ["info"], ["check"], ["wav"], ["text"], ["build"], ["info", "--bogus", "x"],
    ["text", "a.snd", "b.snd"], ["wav", "a.snd", "-o"], ["check", "--json", "a.snd"], ["wav", "--fit", "a.snd"],
    ["info", "-o", "x", "a.snd"], ["check", ""], ["text", ""],
    ["wav", "a.snd", "-o", ""], ["build", "a.txt", ""], ["text", "a.snd", "[b]"],
    ["-"], ["info", "-", "-"], ["check", "-", "-"], ["wav", "-", "-", "-o", "-"],
], ids=" ".join)
def test_wrong_usage(sndtool, arguments):
    done = sndtool(*arguments)
    assert done.returncode == 2
    assert done.stderr
    assert done.stdout == b""


def test_help_names_every_command(sndtool):
    text = sndtool.good("--help").decode()
    for word in ["info", "check", "wav", "text", "build", "Exit status", "--version"]:
        assert word in text
    assert b"--fit" in sndtool.good("build", "--help")
    assert b"--json" in sndtool.good("info", "--help")
    assert b"-o" in sndtool.good("wav", "--help")


def test_version_is_that_of_the_project(sndtool):
    lines = (ROOT / "CMakeLists.txt").read_text(encoding="utf-8").splitlines()
    project = next(line for line in lines if line.startswith("project("))
    assert sndtool.good("--version").split() == [b"sndtool", project.split()[2].encode()]


# build

def test_build_writes_beside_the_text(sndtool, example):
    (example / "tune.snd").unlink()
    assert sndtool.good("build", "tune.txt") == b""
    assert (example / "tune.snd").read_bytes() == EXAMPLE_SND
    assert sorted(p.name for p in example.iterdir()) == ["tune.snd", "tune.txt"]


def test_build_replaces_an_old_file_whole(sndtool, example):
    (example / "tune.snd").write_bytes(b"x" * 5000)
    sndtool.good("build", "tune.txt")
    assert (example / "tune.snd").read_bytes() == EXAMPLE_SND


def test_build_to_a_named_file_and_into_a_folder(sndtool, example):
    (example / "folder").mkdir()
    (example / "two.melody").write_bytes(b"tempo 120\n")
    sndtool.good("build", "tune.txt", "-o", "other.bin")
    sndtool.good("build", "tune.txt", "two.melody", "-o", "folder")
    assert (example / "other.bin").read_bytes() == EXAMPLE_SND
    assert (example / "folder/tune.snd").read_bytes() == EXAMPLE_SND
    assert (example / "folder/two.snd").read_bytes() == EMPTY_SND


def test_build_from_standard_input_to_standard_output(sndtool):
    assert sndtool.good("build", "-", stdin=EXAMPLE_TEXT) == EXAMPLE_SND
    assert sndtool.good("build", "-", "-o", "-", stdin=EXAMPLE_TEXT.replace(b"\n", b"\r\n")) == EXAMPLE_SND


def test_build_keeps_every_byte_on_standard_output(sndtool):
    # Stored pitches 10, 13 and 26 are line feed, carriage return and the old end-of-file mark.
    text = b"tempo 120\na2# 1/8..\nc3# 1/16t\nd4 1/32\ng2# 1/32\nb2 1/4\n"
    made = sndtool.good("build", "-", stdin=text)
    assert b"\x0a" in made and b"\x0d" in made
    assert sndtool.good("text", "-", stdin=made) == text


def test_build_names_the_line(sndtool, example):
    (example / "wrong.txt").write_bytes(b"# head\ntempo 120\nc4 1/4\nh4 1/4\n")
    assert sndtool.bad(1, "build", "wrong.txt") == 'sndtool: wrong.txt: line 4: "h4" is no note, r or |\n'
    assert not (example / "wrong.snd").exists()
    assert sndtool.bad(1, "build", "-", stdin=b"tempo 121\n").startswith(
        'sndtool: standard input: line 1: "121" is not in the tempo list: 640 480')


def test_build_goes_on_behind_a_wrong_file(sndtool, example):
    (example / "wrong.txt").write_bytes(b"tempo\n")
    (example / "tune.snd").unlink()
    text = sndtool.bad(1, "build", "wrong.txt", "missing.txt", "tune.txt")
    assert text == "sndtool: wrong.txt: line 1: a number follows tempo\nsndtool: missing.txt: no such file\n"
    assert (example / "tune.snd").read_bytes() == EXAMPLE_SND


def test_build_takes_509_entries_and_names_the_line_of_one_more(sndtool):
    head = b"# head\ntempo 640\n"
    made = sndtool.good("build", "-", stdin=head + b"|\n" * 509)
    assert len(made) == 6 + 6 + 2 * 509
    assert sndtool.bad(1, "build", "-", stdin=head + b"|\n" * 510) == (
        "sndtool: standard input: line 512: entry 510: a melody has at most 509\n")


def test_build_refuses_what_does_not_fit_the_play_block(sndtool, example):
    # A whole note takes two records of the 510: the play block is full behind 255 of them.
    (example / "long.txt").write_bytes(b"tempo 120\n" + b"c5 1/1\n" * 300)
    assert sndtool.bad(1, "build", "long.txt") == (
        "sndtool: long.txt: line 257: entry 256 does not fit the play block; too many by the last 45\n")
    assert not (example / "long.snd").exists()


def test_build_fit_writes_what_fits_and_reports_the_rest(sndtool, example):
    (example / "long.txt").write_bytes(b"tempo 120\n" + b"c5 1/1\n" * 300)
    done = sndtool("build", "long.txt", "--fit")
    assert done.returncode == 0
    assert done.stderr.decode().rstrip() == (
        "sndtool: long.txt: line 257: entry 256 does not fit the play block; left out the last 45")
    entries = json.loads(sndtool.good("info", "--json", "long.snd"))[0]["entries"]
    assert entries == 255
    sndtool.good("check", "long.snd")
    text = sndtool.good("text", "long.snd")
    assert text == b"tempo 120\n" + b"c5 1/1\n" * 255
    assert sndtool.good("build", "-", stdin=text) == (example / "long.snd").read_bytes()


def test_build_fit_writes_what_the_editor_writes_for_the_whole_melody(sndtool):
    # The thirty-seconds at the end make mode 0 the cheapest. What fits is cheaper in mode 1, where dotted whole
    # notes take five records instead of three: the mode is not chosen anew for it.
    text = (b"tempo 160\n" + b"c5 1/1.\n" * 70 + b"d5 1/4t\nd5 1/4t\nd5 1/16\n" * 100 + b"e5 1/32\n" * 139)
    done = sndtool("build", "-", "--fit", stdin=text)
    assert done.returncode == 0
    assert done.stderr.decode().rstrip() == ("sndtool: standard input: line 372: entry 371 does not fit the play "
                                             "block; left out the last 139")
    told = json.loads(sndtool.good("info", "--json", "-", stdin=done.stdout))[0]
    assert (told["timing_mode"], told["entries"]) == (0, 370)
    assert done.stdout[4:10] == bytes([38, 64, 38, 64, 38, 48])
    sndtool.good("check", "-", stdin=done.stdout)


def test_build_fit_says_nothing_of_what_fits(sndtool):
    assert sndtool.good("build", "-", "--fit", stdin=EXAMPLE_TEXT) == EXAMPLE_SND


# text

def test_text_of_a_file(sndtool, example):
    assert sndtool.good("text", "tune.snd") == EXAMPLE_TEXT
    assert sndtool.good("text", "-", stdin=EXAMPLE_SND) == EXAMPLE_TEXT


def test_text_refuses_unknown_codes_with_their_offset(sndtool):
    made = snd(entries=[(26, 10), (26, 50)])
    assert sndtool.bad(1, "text", "-", stdin=made) == (
        f"sndtool: standard input: offset {6 + 4 + 3}: entry 2 has the unknown code 50\n")


def test_text_refuses_more_entries_than_a_melody_has(sndtool):
    made = snd(entries=[(0, 200)] * 510)
    assert sndtool.bad(1, "text", "-", stdin=made) == (
        f"sndtool: standard input: offset {6 + 4 + 2 * 509 + 1}: entry 510: a melody has at most 509\n")


# info

def test_info_tells_all(sndtool, example):
    lines = [line.split(None, 1) for line in sndtool.good("info", "tune.snd").decode().splitlines()]
    assert lines[0] == ["tune.snd"]
    told = {" ".join(line.split()[:-1]): line.split()[-1]
            for line in sndtool.good("info", "tune.snd").decode().splitlines()[1:]}
    assert {name: told[name] for name in list(told)[:9]} == {
        "tempo 120": "(Allegro)", "timing mode": "0", "entries": "6", "notes": "4", "rests": "1",
        "separators": "1", "lowest note": "c4", "highest note": "e5", "duration 2.938": "s"}


def test_info_as_json_is_one_object_a_file(sndtool, example):
    (example / "empty.snd").write_bytes(EMPTY_SND)
    made = json.loads(sndtool.good("info", "--json", "tune.snd", "empty.snd"))
    keys = list(made[0])[:11]
    assert [{key: told[key] for key in keys} for told in made] == [
        {"file": "tune.snd", "tempo": 120, "timing_mode": 0, "entries": 6, "notes": 4, "rests": 1,
         "separators": 1, "unknown": 0, "lowest_note": "c4", "highest_note": "e5",
         "duration_seconds": EXAMPLE_SECONDS},
        {"file": "empty.snd", "tempo": 120, "timing_mode": 0, "entries": 0, "notes": 0, "rests": 0,
         "separators": 0, "unknown": 0, "lowest_note": None, "highest_note": None, "duration_seconds": 0.0}]


def test_info_tells_how_evenly_a_file_plays_what_is_written(sndtool, tmp_path):
    # Tempo 128 has timing mode 2 only: a sixteenth plays one unit instead of one and a half.
    (tmp_path / "even.txt").write_bytes(b"tempo 120\n" + b"c5 1/4\nd5 1/16\n" * 4)
    (tmp_path / "bent.txt").write_bytes(b"tempo 128\n" + b"c5 1/4\nd5 1/16\n" * 4)
    sndtool.good("build", "even.txt", "bent.txt")
    even, bent = json.loads(sndtool.good("info", "--json", "even.snd", "bent.snd"))
    assert (even["j"], even["worst"], even["true_tempo"], even["mending_tempo"]) == (0.0, None, 120.0, None)
    assert bent["true_tempo"] == 128.0 and bent["j"] > 3
    # A quarter 6 of 6 units and a sixteenth 1 of 1.5: together 28 for 30, so a sixteenth lacks 0.4 units of 5/64 s.
    assert bent["worst"] == {"entry": 2, "name": "entry 2 (d5 1/16)", "milliseconds": -31.25, "percent": -28.57}
    assert bent["slower_percent"] == -6.67
    assert (bent["mending_tempo"], bent["mending_scale"]) == (120, 1.0)
    text = sndtool.good("info", "bent.snd").decode()
    assert "at entry 2 (d5 1/16)" in text and "more even at tempo 120 (J " in text


def test_info_tells_no_evenness_of_a_play_block_that_is_none_of_its_entries(sndtool):
    made = json.loads(sndtool.good("info", "--json", "-", stdin=snd([(26, 56), (27, 56)], [(26, 10)])))
    assert made[0]["j"] is None and made[0]["true_tempo"] == 120.0


def test_info_of_standard_input_and_bad_files(sndtool, example):
    (example / "cut.snd").write_bytes(EXAMPLE_SND[:9])
    done = sndtool("info", "--json", "-", "cut.snd", "missing.snd", stdin=EXAMPLE_SND)
    assert done.returncode == 1
    first, second, third = json.loads(done.stdout)
    assert (first["file"], first["entries"]) == ("-", 6)
    assert second["file"] == "cut.snd" and "error" in second
    assert third == {"file": "missing.snd", "error": "no such file"}
    errors = done.stderr.decode().splitlines()
    assert errors[0].startswith("sndtool: cut.snd: offset 8: ")
    assert errors[1] == "sndtool: missing.snd: no such file"


def test_info_counts_unknown_codes(sndtool):
    made = json.loads(sndtool.good("info", "--json", "-", stdin=snd(entries=[(26, 10), (26, 50), (26, 201)])))
    assert (made[0]["entries"], made[0]["notes"], made[0]["unknown"]) == (3, 1, 2)


# check

def test_check_of_good_files(sndtool, example):
    (example / "empty.snd").write_bytes(EMPTY_SND)
    assert sndtool.good("check", "tune.snd", "empty.snd").replace(b"\r", b"") == (
        b"tune.snd: good\nempty.snd: good\n")


@pytest.mark.parametrize("name, made, offset, reason", [
    ("cut play block", EXAMPLE_PLAY[:-2], len(EXAMPLE_PLAY) - 2, "file ends"),
    ("cut edit block", EXAMPLE_SND[:-2], len(EXAMPLE_SND) - 2, "file ends"),
    ("nothing", b"", 0, "file ends"),
    ("format byte", b"\x08" + EXAMPLE_SND[1:], 0, "7"),
    ("tempo byte 0", EXAMPLE_SND[:2] + b"\0" + EXAMPLE_SND[3:], 2, "1 to 32"),
    ("tempo byte 33", EXAMPLE_SND[:2] + b"\x21" + EXAMPLE_SND[3:], 2, "1 to 32"),
    ("tempo 29", snd(tempo=29), 8, "30 to 640"),
    ("tempo 641", snd(tempo=641), 8, "30 to 640"),
    ("tempo of no list", snd(tempo=121), 8, "tempo list"),
    ("mode 3", snd(mode=3), 6, "0 to 2"),
    ("mode without this tempo", snd(mode=1), 6, "timing mode 1 can not express tempo 120"),
    ("unknown code 20", snd([(26, 56)], [(26, 20)]), 13, "entry 1 has the unknown code 20"),
    ("unknown code 255", snd([(26, 56)], [(26, 255)]), 13, "entry 1 has the unknown code 255"),
    ("510 entries", snd(entries=[(0, 200)] * 510), 6 + 4 + 2 * 509, "510 entries"),
    ("bytes behind", EXAMPLE_SND + b"..", len(EXAMPLE_SND), "2 bytes behind the end"),
    ("a length differs", EXAMPLE_SND.replace(b"\x1b\x36", b"\x1b\x35"), 7, "the play block has 53 where the entries give 54"),
    ("a pitch differs", EXAMPLE_SND.replace(b"\x1b\x36", b"\x1c\x36"), 6, "the play block has 28 where the entries give 27"),
    ("a record is missing", EXAMPLE_SND.replace(b"\x1b\x36", b""), 6, "the play block has 40 where the entries give 27"),
    ("the last record is missing", snd(entries=[(26, 10)]), 4, "the play block has 255 where the entries give 26"),
    ("a record too many", snd(records=[(26, 56)]), 4, "the play block has 26 where the entries give 255"),
    ("another tempo byte", snd(tempo_byte=5), 2, "the play block has 5 where the entries give 4"),
], ids=lambda value: value if isinstance(value, str) and len(value) < 30 else "")
def test_check_says_where_and_why(sndtool, name, made, offset, reason):
    text = sndtool.bad(1, "check", "-", stdin=made)
    assert text.startswith(f"sndtool: standard input: offset {offset}: "), text
    assert reason in text
    assert text.count("\n") == 1


def test_check_takes_the_timing_mode_that_the_file_states(sndtool):
    # Tempo 160 exists in all modes: a quarter is 8, 12 or 6 units. Alone it is cheapest in mode 0.
    for mode, tempo_byte, units in [(0, 3, 8), (1, 2, 12), (2, 4, 6)]:
        made = snd([(26, 48 + units)], [(26, 10)], tempo_byte, mode, 160)
        assert sndtool.good("check", "-", stdin=made).replace(b"\r", b"") == b"-: good\n"


def test_check_goes_on_behind_a_bad_file(sndtool, example):
    (example / "bad.snd").write_bytes(b"RIFF")
    done = sndtool("check", "bad.snd", "tune.snd")
    assert (done.returncode, done.stdout.replace(b"\r", b"")) == (1, b"tune.snd: good\n")


def test_a_folder_is_no_file(sndtool, example):
    (example / "folder").mkdir()
    assert sndtool.bad(1, "check", "folder") == "sndtool: folder: is a folder\n"


# wav

def frames_of(bytes_of_wav):
    with wave.open(io.BytesIO(bytes_of_wav)) as sound:
        assert (sound.getnchannels(), sound.getsampwidth(), sound.getframerate()) == (1, 1, RATE)
        assert sound.getnframes() + 44 == len(bytes_of_wav)
        return sound.readframes(sound.getnframes())


def test_wav_beside_the_melody(sndtool, example):
    assert sndtool.good("wav", "tune.snd") == b""
    frames = frames_of((example / "tune.wav").read_bytes())
    assert len(frames) == expected_frames([8, 6, 14, 3, 16], 4)
    rest = int(16 * 4 * RATE / 64)
    assert set(frames[-rest:]) == {128}
    assert min(frames) == 0 and max(frames) == 255


def test_wav_gives_the_same_by_every_road(sndtool, example):
    (example / "folder").mkdir()
    sndtool.good("wav", "tune.snd")
    made = (example / "tune.wav").read_bytes()
    sndtool.good("wav", "tune.snd", "-o", "named.wav")
    sndtool.good("wav", "tune.snd", "-o", "folder")
    sndtool.good("wav", "-", "-o", "piped.wav", stdin=EXAMPLE_SND)
    for name in ["named.wav", "folder/tune.wav", "piped.wav"]:
        assert (example / name).read_bytes() == made, name
    assert sndtool.good("wav", "tune.snd", "-o", "-") == made
    assert sndtool.good("wav", "-", stdin=EXAMPLE_SND) == made
    sndtool.good("wav", "tune.snd")
    assert (example / "tune.wav").read_bytes() == made


def test_wav_needs_the_play_block_only(sndtool):
    made = sndtool.good("wav", "-", stdin=EXAMPLE_PLAY)
    assert len(frames_of(made)) == expected_frames([8, 6, 14, 3, 16], 4)


def test_wav_of_an_empty_melody_is_a_header(sndtool):
    assert frames_of(sndtool.good("wav", "-", stdin=EMPTY_SND)) == b""


@pytest.mark.parametrize("made, offset, reason", [
    (EXAMPLE_PLAY[:-2], len(EXAMPLE_PLAY) - 2, "the file ends before the end of the play block"),
    (b"", 0, "the file ends before the end of the play block"),
    (b"RIFF", 0, "byte 82 where a SND file has 7"),
    (b"\7\1\4\0\xff\xff", 1, "byte 1 where a SND file has 0"),
    (b"\7\0\x21\0\xff\xff", 2, "byte 33 where a tempo byte 1 to 32 stands"),
    (b"\7\0\0\0\xff\xff", 2, "byte 0 where a tempo byte 1 to 32 stands"),
    (b"\7\0\4\1\xff\xff", 3, "byte 1 where a SND file has 0"),
    (snd([(26, 56), (108, 56)]), 6, "record 2 is too high to be played"),
])
def test_wav_of_bad_melodies_leaves_nothing_behind(sndtool, tmp_path, made, offset, reason):
    (tmp_path / "bad.snd").write_bytes(made)
    message = f"offset {offset}: {reason}\n"
    assert sndtool.bad(1, "wav", "bad.snd") == "sndtool: bad.snd: " + message
    assert sorted(p.name for p in tmp_path.iterdir()) == ["bad.snd"]
    done = sndtool("wav", "-", stdin=made)
    assert (done.returncode, done.stdout) == (1, b"")
    assert done.stderr.decode().replace("\r", "") == "sndtool: standard input: " + message


def test_wav_keeps_the_old_file_when_the_melody_is_bad(sndtool, tmp_path):
    (tmp_path / "bad.snd").write_bytes(snd([(26, 56), (108, 56)]))
    (tmp_path / "bad.wav").write_bytes(b"old")
    sndtool.bad(1, "wav", "bad.snd")
    assert (tmp_path / "bad.wav").read_bytes() == b"old"


# Where results go

def test_outputs_that_make_no_sense(sndtool, example):
    (example / "two.snd").write_bytes(EXAMPLE_SND)
    (example / "folder").mkdir()
    (example / "folder/tune.snd").write_bytes(EXAMPLE_SND)
    (example / "sound.wav").write_bytes(EXAMPLE_SND)
    for arguments in [["wav", "tune.snd", "two.snd", "-o", "one.wav"],
                      ["wav", "tune.snd", "two.snd", "-o", "-"],
                      ["wav", "tune.snd", "-o", "missing/"],
                      ["wav", "-", "-o", "folder"],
                      ["wav", "tune.snd", "folder/tune.snd", "-o", "folder"],
                      ["wav", "sound.wav"],
                      ["build", "tune.txt", "-o", "tune.txt"]]:
        before = {p: p.read_bytes() for p in example.rglob("*") if p.is_file()}
        assert sndtool.bad(2, *arguments), arguments
        assert {p: p.read_bytes() for p in example.rglob("*") if p.is_file()} == before


def test_a_folder_that_is_not_there(sndtool, example):
    assert sndtool.bad(1, "wav", "tune.snd", "-o", "missing/x.wav") == (
        f"sndtool: missing/x.wav: can not be written: {NO_FOLDER[sndtool.name]}\n")
    assert sndtool.bad(1, "build", "tune.txt", "-o", "missing/x.snd") == (
        f"sndtool: missing/x.snd: can not be written: {NO_FOLDER[sndtool.name]}\n")
    assert "tune.txt/x.snd: can not be written: " in sndtool.bad(1, "build", "tune.txt", "-o", "tune.txt/x.snd")


def test_names_with_any_characters(sndtool, tmp_path):
    for name in ["メロディー", "ton éø", "a b & c", "x.y", "[z]", "𝄞", "'q'"]:
        (tmp_path / f"{name}.txt").write_bytes(EXAMPLE_TEXT)
        sndtool.good("build", f"{name}.txt")
        assert (tmp_path / f"{name}.snd").read_bytes() == EXAMPLE_SND
        sndtool.good("wav", f"{name}.snd", "-o", f"{name} 音.wav")
        assert (tmp_path / f"{name} 音.wav").stat().st_size > 44
        assert sndtool.good("check", f"{name}.snd").decode() == f"{name}.snd: good\n"
        assert json.loads(sndtool.good("info", "--json", f"{name}.snd"))[0]["file"] == f"{name}.snd"
    assert sndtool.bad(1, "check", "音符.snd") == "sndtool: 音符.snd: no such file\n"


def test_names_without_an_extension_get_one(sndtool, tmp_path):
    (tmp_path / "dir.d").mkdir()
    (tmp_path / "dir.d/plain").write_bytes(EXAMPLE_TEXT)
    (tmp_path / ".hidden").write_bytes(EXAMPLE_TEXT)
    sndtool.good("build", "dir.d/plain", ".hidden")
    assert (tmp_path / "dir.d/plain.snd").read_bytes() == EXAMPLE_SND
    assert (tmp_path / ".hidden.snd").read_bytes() == EXAMPLE_SND


def test_names_that_start_with_a_dash_stand_behind_two(sndtool, tmp_path):
    (tmp_path / "-x.snd").write_bytes(EXAMPLE_SND)
    (tmp_path / "a.snd").write_bytes(EXAMPLE_SND)
    assert sndtool.good("check", "--", "-x.snd") == b"-x.snd: good\n"
    assert sndtool.good("check", "a.snd", "--", "-x.snd", "a.snd") == (
        b"a.snd: good\n-x.snd: good\na.snd: good\n")
    sndtool.good("wav", "-o", "out.wav", "--", "-x.snd")
    assert (tmp_path / "out.wav").is_file()
    assert sndtool.good("check", "--", "-", stdin=EXAMPLE_SND) == b"-: good\n"


def test_names_in_brackets_are_no_lists(sndtool, tmp_path):
    for name in ["[z]", "[a,b]", "[]"]:
        (tmp_path / name).write_bytes(EXAMPLE_SND)
        assert sndtool.good("check", name).decode() == f"{name}: good\n"
        sndtool.good("wav", name, "-o", f"[{name}]")
        assert (tmp_path / f"[{name}]").is_file()


def test_an_input_larger_than_any_melody(sndtool, tmp_path):
    with open(tmp_path / "large.mel", "wb") as large:
        large.truncate(17 * 1024 * 1024)
    for command in [["info"], ["check"], ["wav"], ["text"], ["build"], ["import"], ["export", "--to", "mid"]]:
        assert sndtool.bad(1, *command, "large.mel") == "sndtool: large.mel: is larger than any melody\n"
    assert sorted(p.name for p in tmp_path.iterdir()) == ["large.mel"]


# What only a POSIX system has

@pytest.mark.native
def test_names_that_are_no_utf8(sndtool, tmp_path):
    name = os.fsencode(tmp_path) + b"/bad\xff\xc3name"
    with open(name + b".txt", "wb") as file:
        file.write(EXAMPLE_TEXT)
    assert sndtool.good("build", name + b".txt") == b""
    with open(name + b".snd", "rb") as file:
        assert file.read() == EXAMPLE_SND
    sndtool.good("wav", name + b".snd")
    assert os.path.exists(name + b".wav")
    assert sndtool.good("check", name + b".snd") == name + b".snd: good\n"
    made = json.loads(sndtool.good("info", "--json", name + b".snd"))
    assert made[0]["file"].endswith("bad\ufffd\ufffdname.snd")
    done = sndtool("check", b"no\xfe.snd")
    assert (done.returncode, done.stderr) == (1, b"sndtool: no\xfe.snd: no such file\n")


@pytest.mark.native
def test_a_full_device_is_written_in_place_and_reported(sndtool, example):
    for arguments in [["wav", "tune.snd", "-o", "/dev/full"], ["build", "tune.txt", "-o", "/dev/full"],
                      ["wav", "-", "-o", "/dev/full"]]:
        text = sndtool.bad(1, *arguments, stdin=EXAMPLE_SND)
        assert text == "sndtool: /dev/full: can not be written: No space left on device\n"
        assert not os.path.isfile("/dev/full")
    sndtool.good("wav", "tune.snd", "-o", "/dev/null")
    sndtool.good("build", "tune.txt", "-o", "/dev/null")
    assert not os.path.isfile("/dev/null")


@pytest.mark.native
@pytest.mark.parametrize("arguments", [["wav", "tune.snd", "-o", "-"], ["build", "tune.txt", "-o", "-"],
                                       ["text", "tune.snd"], ["info", "tune.snd"], ["info", "--json", "tune.snd"],
                                       ["check", "tune.snd"], ["--help"], ["--version"]], ids=" ".join)
def test_a_full_standard_output_is_reported(sndtool, example, arguments):
    with open("/dev/full", "wb") as full:
        done = subprocess.run(sndtool.command(*arguments), cwd=example, env=sndtool.environment(), stdout=full,
                              stderr=subprocess.PIPE, timeout=60)
    assert done.returncode == 1
    assert done.stderr == b"sndtool: standard output: can not be written: No space left on device\n"


@pytest.mark.native
def test_a_disk_that_takes_no_more_leaves_the_old_file(sndtool, example):
    """A file size limit stands for the full disk: a write behind it fails."""
    def limit():
        resource.setrlimit(resource.RLIMIT_FSIZE, (20, 20))
        signal.signal(signal.SIGXFSZ, signal.SIG_IGN)

    old = EXAMPLE_SND[:-1]
    (example / "tune.snd").write_bytes(old)
    done = sndtool("build", "tune.txt", preexec_fn=limit)
    assert (done.returncode, done.stderr) == (1, b"sndtool: tune.snd: can not be written: File too large\n")
    assert (example / "tune.snd").read_bytes() == old
    assert sorted(p.name for p in example.iterdir()) == ["tune.snd", "tune.txt"]

    (example / "tune.snd").write_bytes(EXAMPLE_SND)
    done = sndtool("wav", "tune.snd", preexec_fn=limit)
    assert (done.returncode, done.stderr) == (1, b"sndtool: tune.wav: can not be written: File too large\n")
    assert sorted(p.name for p in example.iterdir()) == ["tune.snd", "tune.txt"]


@pytest.mark.native
def test_a_link_stays_and_its_file_is_replaced(sndtool, example):
    (example / "there").mkdir()
    (example / "there/real.snd").write_bytes(b"old")
    (example / "link.snd").symlink_to("there/real.snd")
    sndtool.good("build", "tune.txt", "-o", "link.snd")
    assert (example / "link.snd").is_symlink()
    assert (example / "there/real.snd").read_bytes() == EXAMPLE_SND
    assert sorted(p.name for p in (example / "there").iterdir()) == ["real.snd"]


@pytest.mark.native
def test_a_read_only_file_is_replaced(sndtool, example):
    (example / "tune.snd").write_bytes(b"old")
    (example / "tune.snd").chmod(0o444)
    sndtool.good("build", "tune.txt")
    assert (example / "tune.snd").read_bytes() == EXAMPLE_SND


def run_on_terminal(sndtool, arguments, wait):
    """Runs with standard error on a terminal and standard output on a pipe that is read after `wait` seconds;
    gives what both received."""
    master, slave = pty.openpty()
    running = subprocess.Popen(sndtool.command(*arguments), cwd=sndtool.folder, env=sndtool.environment(),
                               stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=slave)
    os.close(slave)
    time.sleep(wait)
    out = running.stdout.read()
    assert running.wait(timeout=60) == 0
    told = b""
    while True:
        try:
            block = os.read(master, 4096)
        except OSError:  # how a terminal that nobody has open any more reports its end
            break
        if not block:
            break
        told += block
    os.close(master)
    return out, told.decode()


@pytest.mark.native
def test_a_progress_bar_on_a_terminal_after_a_second(sndtool, tmp_path):
    (tmp_path / "long.snd").write_bytes(snd([(38, 64)] * 60, tempo_byte=32))
    out, told = run_on_terminal(sndtool, ["wav", "long.snd", "-o", "-"], wait=1.5)
    assert len(out) == 44 + 60 * 8 * RATE
    bars = [bar for bar in told.split("\r") if bar.strip()]
    assert bars and all(bar.startswith("[") and bar.endswith(" %") for bar in bars), told
    percents = [int(bar.split("]")[1].split("%")[0]) for bar in bars]
    assert percents == sorted(percents) and 0 <= percents[0] and percents[-1] <= 100
    assert told.endswith("\r") and told.split("\r")[-2].strip() == ""  # taken off the terminal at the end


@pytest.mark.native
def test_no_progress_bar_for_short_work(sndtool, example):
    _, told = run_on_terminal(sndtool, ["wav", "tune.snd", "-o", "-"], wait=0)
    assert told == ""


@pytest.mark.native
def test_no_progress_bar_without_a_terminal(sndtool, tmp_path):
    (tmp_path / "long.snd").write_bytes(snd([(38, 64)] * 60, tempo_byte=32))
    running = subprocess.Popen(sndtool.command("wav", "long.snd", "-o", "-"), cwd=tmp_path,
                               env=sndtool.environment(), stdout=subprocess.PIPE, stderr=subprocess.PIPE)
    time.sleep(1.5)  # the samples wait for their reader, longer than work without a bar takes
    out, told = running.communicate(timeout=60)
    assert (running.returncode, told) == (0, b"")
    assert len(out) == 44 + 60 * 8 * RATE


@pytest.mark.native
def test_bytes_are_not_written_to_a_terminal(sndtool, example):
    master, slave = pty.openpty()
    done = subprocess.run(sndtool.command("wav", "tune.snd", "-o", "-"), cwd=example, env=sndtool.environment(),
                          stdout=slave, stderr=subprocess.PIPE, timeout=60)
    os.close(slave)
    os.close(master)
    assert done.returncode == 2
    assert b"terminal" in done.stderr
