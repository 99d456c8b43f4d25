"""Counts a suite's results from its XML report, and from its log when no whole report is there.

REPORT.xml STATUS LOG          prints "PASSED FAILED"
--failures REPORT.xml LOG      prints what failed, shortly
A test that was skipped or disabled has not passed. A program that ends with an error has a failure, also when its
report shows none.
"""

import re
import sys
import xml.etree.ElementTree as ElementTree


def cases(path):
    """(name, failed, message) of every test in the report; None when there is no whole report."""
    try:
        tree = ElementTree.parse(path)
    except (OSError, ElementTree.ParseError):
        return None
    found = []
    for case in tree.iter("testcase"):
        name = f"{case.get('classname', '')}.{case.get('name', '')}"
        trouble = [child for child in case if child.tag in ("failure", "error", "skipped")]
        not_run = case.get("status") == "notrun" or case.get("result") in ("skipped", "suppressed")
        message = (trouble[0].get("message") or trouble[0].text or "") if trouble else "did not run"
        found.append((name, bool(trouble) or not_run, message))
    return found


def count(path, status, log):
    found = cases(path)
    if found is None:
        with open(log, encoding="utf-8", errors="replace") as lines:
            passed = sum(1 for line in lines if line.startswith("[       OK ]"))
        return passed, 1
    failed = sum(1 for case in found if case[1])
    passed = len(found) - failed
    if status != 0 and failed == 0:
        failed = 1
    return passed, failed


def show_failures(path, log):
    found = cases(path)
    with open(log, encoding="utf-8", errors="replace") as lines:
        tail = lines.read().splitlines()[-30:]
    failed = [case for case in found or [] if case[1]]
    if not failed:
        print("\n".join("    " + line for line in tail))
    for name, _, message in failed[:25]:
        first = re.sub(r"\s*\n\s*", " | ", message.strip())[:300]
        print(f"    failed: {name}: {first}")


if sys.argv[1] == "--failures":
    show_failures(sys.argv[2], sys.argv[3])
else:
    print(*count(sys.argv[1], int(sys.argv[2]), sys.argv[3]))
