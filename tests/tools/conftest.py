"""Tests of the programs beside the editor, run as a user runs them.

Without more words sndtool is tested twice: the native build's, and the Windows build's under Wine. To test one
program only:

SNDTOOL         path of sndtool or sndtool.exe
SNDTOOL_WRAPPER the program that starts it, such as wine; empty for a native one
"""
import os
import pathlib
import shlex
import subprocess

import pytest

from building import NATIVE_BUILD, PRODUCT
from xscreen import Screen

TIMEOUT = 60  # seconds; a cold Wine takes several to start


def programs():
    """Name of the system: (what starts the program, the program)."""
    if "SNDTOOL" in os.environ:
        wrapper = shlex.split(os.environ.get("SNDTOOL_WRAPPER", ""))
        name = "windows" if wrapper else "native"
        return {name: (wrapper, pathlib.Path(os.environ["SNDTOOL"]).resolve())}
    return {"native": ([], NATIVE_BUILD / "tools/sndtool/sndtool"),
            "windows": (["wine"], PRODUCT / "sndtool.exe")}


def pytest_generate_tests(metafunc):
    """Every test of sndtool runs once a program; what is marked native, with a native one only."""
    if "sndtool" not in metafunc.fixturenames:
        return
    native_only = metafunc.definition.get_closest_marker("native") is not None
    metafunc.parametrize("sndtool", [name for name in programs() if name == "native" or not native_only],
                         indirect=True)


def pytest_collection_modifyitems(config, items):
    """Without a native program its tests are left out by name; they have no program to be run with."""
    if "native" in programs():
        return
    left_out = [item for item in items if item.get_closest_marker("native")]
    config.hook.pytest_deselected(items=left_out)
    items[:] = [item for item in items if item not in left_out]


class Sndtool:
    """Starts sndtool in a folder of its own."""

    def __init__(self, name, folder):
        self.name = name
        self.wrapper, self.program = programs()[name]
        self.folder = folder
        assert self.program.is_file(), f"no sndtool at {self.program}: build it, or name it in SNDTOOL"

    def command(self, *arguments):
        return [*self.wrapper, str(self.program), *arguments]

    def environment(self):
        return {**os.environ, "LC_ALL": "C.UTF-8", "WINEDEBUG": "-all"}

    def __call__(self, *arguments, stdin=b"", **options):
        return subprocess.run(self.command(*arguments), cwd=self.folder, env=self.environment(), input=stdin,
                              capture_output=True, timeout=TIMEOUT, **options)

    def good(self, *arguments, stdin=b""):
        """Runs, asserts that all went well and without a word of complaint; gives standard output."""
        done = self(*arguments, stdin=stdin)
        assert (done.returncode, done.stderr) == (0, b""), done
        return done.stdout

    def bad(self, status, *arguments, stdin=b""):
        """Runs, asserts the exit status; gives standard error as text."""
        done = self(*arguments, stdin=stdin)
        assert done.returncode == status, done
        return done.stderr.decode()


@pytest.fixture(scope="module")
def screen():
    """The caller's."""
    return Screen()


@pytest.fixture(scope="session")
def warm_wine():
    """Keeps Wine's services up while the tests run. Each test would wait for them to start otherwise, and for
    their end too, as services that a test starts hold its pipes."""
    shell = subprocess.Popen(["wine", "cmd"], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                             stderr=subprocess.DEVNULL)
    shell.stdin.write(b"echo re^ady\r\n")
    shell.stdin.flush()
    assert any(b"ready" in line for line in shell.stdout), "Wine does not start"
    yield
    shell.stdin.write(b"exit\r\n")
    shell.stdin.close()
    shell.wait(timeout=TIMEOUT)
    shell.stdout.close()


@pytest.fixture
def sndtool(request, tmp_path):
    if programs()[request.param][0]:
        request.getfixturevalue("warm_wine")
    return Sndtool(request.param, tmp_path)
