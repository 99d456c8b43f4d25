"""The sample melodies: what they must hold, and that their bars add up."""
import io
import json
import re
import wave
from fractions import Fraction

import pytest

from building import ROOT

SAMPLES = sorted((ROOT / "samples").glob("*.txt"))
LENGTH = re.compile(r"1/(\d+)(\.{0,2})(t?)$")
FACTORS = {"": Fraction(1), ".": Fraction(3, 2), "..": Fraction(7, 4)}


def length_of(text):
    """A length as a part of a whole note."""
    number, dots, triplet = LENGTH.match(text).groups()
    # Three triplets fill the length twice as long.
    return Fraction(1, int(number)) * FACTORS[dots] * (Fraction(2, 3) if triplet else 1)


def parsed(path):
    """Tempo and entries: (note or r, length text), or None for a separator."""
    tempo, entries = None, []
    for line in path.read_text(encoding="utf-8").splitlines():
        words = re.sub(r"(^|\s)#.*", "", line).split()
        if not words:
            continue
        if words[0] == "tempo":
            tempo = int(words[1])
        else:
            entries.append(None if words == ["|"] else tuple(words))
    return tempo, entries


def bars_of(entries):
    bars = [Fraction(0)]
    for entry in entries:
        if entry is None:
            bars.append(Fraction(0))
        else:
            bars[-1] += length_of(entry[1])
    return bars


def test_there_are_samples():
    assert len(SAMPLES) >= 6


def test_the_checker_knows_the_lengths():
    assert length_of("1/4") == Fraction(1, 4)
    assert length_of("1/4..") + length_of("1/16") == length_of("1/2")
    assert 3 * length_of("1/8t") == length_of("1/4")


@pytest.mark.parametrize("path", SAMPLES, ids=lambda p: p.stem)
def test_bars_add_up(path):
    _, entries = parsed(path)
    bars = bars_of(entries)
    assert len(bars) >= 3
    bar = bars[1]
    assert bars[1:-1] == [bar] * (len(bars) - 2)
    # A pickup is made up for by the last bar.
    assert bars[0] == bars[-1] == bar or (bars[0] < bar and bars[0] + bars[-1] == bar)
    assert bar in (Fraction(3, 8), Fraction(3, 4), Fraction(6, 8), Fraction(1))


@pytest.mark.parametrize("path", SAMPLES, ids=lambda p: p.stem)
def test_names_and_notes(path):
    assert len(path.stem) <= 8 and path.stem == path.stem.upper()
    _, entries = parsed(path)
    for entry in filter(None, entries):
        if entry[0] == "r":
            continue
        assert re.fullmatch(r"[cdfga]#?|[eb]", entry[0].replace(entry[0][1], "", 1))
        assert 4 <= int(entry[0][1]) <= 7 or entry[0] == "c8"


@pytest.mark.parametrize("path", SAMPLES, ids=lambda p: p.stem)
def test_files_of_samples(sndtool, path):
    tempo, entries = parsed(path)
    made = sndtool.good("build", "-", stdin=path.read_bytes())
    assert sndtool.good("check", "-", stdin=made).startswith(b"-: good")
    text = sndtool.good("text", "-", stdin=made).decode().splitlines()
    assert text[0] == f"tempo {tempo}"
    assert text[1:] == ["|" if entry is None else " ".join(entry) for entry in entries]

    told = json.loads(sndtool.good("info", "--json", "-", stdin=made))[0]
    assert told["entries"] == len(entries)
    with wave.open(io.BytesIO(sndtool.good("wav", "-", stdin=made))) as sound:
        seconds = sound.getnframes() / sound.getframerate()
    assert seconds == pytest.approx(told["duration_seconds"], abs=0.05)
    # The organiser's tempi are near those that are named: 70 plays as 68.6.
    assert seconds == pytest.approx(float(sum(bars_of(entries)) * 240 / tempo), rel=0.03)


def test_the_samples_show_what_the_format_can():
    melodies = [parsed(path)[1] for path in SAMPLES]
    lengths = [{entry[1] for entry in melody if entry} for melody in melodies]
    assert any(any(length.endswith("t") for length in of) for of in lengths)
    assert any(any(length.endswith("..") for length in of) for of in lengths)
    assert any(len(melody) > 300 for melody in melodies)
    assert all(len(melody) <= 509 for melody in melodies)


def test_the_first_melody_fills_the_strip():
    """GRACE is the melody that a newcomer sees: at most 29 entries, so that the cursor behind them is shown."""
    _, entries = parsed(ROOT / "samples/GRACE.txt")
    assert 26 <= len(entries) <= 29
    lengths = {entry[1] for entry in entries if entry}
    assert {"1/2", "1/2.", "1/4", "1/8t", "1/8.", "1/16"} <= lengths
    assert any(entry and entry[0].endswith("#") for entry in entries)
    assert any(entry and entry[0] == "r" for entry in entries)
    assert None in entries
