"""Melodies for the tests, with their bytes worked out by hand."""

# Every kind of entry at tempo 120, which only timing mode 0 has: a quarter is 8 units of 4/64 second.
EXAMPLE_TEXT = b"tempo 120\nc4 1/4\nc4# 1/8.\nd5 1/4..\ne5 1/8t\nr 1/2\n|\n"
EXAMPLE_PLAY = bytes([7, 0, 4, 0,
                      26, 48 + 8,   # c4, 8 units
                      27, 48 + 6,   # c4#, 6 units
                      40, 48 + 14,  # d5, 14 units
                      42, 48 + 3,   # e5, 2 2/3 units
                      86, 0,        # rest, 16 units
                      255, 255])
EXAMPLE_EDIT = bytes([0, 0, 120, 0,
                      26, 10, 27, 7, 40, 12, 42, 9, 86, 114,
                      86, 200,      # a separator repeats the pitch byte before it
                      255, 255])
EXAMPLE_SND = EXAMPLE_PLAY + EXAMPLE_EDIT
EXAMPLE_UNITS = 8 + 6 + 14 + 3 + 16
EXAMPLE_SECONDS = EXAMPLE_UNITS * 4 / 64

EMPTY_SND = bytes([7, 0, 4, 0, 255, 255, 0, 0, 120, 0, 255, 255])


def snd(records=(), entries=(), tempo_byte=4, mode=0, tempo=120):
    """A SND file from (pitch byte, length byte) records and (pitch byte, code byte) entries."""
    play = bytes([7, 0, tempo_byte, 0]) + bytes(b for pair in records for b in pair) + b"\xff\xff"
    edit = bytes([mode, 0, tempo % 256, tempo // 256]) + bytes(b for pair in entries for b in pair) + b"\xff\xff"
    return play + edit
