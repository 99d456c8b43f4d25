#!/usr/bin/python3
"""Start to first painted window: Tonex.exe against Wine's own notepad in the same prefix, alternating.

Usage: bench_start.py TONEX.EXE. Needs DISPLAY with a window manager and WINEPREFIX. Repeated until the ratio is known.
Painted means: the window is mapped and a point of its client area shows the program's own light colour instead
of the black that an unpainted window has.
"""

import os
import signal
import statistics
import subprocess
import sys
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "resources", "scripts"))
from settling import ratio, settled  # noqa: E402
from xscreen import Screen  # noqa: E402
from Xlib import X, error  # noqa: E402

POINT = (40, 100)  # pixels into the client area: paper in both programs
LIGHT = 200


def painted(screen, title):
    window = screen.find(title)
    if not window:
        return False
    try:
        image = window.get_image(*POINT, 1, 1, X.ZPixmap, 0xFFFFFF)
    except (error.BadMatch, error.BadDrawable, error.BadWindow):
        return False
    return min(image.data[0], image.data[1], image.data[2]) >= LIGHT


def start_once(screen, command, title):
    """Milliseconds from the start of the process to its first painted window."""
    begin = time.perf_counter()
    process = subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    while not painted(screen, title):
        if time.perf_counter() - begin > 20:
            raise SystemExit(f"{command}: no window after 20 s")
        time.sleep(0.001)
    elapsed = (time.perf_counter() - begin) * 1000
    process.send_signal(signal.SIGKILL)
    process.wait()
    while screen.find(title):
        time.sleep(0.01)
    time.sleep(0.2)
    return elapsed


def main():
    tonex = sys.argv[1]
    screen = Screen()
    programs = {"Tonex.exe": (["wine", tonex], "Sound Editor"),
                "notepad": (["wine", "notepad"], "Untitled - Notepad")}
    times = {name: [] for name in programs}
    for name, (command, title) in programs.items():
        start_once(screen, command, title)  # warm
    ours, theirs = times["Tonex.exe"], times["notepad"]
    while not settled(ours, theirs):
        for name, (command, title) in programs.items():
            times[name].append(start_once(screen, command, title))
    print(f"start to first painted window, {len(ours)} pairs | {statistics.median(ours):.0f} ms | "
          f"notepad {statistics.median(theirs):.0f} ms | {ratio(ours, theirs):.2f} | <= 1")


if __name__ == "__main__":
    main()
