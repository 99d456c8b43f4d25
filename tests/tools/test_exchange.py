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
    (tmp_path / "rings.txt").write_bytes(b"A long name:b=120:c\nA long name!:b=120:d\n:b=120:e\nCon:b=120:f\n")
    told = report(sndtool, "import", "rings.txt", "-o", "rings")
    assert [one["output"].replace("\\", "/") for one in told] == [
        "rings/Alongnam.snd", "rings/Alongna2.snd", "rings/TUNE.snd", "rings/Con_.snd"]
    assert sorted(path.name for path in (tmp_path / "rings").iterdir()) == [
        "Alongna2.snd", "Alongnam.snd", "Con_.snd", "TUNE.snd"]
    assert len(report(sndtool, "import", "rings.txt", "--list")) == 4
    assert report(sndtool, "import", "rings.txt", "--track", "2", "-o", "two.snd")[0]["name"] == "A long name!"
    assert sndtool.bad(1, "import", "rings.txt", "--track", "5").startswith("sndtool: rings.txt: there are only 4 tunes")


def test_a_wrong_ring_tone_is_refused_with_line_and_column(sndtool, tmp_path):
    (tmp_path / "wrong.txt").write_bytes(b"x:b=90:c\ny:b=90:c,8x\n")
    assert sndtool.bad(1, "import", "wrong.txt").replace("\r", "") == (
        'sndtool: wrong.txt: line 2, column 10: "8x" is no note or rest\n')
    assert not (tmp_path / "wrong.snd").exists()


def test_what_is_refused_stands_in_the_json_with_its_reason(sndtool, tmp_path):
    (tmp_path / "wrong.txt").write_bytes(b"y:b=90:c,8x\n")
    (tmp_path / "zero.mid").write_bytes(b"MThd\0\0\0\6\0\0\0\1\0\0MTrk\0\0\0\4\0\xff\x2f\0")
    (tmp_path / "wide.txt").write_bytes(b"x:d=4,o=3,b=120:c,c8\n")
    (tmp_path / "good.txt").write_bytes(RING)
    files = ["wrong.txt", "zero.mid", "none.txt", "wide.txt", "good.txt"]
    told = {one["file"]: one.get("error") for one in report(sndtool, "import", *files, status=1)}
    assert told == {"wrong.txt": 'line 1, column 10: "8x" is no note or rest',
                    "zero.mid": "offset 12: the division is 0",
                    "none.txt": "no such file",
                    "wide.txt": "spans 61 half tones, the piano has 49: choose a part with --from and --to, "
                                "or take it as it is with --transpose 0",
                    "good.txt": None}
    assert (tmp_path / "good.snd").exists()
    told = report(sndtool, "import", "--list", *files, status=1)
    assert [one["file"] for one in told if "error" in one] == ["wrong.txt", "zero.mid", "none.txt"]


def test_a_thousand_tunes_of_one_name_get_names_at_once(sndtool, tmp_path):
    (tmp_path / "all").mkdir()
    (tmp_path / "all.txt").write_bytes(b"Same:d=4,o=5,b=120:c,d\n" * 1000)
    assert sndtool("import", "all.txt", "-o", "all").returncode == 0
    names = {path.name for path in (tmp_path / "all").iterdir()}
    assert len(names) == 1000 and {"Same.snd", "Same2.snd", "Same1000.snd"} <= names


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
    assert "what is behind them with --from 127.25\n" in sndtool.bad(1, "import", "long.txt").replace("\r", "")
    # Played twice as fast, the same part fits: --from counts in the file.
    assert "--from 127.25" in sndtool.bad(1, "import", "long.txt", "--speed", "2")
    behind = report(sndtool, "import", "long.txt", "--from", "127.25")[0]
    assert (behind["whole"], behind["notes"], behind["start"]) == (True, 91, 127.25)
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


def test_silence_in_front_and_behind_notes_is_told(sndtool, tmp_path):
    name = abc2midi(tmp_path, "ties", "X:1\nT:Ties\nM:4/4\nL:1/4\nQ:1/4=120\nK:C\nz4|z2 C D|E4-|E F c2|\n")
    done = sndtool("import", name)
    told = lines(done.stderr)
    assert "  begins       3.0 s into the file" in told
    assert "  silence      behind 1 note, at most 500 ms: no entry has that length, so a rest follows" in told
    one = report(sndtool, "import", name)[0]
    assert (one["start"], one["early_notes"]) == (pytest.approx(3.0, abs=0.002), 1)
    assert one["most_early_milliseconds"] == pytest.approx(500, abs=2)


def onsets_of_midi(path):
    """Seconds of all onsets and of the last end, by mido."""
    onsets, end, now = [], 0.0, 0.0
    for message in mido.MidiFile(path):
        now += message.time
        if message.type == "note_on" and message.velocity > 0:
            onsets.append(now)
        elif message.type in ("note_on", "note_off"):
            end = now
    return [*onsets, end]


def onsets_of_snd(data):
    """Seconds of all onsets and of the end, by the play block."""
    onsets, units, goes_on, at = [], 0, False, 4
    while data[at:at + 2] != b"\xff\xff":
        quarters = data[at + 1] >> 4
        if quarters and not goes_on:
            onsets.append(units * data[2] / 64)
        goes_on = quarters == 4
        units += data[at + 1] & 15 or 16
        at += 2
    return [*onsets, units * data[2] / 64]


@pytest.mark.parametrize("late", [0, 5, 25], ids=["score", "near the score", "by hand"])
def test_the_report_tells_the_true_rounding(sndtool, tmp_path, late):
    generator = random.Random(4)
    file = mido.MidiFile(type=0, ticks_per_beat=480)
    track = mido.MidiTrack()
    file.tracks.append(track)
    place, now = 480, 0
    for quarters in [1, .5, .5, 1, 1, 2, .5, .5, .5, .5, 1, 1] * 3:
        start = place + generator.randint(-late, late)
        place += round(480 * quarters)
        track.append(mido.Message("note_on", note=60, velocity=80, time=start - now))
        track.append(mido.Message("note_off", note=60, velocity=0, time=place - late - start))
        now = place - late
    file.save(tmp_path / "in.mid")
    told = report(sndtool, "import", "in.mid", "-o", "in.snd")[0]
    meant = onsets_of_midi(tmp_path / "in.mid")
    played = onsets_of_snd((tmp_path / "in.snd").read_bytes())
    assert len(meant) == len(played)
    # The last note's end is nobody's onset.
    meant = [b - a for a, b in zip(meant, meant[1:])][:-1]
    played = [b - a for a, b in zip(played, played[1:])][:-1]
    speed = sum(played) / sum(meant)
    errors = [p - speed * m for p, m in zip(played, meant)]
    assert told["slower_percent"] == pytest.approx(100 * (speed - 1), abs=0.1)
    assert told["mean"]["milliseconds"] == pytest.approx(1000 * sum(map(abs, errors)) / len(errors), abs=0.3)
    heard = max(errors, key=lambda error: abs(error) / max(0.006, 0.025 * meant[errors.index(error)]))
    if late:
        assert abs(told["worst"]["milliseconds"]) == pytest.approx(abs(1000 * heard), abs=0.5)
    else:
        assert told["j"] == 0


# Arrangements, and the voice that is the melody. The title becomes the first voice's name.
ARRANGEMENTS = {
    "melody with chords and bass": (0, """M:3/4
L:1/8
Q:1/4=120
K:F
"F"F>F|F2C2A>A|A2F2F>A|c4 c>B|A2G4|"C7"G>A|B4 B>A|G2A2F>A|"C7"G4C>E|"F"F4||
"""),
    "under long high notes": (0, """M:3/4
L:1/8
Q:1/4=90
K:D
V:1
V:2
[V:1]F>E|D3E F>G|A4 B>c|d2c2B2|A4 B>c|d2c2B2|A2B2c2|d2A2G2|F4 ||
[V:2]z2|d'6|f'6|d'6|e'6|f'6|e'6|d'4e'2|d'4||
"""),
    "above chords that go higher": (0, """M:6/8
L:1/8
Q:1/4=60
K:A
V:1
V:2
[V:1]E3E2F|E3A2B|c3B2A|A3G3|z6|B3B2c|B3e2d|c3B2A|A6|
[V:2][A,CE]2[A,CE][A,CE]2[A,CE]|[A,CE]2[ce][ce]2[a]|[eac']3[dgb]3|[cea]3[Beg]3|[c'e'a']2[bd'][a]2[g]|[EGB]3[EGB]3|[EGB]3[EGB]3|[Ace]3[EGB]3|[CEA]6|
"""),
    "above a harp": (0, """M:6/4
L:1/8
Q:1/4=100
K:G
V:1
V:2
[V:1]g4f4B4|e4d4G4|A2B2c8|B12|A4G4E4|G4F4B,4|D2E2F8|G12|
[V:2]G,DGBdg G,DGBdg|G,DGBdgG,DGBdg|G,DFAcdG,DFAcd|G,DGBdgG,DGBdg|G,CEGceG,CEGce|A,CEAceA,CEAce|A,DFAdfA,DFAdf|G,DGBdgG,DGBdg|
"""),
    "the third of four": (2, """M:4/4
L:1/8
Q:1/4=120
K:C
V:1
V:2
V:3
V:4
[V:1][eg]2[eg]2[eg]2[eg]2|[fa]2[fa]2[fa]2[fa]2|[dg]2[dg]2[dg]2[dg]2|[eg]2[eg]2[eg]4|
[V:2][c'e'g']8|[c'f'a']8|[bd'g']8|[c'e'g']8|
[V:3]z2GAc2e2|d2c2A4|z2GAB2d2|c6z2|
[V:4]%%MIDI program 33
C,4G,,4|F,,4C,4|G,,4D,4|C,4G,,4|
"""),
    "left hand of a waltz": (1, """M:3/4
L:1/8
Q:1/4=150
K:D
V:1
V:2
[V:1]z2[fa]2[fa]2|z2[fa]2[fa]2|z2[eg]2[eg]2|z2[eg]2[eg]2|z2[eg]2[eg]2|z2[eg]2[eg]2|z2[fa]2[fa]2|z2[fa]2[fa]2|
[V:2]D2F2A2|A4z2|C2E2G2|B4z2|B,2E2G2|B4z2|D2F2A2|d4z2|
"""),
}


@pytest.mark.native
@pytest.mark.parametrize("arrangement", ARRANGEMENTS)
def test_the_melody_is_the_one_that_a_listener_would_name(sndtool, tmp_path, arrangement):
    voice, abc = ARRANGEMENTS[arrangement]
    told = report(sndtool, "import", abc2midi(tmp_path, "tune", "X:1\nT:Air\n" + abc), "--list")
    assert [one["melody"] for one in told].index(True) == voice


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
    assert report(sndtool, "import", "m.mid", "-o", "exact.snd", "--exact")[0]["method"] == "exact"
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
