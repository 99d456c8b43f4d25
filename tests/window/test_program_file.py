"""The program file itself: small, whole, and loadable by the oldest system served."""

import pathlib
import re
import subprocess

from building import WINDOWS_BUILD, program


HERE = pathlib.Path(__file__).parent
KNOWN_IMPORTS = HERE / "imports_of_windows_xp.txt"
LARGEST = 1024 * 1024


def headers():
    return subprocess.run(["i686-w64-mingw32-objdump", "-p", program(WINDOWS_BUILD, "Tonex.exe")],
                          capture_output=True, text=True, check=True).stdout


def imports():
    """Every imported function as 'library function', libraries in lower case."""
    found, library = set(), None
    for line in headers().splitlines():
        if match := re.search(r"DLL Name: (\S+)", line):
            library = match[1].lower()
        elif library and (match := re.match(r"\t[0-9a-f]+\t\s*\d+\s+(\w+)", line)):
            found.add(f"{library} {match[1]}")
    return found


def test_it_is_at_most_one_megabyte():
    assert pathlib.Path(program(WINDOWS_BUILD, "Tonex.exe")).stat().st_size <= LARGEST


def test_windows_xp_may_load_it():
    text = headers()
    assert re.search(r"MajorSubsystemVersion\s+5\b", text)
    assert re.search(r"MinorSubsystemVersion\s+1\b", text)
    assert re.search(r"MajorOSystemVersion\s+5\b", text)
    assert "Windows GUI" in text


def test_it_imports_only_what_windows_xp_has():
    """The list was read function by function; a new import is looked up before it joins the list."""
    known = {line for line in KNOWN_IMPORTS.read_text(encoding="ascii").splitlines() if line and line[0] != "#"}
    used = imports()
    assert len(used) > 100
    assert not used - known


def test_it_carries_manifest_and_version():
    data = pathlib.Path(program(WINDOWS_BUILD, "Tonex.exe")).read_bytes()
    assert b"Microsoft.Windows.Common-Controls" in data
    assert b"<dpiAware" in data
    assert "VS_VERSION_INFO".encode("utf-16-le") in data
