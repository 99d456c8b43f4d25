"""Where the sources are and what was built of them."""

import os
import pathlib

ROOT = pathlib.Path(__file__).resolve().parents[2]
BUILD = ROOT / "build"
WINDOWS_BUILD = pathlib.Path(os.environ.get("TONEX_WINDOWS_BUILD", BUILD / "windows"))
PRODUCT = WINDOWS_BUILD / "sound-editor"  # all that a user gets, in one folder
NATIVE_BUILD = pathlib.Path(os.environ.get("TONEX_NATIVE_BUILD", BUILD / "native"))


def program(folder, name):
    """The newest built program of a name."""
    found = sorted((path for path in folder.rglob(name) if path.is_file()), key=lambda path: path.stat().st_mtime)
    assert found, f"{name} has not been built in {folder}"
    return found[-1]
