"""Has cppcheck, and with --tidy clang-tidy, look for faults in the product's sources. Prints a line a finding.

cppcheck reads every room, the Windows layer too. clang-tidy reads what the native build compiles, and takes minutes:
it is run by hand. Which of its checks are asked for stands in .clang-tidy.
"""

import argparse
import concurrent.futures
import json
import os
import pathlib
import re
import subprocess
import sys
import xml.etree.ElementTree as ElementTree

ROOT = pathlib.Path(__file__).resolve().parent.parent
ROOMS = ["app", "exchange", "link", "pictures", "platform", "preview", "score", "tools", "view"]
FINDING = re.compile(r"^([^:\n]+):(\d+)(?::\d+)?: (?:(?:warning|error): )?(.*)$", re.MULTILINE)


def rooms():
    return [room for room in ROOMS if (ROOT / room).is_dir()]


def findings_in(text):
    """(file, line and finding) of a tool's output; a file of the tree by its path in it."""
    for path, line, finding in FINDING.findall(text):
        yield os.path.relpath(ROOT / path, ROOT), f"{line}: {finding}"


def run_cppcheck():
    """(exit status, output) over all rooms; what did not change since the last time is not read again."""
    kept = ROOT / "build/lint"
    kept.mkdir(parents=True, exist_ok=True)
    done = subprocess.run(["cppcheck", "--enable=warning,performance,portability", "--inline-suppr", "--std=c++20",
                           "--language=c++", f"-j{os.cpu_count()}", "-q", f"--cppcheck-build-dir={kept}",
                           "--error-exitcode=1", "--template={file}:{line}: {id}: {message}", "-I.", *rooms()],
                          cwd=ROOT, capture_output=True, text=True, check=False)
    return done.returncode, done.stdout + done.stderr


def compiled_sources(build):
    commands = json.loads((build / "compile_commands.json").read_text(encoding="utf-8"))
    paths = {pathlib.Path(command["directory"], command["file"]).resolve() for command in commands}
    inside = [path for path in paths if path.is_relative_to(ROOT) and path.relative_to(ROOT).parts[0] in ROOMS]
    return sorted(str(path.relative_to(ROOT)) for path in inside)


def run_clang_tidy(build):
    def look_at(path):
        done = subprocess.run(["clang-tidy", "--quiet", "-p", str(build), path], cwd=ROOT, capture_output=True,
                              text=True, check=False)
        return done.returncode, done.stdout

    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as workers:
        results = list(workers.map(look_at, compiled_sources(build)))
    return max((status for status, _ in results), default=1), "".join(output for _, output in results)


def report(tool, status, output):
    """A suite's cases of one tool: one a finding, or one that passed."""
    found = sorted(set(findings_in(output)))
    if not found and status != 0:
        found = [(tool, output.strip() or f"ended with status {status}")]
    cases = []
    for path, finding in found:
        print(f"{path}:{finding}")
        case = ElementTree.Element("testcase", classname=f"lint.{tool}", name=path)
        ElementTree.SubElement(case, "failure", message=finding)
        cases.append(case)
    return cases or [ElementTree.Element("testcase", classname=f"lint.{tool}", name="the product's sources")]


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--junitxml", metavar="FILE", help="write a report")
    parser.add_argument("--tidy", metavar="BUILD", type=pathlib.Path, help="run clang-tidy on what this build compiles")
    options = parser.parse_args()
    suite = ElementTree.Element("testsuite", name="lint")
    suite.extend(report("cppcheck", *run_cppcheck()))
    if options.tidy:
        suite.extend(report("clang-tidy", *run_clang_tidy(options.tidy.resolve())))
    if options.junitxml:
        ElementTree.ElementTree(suite).write(options.junitxml, encoding="utf-8")
    failed = len(suite.findall(".//failure"))
    print(f"{failed} findings")
    return 1 if failed else 0


sys.exit(main())
