"""The X screen for scripts and tests: finding windows, taking pictures of them, real mouse and keyboard."""

import time

from PIL import Image
from Xlib import X, XK, display, error
from Xlib.ext import xtest

# Key symbols whose names differ from what a reader would write.
KEY_NAMES = {
    "ctrl": "Control_L", "shift": "Shift_L", "alt": "Alt_L",
    "left": "Left", "right": "Right", "up": "Up", "down": "Down", "home": "Home", "end": "End",
    "tab": "Tab", "enter": "Return", "escape": "Escape", "space": "space", "delete": "Delete",
    "backspace": "BackSpace", "pageup": "Prior", "pagedown": "Next", "f1": "F1", "f4": "F4", "f10": "F10",
    "+": "plus", "-": "minus", ".": "period", "\\": "backslash", ":": "colon", "/": "slash", "_": "underscore",
    " ": "space", ",": "comma", "$": "dollar",
}

# Beside other work all takes longer: a wait ends in vain only after so many times its own time.
PATIENCE = 4


# Seconds between two looks: the first ones, and what they grow to, so that looking does not keep others from working.
SHORT_STEP, LONG_STEP = 0.01, 0.05


def wait_until(predicate, timeout=10.0, what="condition", step=None):
    """Polls until the predicate gives something true and returns that; fails by name after the timeout, which is that
    of a machine with nothing else to do. Without a step of its own it looks ever less often."""
    timeout *= PATIENCE
    pause = step or SHORT_STEP
    end = time.monotonic() + timeout
    while True:
        value = predicate()
        if value:
            return value
        if time.monotonic() > end:
            raise AssertionError(f"waited {timeout} s in vain for: {what}")
        time.sleep(pause)
        if not step:
            pause = min(1.3 * pause, LONG_STEP)


def holds(predicate, seconds, what):
    """Looks for so long whether something stays true that must: for what can only be seen by waiting, that nothing
    happens."""
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        assert predicate(), f"no longer: {what}"
        time.sleep(0.02)


def settled(read, quiet=0.4, timeout=10.0):
    """What is read, once it has been the same for a while."""
    timeout *= PATIENCE
    end = time.monotonic() + timeout
    last, since = read(), time.monotonic()
    while time.monotonic() - since < quiet:
        assert time.monotonic() < end, f"not at rest within {timeout} s: {last!r}"
        time.sleep(0.02)
        now = read()
        if now != last:
            last, since = now, time.monotonic()
    return last


class Screen:
    """One X display."""

    def __init__(self, name=None):
        self.display = display.Display(name)
        self.root = self.display.screen().root
        self._net_name = self.display.intern_atom("_NET_WM_NAME")

    # --- windows

    def title_of(self, window):
        try:
            return window.get_full_text_property(self._net_name) or window.get_wm_name() or ""
        except (error.BadWindow, error.BadAtom):
            return ""

    def windows(self):
        """All mapped client windows as (title, window), outermost first."""
        found = []
        todo = [self.root]
        while todo:
            window = todo.pop()
            try:
                children = window.query_tree().children
                for child in children:
                    if child.get_attributes().map_state != X.IsViewable:
                        continue
                    title = self.title_of(child)
                    if title:
                        found.append((title, child))
                    else:
                        todo.append(child)
            except (error.BadWindow, error.BadDrawable):
                continue
        return found

    def find(self, prefix):
        """The first mapped window whose title begins with the prefix, or None."""
        for title, window in self.windows():
            if title.startswith(prefix):
                return window
        return None

    def focused_title(self):
        """The title of the window that the keyboard writes to; empty when there is none."""
        window = self.display.get_input_focus().focus
        while hasattr(window, "query_tree"):
            title = self.title_of(window)
            if title or window.id == self.root.id:
                return title
            try:
                window = window.query_tree().parent
            except error.BadWindow:
                break
        return ""

    def focused_id(self):
        """The window that the keyboard writes to, by its number; 0 when there is none."""
        return getattr(self.display.get_input_focus().focus, "id", 0)

    def frame_of(self, window):
        """The window manager's frame around a window."""
        while True:
            parent = window.query_tree().parent
            if not parent or parent.id == self.root.id:
                return window
            window = parent

    def rect_of(self, window):
        """left, top, width, height on the screen."""
        geometry = window.get_geometry()
        place = self.root.translate_coords(window, 0, 0)
        return place.x, place.y, geometry.width, geometry.height

    # --- pictures

    def picture(self, left, top, width, height):
        screen = self.display.screen()
        width = max(1, min(width, screen.width_in_pixels - left))
        height = max(1, min(height, screen.height_in_pixels - top))
        raw = self.root.get_image(left, top, width, height, X.ZPixmap, 0xFFFFFFFF)
        return Image.frombytes("RGB", (width, height), raw.data, "raw", "BGRX")

    def picture_of(self, window, frame=True):
        return self.picture(*self.rect_of(self.frame_of(window) if frame else window))

    def settled_picture_of(self, window, timeout=10.0, quiet=0.4, frame=True):
        """A picture of a window once it has looked the same for a while."""
        end = time.monotonic() + timeout
        last, since = self.picture_of(window, frame), time.monotonic()
        while time.monotonic() < end:
            time.sleep(0.05)
            now = self.picture_of(window, frame)
            if now != last:
                last, since = now, time.monotonic()
            elif time.monotonic() - since >= quiet and len(now.resize((64, 64)).getcolors(5000) or [0] * 9) > 2:
                return now
        return last

    # --- mouse

    def move(self, x, y):
        xtest.fake_input(self.display, X.MotionNotify, x=int(x), y=int(y))
        self.display.sync()

    def button(self, down, number=1):
        xtest.fake_input(self.display, X.ButtonPress if down else X.ButtonRelease, number)
        self.display.sync()

    def click(self, x, y, number=1, times=1):
        self.move(x, y)
        time.sleep(0.02)
        for _ in range(times):
            self.button(True, number)
            time.sleep(0.02)
            self.button(False, number)
            time.sleep(0.02)

    def drag(self, x1, y1, x2, y2, steps=8):
        self.move(x1, y1)
        time.sleep(0.03)
        self.button(True)
        for i in range(1, steps + 1):
            time.sleep(0.02)
            self.move(x1 + (x2 - x1) * i / steps, y1 + (y2 - y1) * i / steps)
        time.sleep(0.03)
        self.button(False)
        time.sleep(0.02)

    # --- keyboard

    def _keycode(self, name):
        """Key code and whether Shift is needed."""
        symbol = XK.string_to_keysym(KEY_NAMES.get(name, name))
        if symbol == 0:
            raise ValueError(f"unknown key {name!r}")
        for code, index in self.display.keysym_to_keycodes(symbol):
            if index in (0, 1):
                return code, index == 1
        raise ValueError(f"no key gives {name!r}")

    def key_event(self, code, down):
        xtest.fake_input(self.display, X.KeyPress if down else X.KeyRelease, code)
        self.display.sync()

    def key(self, chord, pause=0.02):
        """Presses a chord: "a", "ctrl+s", "shift+right", "+"."""
        parts = [chord] if len(chord) == 1 else chord.split("+")
        held = []
        for part in parts[:-1]:
            held.append(self._keycode(part)[0])
        code, shift = self._keycode(parts[-1])
        if shift and "shift" not in parts[:-1]:
            held.append(self._keycode("shift")[0])
        for modifier in held:
            self.key_event(modifier, True)
        self.key_event(code, True)
        self.key_event(code, False)
        for modifier in reversed(held):
            self.key_event(modifier, False)
        if pause:
            time.sleep(pause)

    def type_text(self, text):
        for character in text:
            self.key(character, pause=0.005)
        time.sleep(0.05)
