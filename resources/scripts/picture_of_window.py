"""Waits for a window whose title begins with a text and writes a picture of it: TITLE FILE.png"""

import sys

from xscreen import Screen, wait_until


def main(title, path):
    screen = Screen()
    window = wait_until(lambda: screen.find(title), 30, f"a window titled {title}")
    screen.settled_picture_of(window).save(path)


main(sys.argv[1], sys.argv[2])
