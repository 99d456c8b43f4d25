// A server that tells the window tests what stands inside another program's windows.
//
// One command a line on standard input, its words separated by tabs, UTF-8; one line of JSON as the answer.
//   windows PROGRAM.exe            all top-level windows of the processes of that name; little of hidden ones
//   processes PROGRAM.exe          their process identifiers
//   children WINDOW                all windows inside a window
//   focus WINDOW                   which window of that window's thread has the keyboard
//   foreground                     the window in front, as the system counts them
//   press WINDOW ID                presses the button with that identifier
//   settext WINDOW TEXT            gives a control a text
//   gettext WINDOW                 the text of a control
//   checked WINDOW                 whether a button is: 1 or 0
//   post WINDOW MESSAGE W L        posts a message
//   drop WINDOW FILE…              drops files on a window, by their Windows paths
//   menu|toolbar|accessible|combo|process|inputmethod|textsize WINDOW   see probe_hook.cpp
//   pressitem|focusitem WINDOW NUMBER   as an assistive tool does, on an item of a panel, counted from 1
//   messagefont WINDOW HEIGHT      gives the system's message font a height in pixels, for that program
//   failcall WINDOW NUMBER         see probe_faults.h: the file call with that number fails
//   failfrom WINDOW NUMBER         and all after it
//   told WINDOW                    the items that screen readers were told to have the keyboard, since the
//                                  last such question about any window: numbers from 1, 0 = the window itself
//   getreg KEY NAME                a text of the current user's registry; null when there is none
//   setreg KEY NAME TEXT           makes one
//   setnumber KEY NAME NUMBER      makes a number
//   delreg KEY NAME                deletes either
//   quit
#include "probe_shared.h"

#include <shlobj.h>
#include <tlhelp32.h>

#include <cstdint>
#include <cstdlib>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace probe;
using Words = std::vector<std::string>;

constexpr UINT kPatience = 15000; ///< milliseconds that the watched program may take

std::wstring Wide(const std::string& text) {
    if (text.empty()) {
        return {};
    }
    const int size = MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), nullptr, 0);
    std::wstring result(static_cast<std::size_t>(size), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), result.data(), size);
    return result;
}

HWND WindowOf(const std::string& word) {
    return reinterpret_cast<HWND>(static_cast<std::uintptr_t>(std::strtoul(word.c_str(), nullptr, 0)));
}

std::string Number(HWND window) {
    return std::to_string(reinterpret_cast<std::uintptr_t>(window));
}

template <class Visit> void ForEveryProcess(const Visit& visit) {
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    PROCESSENTRY32W entry = {};
    entry.dwSize = sizeof entry;
    for (BOOL more = Process32FirstW(snapshot, &entry); more; more = Process32NextW(snapshot, &entry))
        visit(entry);
    CloseHandle(snapshot);
}

std::vector<DWORD> ProcessesNamed(const std::wstring& name) {
    std::vector<DWORD> found;
    ForEveryProcess([&](const PROCESSENTRY32W& entry) {
        if (lstrcmpiW(entry.szExeFile, name.c_str()) == 0) found.push_back(entry.th32ProcessID);
    });
    return found;
}

// The program of a process. Listing all processes takes longer than listing all windows, and the tests ask
// for windows all the time: it is done for a process that was not seen before. A handle to one keeps its
// number from being used again.
const std::wstring& ProgramOf(DWORD process) {
    static std::map<DWORD, std::wstring> programs;
    if (programs.find(process) == programs.end())
        ForEveryProcess([](const PROCESSENTRY32W& entry) {
            if (programs.find(entry.th32ProcessID) == programs.end() &&
                OpenProcess(SYNCHRONIZE, FALSE, entry.th32ProcessID) != nullptr)
                programs[entry.th32ProcessID] = entry.szExeFile;
        });
    static const std::wstring unknown;
    const auto found = programs.find(process);
    return found == programs.end() ? unknown : found->second;
}

std::wstring TextOf(HWND window) {
    DWORD_PTR length = 0;
    if (SendMessageTimeoutW(window, WM_GETTEXTLENGTH, 0, 0, SMTO_ABORTIFHUNG, kPatience, &length) == 0) {
        return {};
    }
    std::wstring text(length + 1, L'\0');
    DWORD_PTR copied = 0;
    SendMessageTimeoutW(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()),
                        SMTO_ABORTIFHUNG, kPatience, &copied);
    text.resize(copied < text.size() ? copied : text.size() - 1);
    return text;
}

// Under Wine the X window of a top-level window; 0 for all others.
std::string XWindowOf(HWND window) {
    return std::to_string(reinterpret_cast<std::uintptr_t>(GetPropW(window, L"__wine_x11_whole_window")));
}

std::string Describe(HWND window, const std::wstring& text) {
    wchar_t class_name[100] = L"";
    GetClassNameW(window, class_name, 100);
    RECT rect = {};
    GetWindowRect(window, &rect);
    RECT client = {};
    GetClientRect(window, &client);
    MapWindowPoints(window, nullptr, reinterpret_cast<POINT*>(&client), 2);
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    std::string result = "{\"hwnd\":" + Number(window) + ",\"pid\":" + std::to_string(process);
    result += ",\"text\":" + Quoted(text) + ",\"class\":" + Quoted(class_name);
    result += ",\"id\":" + std::to_string(GetDlgCtrlID(window));
    result += ",\"x\":" + XWindowOf(window);
    result += ",\"parent\":" + Number(GetAncestor(window, GA_PARENT));
    result += ",\"owner\":" + Number(GetWindow(window, GW_OWNER));
    result += ",\"visible\":" + Bool(IsWindowVisible(window) != FALSE);
    result += ",\"enabled\":" + Bool(IsWindowEnabled(window) != FALSE);
    result += ",\"minimised\":" + Bool(IsIconic(window) != FALSE);
    result += ",\"style\":" + std::to_string(static_cast<DWORD>(GetWindowLongW(window, GWL_STYLE)));
    result += ",\"rect\":" + RectText(rect) + ",\"client\":" + RectText(client) + "}";
    return result;
}

// Hidden windows are most of a program's; all that can be told of one is as much work as the rest of the
// answer.
std::string DescribeHidden(HWND window, const std::wstring& text) {
    wchar_t class_name[100] = L"";
    GetClassNameW(window, class_name, 100);
    return "{\"hwnd\":" + Number(window) + ",\"text\":" + Quoted(text) + ",\"class\":" + Quoted(class_name) +
           ",\"visible\":false}";
}

struct Gathering {
    std::wstring program;
    std::string json;
};

BOOL CALLBACK GatherTopLevel(HWND window, LPARAM where) {
    auto& gathering = *reinterpret_cast<Gathering*>(where);
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    if (lstrcmpiW(ProgramOf(process).c_str(), gathering.program.c_str()) == 0) {
        wchar_t text[300] = L"";
        GetWindowTextW(window, text, 300);
        const bool visible = IsWindowVisible(window) != FALSE;
        gathering.json += (gathering.json.empty() ? "" : ",") +
                          (visible ? Describe(window, text) : DescribeHidden(window, text));
    }
    return TRUE;
}

BOOL CALLBACK GatherChild(HWND window, LPARAM where) {
    auto& json = *reinterpret_cast<std::string*>(where);
    json += (json.empty() ? "" : ",") + Describe(window, TextOf(window));
    return TRUE;
}

std::string Windows(const Words& words) {
    Gathering gathering;
    gathering.program = Wide(words[1]);
    EnumWindows(GatherTopLevel, reinterpret_cast<LPARAM>(&gathering));
    return "[" + gathering.json + "]";
}

std::string Processes(const Words& words) {
    std::string json;
    for (const DWORD process : ProcessesNamed(Wide(words[1]))) {
        json += (json.empty() ? "" : ",") + std::to_string(process);
    }
    return "[" + json + "]";
}

std::string Children(const Words& words) {
    std::string json;
    EnumChildWindows(WindowOf(words[1]), GatherChild, reinterpret_cast<LPARAM>(&json));
    return "[" + json + "]";
}

std::string Focus(const Words& words) {
    GUITHREADINFO info = {};
    info.cbSize = sizeof info;
    if (!GetGUIThreadInfo(GetWindowThreadProcessId(WindowOf(words[1]), nullptr), &info) ||
        info.hwndFocus == nullptr) {
        return "null";
    }
    return Describe(info.hwndFocus, TextOf(info.hwndFocus));
}

std::string Foreground(const Words&) {
    return Number(GetForegroundWindow());
}

std::string Press(const Words& words) {
    const HWND dialog = WindowOf(words[1]);
    const int id = std::atoi(words[2].c_str());
    return Bool(PostMessageW(dialog, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED),
                             reinterpret_cast<LPARAM>(GetDlgItem(dialog, id))) != FALSE);
}

std::string SetText(const Words& words) {
    DWORD_PTR result = 0;
    const std::wstring text = Wide(words.size() > 2 ? words[2] : std::string());
    SendMessageTimeoutW(WindowOf(words[1]), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()),
                        SMTO_ABORTIFHUNG, kPatience, &result);
    return Bool(result != 0);
}

std::string GetText(const Words& words) {
    return Quoted(TextOf(WindowOf(words[1])));
}

std::string Checked(const Words& words) {
    DWORD_PTR state = 0;
    SendMessageTimeoutW(WindowOf(words[1]), BM_GETCHECK, 0, 0, SMTO_ABORTIFHUNG, kPatience, &state);
    return std::to_string(state);
}

std::string Post(const Words& words) {
    return Bool(PostMessageW(WindowOf(words[1]),
                             static_cast<UINT>(std::strtoul(words[2].c_str(), nullptr, 0)),
                             static_cast<WPARAM>(std::strtoul(words[3].c_str(), nullptr, 0)),
                             static_cast<LPARAM>(std::strtoul(words[4].c_str(), nullptr, 0))) != FALSE);
}

/// Files for a drop lie in memory of the process that gets them.
std::string Drop(const Words& words) {
    const HWND window = WindowOf(words[1]);
    std::wstring names;
    for (std::size_t i = 2; i < words.size(); ++i) {
        names += Wide(words[i]) + L'\0';
    }
    names += L'\0';
    DROPFILES header = {};
    header.pFiles = sizeof header;
    header.fWide = TRUE;
    DWORD id = 0;
    GetWindowThreadProcessId(window, &id);
    const HANDLE process = OpenProcess(PROCESS_VM_OPERATION | PROCESS_VM_WRITE, FALSE, id);
    if (process == nullptr) {
        return "false";
    }
    const SIZE_T bytes = names.size() * sizeof(wchar_t);
    char* const memory = static_cast<char*>(
        VirtualAllocEx(process, nullptr, sizeof header + bytes, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE));
    bool good = memory != nullptr && WriteProcessMemory(process, memory, &header, sizeof header, nullptr) &&
                WriteProcessMemory(process, memory + sizeof header, names.data(), bytes, nullptr);
    good = good && PostMessageW(window, WM_DROPFILES, reinterpret_cast<WPARAM>(memory), 0);
    CloseHandle(process);
    return Bool(good);
}

/// Asks the part inside the program that owns the window.
std::string AskInside(Request request, const Words& words) {
    static const HMODULE library = LoadLibraryW(L"probe_hook.dll");
    const auto hook = reinterpret_cast<HOOKPROC>(
        reinterpret_cast<void*>(library == nullptr ? nullptr : GetProcAddress(library, "ProbeHook@12")));
    if (hook == nullptr) {
        return "{\"error\":\"probe_hook.dll is missing\"}";
    }
    const HWND window = WindowOf(words[1]);
    const HANDLE mapping =
        CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, kAnswerSize, kAnswerName);
    auto* const view = static_cast<DWORD*>(MapViewOfFile(mapping, FILE_MAP_ALL_ACCESS, 0, 0, 0));
    *view = 0;
    const HHOOK installed =
        SetWindowsHookExW(WH_CALLWNDPROC, hook, library, GetWindowThreadProcessId(window, nullptr));
    DWORD_PTR ignored = 0;
    const LPARAM number = words.size() > 2 ? std::atoi(words[2].c_str()) : 0;
    SendMessageTimeoutW(window, RegisterWindowMessageW(kMessageName), request, number, SMTO_ABORTIFHUNG,
                        kPatience, &ignored);
    if (installed != nullptr) {
        UnhookWindowsHookEx(installed);
    }
    std::string answer(reinterpret_cast<const char*>(view + 1), *view);
    UnmapViewOfFile(view);
    CloseHandle(mapping);
    return answer.empty() ? "{\"error\":\"no answer\"}" : answer;
}

std::string GetReg(const Words& words) {
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, Wide(words[1]).c_str(), 0, KEY_QUERY_VALUE, &key) != ERROR_SUCCESS) {
        return "null";
    }
    wchar_t text[1000] = L"";
    DWORD size = sizeof text - sizeof(wchar_t);
    const LSTATUS result =
        RegQueryValueExW(key, Wide(words[2]).c_str(), nullptr, nullptr, reinterpret_cast<BYTE*>(text), &size);
    RegCloseKey(key);
    return result == ERROR_SUCCESS ? Quoted(text) : "null";
}

std::string SetReg(const Words& words) {
    HKEY key = nullptr;
    const bool number = words[0] == "setnumber";
    const std::wstring text = Wide(words.size() > 3 ? words[3] : std::string());
    const DWORD value = std::strtoul(words.size() > 3 ? words[3].c_str() : "0", nullptr, 0);
    if (RegCreateKeyW(HKEY_CURRENT_USER, Wide(words[1]).c_str(), &key) != ERROR_SUCCESS) {
        return "false";
    }
    const LSTATUS result = number ? RegSetValueExW(key, Wide(words[2]).c_str(), 0, REG_DWORD,
                                                   reinterpret_cast<const BYTE*>(&value), 4)
                                  : RegSetValueExW(key, Wide(words[2]).c_str(), 0, REG_SZ,
                                                   reinterpret_cast<const BYTE*>(text.c_str()),
                                                   static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
    RegCloseKey(key);
    return Bool(result == ERROR_SUCCESS);
}

std::string DelReg(const Words& words) {
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, Wide(words[1]).c_str(), 0, KEY_SET_VALUE, &key) != ERROR_SUCCESS) {
        return "false";
    }
    const LSTATUS result = RegDeleteValueW(key, Wide(words[2]).c_str());
    RegCloseKey(key);
    return Bool(result == ERROR_SUCCESS);
}

std::string Menu(const Words& words) {
    return AskInside(kMenu, words);
}
std::string Toolbar(const Words& words) {
    return AskInside(kToolbar, words);
}
std::string Accessible(const Words& words) {
    return AskInside(kAccessible, words);
}
std::string Combo(const Words& words) {
    return AskInside(kCombo, words);
}

std::string Process(const Words& words) {
    return AskInside(kProcess, words);
}

std::string PressItem(const Words& words) {
    return AskInside(kPressItem, words);
}
std::string FocusItem(const Words& words) {
    return AskInside(kFocusItem, words);
}
std::string InputMethod(const Words& words) {
    return AskInside(kInputMethod, words);
}
std::string Pending(const Words& words) {
    return AskInside(kPending, words);
}
std::string TextSize(const Words& words) {
    return AskInside(kTextSize, words);
}
std::string MessageFont(const Words& words) {
    return AskInside(kMessageFont, words);
}
std::string FailCall(const Words& words) {
    return AskInside(kFailCall, words);
}
std::string FailCallsFrom(const Words& words) {
    return AskInside(kFailCallsFrom, words);
}

// What screen readers are told comes to the thread that asked for it, as messages: it has one of its own,
// which lives as long as the process.
CRITICAL_SECTION told_guard;
std::vector<std::pair<HWND, LONG>> told;

void CALLBACK NoteFocus(HWINEVENTHOOK, DWORD, HWND window, LONG object, LONG child, DWORD, DWORD) {
    if (object != OBJID_CLIENT) {
        return;
    }
    EnterCriticalSection(&told_guard);
    told.emplace_back(window, child);
    LeaveCriticalSection(&told_guard);
}

DWORD WINAPI Listen(void* ready) {
    SetWinEventHook(EVENT_OBJECT_FOCUS, EVENT_OBJECT_FOCUS, nullptr, NoteFocus, 0, 0, WINEVENT_OUTOFCONTEXT);
    SetEvent(ready);
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        DispatchMessageW(&message);
    }
    return 0;
}

void StartListening() {
    InitializeCriticalSection(&told_guard);
    const HANDLE ready = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    CloseHandle(CreateThread(nullptr, 0, Listen, ready, 0, nullptr));
    WaitForSingleObject(ready, INFINITE);
}

std::string Told(const Words& words) {
    EnterCriticalSection(&told_guard);
    const std::vector<std::pair<HWND, LONG>> noted = std::exchange(told, {});
    LeaveCriticalSection(&told_guard);
    std::string json;
    for (const auto& [window, child] : noted) {
        if (window == WindowOf(words[1])) {
            json += (json.empty() ? "" : ",") + std::to_string(child);
        }
    }
    return "[" + json + "]";
}

struct Command {
    const char* name;
    std::size_t words; ///< at least so many, the name counted
    std::string (*run)(const Words&);
};

constexpr Command kCommands[] = {
    {"windows", 2, Windows},
    {"processes", 2, Processes},
    {"children", 2, Children},
    {"focus", 2, Focus},
    {"press", 3, Press},
    {"settext", 2, SetText},
    {"foreground", 1, Foreground},
    {"gettext", 2, GetText},
    {"checked", 2, Checked},
    {"post", 5, Post},
    {"drop", 3, Drop},
    {"menu", 2, Menu},
    {"toolbar", 2, Toolbar},
    {"accessible", 2, Accessible},
    {"combo", 2, Combo},
    {"process", 2, Process},
    {"pressitem", 3, PressItem},
    {"focusitem", 3, FocusItem},
    {"inputmethod", 2, InputMethod},
    {"pending", 3, Pending},
    {"textsize", 2, TextSize},
    {"messagefont", 3, MessageFont},
    {"failcall", 3, FailCall},
    {"failfrom", 3, FailCallsFrom},
    {"told", 2, Told},
    {"getreg", 3, GetReg},
    {"setreg", 3, SetReg},
    {"setnumber", 4, SetReg},
    {"delreg", 3, DelReg},
};

std::string Run(const std::string& line) {
    Words words;
    std::size_t start = 0;
    for (std::size_t tab = 0; tab != std::string::npos; start = tab + 1) {
        tab = line.find('\t', start);
        words.push_back(line.substr(start, tab == std::string::npos ? tab : tab - start));
    }
    for (const Command& command : kCommands) {
        if (words[0] == command.name) {
            return words.size() < command.words ? "{\"error\":\"too few words\"}" : command.run(words);
        }
    }
    return "{\"error\":\"unknown command\"}";
}

} // namespace

int main() {
    StartListening();
    const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
    const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
    std::string pending;
    char buffer[4096];
    DWORD count = 0;
    while (ReadFile(input, buffer, sizeof buffer, &count, nullptr) && count > 0) {
        pending.append(buffer, count);
        for (std::size_t end = pending.find('\n'); end != std::string::npos; end = pending.find('\n')) {
            const std::string line = pending.substr(0, end);
            pending.erase(0, end + 1);
            if (line == "quit") {
                return 0;
            }
            const std::string answer = Run(line) + "\n";
            DWORD written = 0;
            WriteFile(output, answer.data(), static_cast<DWORD>(answer.size()), &written, nullptr);
        }
    }
    return 0;
}
