"""One virtual screen a session or a worker, one Wine prefix a module, one fresh editor a test."""

import os
import re
import shutil
import subprocess

import pytest

import link_libraries
from building import BUILD
from editor import SCREENS, Editor
from melody import FIVE, Melody
from prefix import SCREEN_SIZE, Prefix, virtual_screen, window_manager
from sound_device import Device
from wine_paths import windows_path
from xscreen import Screen


@pytest.hookimpl(optionalhook=True)
def pytest_xdist_make_scheduler(config, log):
    from shares import Shares
    return Shares(config, log)


@pytest.fixture(scope="session")
def screen():
    """A screen with a window manager."""
    with virtual_screen() as name, window_manager(name):
        os.environ["DISPLAY"] = name
        os.environ.pop("WAYLAND_DISPLAY", None)
        yield Screen()


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
        screen.picture(0, 0, *SCREEN_SIZE).save(SCREENS / f"failed-{name}.png")
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
def five(start, melody):
    """An editor with five entries, the cursor on the first."""
    editor = start(windows_path(melody("FIVE.SND", FIVE)))
    editor.screen.key("home")
    editor.wait_selected([0])
    return editor


@pytest.fixture(params=["own device", "link libraries"])
def link(request, prefix, tmp_path):
    """An empty organiser, without the link libraries or with them."""
    with_libraries = request.param == "link libraries"
    link_libraries.remove(prefix)
    if with_libraries:
        link_libraries.install(prefix)
    shutil.rmtree(prefix.cache_dir)
    prefix.cache_dir.mkdir()
    yield link_libraries.Link(tmp_path / "calls.log", with_libraries)
    link_libraries.remove(prefix)


@pytest.fixture
def sound(prefix, tmp_path, monkeypatch):
    """A sound device that keeps what it is given, at some times the pace of real time."""
    device = Device(tmp_path)
    for name, value in device.variables().items():
        monkeypatch.setitem(prefix.environment, name, value)
    return device


@pytest.fixture
def slow_sound(prefix, tmp_path, monkeypatch):
    """The same in real time."""
    device = Device(tmp_path, real_time=22050)
    for name, value in device.variables().items():
        monkeypatch.setitem(prefix.environment, name, value)
    return device


@pytest.fixture
def small_disk():
    """A file system of 64 KB."""
    folder = BUILD / f"small-disk-{os.getpid()}"
    folder.mkdir(parents=True, exist_ok=True)
    sudo = [] if os.geteuid() == 0 else ["sudo", "-n"]
    subprocess.run([*sudo, "mount", "-t", "tmpfs", "-o", f"size=64k,uid={os.geteuid()}", "tmpfs", str(folder)],
                   check=True)
    yield folder
    subprocess.run([*sudo, "umount", "-l", str(folder)], check=True)
    shutil.rmtree(folder, ignore_errors=True)
