"""The installer of missing packages, with stand-ins for the package system: what it says, asks and runs."""

import os
import pty
import select
import subprocess
import time

import pytest

from building import ROOT

# Refuses to install until it may bring packages back to older versions; says in a trial run which ones.
APT_GET = """#!/bin/bash
printf '%s\\n' "$*" >>"$NOTES"
case "$*" in
*-s*--allow-downgrades* | *--allow-downgrades*-s*)
    echo 'The following NEW packages will be installed:'
    echo '  wine wine32:i386'
    echo 'The following packages will be DOWNGRADED:'
    echo '  libc6 libgcc-s1'
    echo '  zlib1g'
    echo '0 upgraded, 2 newly installed, 3 downgraded, 0 to remove and 0 not upgraded.'
    ;;
*install*) [ -n "$FITS" ] || case "$*" in *--allow-downgrades*) ;; *) exit 100 ;; esac ;;
esac
"""
DPKG = """#!/bin/bash
printf 'dpkg %s\\n' "$*" >>"$NOTES"
"""
QUERY = "#!/bin/bash\n[ -n \"$WHOLE\" ] && exec cat \"$WHOLE\"\nexit 0\n"
ROOT_ID = "#!/bin/bash\necho 0\n"
SCRIPT = 'set -u; root=$1; . "$2/resources/scripts/common.sh"; install_packages'
OLDER = "libc6 libgcc-s1 zlib1g"


class Machine:
    """A machine without any of the packages."""

    def __init__(self, folder):
        self.folder, self.notes = folder, folder / "notes"
        (folder / "bin").mkdir()
        (folder / "build").mkdir()
        for name, text in (("apt-get", APT_GET), ("dpkg", DPKG), ("dpkg-query", QUERY), ("id", ROOT_ID)):
            path = folder / "bin" / name
            path.write_text(text)
            path.chmod(0o755)
        self.environment = {**os.environ, "PATH": f"{folder / 'bin'}:{os.environ['PATH']}", "NOTES": str(self.notes),
                            "FITS": "", "WHOLE": ""}
        self.command = ["bash", "-c", SCRIPT, "installer", str(folder), str(ROOT)]

    def ran(self, word):
        """What was done, not only tried out, with a word in it."""
        lines = self.notes.read_text().splitlines() if self.notes.exists() else []
        return [line for line in lines if word in line and not line.startswith("-s")]

    def without_terminal(self, **environment):
        return subprocess.run(self.command, env={**self.environment, **environment}, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, timeout=30, check=False)

    def on_terminal(self, answer):
        """Gives the exit status and what the terminal showed."""
        process, terminal = pty.fork()
        if process == 0:
            os.execvpe(self.command[0], self.command, self.environment)
        shown, answered, end = "", False, time.monotonic() + 30
        while time.monotonic() < end:
            if not select.select([terminal], [], [], 0.1)[0]:
                continue
            try:
                shown += os.read(terminal, 4096).decode()
            except OSError:  # closed at the other end
                break
            if "[y/N] " in shown and not answered:
                assert not self.ran("--allow-downgrades"), "asked too late"
                os.write(terminal, answer.encode())
                answered = True
        return os.waitstatus_to_exitcode(os.waitpid(process, 0)[1]), shown


@pytest.fixture
def machine(tmp_path):
    return Machine(tmp_path)


def test_it_says_what_it_installs_and_adds_before_it_does(machine):
    done = machine.without_terminal(FITS="1")
    assert done.returncode == 0
    assert "will be installed with apt-get: cmake " in done.stdout
    assert "the architecture i386 will be added" in done.stdout
    assert "older" not in done.stdout
    assert len(machine.ran("install")) == 1 and "--no-remove" in machine.ran("install")[0]
    assert machine.ran("add-architecture i386")


def test_without_a_terminal_it_says_what_goes_back_and_does_not_wait(machine):
    done = machine.without_terminal()
    assert done.returncode == 0
    assert OLDER in done.stdout
    assert "[y/N]" not in done.stdout
    assert len(machine.ran("--allow-downgrades")) == 1


@pytest.mark.parametrize("answer", ["\n", "n\n", "no\n", "x\n", "\x04"])
def test_on_a_terminal_only_a_yes_brings_packages_back(machine, answer):
    status, shown = machine.on_terminal(answer)
    assert status == 1
    assert OLDER in shown and "No package was changed." in shown
    assert not machine.ran("--allow-downgrades")


@pytest.mark.parametrize("answer", ["y\n", "Y\n"])
def test_on_a_terminal_a_yes_does(machine, answer):
    status, shown = machine.on_terminal(answer)
    assert status == 0
    assert shown.index(OLDER) < shown.index("[y/N]")
    assert len(machine.ran("--allow-downgrades")) == 1


def test_on_a_terminal_nothing_is_asked_where_nothing_goes_back(machine):
    machine.environment["FITS"] = "1"
    status, shown = machine.on_terminal("")
    assert status == 0
    assert "[y/N]" not in shown


def test_a_machine_that_has_all_is_left_alone(machine):
    script = 'set -u; root=$1; . "$2/resources/scripts/common.sh"; printf "%s\\n" $packages'
    names = subprocess.run(["bash", "-c", script, *machine.command[3:]], stdout=subprocess.PIPE, text=True,
                           check=True).stdout.split()
    whole = machine.folder / "whole"
    whole.write_text("".join((name if ":" in name else name + ":amd64") + ":installed\n" for name in names))
    done = machine.without_terminal(WHOLE=str(whole))
    assert done.returncode == 0, done.stdout
    assert not machine.notes.exists()
