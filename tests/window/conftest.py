"""One virtual screen a session, one Wine prefix a module, one fresh editor a test."""

import os
import re
import shutil
import subprocess
import sys
import pathlib

import pytest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent))

from editor import BUILD, Editor, Melody, Prefix, SCREENS, Screen  # noqa: E402


@pytest.fixture(scope="session")
def screen():
    """A screen of 1920 by 1200 with a window manager, on a free display number."""
    read, write = os.pipe()
    os.set_inheritable(write, True)
    xvfb = subprocess.Popen(["Xvfb", "-displayfd", str(write), "-screen", "0", "1920x1200x24", "-nolisten", "tcp"],
                            pass_fds=[write], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    os.close(write)
    with os.fdopen(read) as pipe:
        number = pipe.readline().strip()
    assert number, "the virtual screen did not start"
    os.environ["DISPLAY"] = ":" + number
    os.environ.pop("WAYLAND_DISPLAY", None)
    manager = subprocess.Popen(["openbox", "--sm-disable"], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    yield Screen()
    for process in (manager, xvfb):
        process.terminate()
        process.wait(10)


@pytest.fixture(scope="module")
def prefix(screen, request):
    prefix = Prefix(request.module.__name__)
    yield prefix
    prefix.end()


@pytest.fixture
def start(prefix, screen, request):
    """Starts editors that end with the test: start(arguments…)."""
    running = []

    def start_one(*arguments, ready=True, **options):
        if not running:
            prefix.forget_settings()
        editor = Editor(prefix, screen, *arguments, **options)
        running.append(editor)
        return editor.wait_ready() if ready else editor

    yield start_one
    failed = getattr(request.node, "failed", False)
    if failed:
        SCREENS.mkdir(parents=True, exist_ok=True)
        name = re.sub(r"\W+", "-", request.node.name).strip("-")
        screen.picture(0, 0, 1920, 1200).save(SCREENS / f"failed-{name}.png")
    for editor in running:
        editor.kill()


@pytest.hookimpl(hookwrapper=True)
def pytest_runtest_makereport(item):
    outcome = yield
    report = outcome.get_result()
    if report.when == "call" and report.failed:
        item.failed = True


@pytest.fixture
def editor(start):
    return start()


@pytest.fixture
def melody(tmp_path):
    """Makes SND files in a folder of the test: melody("NAME.SND", text)."""
    def make(name, text):
        return Melody.build(tmp_path / name, text)
    return make


@pytest.fixture
def small_disk():
    """A file system of 64 KB."""
    folder = BUILD / "small-disk"
    folder.mkdir(parents=True, exist_ok=True)
    sudo = [] if os.geteuid() == 0 else ["sudo", "-n"]
    subprocess.run([*sudo, "mount", "-t", "tmpfs", "-o", f"size=64k,uid={os.geteuid()}", "tmpfs", str(folder)],
                   check=True)
    yield folder
    subprocess.run([*sudo, "umount", "-l", str(folder)], check=True)
    shutil.rmtree(folder, ignore_errors=True)
