"""sndtool's import and export: against readers and writers of others, natively and as the Windows program."""
import json
import random
import subprocess

import mido
import pytest

from melodies import EXAMPLE_SND, snd

# Tunes out of copyright, as abc2midi takes them.
ODE = """X:1
T:Ode
M:4/4
L:1/4
Q:1/4=120
K:C
E E F G|G F E D|C C D E|E3/2 D/2 D2|
E E F G|G F E D|C C D E|D3/2 C/2 C2|]
"""
GREENSLEEVES = """X:1
T:Greensleeves
M:6/8
L:1/8
Q:3/8=54
K:Am
A|c2 d e>fe|d2 B G>AB|c2 A A>^GA|B2 ^G E2 A|
c2 d e>fe|d2 B G>AB|c>BA ^G>^F^G|A3 A2|]
"""
TRIPLETS = """X:1
T:Triplets
M:4/4
L:1/8
Q:1/4=80
K:C
(3CDE (3FGA c2 z2|(3cBA (3GFE D4|]
"""
RING = b"Scale:d=8,o=5,b=120:c,d,e,f,4g,p,16a,16b,2c6.\n"


def lines(text):
    return text.decode().replace("\r", "").splitlines()


def abc2midi(folder, name, abc):
    (folder / f"{name}.abc").write_text(abc, encoding="ascii")
    subprocess.run(["abc2midi", f"{name}.abc", "-o", f"{name}.mid"], cwd=folder, check=True, capture_output=True)
    return f"{name}.mid"


def report(sndtool, *arguments, status=0):
    done = sndtool(*arguments, "--json")
    assert done.returncode == status, done
    return json.loads(done.stdout)


def midicsv(data, folder):
    (folder / "csv.mid").write_bytes(data)
    done = subprocess.run(["midicsv", "csv.mid"], cwd=folder, check=True, capture_output=True, text=True)
    return [[word.strip() for word in line.split(",")] for line in done.stdout.splitlines()]


# Ring tones

def test_a_ring_tone_becomes_a_melody(sndtool, tmp_path):
    (tmp_path / "ring.txt").write_bytes(RING)
    done = sndtool("import", "ring.txt")
    assert done.returncode == 0
    told = lines(done.stderr)
    assert told[0] == 'ring.txt: tune 1 "Scale" -> ring.snd'
    assert "  tempo        120 for 120.0" in told and "  rounding     J 0.00 (hardly heard)" in told
    assert "  size         9 of 509 entries, 10 of 510 tones, 3.5 s" in told
    assert lines(sndtool.good("text", "ring.snd")) == [
        "tempo 120", "c5 1/8", "d5 1/8", "e5 1/8", "f5 1/8", "g5 1/4", "r 1/8", "a5 1/16", "b5 1/16", "c6 1/2."]
    sndtool.good("check", "ring.snd")


def test_several_tunes_get_names_that_the_organiser_takes(sndtool, tmp_path):
    (tmp_path / "rings").mkdir()
    (tmp_path / "rings.txt").write_bytes(b"A long name:b=120:c\nA long name!:b=120:d\n:b=120:e\n")
    told = report(sndtool, "import", "rings.txt", "-o", "rings")
    assert [one["output"].replace("\\", "/") for one in told] == [
        "rings/Alongnam.snd", "rings/Alongna2.snd", "rings/TUNE.snd"]
    assert sorted(path.name for path in (tmp_path / "rings").iterdir()) == ["Alongna2.snd", "Alongnam.snd", "TUNE.snd"]
    assert len(report(sndtool, "import", "rings.txt", "--list")) == 3
    assert report(sndtool, "import", "rings.txt", "--track", "2", "-o", "two.snd")[0]["name"] == "A long name!"
    assert sndtool.bad(1, "import", "rings.txt", "--track", "4").startswith("sndtool: rings.txt: there are only 3 tunes")


def test_a_wrong_ring_tone_is_refused_with_line_and_column(sndtool, tmp_path):
    (tmp_path / "wrong.txt").write_bytes(b"x:b=90:c\ny:b=90:c,8x\n")
    assert sndtool.bad(1, "import", "wrong.txt").replace("\r", "") == (
        'sndtool: wrong.txt: line 2, column 10: "8x" is no note or rest\n')
    assert not (tmp_path / "wrong.snd").exists()


def test_octave_transpose_and_speed(sndtool, tmp_path):
    (tmp_path / "ring.txt").write_bytes(b"x:d=4,o=5,b=120:c,g\n")

    def text(*options):
        sndtool("import", "ring.txt", "-o", "x.snd", *options)
        return lines(sndtool.good("text", "x.snd"))

    assert text("--octave", "1") == ["tempo 120", "c6 1/4", "g6 1/4"]
    assert text("--transpose", "-2") == ["tempo 120", "a4# 1/4", "f5 1/4"]
    assert text("--octave", "-3") == ["tempo 120", "c4 1/4", "g4 1/4"]  # the piano begins there
    assert text("--octave", "-2", "--transpose", "0") == ["tempo 120", "c3 1/4", "g3 1/4"]
    assert text("--speed", "2") == ["tempo 240", "c5 1/4", "g5 1/4"]
    assert text("--from", "0.5") == ["tempo 120", "g5 1/4"]
    assert text("--to", "0.5") == ["tempo 120", "c5 1/4"]


def test_a_tune_is_moved_as_a_whole_and_never_folded(sndtool, tmp_path):
    (tmp_path / "low.txt").write_bytes(b"x:d=4,o=3,b=120:a,c4,e6\n")
    told = report(sndtool, "import", "low.txt")
    assert told[0]["half_tones"] == 12
    assert lines(sndtool.good("text", "low.snd"))[1:] == ["a4 1/4", "c5 1/4", "e7 1/4"]
    assert report(sndtool, "import", "low.txt", "--transpose", "fit")[0]["half_tones"] == 3
    (tmp_path / "wide.txt").write_bytes(b"x:d=4,o=3,b=120:c,c8\n")
    assert "spans 61 half tones, the piano has 49" in sndtool.bad(1, "import", "wide.txt")


def test_strict_refuses_what_would_be_heard(sndtool, tmp_path):
    (tmp_path / "fast.txt").write_bytes(b"x:d=8,o=5,b=285:c,d,e,f,4g,4a\n")
    told = report(sndtool, "import", "fast.txt")
    assert told[0]["j"] > 1 and told[0]["exact_j"] < 1
    (tmp_path / "fast.snd").unlink()
    assert "would be bent by J = " in sndtool.bad(1, "import", "fast.txt", "--strict")
    assert not (tmp_path / "fast.snd").exists()
    assert report(sndtool, "import", "fast.txt", "--strict", "--exact")[0]["method"] == "exact"


def test_what_does_not_fit_is_told_in_seconds_and_fit_takes_the_part(sndtool, tmp_path):
    (tmp_path / "long.txt").write_bytes(b"x:d=8,o=5,b=120:" + b",".join([b"c"] * 600) + b"\n")
    assert "is too long: 127.2 of 150.0 s fit" in sndtool.bad(1, "import", "long.txt")
    assert not (tmp_path / "long.snd").exists()
    told = report(sndtool, "import", "long.txt", "--fit")[0]
    assert (told["entries"], told["whole"], told["seconds_that_fit"]) == (509, False, 127.25)
    assert report(sndtool, "import", "long.txt", "--from", "100")[0]["whole"]
    sndtool.good("check", "long.snd")


# MIDI by another's writer

@pytest.mark.parametrize("abc, tempo, first", [
    (ODE, 120, ["e4 1/4", "e4 1/4", "f4 1/4", "g4 1/4"]),
    (GREENSLEEVES, 80, ["a4 1/8", "c5 1/4", "d5 1/8", "e5 1/8.", "f5 1/16", "e5 1/8"]),
    (TRIPLETS, 80, ["c4 1/8t", "d4 1/8t", "e4 1/8t", "f4 1/8t", "g4 1/8t", "a4 1/8t", "c5 1/4", "r 1/4"]),
], ids=["ode", "greensleeves", "triplets"])
def test_midi_of_abc2midi(sndtool, tmp_path, abc, tempo, first):
    told = report(sndtool, "import", abc2midi(tmp_path, "tune", abc), "-o", "tune.snd")[0]
    assert told["tempo"] == tempo and told["j"] <= 1 and told["whole"] and told["method"] == "score"
    assert lines(sndtool.good("text", "tune.snd"))[1:1 + len(first)] == first
    sndtool.good("check", "tune.snd")


def test_the_list_of_a_midi_file_with_several_voices(sndtool, tmp_path):
    name = abc2midi(tmp_path, "two", "X:1\nT:Two\nM:4/4\nL:1/4\nQ:1/4=120\nK:C\nV:1\nc d e f|g a b c'|\n"
                                     "V:2\n[CEG]4|[CEG]4|\n")
    told = report(sndtool, "import", name, "--list")
    notes = {one["channel"]: (one["notes"], one["overlapping"], one["melody"]) for one in told}
    assert notes == {1: (8, 0, True), 2: (6, 4, False)}
    text = sndtool.good("import", name, "--list").decode()
    assert "the melody, if nothing else is asked for" in text
    other = report(sndtool, "import", name, "--channel", "2", "-o", "chord.snd")[0]
    assert other["notes"] == 2 and {"what": "took the highest note of a chord", "times": 4} in other["remarks"]
    assert "there is no melody" in sndtool.bad(1, "import", name, "--channel", "7")
    assert "channel 10 has drums" in sndtool.bad(1, "import", name, "--channel", "10")


def test_a_midi_file_of_mido_played_by_hand(sndtool, tmp_path):
    generator = random.Random(3)
    track = mido.MidiTrack()
    for key in [60, 62, 64, 65, 67, 69, 71, 72] * 3:
        track.append(mido.Message("note_on", note=key, velocity=80, time=generator.randrange(3, 60)))
        track.append(mido.Message("note_off", note=key, velocity=0, time=generator.randrange(150, 500)))
    file = mido.MidiFile(type=0, ticks_per_beat=480)
    file.tracks.append(track)
    file.save(tmp_path / "hand.mid")
    told = report(sndtool, "import", "hand.mid", "-o", "hand.snd")[0]
    assert told["method"] == "exact" and told["j"] <= 1.1 and told["notes"] == 24
    assert told["entries"] <= 60
    sndtool.good("check", "hand.snd")


def test_broken_midi_is_refused_with_the_offset(sndtool, tmp_path):
    (tmp_path / "zero.mid").write_bytes(b"MThd\0\0\0\6\0\0\0\1\0\0MTrk\0\0\0\4\0\xff\x2f\0")
    assert sndtool.bad(1, "import", "zero.mid") == "sndtool: zero.mid: offset 12: the division is 0\n"
    (tmp_path / "junk.bin").write_bytes(bytes(range(256)))
    assert "neither a MIDI file nor a ring tone" in sndtool.bad(1, "import", "junk.bin")
    (tmp_path / "is.bin").write_bytes(EXAMPLE_SND)
    assert "is a SND file already" in sndtool.bad(1, "import", "is.bin", "-o", "x.snd")


# Export, read by others

def melody(sndtool, text):
    made = sndtool.good("build", "-", stdin=text)
    (sndtool.folder / "m.snd").write_bytes(made)
    return made


def test_midi_is_what_the_file_plays_by_midicsv_and_mido(sndtool, tmp_path):
    melody(sndtool, b"tempo 120\nc4 1/4\nr 1/8\n|\nd5# 1/1.\n")
    sndtool("export", "m.snd", "--to", "mid")
    made = (tmp_path / "m.mid").read_bytes()
    rows = midicsv(made, tmp_path)
    assert rows[0] == ["0", "0", "Header", "0", "1", "480"]
    # A unit is 60 ticks; a note sounds to three quarters of its last record's units.
    assert [row[1:6] for row in rows if row[2] in ("Note_on_c", "Note_off_c")] == [
        ["0", "Note_on_c", "0", "60", "100"], ["360", "Note_off_c", "0", "60", "0"],
        ["720", "Note_on_c", "0", "75", "100"], [str(720 + 32 * 60 + 16 * 45), "Note_off_c", "0", "75", "0"]]
    assert [row[1:4] for row in rows if row[2] == "Marker_t"] == [["720", "Marker_t", '"|"']]
    assert [row[1:4] for row in rows if row[2] == "Tempo"] == [["0", "Tempo", "500000"]]
    assert rows[-2][1:3] == [str(720 + 48 * 60), "End_track"]
    assert mido.MidiFile(tmp_path / "m.mid").length == pytest.approx(3.75)


def test_midi_lasts_as_long_as_the_wav_at_every_tempo(sndtool, tmp_path):
    for tempo in [640, 214, 160, 108, 44, 30]:
        melody(sndtool, f"tempo {tempo}\nc4 1/4\nd4 1/8t\ne4 1/16\nf4 1/2.\n".encode())
        sndtool("export", "m.snd", "--to", "mid")
        seconds = json.loads(sndtool.good("info", "--json", "m.snd"))[0]["duration_seconds"]
        assert mido.MidiFile(tmp_path / "m.mid").length == pytest.approx(seconds, abs=1e-6), tempo


def test_nominal_midi_comes_back_byte_for_byte(sndtool, tmp_path):
    made = melody(sndtool, b"tempo 128\nr 1/8\nr 1/8\nc4 1/16\n|\n|\nd5 1/8t\nr 1/4\n|\n")
    told = report(sndtool, "export", "m.snd", "--to", "mid", "--nominal")[0]
    # What is written differs from what is played, and the report says by how much.
    assert told["tempo"] == 128 and told["j"] > 3 and told["worst"]["name"] == "entry 3 (c4 1/16)"
    assert report(sndtool, "export", "m.snd", "--to", "mid", "-o", "played.mid")[0]["j"] == 0
    sndtool("import", "m.mid", "-o", "back.snd")
    assert (tmp_path / "back.snd").read_bytes() == made
    rows = midicsv((tmp_path / "m.mid").read_bytes(), tmp_path)
    assert [row[1:5] for row in rows if row[2] == "Note_on_c"] == [["480", "Note_on_c", "0", "60"],
                                                                   ["600", "Note_on_c", "0", "74"]]


def test_rtttl_is_as_near_as_the_format_goes(sndtool, tmp_path):
    made = melody(sndtool, b"tempo 120\nc5 1/4..\nd5 1/8\n|\nr 1/8\ne6 1/2.\n")
    done = sndtool("export", "m.snd", "--to", "rtttl")
    assert done.returncode == 0
    assert (tmp_path / "m.rtttl").read_bytes() == b"m:d=8,o=5,b=120:4c.,16p,d,p,2e6.\n"
    told = lines(done.stderr)
    assert told[0] == "m.snd -> m.rtttl"
    assert "  remark       added a rest to a length that the format does not have" in told
    assert "  remark       left out a separator, which the format does not have" in told
    assert made


def test_rtttl_of_plain_lengths_comes_back(sndtool, tmp_path):
    made = melody(sndtool, b"tempo 120\nc5 1/4.\nd5 1/8\nr 1/8\ne6 1/2.\nf5 1/16\ng5 1/16.\na5 1/32\n")
    told = report(sndtool, "export", "m.snd", "--to", "rtttl")[0]
    assert told["comes_back"] and told["j"] == 0
    sndtool("import", "m.rtttl", "-o", "back.snd")
    assert (tmp_path / "back.snd").read_bytes() == made
    bent = melody(sndtool, b"tempo 128\nc5 1/4.\nd5 1/16\ne5 1/16\n")
    assert not report(sndtool, "export", "m.snd", "--to", "rtttl")[0]["comes_back"]
    sndtool("import", "m.rtttl", "--as-written", "-o", "back.snd")
    assert (tmp_path / "back.snd").read_bytes() == bent
    assert "would be bent" in sndtool.bad(1, "export", "m.snd", "--to", "rtttl", "--strict")


def test_export_refuses_what_a_format_can_not_hold(sndtool, tmp_path):
    (tmp_path / "high.snd").write_bytes(snd([(94, 56)], [(94, 10)]))
    assert "record 1 is higher than MIDI goes" in sndtool.bad(1, "export", "high.snd", "--to", "mid")
    (tmp_path / "code.snd").write_bytes(snd([(26, 56)], [(26, 50)]))
    assert "unknown code 50" in sndtool.bad(1, "export", "code.snd", "--to", "mid", "--nominal")
    assert "unknown code 50" in sndtool.bad(1, "export", "code.snd", "--to", "rtttl")
    melody(sndtool, b"tempo 120\nc4 1/4\nc8 1/4\n")
    assert "wider than the four octaves" in sndtool.bad(1, "export", "m.snd", "--to", "rtttl")


@pytest.mark.parametrize("arguments, told", [
    (["import", "x", "--transpose", "high"], 'not "high"'),
    (["import", "x", "--speed", "0"], "--speed"),
    (["import", "x", "--channel", "17"], "--channel"),
    (["import", "x", "--from", "3", "--to", "2"], "--from"),
    (["import", "x", "--exact", "--as-written"], "exclude"),
    (["import", "-", "-o", "-", "--json"], "standard output"),
    (["export", "x.snd"], "--to"),
    (["export", "x.snd", "--to", "wav"], '"wav"'),
    (["export", "x.snd", "--to", "rtttl", "--nominal"], "--nominal"),
])
def test_wrong_usage_of_import_and_export(sndtool, arguments, told):
    assert told in sndtool.bad(2, *arguments)


def test_pipes(sndtool):
    done = sndtool("import", "-", "-o", "-", stdin=RING)
    assert done.returncode == 0 and done.stdout[:4] == b"\7\0\4\0"
    back = sndtool("export", "-", "--to", "rtttl", "-o", "-", stdin=done.stdout)
    assert back.stdout == b"melody:d=8,o=6,b=120:c5,d5,e5,f5,4g5,p,16a5,16b5,2c.\n"


def test_midi_plays_a_play_block_that_is_none_of_its_entries(sndtool, tmp_path):
    (tmp_path / "odd.snd").write_bytes(snd([(26, 64), (26, 56), (86, 8), (28, 56)], [(26, 50)]))
    told = report(sndtool, "export", "odd.snd", "--to", "mid")
    assert "error" not in told[0] and told[0]["j"] is None
    rows = midicsv((tmp_path / "odd.mid").read_bytes(), tmp_path)
    assert [row[1:5] for row in rows if row[2].startswith("Note_o")] == [
        ["0", "Note_on_c", "0", "60"], [str(16 * 60 + 8 * 45), "Note_off_c", "0", "60"],
        [str(32 * 60), "Note_on_c", "0", "62"], [str(32 * 60 + 8 * 45), "Note_off_c", "0", "62"]]
