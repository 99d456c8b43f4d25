"""The program files themselves: small, whole, stripped, and loadable by the oldest system served."""

import pathlib
import re
import xml.etree.ElementTree

import pefile
import pytest

from building import BUILD, ROOT

HERE = pathlib.Path(__file__).parent
KNOWN_IMPORTS = HERE / "imports_of_windows_xp.txt"
LARGEST = 560 * 1024
DESCRIPTIONS = {"Tonex": "Sound Editor", "sndrec32": "Sound Player", "LinkSetup": "Sound Editor Link Setup",
                "sndtool": "Sound Editor's command line"}
# What a user gets, whatever build the other tests are about.
PRODUCT = BUILD / "windows" / "sound-editor"
PROGRAMS = [PRODUCT / f"{name}.exe" for name in DESCRIPTIONS]
LIBRARIES = [BUILD / "windows" / "link" / name for name in ("CorCalen.dll", "Corfldlg.dll")]
WINDOWED, CONSOLE = 2, 3
NX, RELOCATABLE, TERMINAL_SERVER_AWARE = 0x100, 0x40, 0x8000
LINES_STRIPPED, SYMBOLS_STRIPPED, DEBUG_STRIPPED = 0x4, 0x8, 0x200
ICON_GROUP, VERSION, MANIFEST = 14, 16, 24


def each(paths):
    return pytest.mark.parametrize("path", paths, ids=lambda path: path.name)


def version():
    return re.search(r"^project\(\w+ VERSION ([\d.]+)", (ROOT / "CMakeLists.txt").read_text(), re.M)[1]


def imports(path):
    """Every imported function as 'library function', libraries in lower case."""
    return {f"{library.dll.decode().lower()} {function.name.decode()}"
            for library in pefile.PE(path).DIRECTORY_ENTRY_IMPORT for function in library.imports}


def resources(file, kind):
    """The data of all resources of a kind."""
    found = [entry for entry in file.DIRECTORY_ENTRY_RESOURCE.entries if entry.id == kind]
    return [file.get_data(language.data.struct.OffsetToData, language.data.struct.Size)
            for entry in found for name in entry.directory.entries for language in name.directory.entries]


def manifest(path):
    texts = resources(pefile.PE(path), MANIFEST)
    assert len(texts) == 1
    return xml.etree.ElementTree.fromstring(texts[0].decode("utf-8"))


def named(tree, name):
    return [element for element in tree.iter() if element.tag.rpartition("}")[2] == name]


def test_the_editor_is_at_most_560_kb():
    assert (PRODUCT / "Tonex.exe").stat().st_size <= LARGEST


@each(PROGRAMS + LIBRARIES)
def test_windows_xp_may_load_it(path):
    header = pefile.PE(path, fast_load=True).OPTIONAL_HEADER
    assert (header.MajorSubsystemVersion, header.MinorSubsystemVersion) == (5, 1)
    assert (header.MajorOperatingSystemVersion, header.MinorOperatingSystemVersion) == (5, 1)
    assert header.Subsystem == (CONSOLE if path.stem == "sndtool" or path.suffix == ".dll" else WINDOWED)


@each(PROGRAMS + LIBRARIES)
def test_it_imports_only_what_windows_xp_has(path):
    """The list was read function by function; a new import is looked up before it joins the list."""
    known = {line for line in KNOWN_IMPORTS.read_text(encoding="ascii").splitlines() if line and line[0] != "#"}
    used = imports(path)
    assert len(used) > 50
    assert not used - known


@each(PROGRAMS + LIBRARIES)
def test_it_is_stripped_and_safe_to_share(path):
    file = pefile.PE(path, fast_load=True)
    for mark in (LINES_STRIPPED, SYMBOLS_STRIPPED, DEBUG_STRIPPED):
        assert file.FILE_HEADER.Characteristics & mark
    assert file.FILE_HEADER.NumberOfSymbols == 0
    assert not [section.Name for section in file.sections if section.Name.startswith((b".debug", b"/"))]
    assert file.OPTIONAL_HEADER.DllCharacteristics & NX
    assert file.OPTIONAL_HEADER.DllCharacteristics & RELOCATABLE
    if path.suffix == ".exe":
        assert file.OPTIONAL_HEADER.DllCharacteristics & TERMINAL_SERVER_AWARE


@each(PROGRAMS + LIBRARIES)
def test_neither_the_hour_nor_the_place_of_the_build_is_in_it(path):
    assert pefile.PE(path, fast_load=True).FILE_HEADER.TimeDateStamp == 0
    data = path.read_bytes()
    for text in (str(ROOT), "../.."):
        assert text.encode("ascii") not in data and text.encode("utf-16-le") not in data


@each(PROGRAMS)
def test_it_names_the_systems_that_it_is_made_for(path):
    tree = manifest(path)
    assert len(named(tree, "supportedOS")) == 5
    assert [element.text for element in named(tree, "dpiAware")] == ["true"]
    names = [element.get("name") for element in named(tree, "assemblyIdentity")]
    assert names == [f"SoundEditor.{path.stem}", "Microsoft.Windows.Common-Controls"]
    assert named(tree, "assemblyIdentity")[0].get("version") == version() + ".0"


@each(PROGRAMS)
def test_only_what_is_called_setup_says_that_it_needs_no_administrator(path):
    """Without such a word the system lets a program see the files that the suite's own programs see."""
    levels = [element.get("level") for element in named(manifest(path), "requestedExecutionLevel")]
    assert levels == (["asInvoker"] if path.stem == "LinkSetup" else [])
    assert bool(named(manifest(path), "trustInfo")) == bool(levels)


@each(PROGRAMS)
def test_it_has_the_icon_and_tells_whose_it_is(path):
    file = pefile.PE(path)
    groups = resources(file, ICON_GROUP)
    assert len(groups) == 1
    sizes = [groups[0][6 + 14 * i] for i in range(groups[0][4])]
    assert sizes == ([16, 20, 24, 32, 48, 64, 0] if path.stem == "Tonex" else [16, 32, 48])  # 0 is 256
    assert len(resources(file, VERSION)) == 1
    told = {name.decode(): value.decode() for table in file.FileInfo[0] if table.Key == b"StringFileInfo"
            for strings in table.StringTable for name, value in strings.entries.items()}
    assert told == {"CompanyName": "The Sound Editor authors", "FileDescription": DESCRIPTIONS[path.stem],
                    "FileVersion": version(), "InternalName": path.stem, "LegalCopyright": "MIT License",
                    "OriginalFilename": path.name, "ProductName": "Sound Editor", "ProductVersion": version()}
    fixed = file.VS_FIXEDFILEINFO[0]
    numbers = [fixed.FileVersionMS >> 16, fixed.FileVersionMS & 0xFFFF, fixed.FileVersionLS >> 16]
    assert ".".join(map(str, numbers)) == version()
