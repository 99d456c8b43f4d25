"""Checks that clang-format would change no C++ file of the tree. Prints a line a file that it would change."""

import argparse
import os
import pathlib
import re
import shutil
import subprocess
import sys
import xml.etree.ElementTree as ElementTree

ROOT = pathlib.Path(__file__).resolve().parent.parent
NOT_OURS = {"build"}
REMARK = re.compile(r"^(/[^\n]*?):(\d+:\d+: [^\n]*)$", re.MULTILINE)


def sources():
    for folder, folders, names in os.walk(ROOT):
        folders[:] = sorted(name for name in folders if name not in NOT_OURS and not name.startswith("."))
        yield from (pathlib.Path(folder, name) for name in sorted(names) if name.endswith((".cpp", ".h")))


def trouble_in(files):
    """What clang-format would change: path -> its first remark. Under "" what it says of no file."""
    done = subprocess.run(["clang-format", "--dry-run", "--Werror", *map(str, files)], capture_output=True, text=True)
    found = {}
    for path, remark in REMARK.findall(done.stderr):
        found.setdefault(pathlib.Path(path), remark)
    if done.returncode != 0 and not found:
        found[""] = done.stderr.strip() or f"clang-format ended with status {done.returncode}"
    return found


def main():
    parser = argparse.ArgumentParser(description="Checks the C++ sources' form.")
    parser.add_argument("--junitxml", metavar="FILE", help="write a report")
    options = parser.parse_args()
    if not shutil.which("clang-format"):
        print("clang-format is missing")
        return 1
    files = list(sources())
    found = trouble_in(files)
    suite = ElementTree.Element("testsuite", name="format")
    for path in files:
        name = path.relative_to(ROOT).as_posix()
        case = ElementTree.SubElement(suite, "testcase", classname="format", name=name)
        if path in found:
            ElementTree.SubElement(case, "failure", message=found[path])
            print(f"{name}: clang-format would change it")
    if "" in found:
        print(found[""])
    if options.junitxml:
        ElementTree.ElementTree(suite).write(options.junitxml, encoding="utf-8")
    print(f"{sum(path not in found for path in files)} of {len(files)} files have the house's form")
    return 0 if files and not found else 1


sys.exit(main())
