"""Waits for a window whose title begins with a text and writes a picture of it: TITLE FILE.png [KEY…]

The keys are pressed first.
"""

import sys

from xscreen import Screen, wait_until


def main(title, path, *keys):
    screen = Screen()
    window = wait_until(lambda: screen.find(title), 30, f"a window titled {title}")
    if keys:
        wait_until(lambda: screen.focused_title().startswith(title), 10, "the window's focus")
    for key in keys:
        screen.key(key, pause=0.1)
    screen.settled_picture_of(window).save(path, optimize=True)


main(*sys.argv[1:])
