"""The package that a user gets: what the zip and the installer hold, and what the installer does to a PC. Uses the
caller's screen; every test has a Wine prefix of its own. ./package has made build/dist before."""

import datetime
import os
import re
import shutil
import subprocess
import sys
import zipfile

import pefile
import pytest

import make_package
from building import BUILD, NATIVE_BUILD, PRODUCT, ROOT, WINDOWS_BUILD
from editor import ANSWERS, SCREENS, WM_CLOSE, Editor
from prefix import INSTALL_DIR, LINK_ENTRY, Prefix
from wine_paths import windows_path
from xscreen import wait_until

VERSION = make_package.version()
ZIP = BUILD / "dist" / f"sound-editor-{VERSION}.zip"
SETUP = BUILD / "dist" / f"sound-editor-{VERSION}-setup.exe"
KB = 1024
TITLE = "Sound Editor Setup"
UNINSTALLER = "Un.exe"  # the copy that does the work
ENTRY = "Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\SoundEditor"
MELODY_CLASS = "Software\\Classes\\SoundEditor.Melody"
SND_CLASS = "Software\\Classes\\.snd"
CORVANE = "Software\\VB and VBA Program Settings\\Corvane"
DONE, FAILED, EDITOR_RUNS, NO_LINK = 0, 2, 3, 4
NEXT, CANCEL, RETRY = 1, 2, 4  # buttons of the installer's window, of its box


# --- what is packed


def test_sizes():
    assert ZIP.stat().st_size <= 1024 * KB
    assert SETUP.stat().st_size <= 1126 * KB


def test_the_zip_holds_the_folder_whole():
    with zipfile.ZipFile(ZIP) as packed:
        assert packed.testzip() is None
        assert packed.namelist() == [f"sound-editor-{VERSION}/{name}" for name in make_package.files()]
        for name in make_package.files():
            assert packed.read(f"sound-editor-{VERSION}/{name}") == (PRODUCT / name).read_bytes()
        days = {entry.date_time for entry in packed.infolist()}
    assert days == {(*make_package.day().timetuple()[:3], 0, 0, 0)}


def test_samples_are_sound():
    samples = sorted((PRODUCT / "samples").glob("*.snd"))
    assert [path.name for path in samples] == make_package.samples()
    subprocess.run([NATIVE_BUILD / "tools" / "sndtool" / "sndtool", "check", *samples], check=True)


def test_texts_are_for_windows_editors():
    for name in ("readme.txt", "license.txt"):
        text = (PRODUCT / name).read_bytes()
        assert text.count(b"\n") == text.count(b"\r\n") > 10
        text.decode("ascii")


def test_the_readme_names_every_file():
    text = (PRODUCT / "readme.txt").read_text()
    for name in make_package.files():
        assert name == "readme.txt" or name.partition("/")[0] in text


def test_the_same_files_give_the_same_bytes(tmp_path):
    folder = tmp_path / "elsewhere"
    shutil.copytree(PRODUCT, folder, copy_function=shutil.copy)
    for path in folder.rglob("*"):
        os.utime(path, (1_000_000_000, 1_000_000_000))
    subprocess.run([sys.executable, "-B", ROOT / "tools" / "package" / "make_package.py", folder,
                    WINDOWS_BUILD / "tonex.ico", tmp_path / "out"], check=True)
    for path in (ZIP, SETUP):
        assert (tmp_path / "out" / path.name).read_bytes() == path.read_bytes(), path.name


def test_the_version_is_written_in_one_place():
    found = subprocess.run(["git", "-C", ROOT, "grep", "-l", "-F", VERSION], capture_output=True, text=True)
    if found.returncode == 0:  # a tree without its history can not be asked
        assert set(found.stdout.split()) <= {"CMakeLists.txt", "CHANGES.md"}
    assert re.search(r"^## ([\d.]+) ", (ROOT / "CHANGES.md").read_text(), re.M)[1] == VERSION
    assert make_package.day() <= datetime.date.today() + datetime.timedelta(days=1)
    assert f"version {VERSION}" in (PRODUCT / "Veloxa.htm").read_text(encoding="utf-8")
    assert f"Sound Editor {VERSION}" in (PRODUCT / "readme.txt").read_text()


def test_the_installer_needs_no_administrator_and_names_its_systems():
    file = pefile.PE(SETUP)
    data = SETUP.read_bytes()
    manifest = data[data.index(b"<assembly"):data.index(b"</assembly>")].decode()
    assert 'level="asInvoker"' in manifest
    assert manifest.count("supportedOS") >= 5
    header = file.OPTIONAL_HEADER
    assert (header.MajorSubsystemVersion, header.MinorSubsystemVersion) <= (5, 1)
    told = {name.decode(): value.decode() for table in file.FileInfo[0] if table.Key == b"StringFileInfo"
            for strings in table.StringTable for name, value in strings.entries.items()}
    assert (told["ProductVersion"], told["CompanyName"]) == (VERSION, "The Sound Editor authors")


# --- what it does to a PC


def registry_of(prefix):
    """The current user's keys with their values: of the software, without what the system notes for itself."""
    text = subprocess.run(["wine", "reg", "export", "HKCU\\Software", "Z:" + str(prefix.path / "out.reg").replace(
        "/", "\\"), "/y"], env=prefix.environment, stdin=subprocess.DEVNULL, capture_output=True, timeout=60)
    assert text.returncode == 0, text
    exported = (prefix.path / "out.reg").read_bytes().decode("utf-16")
    return {block.partition("\r\n")[0]: block for block in exported.split("\r\n\r\n")
            if block.startswith("[") and "\\Software\\Wine" not in block.partition("\r\n")[0]}


def files_of(prefix):
    """The files and folders of the drive. The uninstaller can not delete its own copy while it runs; it lies in the
    system's temporary folder."""
    root = prefix.path / "drive_c"
    return {str(path.relative_to(root)) for path in root.rglob("*") if "Temp" not in path.parts}


class Pc:
    """A PC, with the link software or without, that the editor is installed on."""

    def __init__(self, name, screen, link=False):
        self.prefix = Prefix(f"package-{name}", link_entry=link)
        self.screen = screen
        self.prefix.register("Software\\Classes", {})  # is there on every Windows
        if not link:
            shutil.rmtree(self.prefix.install_dir)
        self.prefix.ask("windows", "none.exe")  # the user's profile is made now
        local = next((self.prefix.path / "drive_c" / "users").glob("*/AppData/Local"))
        self.folder = local / "Programs" / "Sound Editor"
        self.menu_entry = next(iter(local.parent.rglob("Programs"))) / "Sound Editor.lnk"
        self.running = []

    def run(self, program, *arguments, timeout=90):
        return self.prefix.start(["wine", str(program), *arguments]).wait(timeout)

    def install(self, *options):
        return self.run(SETUP, "/S", *options)

    def start_setup(self, program=SETUP):
        process = self.prefix.start(["wine", str(program)])
        self.running.append(process)
        return process

    def uninstall(self):
        assert self.run(self.folder / "uninstall.exe", "/S") == DONE
        self.wait_uninstalled()

    def wait_uninstalled(self):
        wait_until(lambda: self.value(ENTRY, "DisplayName") is None, 60, "the end of the program's entry")
        wait_until(lambda: not self.prefix.ask("processes", UNINSTALLER), 30, "the uninstaller's end")

    def wait_uninstalled_page(self):
        """Of an uninstaller with pages, which waits for Close."""
        page = wait_until(lambda: next((window for window in self.prefix.ask("windows", UNINSTALLER) if window["visible"]
                                        and "Completed" in self.texts(window)), None), 60, "the end of the removal")
        self.press(page, NEXT)
        self.wait_uninstalled()

    def value(self, key, name):
        return self.prefix.ask("getreg", key, name)

    def editor(self, *arguments):
        editor = Editor(self.prefix, self.screen, *arguments, program_path=self.folder / "Tonex.exe")
        self.running.append(editor)
        return editor.wait_ready()

    def box(self, program, title):
        """A window of a program; the installer's page follows the title with what it does."""
        return wait_until(lambda: next((window for window in self.prefix.ask("windows", program)
                                        if window["text"].startswith(title) and window["visible"]), None), 40, title)

    def texts(self, window):
        return [child["text"] for child in self.prefix.ask("children", window["hwnd"])]

    def press(self, window, button):
        self.prefix.ask("press", window["hwnd"], button)

    def click(self, page, text):
        """Presses a round button or a box of the page and waits until it shows that."""
        child = next(child for child in self.prefix.ask("children", page["hwnd"]) if child["text"] == text)
        left, top, _, bottom = child["rect"]
        before = text in self.checked(page)
        self.screen.click(left + 8, (top + bottom) // 2)
        wait_until(lambda: (text in self.checked(page)) != before, 10, text)

    def page(self):
        """The installer's window."""
        return self.box(SETUP.name, TITLE)

    def finish_setup(self, setup):
        """From the page of choices to the installer's end."""
        self.press(self.page(), NEXT)
        wait_until(lambda: "Completed" in self.texts(self.page()), 60, "the end of the installation")
        self.press(self.page(), NEXT)
        assert setup.wait(20) == DONE

    def checked(self, page):
        """The texts of the buttons that are chosen."""
        chosen = 0x1  # BST_CHECKED, as BM_GETCHECK tells it
        return [child["text"] for child in self.prefix.ask("children", page["hwnd"])
                if child["class"] == "Button" and self.prefix.ask("checked", child["hwnd"]) == chosen]

    def picture(self, name):
        SCREENS.mkdir(parents=True, exist_ok=True)
        window = wait_until(lambda: self.screen.find(TITLE), 20, "the page on the screen")
        self.screen.settled_picture_of(window).save(SCREENS / f"{name}.png")

    def started_editor(self, caption="Sound Editor - "):
        return wait_until(lambda: next((window for window in self.prefix.ask("windows", "Tonex.exe")
                                        if window["visible"] and window["text"].startswith(caption)), None), 30, caption)

    def close(self, window):
        self.prefix.ask("post", window["hwnd"], WM_CLOSE, 0, 0)
        wait_until(lambda: not self.prefix.ask("processes", "Tonex.exe"), 20, "the editor's end")

    def snapshot(self):
        return files_of(self.prefix), registry_of(self.prefix)

    def assert_as(self, before):
        """Files and registry are as they were; a failure tells what is not."""
        files, registry = self.snapshot()
        assert sorted(files ^ before[0]) == []
        assert sorted(set(registry.items()) ^ set(before[1].items())) == []

    def end(self):
        for process in self.running:
            process.kill()
        self.prefix.end()


def name_of(request):
    return re.sub(r"\W+", "-", request.node.name)[:40]


@pytest.fixture
def pc(request, screen):
    """A PC without the link software."""
    pc = Pc(name_of(request), screen)
    yield pc
    pc.end()


@pytest.fixture
def suite_pc(request, screen):
    """A PC with it."""
    pc = Pc(name_of(request), screen, link=True)
    yield pc
    pc.end()


def assert_installed(pc):
    for name in make_package.files():
        assert (pc.folder / name).read_bytes() == (PRODUCT / name).read_bytes(), name
    inside = {str(path.relative_to(pc.folder)) for path in pc.folder.rglob("*") if path.is_file()}
    assert inside == {*make_package.files(), "uninstall.exe"}


def test_silently_installs_starts_and_leaves_nothing(pc):
    before = pc.snapshot()
    assert pc.install() == DONE
    assert_installed(pc)
    assert pc.value(ENTRY, "DisplayName") == "Sound Editor"
    assert pc.value(ENTRY, "DisplayVersion") == VERSION
    assert pc.value(ENTRY, "UninstallString") == f'"{pc.value(ENTRY, "InstallLocation")}\\uninstall.exe"'
    assert f'"EstimatedSize"=dword:{-(-sum((PRODUCT / name).stat().st_size for name in make_package.files()) // KB):08x}' \
        in registry_of(pc.prefix)[f"[HKEY_CURRENT_USER\\{ENTRY}]"]
    assert pc.value(MELODY_CLASS, "") is None and pc.value(SND_CLASS, "") is None
    assert pc.value(LINK_ENTRY, "InstallDir").endswith("\\Corvane")
    # The entry of the Start menu opens the editor, which stores its settings.
    pc.run("start", "/unix", pc.menu_entry)
    pc.close(pc.started_editor())
    assert pc.value(CORVANE + "\\Tonex", "WindwInformation")
    pc.uninstall()
    pc.assert_as(before)


def test_its_pages_ask_one_question_and_open_melodies_where_that_is_ticked(pc):
    before = pc.snapshot()
    setup = pc.start_setup()
    page = pc.page()
    pc.picture("installer-choices")
    texts = " ".join(pc.texts(page))
    assert "There is none" in texts and "a folder that stands for it, is there" in texts
    assert pc.checked(page) == ["There is none: &make a folder in my documents instead"]
    pc.click(page, "&Open melody files (.snd) with the Sound Editor")
    pc.finish_setup(setup)
    assert_installed(pc)
    assert pc.value(SND_CLASS, "") == "SoundEditor.Melody"
    # A melody opens in the editor by its name alone. Wine's shell knows the machine's classes only, Windows both.
    for name in (SND_CLASS, MELODY_CLASS):
        subprocess.run(["wine", "reg", "copy", "HKCU\\" + name, "HKLM\\" + name, "/s", "/f"],
                       env=pc.prefix.environment, stdin=subprocess.DEVNULL, check=True, timeout=60)
    pc.prefix.start(["wine", "start", "/unix", str(pc.folder / "samples" / "GRACE.snd")])
    pc.close(pc.started_editor("Sound Editor - PC:GRACE.snd"))
    # Its pages take it away again.
    pc.start_setup(pc.folder / "uninstall.exe")
    page = pc.box(UNINSTALLER, "Sound Editor Uninstall")
    pc.press(page, NEXT)
    pc.wait_uninstalled_page()
    pc.assert_as(before)


def test_the_other_choice_makes_no_folder(pc):
    setup = pc.start_setup()
    pc.click(pc.page(), "The &link software, or a folder that stands for it, is there")
    pc.finish_setup(setup)
    assert_installed(pc)
    assert pc.value(LINK_ENTRY, "InstallDir") is None


def test_an_upgrade_by_pages_knows_what_was_chosen_and_takes_it_back(pc):
    assert pc.install("/SND") == DONE
    before = files_of(pc.prefix)
    setup = pc.start_setup()
    page = pc.page()
    box = "&Open melody files (.snd) with the Sound Editor"
    assert pc.checked(page) == ["The &link software, or a folder that stands for it, is there", box]
    pc.click(page, box)
    pc.finish_setup(setup)
    assert files_of(pc.prefix) == before
    assert pc.value(SND_CLASS, "") is None and pc.value(MELODY_CLASS, "") is None


def test_cancelling_changes_nothing(pc):
    before = pc.snapshot()
    setup = pc.start_setup()
    pc.press(pc.page(), CANCEL)
    assert setup.wait(20) == 1
    pc.assert_as(before)


def test_what_opened_melodies_before_opens_them_again(pc):
    pc.prefix.ask("setreg", SND_CLASS, "", "Others.Sound")
    before = pc.snapshot()
    assert pc.install("/SND") == DONE
    assert pc.value(SND_CLASS, "") == "SoundEditor.Melody"
    assert pc.install() == DONE  # an upgrade keeps what was ticked
    assert pc.value(SND_CLASS, "") == "SoundEditor.Melody"
    pc.uninstall()
    assert pc.value(SND_CLASS, "") == "Others.Sound"
    pc.assert_as(before)


def test_who_took_melodies_over_since_keeps_them(pc):
    assert pc.install("/SND") == DONE
    pc.prefix.ask("setreg", SND_CLASS, "", "Others.Sound")
    pc.uninstall()
    assert pc.value(SND_CLASS, "") == "Others.Sound"


def test_upgrades_over_itself_and_keeps_melodies(pc):
    assert pc.install() == DONE
    link = pc.value(LINK_ENTRY, "InstallDir")
    (pc.folder / "Tonex.exe").write_bytes(b"of an older version")
    (pc.folder / "samples" / "GRACE.snd").write_bytes(b"the user's own")
    (pc.folder / "samples" / "MINE.SND").write_bytes(b"a melody")
    pc.prefix.ask("setreg", ENTRY, "DisplayVersion", "0.9.0")
    assert pc.install() == DONE
    assert (pc.folder / "Tonex.exe").read_bytes() == (PRODUCT / "Tonex.exe").read_bytes()
    assert (pc.folder / "samples" / "GRACE.snd").read_bytes() == b"the user's own"
    assert (pc.folder / "samples" / "MINE.SND").read_bytes() == b"a melody"
    assert pc.value(ENTRY, "DisplayVersion") == VERSION
    assert pc.value(LINK_ENTRY, "InstallDir") == link


def test_an_upgrade_stays_where_the_editor_is(pc):
    """Elsewhere it would leave the old editor behind."""
    assert pc.install("/D=C:\\Music\\Editor") == DONE
    pc.folder = pc.prefix.path / "drive_c" / "Music" / "Editor"
    assert_installed(pc)
    (pc.folder / "Tonex.exe").write_bytes(b"of an older version")
    before = files_of(pc.prefix)
    assert pc.install("/D=C:\\Elsewhere") == DONE
    assert_installed(pc)
    assert files_of(pc.prefix) == before


def folder_in_the_way(pc):
    (pc.folder / "Veloxa.htm").mkdir(parents=True)
    return (pc.folder / "Veloxa.htm").rmdir


def file_in_the_way(pc):
    pc.folder.parent.mkdir(parents=True)
    pc.folder.write_bytes(b"no folder")
    return pc.folder.unlink


@pytest.mark.parametrize("obstacle", [folder_in_the_way, file_in_the_way])
def test_what_can_not_be_written_is_a_failure_that_can_be_made_good(pc, obstacle):
    before = pc.snapshot()
    clear = obstacle(pc)
    assert pc.install() == FAILED
    assert pc.value(LINK_ENTRY, "InstallDir") is None
    # What can be taken away is in the list of programs.
    assert (pc.value(ENTRY, "DisplayName") is not None) == pc.folder.is_dir()
    clear()
    assert pc.install() == DONE
    assert_installed(pc)
    pc.uninstall()
    pc.assert_as(before)


def test_uninstalling_leaves_melodies_and_says_where(pc):
    assert pc.install() == DONE
    (pc.folder / "samples" / "GRACE.snd").write_bytes((PRODUCT / "samples" / "GRACE.snd").read_bytes() + b"more")
    (pc.folder / "samples" / "MINE.SND").write_bytes(b"a melody")
    sound = next((pc.prefix.path / "drive_c" / "users").glob("*/Documents/Corvane/userdata/sound"))
    (sound / "TUNE.SND").write_bytes(b"a melody of the PC")
    pc.start_setup(pc.folder / "uninstall.exe")
    page = pc.box(UNINSTALLER, "Sound Editor Uninstall")
    assert any("Your melodies stay" in text for text in pc.texts(page))
    pc.press(page, NEXT)
    box = wait_until(lambda: next((w for w in pc.prefix.ask("windows", UNINSTALLER)
                                   if w["visible"] and any("is gone" in text for text in pc.texts(w))), None),
                     60, "word of the melodies")
    told = " ".join(pc.texts(box))
    assert "userdata\\sound" in told and "Sound Editor\\samples" in told and "cache" not in told
    pc.press(box, ANSWERS["OK"])
    pc.wait_uninstalled_page()
    left = {path.name for path in (pc.prefix.path / "drive_c" / "users").rglob("*") if path.suffix in (".SND", ".snd")}
    assert left == {"GRACE.snd", "MINE.SND", "TUNE.SND"}
    assert {path.name for path in pc.folder.rglob("*")} == {"samples", "GRACE.snd", "MINE.SND"}
    assert pc.value(LINK_ENTRY, "InstallDir") is None and pc.value(CORVANE + "\\Tonex", "File1") is None


def test_the_link_software_and_its_choices_stay(suite_pc):
    pc = suite_pc
    pc.prefix.ask("setreg", CORVANE + "\\Global", "MsgDsp", "1")
    before = pc.snapshot()
    setup = pc.start_setup()
    page = pc.page()
    assert INSTALL_DIR in " ".join(pc.texts(page))
    assert pc.checked(page) == ["The &link software, or a folder that stands for it, is there"]
    pc.finish_setup(setup)
    editor = pc.editor()
    editor.close()
    assert editor.wait_end() == 0
    assert pc.value(LINK_ENTRY, "InstallDir") == INSTALL_DIR
    pc.uninstall()
    pc.assert_as(before)


def test_the_page_knows_a_useless_entry_as_linksetup_does(pc):
    for entry, useless in [(" ", True), ("\\", True), ("Link", True), ("C:Link", True), ("C:\\gone", True),
                           ("C:\\windows", False), ("C:\\", False), ("Q:\\Link", False), ("\\\\server\\Link", False)]:
        pc.prefix.ask("setreg", LINK_ENTRY, "InstallDir", entry)
        setup = pc.start_setup()
        page = pc.page()
        assert (pc.checked(page) == ["There is none: &make a folder in my documents instead"]) == useless, entry
        assert any(text.startswith("The folder that is entered now:") for text in pc.texts(page)) != useless, entry
        pc.press(page, CANCEL)
        assert setup.wait(20) == 1


@pytest.mark.parametrize("option, made", [("/LINK=KEEP", False), ("/LINK=MAKE", True)])
def test_the_choice_can_be_made_silently(pc, option, made):
    assert pc.install(option) == DONE
    assert (pc.value(LINK_ENTRY, "InstallDir") is not None) == made


def test_a_folder_that_can_not_be_made_is_told(pc):
    documents = next((pc.prefix.path / "drive_c" / "users").glob("*/Documents"))
    (documents / "Corvane").write_bytes(b"a file in the way")
    assert pc.install() == NO_LINK
    assert_installed(pc)


def test_refuses_while_the_editor_runs_and_nothing_is_lost(pc):
    assert pc.install() == DONE
    editor = pc.editor()
    editor.click_key("c4")
    editor.wait_names(["c4, Quarter note", "End"])
    before = pc.snapshot()
    assert pc.install() == EDITOR_RUNS
    pc.run(pc.folder / "uninstall.exe", "/S")
    wait_until(lambda: not pc.prefix.ask("processes", UNINSTALLER), 30, "the uninstaller's end")
    pc.assert_as(before)
    setup = pc.start_setup()
    box = pc.box(SETUP.name, TITLE)
    assert any("is running" in text for text in pc.texts(box))
    pc.press(box, RETRY)
    box = wait_until(lambda: next((w for w in pc.prefix.ask("windows", SETUP.name) if w["visible"] and
                                   w["text"].startswith(TITLE) and w["hwnd"] != box["hwnd"]), None), 20, "the box again")
    pc.assert_as(before)
    editor.wait_names(["c4, Quarter note", "End"])
    editor.kill()
    pc.press(box, RETRY)
    wait_until(lambda: any("There is none" in text for text in pc.texts(pc.page())), 20, "the page")
    pc.press(pc.page(), CANCEL)
    assert setup.wait(20) == 1


def test_a_program_that_is_in_use_is_as_good_as_a_running_editor(pc):
    """An editor of another session is not seen by its name."""
    assert pc.install() == DONE
    held = pc.prefix.start(["wine", str(pc.folder / "sndrec32.exe")])  # tells its options in a box
    pc.running.append(held)
    pc.box("sndrec32.exe", "Sound Player")
    assert pc.install() == EDITOR_RUNS
    held.kill()
