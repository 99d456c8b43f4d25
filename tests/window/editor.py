"""Drives the real Tonex.exe: starts it under Wine, presses real keys and buttons, and looks inside by the probe."""

import json
import os
import pathlib
import random
import re
import shutil
import signal
import subprocess
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
sys.path.insert(0, str(ROOT / "resources" / "scripts"))

from xscreen import Screen, wait_until  # noqa: E402

BUILD = ROOT / "build"
WINDOWS_BUILD = pathlib.Path(os.environ.get("TONEX_WINDOWS_BUILD", BUILD / "windows"))
NATIVE_BUILD = pathlib.Path(os.environ.get("TONEX_NATIVE_BUILD", BUILD / "native"))
SCREENS = BUILD / "screens"
INSTALL_DIR = "C:\\Link"
SETTINGS = "Software\\VB and VBA Program Settings\\Corvane\\Tonex"
GLOBAL_SETTINGS = "Software\\VB and VBA Program Settings\\Corvane\\Global"

WM_CLOSE = 0x10
IDOK, IDCANCEL, IDYES, IDNO = 1, 2, 6, 7
ANSWERS = {"OK": IDOK, "Cancel": IDCANCEL, "Yes": IDYES, "No": IDNO}


def program(folder, name):
    """The newest built program of a name."""
    found = sorted(folder.rglob(name), key=lambda path: path.stat().st_mtime)
    assert found, f"{name} has not been built in {folder}"
    return found[-1]


def windows_path(path):
    return "Z:" + str(path).replace("/", "\\")


def registry_text(path, values):
    """Lines for a prefix's user.reg: numbers become dwords, the rest text."""
    lines = ["", "[" + path.replace("\\", "\\\\") + "] 1700000000"]
    for name, value in values.items():
        if isinstance(value, int):
            lines.append(f'"{name}"=dword:{value:08x}')
        else:
            escaped = value.replace("\\", "\\\\").replace('"', '\\"')
            lines.append(f'"{name}"="{escaped}"')
    return "\n".join(lines) + "\n"


def sweep(folder):
    """Removes the prefixes of test runs that were killed; their names end in the process that made them."""
    for path in folder.iterdir():
        maker = path.name.rpartition("-")[2]
        if maker.isdigit() and not os.path.exists(f"/proc/{maker}"):
            shutil.rmtree(path, ignore_errors=True)


class Prefix:
    """A Wine prefix of its own with the link software's entry and folders, and a probe inside it."""

    def __init__(self, name, dpi=96, environment=None, link_entry=True):
        folder = BUILD / "wine-window"
        folder.mkdir(parents=True, exist_ok=True)
        sweep(folder)
        self.path = folder / f"{name}-{os.getpid()}"
        subprocess.run(["cp", "-a", str(BUILD / "wine-template"), str(self.path)], check=True)
        with open(self.path / "user.reg", "a", encoding="ascii") as registry:
            if link_entry:
                registry.write(registry_text("Software\\QMT\\Corvane-e\\PC", {"InstallDir": INSTALL_DIR}))
            registry.write(registry_text("Control Panel\\Desktop", {"LogPixels": dpi}))
            registry.write(registry_text("Software\\Wine\\Fonts", {"LogPixels": dpi}))
        self.install_dir = self.path / "drive_c" / "Link"
        self.sound_dir = self.install_dir / "userdata" / "sound"
        self.cache_dir = self.install_dir / "pcferry" / "cache" / "System" / "sound"
        self.sound_dir.mkdir(parents=True)
        self.cache_dir.mkdir(parents=True)
        self.environment = dict(os.environ, WINEARCH="win32", WINEPREFIX=str(self.path), WINEDEBUG="-all",
                                WINEDLLOVERRIDES="mscoree,mshtml=;winemenubuilder.exe=d", **(environment or {}))
        self._probe = None

    def start(self, command, environment=None, **options):
        return subprocess.Popen(command, env={**self.environment, **(environment or {})}, stdin=subprocess.DEVNULL,
                                stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, **options)

    def ask(self, *words):
        """Sends the probe a command and gives its answer."""
        if self._probe is None or self._probe.poll() is not None:
            path = program(WINDOWS_BUILD, "probe.exe")
            self._probe = subprocess.Popen(["wine", str(path)], env=self.environment, cwd=path.parent,
                                           stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                           stderr=subprocess.DEVNULL)
        self._probe.stdin.write(("\t".join(str(word) for word in words) + "\n").encode())
        self._probe.stdin.flush()
        line = self._probe.stdout.readline()
        assert line, f"the probe ended at {words}"
        answer = json.loads(line.decode("utf-8"))
        if isinstance(answer, dict) and "error" in answer:
            raise AssertionError(f"probe: {words}: {answer['error']}")
        return answer

    def forget_settings(self):
        for name in ("DoremiFlag", "WindwInformation", "File1"):
            self.ask("delreg", SETTINGS, name)
        self.ask("delreg", GLOBAL_SETTINGS, "MsgDsp")

    def end(self):
        if self._probe is not None and self._probe.poll() is None:
            self._probe.stdin.close()
        subprocess.run(["wineserver", "-k"], env=self.environment, timeout=30, check=False,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        if self._probe is not None:
            self._probe.wait(20)
        shutil.rmtree(self.path, ignore_errors=True)


class Melody:
    """SND files as text and back, by the console companion."""

    @staticmethod
    def build(path, text):
        tool = program(NATIVE_BUILD, "sndtool")
        subprocess.run([str(tool), "build", "-", "-o", str(path)], input=text.encode(), check=True)
        return path

    @staticmethod
    def text(path):
        """The lines of the melody text, the comments left out."""
        tool = program(NATIVE_BUILD, "sndtool")
        result = subprocess.run([str(tool), "text", str(path)], check=True, stdout=subprocess.PIPE)
        lines = [re.sub(r"(^|\s)#.*", "", line).strip() for line in result.stdout.decode().splitlines()]
        return [line for line in lines if line]

    @staticmethod
    def scale(entries, tempo=120):
        names = ["c", "d", "e", "f", "g", "a", "b"]
        lines = [f"tempo {tempo}"]
        for i in range(entries):
            lines.append(f"{names[i % 7]}{4 + (i // 7) % 4} 1/{(4, 8, 2)[i % 3]}")
        return "\n".join(lines) + "\n"


class Editor:
    """A running editor."""

    def __init__(self, prefix, screen, *arguments, program_path=None, environment=None, cwd=None):
        self.prefix = prefix
        self.screen = screen
        self.path = program_path or program(WINDOWS_BUILD, "Tonex.exe")
        self.process = prefix.start(["wine", str(self.path), *arguments], environment, cwd=cwd)
        self.hwnd = None

    # --- windows

    def windows(self):
        return self.prefix.ask("windows", self.path.name)

    def main(self):
        for window in self.windows():
            if window["text"].startswith("Sound Editor - ") and window["class"] != "#32770":
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
        wait_until(lambda: self.screen.focused_title().startswith("Sound Editor - "), timeout, "the keyboard's focus")
        return self

    def caption(self):
        window = self.main()
        return window["text"] if window else None

    def wait_caption(self, caption, timeout=8):
        try:
            wait_until(lambda: self.caption() == caption, timeout)
        except AssertionError:
            raise AssertionError(f"caption {self.caption()!r}, wanted {caption!r}") from None

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

    def item(self, class_name, name):
        """What a screen reader is told of the item with a name."""
        for item in self.accessible(class_name)["children"]:
            if item["name"] == name:
                return item
        raise AssertionError(f"{class_name} has no item {name!r}")

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
        return self.accessible("TonexGrid")["children"]

    def cell_texts(self):
        return [cell["name"].split(",")[0] for cell in self.cells()]

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
        hwnd = self.child("ToolbarWindow32")["hwnd"]
        return {button["tooltip"]: button for button in self.prefix.ask("toolbar", hwnd) if not button["separator"]}

    def choose(self, caption):
        """Opens a menu by the keyboard and chooses an item by its underlined letter."""
        # After a dialog the window manager takes a moment to give the keyboard back.
        wait_until(lambda: self.screen.focused_title().startswith("Sound Editor - "), 8, "the keyboard's focus")
        for top in self.prefix.ask("menu", self.hwnd):
            for item in top.get("items", []):
                if item["text"].split("\t")[0] == caption:
                    assert item["enabled"], f"{caption} is disabled"
                    letter = re.search("&(.)", caption)[1].lower()
                    self.screen.key("alt+" + re.search("&(.)", top["text"])[1].lower())
                    time.sleep(0.15)
                    self.screen.key(letter)
                    return
        raise AssertionError(f"no menu item {caption}")

    def click_tool(self, tooltip):
        button = self.toolbar()[tooltip]
        assert button["enabled"], f"the button {tooltip} is disabled"
        self.screen.click(*self.centre(button["rect"]))

    # --- dialogs

    def dialogs(self):
        return [window for window in self.windows() if window["visible"] and window["class"] == "#32770"]

    def wait_dialog(self, title, timeout=8):
        def there():
            for window in self.dialogs():
                if window["text"] == title:
                    return window
            return None
        dialog = wait_until(there, timeout, f"the dialog {title!r}")
        wait_until(lambda: self.screen.focused_title() == title, timeout, f"the keyboard's focus on {title!r}")
        return dialog

    def wait_message(self, text, timeout=8):
        """Waits for a message box with a text; gives the box."""
        box = self.wait_dialog("Sound Editor", timeout)
        shown = [child["text"] for child in self.children(box["hwnd"])]
        assert text in shown, f"message {shown}, wanted {text!r}"
        return box

    def answer(self, box, button):
        before = self.screen.focused_id()
        self.prefix.ask("press", box["hwnd"], ANSWERS[button])
        wait_until(lambda: all(window["hwnd"] != box["hwnd"] for window in self.dialogs()), 8, "the box's end")
        self.wait_keyboard_leaves(before)

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
        before = self.screen.focused_id()
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
        self.wait_keyboard_leaves(before)

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

    # --- end

    def save_as(self, path):
        self.choose("Save to PC &as...")
        self.file_dialog("Save to PC", windows_path(path))

    def close(self):
        self.prefix.ask("post", self.hwnd, WM_CLOSE, 0, 0)

    def wait_end(self, timeout=10):
        self.process.wait(timeout)
        return self.process.returncode

    def kill(self):
        if self.process.poll() is None:
            self.process.send_signal(signal.SIGKILL)
        self.process.wait(10)

    def picture(self, name=None):
        window = wait_until(lambda: self.screen.find("Sound Editor - "), 5, "the main window")
        image = self.screen.settled_picture_of(window)
        if name:
            SCREENS.mkdir(parents=True, exist_ok=True)
            image.save(SCREENS / name)
        return image


__all__ = ["ANSWERS", "BUILD", "Editor", "GLOBAL_SETTINGS", "INSTALL_DIR", "Melody", "Prefix", "ROOT", "SCREENS", "SETTINGS", "Screen",
           "WINDOWS_BUILD", "NATIVE_BUILD", "program", "random", "wait_until", "windows_path"]
