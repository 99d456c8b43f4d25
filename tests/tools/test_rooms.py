"""The checks of the house's floors and of the sources' form: each rule is broken once, in a copy, and must say so."""

import shutil
import subprocess
import sys

import pytest

from building import ROOT

HOUSE = ["score", "preview", "view", "link", "app", "pictures", "exchange", "platform"]


@pytest.fixture(scope="module")
def copy(tmp_path_factory):
    folder = tmp_path_factory.mktemp("house")
    for room in HOUSE:
        shutil.copytree(ROOT / room, folder / room)
    for name in ("CMakeLists.txt", "HACKING.md", "tests/check_rooms.py", "tests/check_format.py", ".clang-format"):
        (folder / name).parent.mkdir(exist_ok=True)
        shutil.copy2(ROOT / name, folder / name)
    return folder


@pytest.fixture
def house(copy):
    """A copy of the house; what a test does to it is undone behind it."""
    yield copy
    for path in [path for path in copy.rglob("*") if path.is_file()]:
        original = ROOT / path.relative_to(copy)
        if not original.is_file():
            path.unlink()
        elif path.stat().st_mtime != original.stat().st_mtime:
            shutil.copy2(original, path)


def check(house, name):
    return subprocess.run([sys.executable, "-B", str(house / "tests" / f"check_{name}.py")], capture_output=True,
                          text=True)


def add(text):
    return lambda path: path.write_text(path.read_text(encoding="utf-8") + text if path.exists() else text,
                                        encoding="utf-8")


def replace(old, new):
    def change(path):
        text = path.read_text(encoding="utf-8")
        assert old in text
        path.write_text(text.replace(old, new, 1), encoding="utf-8")
    return change


def test_the_house_stands(house):
    done = check(house, "rooms")
    assert (done.returncode, done.stderr) == (0, ""), done.stdout


@pytest.mark.parametrize("path, change, rule", [
    ("score/score.h", add('#include "score/document_commands.h"\n'), "includes_go_down"),
    ("score/score.h", add('#include "platform/files.h"\n'), "includes_go_down"),
    ("score/file_services.cpp", add('#include "app/sndmain.h"\n'), "includes_go_down"),
    ("app/sndmain.h", add('#include "view/edit_commands.h"\n'), "includes_go_down"),
    ("view/edit_commands.cpp", add('#include "app/menu_routes.h"\n'), "includes_go_down"),
    ("platform/files.h", add('#include "score/file_services.h"\n'), "includes_go_down"),
    ("app/menu_routes.cpp", add('#include "platform/windows/panel.h"\n'), "includes_go_down"),
    ("score/score.h", add('#include "tools/sndtool/inputs.h"\n'), "includes_go_down"),
    ("score/score.h", add('#include "no_such_file.h"\n'), "includes_go_down"),
    ("score/score.h", add('#include "exchange/tune.h"\n'), "the_editor_knows_nothing_outside_it"),
    ("platform/windows/files.cpp", add('#include "exchange/tune.h"\n'), "the_editor_knows_nothing_outside_it"),
    ("CMakeLists.txt", replace("    exchange/tune.cpp)", ")"), "libraries_hold_their_floors"),
    ("CMakeLists.txt", replace("    score/score.cpp\n", "    score/score.cpp\n    exchange/tune.cpp\n"),
     "the_editor_knows_nothing_outside_it"),
    ("score/score.h", add("#include <windows.h>\n"), "portable_rooms_know_no_system"),
    ("link/paths.cpp", add("#include <sys/stat.h>\n"), "portable_rooms_know_no_system"),
    ("platform/files.h", add("#include <Windows.h>\n"), "portable_rooms_know_no_system"),
    ("platform/windows/files.cpp", add("#include <filesystem>\n"), "no_heavy_library"),
    ("score/score.cpp", add("extern int entries;\n"), "no_extern_state"),
    ("score/score.cpp", add("int entries;\n"), "globals_do_not_change"),
    ("score/score.cpp", add("namespace tonex {\nstd::vector<int> some = {\n    1, 2};\n}\n"), "globals_do_not_change"),
    ("score/score.cpp", add("const char* last = nullptr;\n"), "globals_do_not_change"),
    ("score/score.cpp", add("struct Count {\n    int value;\n} count;\n"), "globals_do_not_change"),
    ("score/score.cpp", add("Count count(1);\n"), "globals_do_not_change"),
    ("score/score.cpp", add("void (*called)(int) = nullptr;\n"), "globals_do_not_change"),
    ("score/score.cpp", add("int Next() {\n    static int last = 0;\n    return ++last; }\n"), "globals_do_not_change"),
    ("score/score.h", add("struct Count {\n    inline static int value = 0;\n};\n"), "globals_do_not_change"),
    ("platform/windows/files.cpp", add("thread_local int last;\n"), "globals_do_not_change"),
    ("platform/posix/files.cpp", add("int counter;\n"), "globals_do_not_change"),
    ("platform/windows/events.cpp", replace("DWORD events_ran_at = 0;", ""), "globals_do_not_change"),
    ("score/score.h", replace("#pragma once\n", ""), "headers_guarded"),
    ("score/new.h", add("#pragma once\n"), "headers_open_with_their_purpose"),
    ("score/score.cpp", add("#ifdef _WIN32\n#endif\n"), "windows_code_stands_in_its_room"),
    ("score/forgotten.cpp", add(""), "libraries_hold_their_floors"),
    ("CMakeLists.txt", replace("    score/score.cpp\n", ""), "libraries_hold_their_floors"),
    ("CMakeLists.txt", replace("score/score.cpp", "score/score.cpp score/score.cpp"), "libraries_hold_their_floors"),
    ("CMakeLists.txt", replace("score/score.cpp\n", "score/score.cpp score/gone.cpp\n"), "libraries_hold_their_floors"),
    ("CMakeLists.txt", replace("score/score.cpp\n", "score/score.cpp tools/new.cpp\n"), "libraries_hold_their_floors"),
    ("CMakeLists.txt", replace("tonex_rules STATIC\n", "tonex_rules STATIC\n score/file_services.cpp\n"),
     "libraries_hold_their_floors"),
    ("CMakeLists.txt", replace("tonex_services STATIC\n", "tonex_services STATIC\n view/edit_commands.cpp\n"),
     "libraries_hold_their_floors"),
    ("CMakeLists.txt", replace("tonex_commands STATIC\n", "tonex_commands STATIC\n score/score.cpp\n"),
     "libraries_hold_their_floors"),
    ("CMakeLists.txt", add("add_library(tonex_more STATIC score/more.cpp)\n"), "libraries_hold_their_floors"),
    ("view/new_rule.h", add("// A rule.\n#pragma once\n"), "the_grid_shows_the_house"),
    ("HACKING.md", replace("edit_commands, ", ""), "the_grid_shows_the_house"),
    ("HACKING.md", replace("edit_commands, ", "edit_commands, gone_commands, "), "the_grid_shows_the_house"),
    ("HACKING.md", replace("| 6 routes |", "| routes |"), "the_grid_shows_the_house"),
])
def test_a_broken_rule_is_told(house, path, change, rule):
    change(house / path)
    done = check(house, "rooms")
    assert done.returncode == 1
    told = {line.partition(":")[0] for line in done.stdout.splitlines()[:-1]}
    assert rule in told, done.stdout


@pytest.mark.parametrize("text", [
    "constexpr int kOne = 1;\n", "const char* const kName = \"a\";\n", "void (*const kCall)(int) = nullptr;\n",
    "int Twice(int value = 1);\n", "void Do() {\n    static const int kOne = 1;\n}\n", "struct Later;\n",
    "// int entries;\n/* int\n entries; */\n", "const auto kOne = [] {\n    int one = 1;\n    return one;\n}();\n",
    "template <typename T>\nT One(T one) {\n    T two = one;\n    return two;\n}\n", "extern const int kOne;\n",
    "enum class Kind { A, B };\n", "constexpr char kQuote = '\"', kBrace = '{';\n", "using Count = int;\n",
])
def test_what_does_not_change_is_let_be(house, text):
    add(text)(house / "score" / "score.cpp")
    done = check(house, "rooms")
    assert done.returncode == 0, done.stdout


def test_form_is_checked_file_by_file(house):
    done = check(house, "format")
    assert (done.returncode, done.stderr) == (0, ""), done.stdout
    add("int  Twice( int value );\n")(house / "score" / "score.cpp")
    done = check(house, "format")
    assert done.returncode == 1
    assert "score/score.cpp" in done.stdout
    assert "score/score.h" not in done.stdout


def test_form_with_a_broken_description_has_failed(house):
    add("NoSuchKey: 1\n")(house / ".clang-format")
    done = check(house, "format")
    assert done.returncode == 1, done.stdout


def test_form_without_the_tool_or_without_sources_has_failed(tmp_path):
    (tmp_path / "tests").mkdir()
    shutil.copy(ROOT / "tests" / "check_format.py", tmp_path / "tests")
    done = check(tmp_path, "format")
    assert (done.returncode, done.stdout) == (1, "0 of 0 files have the house's form\n")
    done = subprocess.run([sys.executable, "-B", str(tmp_path / "tests" / "check_format.py")], capture_output=True,
                          text=True, env={"PATH": str(tmp_path)})
    assert done.returncode == 1
    assert "clang-format is missing" in done.stdout
