"""The promises that a POSIX system keeps for the programs beside the editor."""
import os
import pathlib
import re
import subprocess

from building import NATIVE_BUILD

PROGRAM = pathlib.Path(os.environ.get("POSIX_TESTS", NATIVE_BUILD / "tests/posix/posix_tests"))


def test_posix_tests():
    assert PROGRAM.is_file(), f"no posix_tests at {PROGRAM}: build them, or name them in POSIX_TESTS"
    done = subprocess.run([PROGRAM], capture_output=True, text=True, timeout=120)
    assert done.returncode == 0, done.stdout + done.stderr
    passed = re.search(r"\[  PASSED  \] (\d+) tests", done.stdout)
    assert passed and int(passed[1]) >= 15, done.stdout
