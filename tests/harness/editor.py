"""Drives the real Tonex.exe: starts it under Wine, presses real keys and buttons, and looks inside by the probe."""

import re
import signal
import time

from building import BUILD, WINDOWS_BUILD, program
from wine_paths import windows_path
from words import NOT_AGAIN, REMINDER
from xscreen import wait_until

SCREENS = BUILD / "screens"

WM_CLOSE, WM_SYSCOMMAND = 0x10, 0x112
QS_INPUT, QS_PAINT = 0x407, 0x20  # what may wait for the window's thread
# The system menu's commands.
MINIMISE = WM_SYSCOMMAND, 0xF020, 0
MAXIMISE = WM_SYSCOMMAND, 0xF030, 0
RESTORE = WM_SYSCOMMAND, 0xF120, 0
MENU_CLASS, DIALOG_CLASS = "#32768", "#32770"
ANSWERS = {"OK": 1, "Cancel": 2, "Yes": 6, "No": 7}
STATE_SELECTED, STATE_FOCUSED = 0x2, 0x4
TITLE = "Sound Editor - "


def wait_equal(read, expected, what, timeout=5):
    """Waits until what is read is what is expected; a failure tells both."""
    try:
        wait_until(lambda: read() == expected, timeout)
    except AssertionError:
        raise AssertionError(f"{what} {read()!r}, wanted {expected!r}") from None


class Editor:
    """A running editor."""

    def __init__(self, prefix, screen, *arguments, program_path=None, environment=None, cwd=None):
        self.prefix = prefix
        self.screen = screen
        self.path = program_path or program(WINDOWS_BUILD, "Tonex.exe")
        self.process = prefix.start(["wine", str(self.path), *arguments], environment, cwd=cwd)
        self.hwnd = None
        self.tempo_clicks = 0

    # --- windows

    def windows(self):
        return self.prefix.ask("windows", self.path.name)

    def main(self):
        for window in self.windows():
            if window["text"].startswith(TITLE) and window["class"] != DIALOG_CLASS:
                return window
        return None

    def wait_ready(self, timeout=20):
        """Waits until the main window is on the screen and takes input."""
        def shown():
            assert self.process.poll() is None, f"the editor ended with status {self.process.returncode}"
            window = self.main()
            return window if window and window["visible"] else None
        window = wait_until(shown, timeout, "the main window")
        self.hwnd = window["hwnd"]
        wait_until(lambda: self.focus() is not None, timeout, "the keyboard in the main window")
        wait_until(lambda: self.screen.focused_title().startswith(TITLE), timeout, "the keyboard's focus")
        return self

    def caption(self):
        window = self.main()
        return window["text"] if window else None

    def wait_caption(self, caption, timeout=8):
        wait_equal(self.caption, caption, "caption", timeout)

    def minimise(self):
        self.prefix.ask("post", self.hwnd, *MINIMISE)
        wait_until(lambda: self.main()["minimised"], 5, "the minimised window")

    def children(self, hwnd=None):
        return self.prefix.ask("children", hwnd or self.hwnd)

    def child(self, class_name):
        for window in self.children():
            if window["class"].lower() == class_name.lower():
                return window
        raise AssertionError(f"no {class_name} among {[window['class'] for window in self.children()]}")

    def focus(self):
        return self.prefix.ask("focus", self.hwnd)

    def accessible(self, class_name):
        return self.prefix.ask("accessible", self.child(class_name)["hwnd"])

    def items(self, class_name):
        return self.accessible(class_name)["children"]

    def item(self, class_name, name):
        """What a screen reader is told of the item with a name."""
        for item in self.items(class_name):
            if item["name"] == name:
                return item
        raise AssertionError(f"{class_name} has no item {name!r}")

    def selected_items(self, class_name):
        return [item["name"] for item in self.items(class_name) if item["state"] & STATE_SELECTED]

    def chosen_length(self):
        return self.selected_items("TonexLengths")

    def lit_keys(self):
        return self.selected_items("TonexPiano")

    def focused_item(self):
        """Class of the window with the keyboard and the name of the item that has it."""
        focus = self.focus()
        if not focus or not focus["class"].startswith("Tonex"):
            return (focus or {}).get("class"), None
        for item in self.prefix.ask("accessible", focus["hwnd"])["children"]:
            if item["state"] & STATE_FOCUSED:
                return focus["class"], item["name"]
        return focus["class"], None

    # --- mouse

    @staticmethod
    def centre(rect):
        return (rect[0] + rect[2]) // 2, (rect[1] + rect[3]) // 2

    def click_item(self, class_name, name, button=1):
        rect = self.item(class_name, name)["rect"]
        x, y = self.centre(rect)
        if class_name == "TonexPiano":
            # Black keys cover the upper part of the white ones.
            y = rect[3] - 6
        self.screen.click(x, y, button)

    def click_key(self, name):
        self.click_item("TonexPiano", name)

    def click_length(self, name):
        self.click_item("TonexLengths", name)

    # --- grid

    def cells(self):
        """The grid's visible cells: name, rect and state, in order."""
        return self.items("TonexGrid")

    def names(self):
        return [cell["name"] for cell in self.cells()]

    def wait_names(self, expected):
        wait_equal(self.names, expected, "cells")

    def cell_texts(self):
        return [name.split(",")[0] for name in self.names()]

    def selected(self):
        """The visible cells that are selected, counted from the first visible one."""
        return [i for i, cell in enumerate(self.cells()) if cell["state"] & STATE_SELECTED]

    def wait_selected(self, expected):
        wait_equal(self.selected, expected, "selected")

    def select_columns(self, first, last):
        """Drags over visible cells, counted from the first visible one."""
        cells = self.cells()
        self.screen.drag(*self.centre(cells[first]["rect"]), *self.centre(cells[last]["rect"]))

    def click_cell(self, index, button=1):
        self.screen.click(*self.centre(self.cells()[index]["rect"]), button)

    # --- menu and toolbar

    def menu(self):
        """All menu items by caption without its shortcut key."""
        found = {}
        for top in self.prefix.ask("menu", self.hwnd):
            for item in top.get("items", []):
                if not item["separator"]:
                    found[item["text"].split("\t")[0]] = item
        return found

    def toolbar(self):
        """The buttons by the names that screen readers are told."""
        hwnd = self.child("ToolbarWindow32")["hwnd"]
        return {button["name"]: button for button in self.prefix.ask("toolbar", hwnd) if not button["separator"]}

    def choose(self, caption):
        """Opens a menu by the keyboard and chooses an item by its underlined letter."""
        # After a dialog the window manager takes a moment to give the keyboard back.
        wait_until(lambda: self.screen.focused_title().startswith(TITLE), 8, "the keyboard's focus")
        for top in self.prefix.ask("menu", self.hwnd):
            for item in top.get("items", []):
                if item["text"].split("\t")[0] == caption:
                    assert item["enabled"], f"{caption} is disabled"
                    letter = re.search("&(.)", caption)[1].lower()
                    self.screen.key("alt+" + re.search("&(.)", top["text"])[1].lower())
                    self.wait_popup()
                    self.screen.key(letter)
                    return
        raise AssertionError(f"no menu item {caption}")

    def wait_popup(self):
        wait_until(lambda: any(window["class"] == MENU_CLASS and window["visible"] for window in self.windows()), 5,
                   "the pop-up menu")

    def click_tool(self, tooltip):
        button = self.toolbar()[tooltip]
        assert button["enabled"], f"the button {tooltip} is disabled"
        self.screen.click(*self.centre(button["rect"]))

    def shown_tooltip(self):
        """The text of the small window that the system shows under the mouse; empty while there is none."""
        for window in self.windows():
            if window["class"] == "tooltips_class32" and window["visible"]:
                return self.prefix.ask("gettext", window["hwnd"])
        return ""

    # --- dialogs

    def dialogs(self):
        return [window for window in self.windows() if window["visible"] and window["class"] == DIALOG_CLASS]

    def wait_dialog(self, title, timeout=8):
        def there():
            for window in self.dialogs():
                if window["text"] == title:
                    return window
            return None
        dialog = wait_until(there, timeout, f"the dialog {title!r}")
        self.wait_keyboard_at(dialog, timeout)
        return dialog

    def wait_keyboard_at(self, dialog, timeout=8):
        """The X server gives a dialog the keyboard a moment after it has appeared; titles do not tell two apart."""
        wait_until(lambda: self.screen.focused_id() == dialog["x"], timeout,
                   f"the keyboard's focus on {dialog['text']!r}")

    def wait_message(self, text, timeout=8):
        """Waits for a message box with a text; gives the box."""
        box = self.wait_dialog("Sound Editor", timeout)
        shown = [child["text"] for child in self.children(box["hwnd"])]
        assert text in shown, f"message {shown}, wanted {text!r}"
        return box

    def answer(self, box, button):
        self.wait_keyboard_at(box)
        self.prefix.ask("press", box["hwnd"], ANSWERS[button])
        wait_until(lambda: all(window["hwnd"] != box["hwnd"] for window in self.dialogs()), 8, "the box's end")
        self.wait_keyboard_leaves(box["x"])

    def wait_keyboard_leaves(self, window):
        """The X server hands the keyboard on a moment after a dialog is gone; keys pressed before would be lost."""
        wait_until(lambda: self.process.poll() is not None or
                   (self.screen.focused_id() != window and self.screen.focused_title()), 8, "the keyboard's next owner")
        # Then Wine takes a moment: to give a control the focus, and to learn which keys are down.
        wait_until(lambda: self.process.poll() is not None or self.focus(), 8, "a control with the keyboard")
        time.sleep(0.1)

    def message(self, text, button="OK"):
        self.answer(self.wait_message(text), button)

    def no_dialog(self, seconds=0.4):
        """Nothing is asked for a while."""
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            assert not self.dialogs(), f"unexpected: {[d['text'] for d in self.dialogs()]}"
            time.sleep(0.05)

    def file_dialog(self, title, path=None):
        """Types a path into a file dialog and presses Enter; without a path cancels it."""
        dialog = self.wait_dialog(title)
        if path is None:
            self.screen.key("escape")
        else:
            field = self.file_name_field(dialog)
            wait_until(lambda: (self.focus() or {}).get("hwnd") == field["hwnd"], 8, "the keyboard in the name field")
            self.screen.key("ctrl+a")
            self.screen.type_text(path)
            self.screen.key("enter")
        wait_until(lambda: all(window["hwnd"] != dialog["hwnd"] for window in self.dialogs()) or
                   len(self.dialogs()) > 1, 8, f"the end of {title!r}")
        self.wait_keyboard_leaves(dialog["x"])
        if not self.dialogs() and self.process.poll() is None:
            self.wait_keyboard_at(self.main())

    def file_name_field(self, dialog):
        """The edit field for the file name of a common dialog."""
        children = self.children(dialog["hwnd"])
        for child in children:
            if child["id"] == 0x480 and child["class"] == "Edit":
                return child
        combos = [child["hwnd"] for child in children if child["id"] == 0x47C]
        for child in children:
            if child["class"] == "Edit" and child["parent"] in combos:
                return child
        raise AssertionError("the dialog has no field for a name")

    # --- tempo

    def tempo_box(self):
        return self.prefix.ask("combo", self.child("ComboBox")["hwnd"])

    def list_dropped(self):
        """Whether the box's list is open."""
        return any(window["class"] == "ComboLBox" and window["visible"] for window in self.windows())

    def click_tempo(self):
        """Into the box's text; never twice at one place, where the second click could be the end of a double one, which
        does not move the keyboard."""
        left, top, _, bottom = self.child("ComboBox")["rect"]
        self.tempo_clicks += 1
        self.screen.click(left + 14 + 10 * (self.tempo_clicks % 2), (top + bottom) // 2)

    def type_tempo(self, text):
        self.click_tempo()
        self.screen.key("ctrl+a")
        self.screen.type_text(text)

    # --- end

    def save_as(self, path):
        self.choose("Save to PC &as...")
        self.file_dialog("Save to PC", windows_path(path))

    def wait_input_done(self):
        """Until the window has taken what was pressed and clicked: what is posted to it would overtake that."""
        wait_until(lambda: not self.prefix.ask("pending", self.hwnd, QS_INPUT), 8, "the end of the input")

    def close(self):
        self.wait_input_done()
        self.prefix.ask("post", self.hwnd, WM_CLOSE, 0, 0)

    def close_with_reminder(self, tick=False):
        """Closes after work on the organiser, with the mark in the reminder or without."""
        self.close()
        box = self.wait_message(REMINDER)
        children = self.children(box["hwnd"])
        if tick:
            self.screen.click(*self.centre(next(c for c in children if c["text"] == NOT_AGAIN)["rect"]))
        button = next(c for c in children if c["class"] == "Button" and c["text"].strip("&") == "OK")
        self.screen.click(*self.centre(button["rect"]))
        self.wait_end()

    def wait_end(self, timeout=10):
        self.process.wait(timeout)
        return self.process.returncode

    def kill(self):
        if self.process.poll() is None:
            self.process.send_signal(signal.SIGKILL)
        self.process.wait(10)

    def picture(self, name=None):
        """Of the window at rest: nothing of it waits to be painted, and it looks the same for a while."""
        window = wait_until(lambda: self.screen.find(TITLE), 5, "the main window")
        wait_until(lambda: not self.prefix.ask("pending", self.hwnd, QS_PAINT), 8, "the end of the painting")
        image = self.screen.settled_picture_of(window)
        if name:
            SCREENS.mkdir(parents=True, exist_ok=True)
            image.save(SCREENS / name)
        return image
