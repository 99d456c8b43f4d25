"""The two link libraries in the installation folder of a prefix, and what they were called for."""

import shutil

import pytest

from building import WINDOWS_BUILD
from wine_paths import windows_path

NAMES = ("CorCalen.dll", "Corfldlg.dll")

# For the fixture `link`: with the libraries only, for faults that only they can be told to have.
only_libraries = pytest.mark.parametrize("link", ["link libraries"], indirect=True)


def install(prefix, folder=WINDOWS_BUILD / "link"):
    """Copies the libraries that a folder has."""
    found = list(folder.glob("*.dll"))
    assert found, f"no library has been built in {folder}"
    for path in found:
        shutil.copy(path, prefix.install_dir / path.name)


def remove(prefix):
    for name in NAMES:
        (prefix.install_dir / name).unlink(missing_ok=True)


class Link:
    """Starts editors with or without the libraries and knows what the libraries saw."""

    def __init__(self, log, with_libraries):
        self.log, self.with_libraries = log, with_libraries

    def environment(self, *faults):
        return {"TONEX_LINK_LOG": windows_path(self.log), "TONEX_LINK_FAULT": ",".join(faults)}

    def calls(self, function=""):
        """The lines of the calls of a function, or of all of them."""
        lines = self.log.read_text(errors="replace").splitlines() if self.log.exists() else []
        return [line for line in lines if line.startswith(function)]

    def functions(self):
        """The names of the functions that were called, in order."""
        return [line.split(" ")[0].split("\t")[0].split("(")[0] for line in self.calls()]
