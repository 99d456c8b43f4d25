#!/usr/bin/python3
"""From the click on Preview to the running player, against starting the same player by itself, alternating.

Usage: bench_preview.py TONEX.EXE PLAYER.EXE MELODY.SND SOUND.WAV [ROUNDS]. Needs DISPLAY with a window manager,
WINEPREFIX and a sound device. A player counts as running when its window is on the screen: that is the first sign
of life that both roads share. By itself it is started as a user or a script starts it, by a command line.
"""

import os
import signal
import statistics
import subprocess
import sys
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "resources", "scripts"))
from wine_paths import windows_path  # noqa: E402
from xscreen import Screen, wait_until  # noqa: E402

PLAYER_TITLE = "Sound Player"
EDITOR_TITLE = "Sound Editor - "


def quiet(command):
    return subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


def until_player(screen, begin):
    while not screen.find(PLAYER_TITLE):
        if time.perf_counter() - begin > 20:
            raise SystemExit("no player after 20 s")
        time.sleep(0.001)
    return (time.perf_counter() - begin) * 1000


def end_player(screen):
    """By its own key, as a user ends it."""
    wait_until(lambda: screen.focused_title().startswith(PLAYER_TITLE), 10, "the player in front")
    screen.key("escape")
    wait_until(lambda: not screen.find(PLAYER_TITLE), 10, "the player's end")


def by_itself(screen, player, sound):
    begin = time.perf_counter()
    process = quiet(["wine", player, "/play", "/close", windows_path(sound)])
    elapsed = until_player(screen, begin)
    end_player(screen)
    process.wait(20)
    time.sleep(0.3)
    return elapsed


def by_preview(screen, button):
    screen.move(*button)
    time.sleep(0.1)
    screen.button(True)
    begin = time.perf_counter()
    screen.button(False)
    elapsed = until_player(screen, begin)
    end_player(screen)
    wait_until(lambda: screen.focused_title().startswith(EDITOR_TITLE), 10, "the editor in front")
    time.sleep(0.3)
    return elapsed


def preview_button(screen, window):
    """The middle of the toolbar's last button, the green one: the rightmost green of the toolbar's row."""
    left, top, width, _ = screen.rect_of(window)
    row = screen.picture(left, top, width, 60)
    green = [(x, y) for x in range(row.width) for y in range(row.height)
             if row.getpixel((x, y))[1] > row.getpixel((x, y))[0] + 60 and row.getpixel((x, y))[1] > row.getpixel((x, y))[2] + 60]
    columns = [x for x, _ in green]
    right = [(x, y) for x, y in green if x > max(columns) - 16]
    return left + sum(x for x, _ in right) // len(right), top + sum(y for _, y in right) // len(right)


def main():
    editor_path, player, melody, sound = sys.argv[1:5]
    rounds = int(sys.argv[5]) if len(sys.argv) > 5 else 9
    screen = Screen()
    editor = quiet(["wine", editor_path, windows_path(melody)])
    try:
        window = wait_until(lambda: screen.find(EDITOR_TITLE), 20, "the editor")
        wait_until(lambda: screen.focused_title().startswith(EDITOR_TITLE), 20, "the editor in front")
        screen.settled_picture_of(window)
        screen.key("home")  # nothing selected: the whole melody
        button = preview_button(screen, window)
        by_preview(screen, button), by_itself(screen, player, sound)  # warm
        ours, theirs = [], []
        for _ in range(rounds):
            theirs.append(by_itself(screen, player, sound))
            wait_until(lambda: screen.focused_title().startswith(EDITOR_TITLE), 10, "the editor in front")
            ours.append(by_preview(screen, button))
    finally:
        editor.send_signal(signal.SIGKILL)
        editor.wait()
    preview, alone = statistics.median(ours), statistics.median(theirs)
    print(f"click on Preview, 100 notes, to the running player | {preview:.0f} ms ({min(ours):.0f} to {max(ours):.0f}) | "
          f"the player by itself {alone:.0f} ms ({min(theirs):.0f} to {max(theirs):.0f}) | "
          f"{preview / alone:.2f} | <= 1.3")


if __name__ == "__main__":
    main()
