"""Random work in the real window by mouse and keyboard, with files and previews, against the simple second model.

A few dozen steps in the suite; tests/soak_run goes on for as long as it is told. What the process holds (handles, GDI
objects, windows, memory) must be the same at the end as after the first part. Two things Wine itself never gives back,
in whatever program: a handle of each file dialog, and about 1 KB of each question of a screen reader, which is how the
test reads the panels. Both are counted and taken off.
"""

import json
import os
import random
import subprocess
import time

from building import NATIVE_BUILD, program
from melody import Melody
from prefix import PREVIEWS
from wine_paths import windows_path
from words import PREVIEW_TOOL
from xscreen import wait_until

MINUTES = float(os.environ.get("TONEX_SOAK_MINUTES", "0"))
SEED = int(os.environ.get("TONEX_SOAK_SEED", "1"))
STEPS = 30  # where no time is told
LETTERS = ["a#", "b", "c", "c#", "d", "d#", "e", "f", "f#", "g", "g#", "a"]
TEMPOS = [640, 320, 160, 120, 96, 64, 48, 30]  # of the list
LOWEST, HIGHEST = 27, 75  # pitches of the piano
REST, SEPARATOR = 21, 0  # codes: of the first rest, of a separator
SHOWN = 30
NOTHING_TO_PLAY = "Cannot find music notes."


def pitch_name(pitch):
    step = (pitch - 1) % 12
    letter = LETTERS[step]
    octave = (pitch - 1) // 12 + (1 if step < 2 else 2)
    return letter[0] + str(octave) + letter[1:]


class Model:
    """The second model, a program of its own."""

    def __init__(self):
        self.process = subprocess.Popen([str(program(NATIVE_BUILD, "soak_model"))], stdin=subprocess.PIPE,
                                        stdout=subprocess.PIPE, text=True)
        self.state = None
        self.tell("clear")

    def tell(self, *words):
        self.process.stdin.write(" ".join(str(word) for word in words) + "\n")
        self.process.stdin.flush()
        line = self.process.stdout.readline()
        assert line, f"the model ended at {words}"
        self.state = json.loads(line)

    def __getattr__(self, name):
        return self.state[name]

    def columns(self):
        return min(len(self.entries) + 1, 509)

    def selected(self):
        return range(min(self.col, self.far), max(self.col, self.far) + 1)

    def end(self):
        self.process.stdin.close()
        self.process.wait(10)


class User:
    """Works in the window and tells the model the same."""

    def __init__(self, editor, model, folder, seed):
        self.editor, self.model, self.folder = editor, model, folder
        self.random = random.Random(seed)
        self.lengths = [item["name"] for item in editor.items("TonexLengths")]
        assert len(self.lengths) == 40
        self.tempo = 120
        self.saved = 0
        self.file_dialogs = 0
        self.done = []

    # --- what the window has to show

    def name_of(self, entry):
        code, pitch = entry
        if code == SEPARATOR:
            return "Separator"
        length = self.lengths[code - 1]
        return length if code >= REST else f"{pitch_name(pitch)}, {length}"

    def difference(self):
        """None, or in what window and model differ."""
        grid = self.editor.accessible("TonexGrid")
        left, cells = grid["scrolled"], grid["children"]
        wanted = [self.name_of(entry) for entry in self.model.entries] + ["End"]
        wanted = wanted[:self.model.columns()][left:left + SHOWN]
        names = [cell["name"] for cell in cells]
        if names != wanted:
            return f"cells from {left}: {names}, wanted {wanted}"
        staff = [item["name"] for item in self.editor.items("TonexStaff")]
        if staff[:len(wanted)] != wanted:
            return f"pictures from {left}: {staff}, wanted {wanted}"
        selected = [left + i for i, cell in enumerate(cells) if cell["state"] & 2]
        if selected != [column for column in self.model.selected() if left <= column < left + SHOWN]:
            return f"selected {selected}, wanted {list(self.model.selected())}"
        if len(self.model.selected()) > 1:
            return None
        entry = self.model.entries[self.model.col] if self.model.col < len(self.model.entries) else (0, 0)
        pressed = [self.lengths[entry[0] - 1]] if entry[0] else []
        if self.editor.chosen_length() != pressed:
            return f"pressed {self.editor.chosen_length()}, wanted {pressed}"
        return None

    def check(self):
        last = []

        def agrees():
            last[:] = [self.difference()]
            return last[0] is None

        try:
            wait_until(agrees, 10)
        except AssertionError:
            raise AssertionError(f"after {self.done[-6:]}: {last[0]}; {self.where()}") from None

    def where(self):
        """What tells an event that was lost."""
        pointer = self.editor.screen.root.query_pointer()
        return (f"keyboard at {self.editor.focused_item()}, of window {self.editor.screen.focused_title()!r}, tempo "
                f"{self.editor.tempo_box()['text']!r}, pointer at {pointer.root_x},{pointer.root_y}, buttons {pointer.mask:#x}")

    # --- what a user does

    def key(self):
        pitch = self.random.randint(LOWEST, HIGHEST)
        self.editor.click_key(pitch_name(pitch))
        self.model.tell("key", pitch)

    def length(self):
        number = self.random.randrange(40)
        self.editor.click_length(self.lengths[number])
        self.model.tell("length", number + 1 if number < 20 else number + 81)

    def into_grid(self):
        """A click on a visible cell."""
        grid = self.editor.accessible("TonexGrid")
        i = self.random.randrange(len(grid["children"]))
        self.editor.screen.click(*self.editor.centre(grid["children"][i]["rect"]))
        self.model.tell("select", grid["scrolled"] + i, grid["scrolled"] + i)

    def type_signs(self):
        self.into_grid()
        self.check()
        for _ in range(self.random.randint(1, 4)):
            sign = self.random.choice("+-x")
            self.editor.screen.key(sign)
            self.model.tell("character", ord(sign))
            self.check()

    def drag(self):
        grid = self.editor.accessible("TonexGrid")
        cells, left = grid["children"], grid["scrolled"]
        first, last = (self.random.randrange(len(cells)) for _ in "12")
        self.editor.screen.drag(*self.editor.centre(cells[first]["rect"]), *self.editor.centre(cells[last]["rect"]))
        self.model.tell("select", left + first, left + last)

    def arrows(self):
        """With and without Shift, from a cell in view."""
        self.into_grid()
        self.check()
        for _ in range(self.random.randint(1, 5)):
            key, step = self.random.choice([("left", -1), ("right", 1), ("home", -1000), ("end", 1000)])
            shift = self.random.random() < 0.4
            self.editor.screen.key("shift+" + key if shift else key)
            far = max(0, min(self.model.far + step, self.model.columns() - 1))
            self.model.tell("select", self.model.col if shift else far, far)
            self.check()

    def by_key(self, chord, *orders):
        wait_until(lambda: self.editor.main()["enabled"], 10, "the window enabled")
        self.editor.screen.key(chord)
        for order in orders:
            self.model.tell(order)

    def enabled(self, caption):
        return self.editor.menu()[caption]["enabled"]

    def copy(self):
        if self.enabled("&Copy"):
            self.by_key("ctrl+c", "copy")

    def cut(self):
        if self.enabled("Cu&t"):
            self.by_key("ctrl+x", "copy", "delete")

    def paste(self):
        if self.enabled("&Paste"):
            self.by_key("ctrl+v", "paste")

    def insert(self):
        if self.enabled("&Insert"):
            self.by_key("ctrl+i", "insert")

    def delete(self):
        if self.enabled("&Delete"):
            self.editor.click_tool("Delete")
            self.model.tell("delete")

    def undo(self):
        self.by_key("ctrl+z", "undo")

    def transpose(self):
        """So that no pitch leaves the piano for good: its name is only told within it."""
        pitches = [pitch for code, pitch in self.model.entries if 1 <= code < REST]
        word, size, up, down = self.random.choice([("octave", 12, "Up &an octave", "Down an &octave"),
                                                   ("halftone", 1, "Up &half a tone", "Down half a to&ne")])
        direction = self.random.choice([1, -1])
        if pitches and not (LOWEST <= min(pitches) + size * direction and max(pitches) + size * direction <= HIGHEST):
            return
        self.editor.choose(up if direction > 0 else down)
        self.model.tell(word, direction)

    def scroll(self):
        """By the wheel, there and back: what is selected stays."""
        grid = self.editor.child("TonexGrid")["rect"]
        self.editor.screen.move(*self.editor.centre(grid))
        for _ in range(self.random.randint(1, 6)):
            self.editor.screen.button(True, self.random.choice([4, 5]))
            self.editor.screen.button(False, 4)
            self.editor.screen.button(False, 5)
            time.sleep(0.02)

    def choose_tempo(self):
        self.tempo = self.random.choice(TEMPOS)
        self.editor.type_tempo(str(self.tempo))
        wait_until(lambda: self.editor.focus()["class"] == "Edit", 8, "the keyboard in the tempo box")
        wait_until(lambda: self.editor.tempo_box()["text"] == str(self.tempo), 8, "the typed tempo")
        self.editor.screen.key("enter")
        wait_until(lambda: self.editor.focus()["class"] == "TonexGrid", 8, "the keyboard on the grid")

    def save(self):
        """As a new file, whose bytes are then the model's."""
        self.saved += 1
        path = self.folder / f"SOAK{self.saved % 5}.SND"
        path.unlink(missing_ok=True)
        self.file_dialogs += 1
        self.editor.save_as(path)
        self.editor.wait_caption(f"Sound Editor - PC:{path.name}")
        lines = Melody.text(path)
        assert lines[0] == f"tempo {self.tempo}"
        kept = len(lines) - 1
        # A melody that fills the play block is cut and told so; the test keeps its melodies shorter.
        assert kept == len(self.model.entries), f"{kept} of {len(self.model.entries)} entries are saved"
        return path

    def save_and_open(self):
        path = self.save()
        self.file_dialogs += 1
        self.editor.choose("&Open on PC...")
        self.editor.file_dialog("Open on PC", windows_path(path))
        self.model.tell("reload")

    def new(self):
        self.save()
        self.editor.click_tool("New")
        self.editor.wait_caption("Sound Editor - Untitled")
        self.tempo = 120
        self.model.tell("clear")

    def sounds(self):
        """Whether a preview plays anything: the selected columns when there are several, else all of them."""
        selected, entries = self.model.selected(), self.model.entries
        played = [entries[i] for i in selected if i < len(entries)] if len(selected) > 1 else entries
        return any(code != SEPARATOR for code, _ in played)

    def preview(self):
        if not self.editor.toolbar()[PREVIEW_TOOL]["enabled"]:
            return
        self.editor.click_tool(PREVIEW_TOOL)
        if not self.sounds():
            self.editor.message(NOTHING_TO_PLAY)
            return
        wait_until(lambda: not self.editor.main()["enabled"], 20, "the main window to be disabled")
        wait_until(lambda: self.editor.main()["enabled"], 200, "the window to be enabled")
        self.editor.prefix.wait_no_files(PREVIEWS)
        wait_until(lambda: self.editor.screen.focused_title().startswith("Sound Editor - "), 10, "the editor in front")

    ACTS = {key: 20, length: 8, into_grid: 6, type_signs: 4, drag: 6, arrows: 5, copy: 4, cut: 3, paste: 4, insert: 3,
            delete: 6, undo: 5, transpose: 3, scroll: 3, choose_tempo: 2, save: 1, save_and_open: 1, new: 1, preview: 1}

    def do(self, act):
        self.done.append(act.__name__)
        try:
            act(self)
        except AssertionError as error:
            raise AssertionError(f"in {self.done[-6:]}: {error}; {self.where()}") from None
        self.check()

    def step(self):
        act = self.random.choices(list(self.ACTS), list(self.ACTS.values()))[0]
        self.do(User.new if len(self.model.entries) > 150 else act)


class Watch:
    """What the process holds with an empty melody, without what Wine keeps."""

    def __init__(self, user):
        self.user, self.editor = user, user.editor
        self.questions, self.cost = 0, 0.0
        self.ask = self.editor.prefix.ask
        self.editor.prefix.ask = self.counted
        self.cost = self.cost_of_a_question()

    def counted(self, *words):
        self.questions += words[0] == "accessible"
        return self.ask(*words)

    def memory(self):
        """In KB."""
        status = open(f"/proc/{self.editor.process.pid}/status", encoding="ascii").read().split()
        return int(status[status.index("RssAnon:") + 1])

    def cost_of_a_question(self):
        """KB that Wine keeps of each; the object that the editor gives for the answer is counted and ends."""
        panel = self.editor.child("TonexGrid")["hwnd"]
        for _ in range(100):  # until its tables have grown
            self.ask("accessible", panel)
        before = self.memory()
        for _ in range(400):
            self.ask("accessible", panel)
        cost = (self.memory() - before) / 400
        assert cost < 2, f"{cost} KB a question: more than Wine keeps"
        return cost

    def held(self):
        numbers = self.ask("process", self.editor.hwnd)
        return {"handles": numbers["handles"] - self.user.file_dialogs, "gdi": numbers["gdi"],
                "windows": len(self.editor.windows() + self.editor.children()),
                "memory": round(self.memory() - self.questions * self.cost)}

    def end(self):
        self.editor.prefix.ask = self.ask


def work(user, seconds, steps):
    end, start = time.monotonic() + seconds, len(user.done)
    while len(user.done) - start < steps or time.monotonic() < end:
        user.step()
    user.new()
    user.check()


def test_random_work_in_the_window_agrees_with_the_model_and_leaves_nothing(sound, start, tmp_path):
    model = Model()
    editor = start()
    user = User(editor, model, tmp_path, SEED)
    for act in User.ACTS:  # what the system loads once belongs to the first part
        user.do(act)
    work(user, min(60, MINUTES * 6), STEPS // 2)
    watch = Watch(user)
    first = last = watch.held()
    for minute in range(max(1, round(MINUTES))):
        work(user, 60 if MINUTES else 0, STEPS // 2)
        last = watch.held()
        print(f"minute {minute + 1}, {len(user.done)} steps, {user.file_dialogs} file dialogs: {last}", flush=True)
    watch.end()
    model.end()
    assert first["handles"] > 20 and first["gdi"] > 20, first
    assert last["windows"] == first["windows"], (first, last)
    assert abs(last["gdi"] - first["gdi"]) <= 4, (first, last)
    assert abs(last["handles"] - first["handles"]) <= 4, (first, last)
    assert last["memory"] <= first["memory"] + 1000, (first, last)
