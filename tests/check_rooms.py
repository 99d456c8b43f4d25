"""Checks the floors of the house.

A file's name tells its floor, and the library it is built into. It includes headers of its own floor and of floors
below only; portable rooms include no Windows header; no source declares `extern` state; no variable of a room outlives
its procedure and can change, but for those of `platform/` that are listed below. Prints one line a broken rule.
"""

import argparse
import pathlib
import re
import sys
import xml.etree.ElementTree as ElementTree

ROOT = pathlib.Path(__file__).resolve().parent.parent

ROOMS = ("score", "preview", "view", "link", "app", "pictures", "exchange")
# What the editor does not link: only the companion's tools know it.
OUTSIDE_THE_EDITOR = ("exchange",)
RULES_FLOOR, PROMISES, SERVICES, RECORD, COMMANDS, ROUTES, SYSTEM = range(1, 8)
FLOOR_OF_ENDING = (("_services", SERVICES), ("sndmain", RECORD), ("_commands", COMMANDS), ("_routes", ROUTES))
LIBRARIES = {"tonex_rules": {RULES_FLOOR}, "tonex_exchange": {RULES_FLOOR},
             "tonex_services": {SERVICES}, "tonex_commands": {RECORD, COMMANDS, ROUTES}}

# What can change for as long as the process runs: a thing each of which a process has one.
CHANGING_GLOBALS = {
    ("platform/windows/events.cpp", "events_ran_at"): "when waiting messages were last looked at",
    ("platform/windows/files.cpp", "counter"): "no two temporary files of a process have one name",
    ("platform/windows/help.cpp", "reader"): "the system's help reader is asked, and dismissed, by the process",
    ("platform/windows/link_library.cpp", "folder_device"): "the libraries' functions name no device",
    ("platform/windows/link_library.cpp", "loaded"): "loaded once; their dialogs call back without them",
    ("platform/windows/main_window.cpp", "main"): "window procedures have no argument for the program's window",
    ("platform/windows/sound_devices.cpp", "counted_outputs"): "counting loads a library; what was counted is kept",
    ("platform/windows/system_libraries.cpp", "hooks"): "what the other services may ask of the main window",
}

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


NOT_CODE = re.compile(r"//[^\n]*|/\*.*?\*/|\"(?:\\.|[^\"\\\n])*\"|(?<!\w)(?:u8|[uUL])?'(?:\\.|[^'\\\n])+'", re.DOTALL)


def without_comments(text):
    """The code: comments go, of texts and characters the quotes stay."""
    return NOT_CODE.sub(lambda found: found[0][-1] * 2 if found[0][-1] in "\"'" and found[0][0] != "/" else " ", text)


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


def the_editor_knows_nothing_outside_it():
    for path, text in sources(*ROOMS, "platform"):
        for _, name in included(text):
            if name.split("/")[0] in OUTSIDE_THE_EDITOR and path.split("/")[0] not in OUTSIDE_THE_EDITOR:
                yield f"{path} includes {name}, which the editor does not link"
    for library, held in libraries().items():
        for path in held:
            if (path.split("/")[0] in OUTSIDE_THE_EDITOR) != (library == "tonex_exchange"):
                yield f"{library} holds {path}"


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


TRANSPARENT = re.compile(r"(inline\s+)?namespace(\s+[\w:]+)?\s*$|extern\s*\"\"\s*$")
NO_VARIABLE = re.compile(r"(using|typedef|template|friend|static_assert|namespace|public|private|protected|return|goto|"
                         r"break|continue|default|case)\b|(struct|class|union|enum|enum class)\s+\w+(\s*:[^:].*)?$")
MADE_OF_A_CONSTANT = re.compile(r"\((-?\d|\"|'|true\b|false\b|nullptr\b).*")
TO_PROCEDURE = re.compile(r"[^(]*\(\s*(?:\w+\s+)?\*([\sa-z]*?)(\w+)\s*\)\s*\(")
TYPE = re.compile(r"((static|inline|thread_local|const|constexpr)\s+)*(struct|class|union|enum)\b[^{;]*\{\}\s*")


def declarations(code):
    """What is declared at file scope, each with a pair of braces for a body or a list of values."""
    found, depth = "", 0
    for place, letter in enumerate(code):
        if letter == "{":
            if depth == 0 and TRANSPARENT.match(found.strip()):
                found = ""
                continue
            found += "{" if depth == 0 else ""
            depth += 1
        elif letter == "}":
            if depth == 0:  # the end of a namespace
                found = ""
                continue
            depth -= 1
            if depth == 0:
                found += "}"
                if not re.match(r"\s*[;,=({.)]", code[place + 1:place + 50]) and "(" in found:
                    found = ""  # a procedure's end
        elif depth == 0:
            if letter == ";":
                yield " ".join(found.split())
                found = ""
            else:
                found += letter


def kept(code):
    """Declarations of what stays inside of procedures and types from call to call."""
    for found in re.finditer(r"(?<![\w])((?:inline\s+)?(?:static|thread_local)\s[^;{}=()]*)[;{=]", code):
        yield " ".join(found[1].split())


def changing(declaration):
    """The name of a variable that can change; None for all else."""
    declaration = TYPE.sub("type ", declaration)  # what stands behind a type's body is a variable of it
    if not declaration or NO_VARIABLE.match(declaration):
        return None
    head = re.split(r"[={]", declaration)[0]
    while re.search(r"<[^<>]*>|\[[^\[\]]*\]", head):
        head = re.sub(r"<[^<>]*>|\[[^\[\]]*\]", "", head)
    head = head.strip()
    pointer = TO_PROCEDURE.match(head)
    if pointer:
        return None if "const" in pointer[1] else pointer[2]
    head = MADE_OF_A_CONSTANT.sub("", head)
    if "(" in head or head.startswith("extern") or re.search(r"\bconstexpr\b|\bconst\b[^*&]*$", head):
        return None
    name = re.match(r"[^=]*[\s*&](\w+)$", head)
    return name and name[1]


def changing_globals():
    """Path and name of every variable that outlives its procedure and can change."""
    for path, text in sources(*ROOMS, "platform"):
        code = re.sub(r"^\s*#(?:[^\n]*\\\n)*[^\n]*", "", without_comments(text), flags=re.MULTILINE)
        names = [changing(declaration) for declaration in [*declarations(code), *kept(code)]]
        yield from sorted({(path, name) for name in names if name})


def globals_do_not_change():
    """State that two tests would share; what the list holds must be there."""
    found = set(changing_globals())
    for path, name in sorted(found - set(CHANGING_GLOBALS)):
        yield f"{path} keeps state: {name}"
    for path, name in sorted(set(CHANGING_GLOBALS) - found):
        yield f"{path} keeps no {name} any more: the list of changing globals is old"
    for path, _ in CHANGING_GLOBALS:
        if floor_of(path) != SYSTEM:
            yield f"{path} is on no list: a portable room keeps no state"


def libraries():
    """The sources of each library of the house as the build names them."""
    text = re.sub(r"#[^\n]*", "", (ROOT / "CMakeLists.txt").read_text(encoding="utf-8"))
    return {name: sources.split() for name, sources in re.findall(r"add_library\((\w+)\s+STATIC\s+([^)]*)\)", text)}


def libraries_hold_their_floors():
    built = libraries()
    if set(built) != set(LIBRARIES):
        yield f"CMakeLists.txt has the libraries {sorted(built)}, not {sorted(LIBRARIES)}"
    for library, floors in LIBRARIES.items():
        for path in built.get(library, []):
            if floor_of(path) not in floors:
                yield f"{library} holds {path}, which is on floor {floor_of(path)}"
            if not (ROOT / path).is_file():
                yield f"{library} holds {path}, which is not there"
    places = [path for held in built.values() for path in held]
    for path, _ in sources(*ROOMS):
        if path.endswith(".cpp") and places.count(path) != 1:
            yield f"{path} is in {places.count(path)} of the libraries"


def grid():
    """Floor and room of every file in the table of HACKING.md."""
    lines = (ROOT / "HACKING.md").read_text(encoding="utf-8").splitlines()
    rows = [[cell.strip() for cell in line.strip("|").split("|")] for line in lines
            if re.match(r"\| (floor|\d .*) \|", line)]
    if not rows:
        return
    rooms = [cell.strip("`/ ") for cell in rows[0][1:]]
    for floor, *cells in rows[1:]:
        for room, cell in zip(rooms, cells):
            yield from ((int(floor.split()[0]), room, name) for name in re.findall(r"\w+", cell))


def the_grid_shows_the_house():
    drawn = set(grid())
    there = {(floor_of(path), path.split("/")[0], pathlib.PurePosixPath(path).stem) for path, _ in sources(*ROOMS)}
    for floor, room, name in sorted(there - drawn):
        yield f"HACKING.md does not show {room}/{name} on floor {floor}"
    for floor, room, name in sorted(drawn - there):
        yield f"HACKING.md shows {room}/{name} on floor {floor}, where it is not"


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


RULES = [includes_go_down, the_editor_knows_nothing_outside_it, portable_rooms_know_no_system, no_heavy_library, no_extern_state, globals_do_not_change,
         headers_guarded, headers_open_with_their_purpose, windows_code_stands_in_its_room,
         libraries_hold_their_floors, the_grid_shows_the_house]


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
