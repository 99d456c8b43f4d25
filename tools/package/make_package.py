#!/usr/bin/python3
"""Packs the folder that a user gets as a zip and as an installer.

Usage: make_package.py FOLDER ICON OUT
FOLDER is the built one, OUT gets sound-editor-VERSION.zip and sound-editor-VERSION-setup.exe. The same files give the
same bytes: all times are the day of the version in CHANGES.md.
"""

import datetime
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import zipfile

HERE = pathlib.Path(__file__).resolve().parent
ROOT = HERE.parents[1]
PROGRAMS = ["Tonex.exe", "sndrec32.exe", "LinkSetup.exe", "sndtool.exe"]
TEXTS = ["Veloxa.htm", "Veloxa.hlp", "license.txt", "readme.txt"]


def version():
    """The one place where the version is written."""
    return re.search(r"^project\(\w+ VERSION ([\d.]+)", (ROOT / "CMakeLists.txt").read_text(), re.M)[1]


def day():
    """The day of the version."""
    heading = (ROOT / "CHANGES.md").read_text()
    found = re.search(rf"^## {re.escape(version())} \((\d+)-(\d+)-(\d+)\)$", heading, re.M)
    if not found:
        raise SystemExit(f"CHANGES.md tells nothing of version {version()}")
    return datetime.date(*map(int, found.groups()))


def samples():
    return sorted(path.stem + ".snd" for path in (ROOT / "samples").glob("*.txt"))


def files():
    """Everything in the folder, by its name in it."""
    return PROGRAMS + TEXTS + [f"samples/{name}" for name in samples()]


def make_zip(folder, target):
    date = day()
    with zipfile.ZipFile(target, "w", zipfile.ZIP_DEFLATED, compresslevel=9) as packed:
        for name in files():
            entry = zipfile.ZipInfo(f"{target.stem}/{name}", (date.year, date.month, date.day, 0, 0, 0))
            entry.compress_type = zipfile.ZIP_DEFLATED
            entry.create_system = 0  # names and times as DOS has them, no rights
            packed.writestr(entry, (folder / name).read_bytes())


def installer_lists():
    """The script's lists. A melody that is there is never written over, and goes only as it came."""
    lines = ["!macro PROGRAMS action"] + [f'    !insertmacro ${{action}} "{name}"' for name in PROGRAMS]
    lines += ["!macroend", "!macro INSTALL_FILES", '    SetOutPath "$INSTDIR"', "    SetOverwrite on"]
    lines += [f'    File "${{FOLDER}}/{name}"' for name in PROGRAMS + TEXTS]
    lines += ['    SetOutPath "$INSTDIR\\samples"', "    SetOverwrite off"]
    lines += [f'    File "${{FOLDER}}/samples/{name}"' for name in samples()]
    lines += ["    SetOverwrite on", "!macroend", "!macro REMOVE_FILES", "    InitPluginsDir",
              '    SetOutPath "$PLUGINSDIR"']
    lines += [f'    Delete "$INSTDIR\\{name}"' for name in PROGRAMS + TEXTS]
    for name in samples():
        lines += [f'    File "${{FOLDER}}/samples/{name}"', f'    Push "$INSTDIR\\samples\\{name}"',
                  f'    Push "$PLUGINSDIR\\{name}"', "    Call un.DeleteIfSame"]
    lines += ['    RMDir "$INSTDIR\\samples"', "!macroend", ""]
    return "\n".join(lines)


def make_setup(folder, icon, target):
    size = sum((folder / name).stat().st_size for name in files())
    with tempfile.TemporaryDirectory() as work:
        lists = pathlib.Path(work) / "lists.nsh"
        lists.write_text(installer_lists(), encoding="ascii")
        defines = {"VERSION": version(), "FOLDER": folder, "OUT": target, "ICON": icon, "SIZE": -(-size // 1024),
                   "LISTS": lists}
        midnight = datetime.datetime.combine(day(), datetime.time(), datetime.timezone.utc)
        subprocess.run(["makensis", "-V2", "-WX", "-NOCD", *(f"-D{name}={value}" for name, value in defines.items()),
                        str(HERE / "setup.nsi")], check=True, stdin=subprocess.DEVNULL,
                       env={**os.environ, "SOURCE_DATE_EPOCH": str(int(midnight.timestamp()))})


def main():
    if len(sys.argv) != 4:
        raise SystemExit(__doc__)
    folder, icon, out = (pathlib.Path(word).resolve() for word in sys.argv[1:])
    out.mkdir(parents=True, exist_ok=True)
    name = f"sound-editor-{version()}"
    make_zip(folder, out / f"{name}.zip")
    make_setup(folder, icon, out / f"{name}-setup.exe")


if __name__ == "__main__":
    main()
