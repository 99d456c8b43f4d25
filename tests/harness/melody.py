"""Melodies for the editor, as text and back, by the console companion."""

import io
import re
import subprocess
import wave

from building import NATIVE_BUILD, program

# Two entries, for tests of where a melody goes.
TUNE = "tempo 120\nc5 1/4\ne5 1/8\n"
# Five, and their names on the grid, for tests of what is done with them.
FIVE = "tempo 120\nc4 1/4\nd4 1/8\ne4 1/2\nr 1/4\ng4 1/1\n"
C, D, E, R, G = "c4, Quarter note", "d4, Eighth note", "e4, Half note", "Quarter rest", "g4, Whole note"


def sndtool(*arguments, text=b""):
    return subprocess.run([str(program(NATIVE_BUILD, "sndtool")), *map(str, arguments)], input=text, check=True,
                          stdout=subprocess.PIPE).stdout


class Melody:
    """SND files."""

    @staticmethod
    def build(path, text):
        sndtool("build", "-", "-o", path, text=text.encode())
        return path

    @staticmethod
    def text(path):
        """The lines of the melody text, the comments left out."""
        lines = [re.sub(r"(^|\s)#.*", "", line).strip() for line in sndtool("text", path).decode().splitlines()]
        return [line for line in lines if line]

    @staticmethod
    def saved_entries(path):
        """The lines behind the tempo; none while there is no file: a save to the organiser first takes the old one
        away."""
        try:
            return Melody.text(path)[1:]
        except subprocess.CalledProcessError:
            return []

    @staticmethod
    def samples(path):
        """What it sounds like: the samples of its WAV file."""
        with wave.open(io.BytesIO(sndtool("wav", path, "-o", "-"))) as sound:
            return sound.readframes(sound.getnframes())

    @staticmethod
    def scale(entries, tempo=120):
        names = ["c", "d", "e", "f", "g", "a", "b"]
        lines = [f"tempo {tempo}"]
        for i in range(entries):
            lines.append(f"{names[i % 7]}{4 + (i // 7) % 4} 1/{(4, 8, 2)[i % 3]}")
        return "\n".join(lines) + "\n"
