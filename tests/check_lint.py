"""Has cppcheck and clang-tidy look for faults in the product's sources. Prints a line a finding.

cppcheck reads every room at once. clang-tidy takes seconds a source, so it looks at those that are not as they were
when it last found nothing in them: tests/lint_seen.txt keeps a sum of each source with all headers of the house that it
includes, and of all that clang-tidy is asked. --keep writes that file anew; until then a changed source is looked at in
every run. What is asked for stands in .clang-tidy.
"""

import argparse
import concurrent.futures
import hashlib
import os
import pathlib
import re
import subprocess
import sys
import xml.etree.ElementTree as ElementTree

ROOT = pathlib.Path(__file__).resolve().parent.parent
ROOMS = ["app", "exchange", "link", "pictures", "platform", "preview", "score", "tools", "view"]
SEEN = ROOT / "tests/lint_seen.txt"
FINDING = re.compile(r"^([^:\n]+):(\d+)(?::\d+)?: (?!note:)(?:(?:warning|error): )?(.*)$", re.MULTILINE)
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"', re.MULTILINE)

COMMON_FLAGS = ["-std=c++20", "-I.", "-DCLI11_HAS_FILESYSTEM=0"]
NATIVE_FLAGS = ['-DTONEX_VERSION="0"']
WINDOWS_FLAGS = ["--target=i686-w64-mingw32", "-DUNICODE", "-D_UNICODE", "-DWINVER=0x0501", "-D_WIN32_WINNT=0x0501",
                 "-D_WIN32_IE=0x0600", '-DTONEX_VERSION=L"0"', "-msse2", "-mfpmath=sse"]
# Handles and message parameters are numbers in pointers there, and int is as wide as long.
WINDOWS_CHECKS = "--checks=-performance-no-int-to-ptr,-bugprone-misplaced-widening-cast"
WINDOWS_FOLDERS = ("platform/windows/", "tools/player/", "tools/link/", "tools/linksetup/")


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
                           "--error-exitcode=1", "--template={file}:{line}: {id}: {message}", "-I.", *ROOMS],
                          cwd=ROOT, capture_output=True, text=True, check=False)
    return done.returncode, done.stdout + done.stderr


def is_for_windows(path):
    return path.startswith(WINDOWS_FOLDERS) or path.endswith("_windows.cpp")


def cross_compilers_headers():
    """Flags for the standard library of the Windows compiler, which clang does not find by itself."""
    told = subprocess.run(["i686-w64-mingw32-g++", "-E", "-x", "c++", "-v", os.devnull, "-o", os.devnull],
                          capture_output=True, text=True, check=True).stderr
    folders = [line.strip() for line in told.splitlines() if line.startswith(" /") and "c++" in line]
    return [flag for folder in folders for flag in ("-isystem", folder)]


class Tidy:
    """clang-tidy as it is asked here."""

    def __init__(self):
        version = subprocess.run(["clang-tidy", "--version"], capture_output=True, text=True, check=True).stdout
        self.version = re.search(r"version (\d+)", version).group(1)
        self.windows_headers = cross_compilers_headers()
        self.asked = self.version + (ROOT / ".clang-tidy").read_text(encoding="utf-8")
        self.texts = {}

    def text(self, path):
        if path not in self.texts:
            self.texts[path] = (ROOT / path).read_text(encoding="utf-8")
        return self.texts[path]

    def read_with(self, path):
        """The paths of a source and of all headers of the house that it includes, in the tree."""
        found, waiting = set(), [path]
        while waiting:
            next_path = waiting.pop()
            if next_path in found:
                continue
            found.add(next_path)
            for name in INCLUDE.findall(self.text(next_path)):
                beside = (pathlib.PurePosixPath(next_path).parent / name).as_posix()
                waiting += [candidate for candidate in (name, beside) if (ROOT / candidate).is_file()]
        return sorted(found)

    def question(self, path):
        """The command's parts that do not depend on the machine."""
        if is_for_windows(path):
            return [WINDOWS_CHECKS, path, "--", *COMMON_FLAGS, *WINDOWS_FLAGS]
        return [path, "--", *COMMON_FLAGS, *NATIVE_FLAGS]

    def sum_of(self, path):
        parts = [self.asked, *self.question(path)]
        for read in self.read_with(path):
            parts += [read, self.text(read)]
        return hashlib.sha256("\0".join(parts).encode()).hexdigest()[:16]

    def look_at(self, path):
        """(exit status, output) for one source."""
        headers = self.windows_headers if is_for_windows(path) else []
        done = subprocess.run(["clang-tidy", "--quiet", *self.question(path), *headers], cwd=ROOT, capture_output=True,
                              text=True, check=False)
        # Its own errors, such as a header that is not there, come with the findings.
        return done.returncode, done.stdout or (done.stderr if done.returncode else "")


def sources():
    return sorted(path.relative_to(ROOT).as_posix() for room in ROOMS for path in (ROOT / room).rglob("*.cpp"))


def read_seen():
    if not SEEN.is_file():
        return {}
    return {path: kept for kept, path in (line.split() for line in SEEN.read_text(encoding="utf-8").splitlines())}


def run_clang_tidy(keep):
    tidy, seen = Tidy(), read_seen()
    sums = {path: tidy.sum_of(path) for path in sources()}
    unseen = [path for path in sums if seen.get(path) != sums[path]]
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as workers:
        results = dict(zip(unseen, workers.map(tidy.look_at, unseen)))
    print(f"clang-tidy: {len(sums)} sources, {len(unseen)} of them looked at now")
    if keep:
        clean = [path for path in sums if results.get(path, (0, ""))[0] == 0]
        SEEN.write_text("".join(f"{sums[path]} {path}\n" for path in clean), encoding="utf-8")
    return max((status for status, _ in results.values()), default=0), "".join(output for _, output in results.values())


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
    parser.add_argument("--keep", action="store_true", help="keep the sums of what clang-tidy found nothing in")
    options = parser.parse_args()
    suite = ElementTree.Element("testsuite", name="lint")
    suite.extend(report("cppcheck", *run_cppcheck()))
    suite.extend(report("clang-tidy", *run_clang_tidy(options.keep)))
    if options.junitxml:
        ElementTree.ElementTree(suite).write(options.junitxml, encoding="utf-8")
    failed = len(suite.findall(".//failure"))
    print(f"{failed} findings")
    return 1 if failed else 0


sys.exit(main())
