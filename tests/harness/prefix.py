"""What an editor under test runs in: a virtual screen, a Wine prefix with the link software's entry, a probe."""

import contextlib
import json
import os
import pathlib
import shutil
import subprocess

from building import BUILD, ROOT, WINDOWS_BUILD, program
from xscreen import wait_until

INSTALL_DIR = "C:\\Link"
SOUND_FOLDER = INSTALL_DIR + "\\userdata\\sound\\"
DEVICE_FOLDER = INSTALL_DIR + "\\pcferry\\cache\\System\\sound\\"
LINK_ENTRY = "Software\\QMT\\Corvane-e\\PC"
SETTINGS = "Software\\VB and VBA Program Settings\\Corvane\\Tonex"
GLOBAL_SETTINGS = "Software\\VB and VBA Program Settings\\Corvane\\Global"
SCREEN_SIZE = 1920, 1200
# Names of the temporary files: of what is put on the organiser, of a preview.
UPLOADS, PREVIEWS = "Snd*", "$$*"


@contextlib.contextmanager
def virtual_screen(size=SCREEN_SIZE):
    """An X server on a free display; gives its name."""
    read, write = os.pipe()
    os.set_inheritable(write, True)
    server = subprocess.Popen(["Xvfb", "-displayfd", str(write), "-screen", "0", "{}x{}x24".format(*size),
                               "-nolisten", "tcp"],
                              pass_fds=[write], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    os.close(write)
    with os.fdopen(read) as pipe:
        number = pipe.readline().strip()
    assert number, "the virtual screen did not start"
    yield ":" + number
    server.terminate()
    server.wait(10)


@contextlib.contextmanager
def window_manager(display, *options):
    """A window manager on a screen."""
    manager = subprocess.Popen(["openbox", "--sm-disable", *options], env=dict(os.environ, DISPLAY=display),
                               stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    yield
    manager.terminate()
    manager.wait(10)


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
        subprocess.run([ROOT / "resources/scripts/copy_prefix", BUILD / "wine-template", self.path], check=True)
        if link_entry:
            self.register(LINK_ENTRY, {"InstallDir": INSTALL_DIR})
        self.register("Control Panel\\Desktop", {"LogPixels": dpi})
        self.register("Software\\Wine\\Fonts", {"LogPixels": dpi})
        self.install_dir = self.path / "drive_c" / "Link"
        self.sound_dir = self.install_dir / "userdata" / "sound"
        self.cache_dir = self.install_dir / "pcferry" / "cache" / "System" / "sound"
        self.sound_dir.mkdir(parents=True)
        self.cache_dir.mkdir(parents=True)
        self.environment = dict(os.environ, WINEARCH="win32", WINEPREFIX=str(self.path), WINEDEBUG="-all",
                                WINEDLLOVERRIDES="mscoree,mshtml=;winemenubuilder.exe=d", **(environment or {}))
        self._probe = None

    def register(self, path, values):
        """Writes to the registry's file: for as long as nothing runs in the prefix."""
        with open(self.path / "user.reg", "a", encoding="ascii") as registry:
            registry.write(registry_text(path, values))

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

    def log_off(self):
        """The system asks all programs, tells them the answer, and ends them where none refused; gives the process
        that does so."""
        return self.start(["wine", "wineboot", "--end-session"])

    def forget_settings(self):
        for name in ("DoremiFlag", "WindwInformation", "File1"):
            self.ask("delreg", SETTINGS, name)
        self.ask("delreg", GLOBAL_SETTINGS, "MsgDsp")

    def process_of(self, name):
        """The running process of a program in this prefix, or None."""
        for path in pathlib.Path("/proc").glob("[0-9]*"):
            try:
                line = (path / "cmdline").read_bytes().split(b"\0")
                if not line[0].endswith((name.encode(), name.removesuffix(".exe").encode())):
                    continue
                if f"WINEPREFIX={self.path}\0".encode() in (path / "environ").read_bytes():
                    return int(path.name)
            except (FileNotFoundError, ProcessLookupError, PermissionError):
                continue
        return None

    # --- files

    def on_device(self):
        """The names in the folder that stands for the organiser's sounds, in capitals."""
        return sorted(path.name.upper() for path in self.cache_dir.iterdir())

    def temporary_folders(self):
        """All folders that may be the temporary one."""
        users, windows = self.path / "drive_c" / "users", self.path / "drive_c" / "windows"
        return [*users.glob("*/Temp"), *users.glob("*/AppData/Local/Temp"), *windows.glob("temp")]

    def temporary_files(self, pattern):
        users, windows = self.path / "drive_c" / "users", self.path / "drive_c" / "windows"
        return sorted(path for path in [*users.rglob(pattern), *windows.glob("temp/" + pattern)] if path.is_file())

    def wait_no_files(self, pattern, when=""):
        """Until no temporary file is left. They go last: what else a command does can be seen before."""
        wait_until(lambda: self.temporary_files(pattern) == [], 10, f"no file {pattern} left {when}")

    def opened_pages(self, folder, keep_reader=False):
        """Lets the system's browser be a script that keeps what it is given, and takes the help reader away unless
        it is to be kept; gives the file with a line a page."""
        if not keep_reader:
            (self.path / "drive_c" / "windows" / "winhlp32.exe").unlink(missing_ok=True)
        note, script = folder / "opened", folder / "browser"
        script.write_text(f'#!/bin/sh\nprintf "%s\\n" "$1" >>{note}\n')
        script.chmod(0o755)
        self.ask("setreg", "Software\\Wine\\WineBrowser", "Browsers", str(script))
        return note

    def end(self):
        if self._probe is not None and self._probe.poll() is None:
            self._probe.stdin.close()
        subprocess.run(["wineserver", "-k"], env=self.environment, timeout=30, check=False,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        if self._probe is not None:
            self._probe.wait(20)
        shutil.rmtree(self.path, ignore_errors=True)
