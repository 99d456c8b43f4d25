"""Checks the floors of the house.

A file's name tells its floor. It includes headers of its own floor and of floors below only; portable rooms include
no Windows header; no source declares `extern` state; no file-scope variable of a room can change. Prints one line a
broken rule.
"""

import argparse
import pathlib
import re
import sys
import xml.etree.ElementTree as ElementTree

ROOT = pathlib.Path(__file__).resolve().parent.parent

ROOMS = ("score", "preview", "view", "link", "app", "pictures")
RULES_FLOOR, PROMISES, SERVICES, RECORD, COMMANDS, ROUTES, SYSTEM = range(1, 8)
FLOOR_OF_ENDING = (("_services", SERVICES), ("sndmain", RECORD), ("_commands", COMMANDS), ("_routes", ROUTES))

WINDOWS_HEADERS = re.compile(
    r"^(windows|windowsx|commctrl|commdlg|shellapi|shlobj|objbase|oleacc|mmsystem|winuser|wingdi|gdiplus|"
    r"winreg|winbase|windef|tchar|ole2|oleauto|uxtheme|shlwapi|htmlhelp|initguid)\.h$", re.IGNORECASE)
SYSTEM_ONLY = {"unistd.h", "fcntl.h", "dirent.h", "dlfcn.h", "pthread.h"}
BANNED_STANDARD = {"filesystem", "iostream", "thread", "mutex", "condition_variable", "future"}
INCLUDE = re.compile(r'^\s*#\s*include\s+([<"])([^>"]+)[>"]', re.MULTILINE)


def floor_of(path):
    """The floor of a file given by its path in the project; None outside the house."""
    room, *folders, name = path.split("/")
    if room == "platform":
        return SYSTEM if folders else PROMISES
    if room not in ROOMS:
        return None
    stem = name.rsplit(".", 1)[0]
    return next((floor for ending, floor in FLOOR_OF_ENDING if stem.endswith(ending)), RULES_FLOOR)


def sources(*rooms):
    for room in rooms:
        for path in sorted((ROOT / room).rglob("*")):
            if path.suffix in (".h", ".cpp") and path.is_file():
                yield path.relative_to(ROOT).as_posix(), path.read_text(encoding="utf-8")


def without_comments(text):
    text = re.sub(r'"(?:\\.|[^"\\\n])*"', '""', text)
    text = re.sub(r"//[^\n]*", "", text)
    return re.sub(r"/\*.*?\*/", "", text, flags=re.DOTALL)


def included(text):
    return [(kind, name) for kind, name in INCLUDE.findall(text)]


def includes_go_down():
    for path, text in sources(*ROOMS, "platform"):
        mine = floor_of(path)
        for kind, name in included(text):
            if kind != '"':
                continue
            if not (ROOT / name).is_file():
                if not (ROOT / path).parent.joinpath(name).is_file():
                    yield f"{path} includes {name}, which is not named from the project's root"
                continue
            theirs = floor_of(name)
            if theirs is None:
                yield f"{path} includes {name}, which is no room of the editor"
            elif theirs > mine:
                yield f"{path} (floor {mine}) includes {name} (floor {theirs})"


def portable_rooms_know_no_system():
    for path, text in sources(*ROOMS):
        for _, name in included(text):
            base = name.split("/")[-1]
            if WINDOWS_HEADERS.match(base) or base in SYSTEM_ONLY or name.startswith("sys/"):
                yield f"{path} includes the system header {name}"
    for path, text in sources("platform"):
        if floor_of(path) != PROMISES:
            continue
        for _, name in included(text):
            if WINDOWS_HEADERS.match(name.split("/")[-1]):
                yield f"{path} includes the Windows header {name}"


def no_heavy_library():
    for path, text in sources(*ROOMS, "platform"):
        for _, name in included(text):
            if name in BANNED_STANDARD:
                yield f"{path} includes <{name}>"


def no_extern_state():
    for path, text in sources(*ROOMS, "platform"):
        for line in without_comments(text).splitlines():
            if re.search(r"\bextern\b(?!\s*\"\")(?!\s+const(expr)?\b)", line):
                yield f"{path} declares extern state: {line.strip()}"


VARIABLE = re.compile(r"^\s*[A-Za-z_][\w:<>,\s\*&]*[\s\*&]\w+(\[[^\]]*\])*\s*(=[^=].*|\{.*)?;\s*$")
NO_VARIABLE = re.compile(r"^\s*(using|typedef|struct|class|enum|union|template|extern|friend|static_assert|return|goto|"
                         r"namespace|public|private|case|default|break)\b|\bconst\b|\bconstexpr\b")


def no_changing_file_state():
    """A variable at file scope that is not constant: state that two tests would share."""
    for path, text in sources(*ROOMS):
        depth = 0
        for line in without_comments(text).splitlines():
            # Namespaces do not count as depth: their members are at file scope.
            opens_namespace = re.match(r"\s*(inline\s+)?namespace\b[^;{]*\{", line)
            in_parameters = "(" in line.split("=")[0] or line.count("(") != line.count(")")
            if depth == 0 and not in_parameters and VARIABLE.match(line) and not NO_VARIABLE.search(line):
                yield f"{path} keeps state: {line.strip()}"
            depth += line.count("{") - line.count("}") - (1 if opens_namespace else 0)
            depth = max(depth, 0)


def headers_guarded():
    for path, text in sources(*ROOMS, "platform"):
        if path.endswith(".h") and "#pragma once" not in text:
            yield f"{path} lacks #pragma once"


def headers_open_with_their_purpose():
    for path, text in sources(*ROOMS, "platform"):
        if path.endswith(".h") and not text.startswith("//"):
            yield f"{path} does not open with a sentence that says what it is for"


def windows_code_stands_in_its_room():
    for path, text in sources(*ROOMS):
        if re.search(r"#\s*if(def)?\b.*_WIN32", text):
            yield f"{path} asks which system it is built for"


RULES = [includes_go_down, portable_rooms_know_no_system, no_heavy_library, no_extern_state,
         no_changing_file_state, headers_guarded, headers_open_with_their_purpose,
         windows_code_stands_in_its_room]


def main():
    parser = argparse.ArgumentParser(description="Checks the floors of the house.")
    parser.add_argument("--junitxml", metavar="FILE", help="write a report")
    options = parser.parse_args()
    suite = ElementTree.Element("testsuite", name="rooms")
    broken = 0
    for rule in RULES:
        lines = list(rule())
        case = ElementTree.SubElement(suite, "testcase", classname="rooms", name=rule.__name__)
        if lines:
            broken += 1
            ElementTree.SubElement(case, "failure", message="\n".join(lines))
        for line in lines:
            print(f"{rule.__name__}: {line}")
    if not any(True for _ in sources(*ROOMS)):
        print("no sources found")
        broken += 1
    if options.junitxml:
        ElementTree.ElementTree(suite).write(options.junitxml, encoding="utf-8")
    print(f"{len(RULES) - broken} of {len(RULES)} rules hold")
    return 1 if broken else 0


sys.exit(main())
