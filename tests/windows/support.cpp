#include "tests/windows/support.h"

#include "platform/files.h"
#include "platform/program_folder.h"
#include "platform/window_list.h"

#include <gtest/gtest.h>

#include <iterator>
#include <string_view>

namespace tonex::windows_test {

namespace {

constexpr DWORD kPatience = 10'000; // milliseconds until a test gives up waiting
constexpr DWORD kPoll = 10;

void RemoveTree(const std::wstring& folder) {
    WIN32_FIND_DATAW found;
    const HANDLE listing = FindFirstFileW((folder + L"\\*").c_str(), &found);
    if (listing != INVALID_HANDLE_VALUE) {
        do {
            const std::wstring name = found.cFileName;
            const std::wstring path = folder + L"\\" + name;
            if (name == L"." || name == L"..") continue;
            SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
            if (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)
                RemoveTree(path);
            else
                DeleteFileW(path.c_str());
        } while (FindNextFileW(listing, &found));
        FindClose(listing);
    }
    RemoveDirectoryW(folder.c_str());
}

struct DialogSearch {
    std::wstring caption;
    int control;
    HWND found;
};

BOOL CALLBACK LookAtWindow(HWND window, LPARAM data) {
    DialogSearch& search = *reinterpret_cast<DialogSearch*>(data);
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    wchar_t name[16] = L"";
    GetClassNameW(window, name, static_cast<int>(std::size(name)));
    if (process != GetCurrentProcessId() || std::wstring_view(name) != L"#32770") return TRUE;
    if (!IsWindowVisible(window) || !IsWindowEnabled(window) || TextOf(window) != search.caption) return TRUE;
    if (search.control && !GetDlgItem(window, search.control)) return TRUE;
    search.found = window;
    return FALSE;
}

DWORD WINAPI RunHands(void* hands) {
    static_cast<Hands*>(hands)->work();
    return 0;
}

// The child of the race for the instance name: tells whether it lost, and keeps the name until all have
// tried.
int RunInstanceProbe() {
    const bool running = PreviousInstanceRunning();
    const HANDLE tried = OpenSemaphoreW(SEMAPHORE_MODIFY_STATE, FALSE, L"Local\\windows_tests tried");
    const HANDLE finish = OpenEventW(SYNCHRONIZE, FALSE, L"Local\\windows_tests finish");
    if (!tried || !finish) return 99;
    ReleaseSemaphore(tried, 1, nullptr);
    if (WaitForSingleObject(finish, kPatience) != WAIT_OBJECT_0) return 98;
    return running ? 1 : 0;
}

bool IsInProgramFolder() {
    wchar_t folder[MAX_PATH] = L"";
    GetCurrentDirectoryW(MAX_PATH, folder);
    return folder == ProgramFolder();
}

} // namespace

TestFolder::TestFolder() {
    wchar_t temporary[MAX_PATH], name[MAX_PATH];
    GetTempPathW(MAX_PATH, temporary);
    GetTempFileNameW(temporary, L"tst", 0, name);
    DeleteFileW(name);
    path = name;
    MakeFolder(path);
}

TestFolder::~TestFolder() {
    RemoveTree(path);
}

void WriteBytes(const std::wstring& path, const std::string& bytes) {
    const HANDLE file =
        CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    ASSERT_NE(file, INVALID_HANDLE_VALUE);
    DWORD written = 0;
    EXPECT_TRUE(WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr));
    EXPECT_EQ(written, bytes.size());
    CloseHandle(file);
}

std::string ReadBytes(const std::wstring& path) {
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                    OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) return "(missing)";
    std::string bytes(GetFileSize(file, nullptr), '\0');
    DWORD read = 0;
    EXPECT_TRUE(ReadFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr));
    CloseHandle(file);
    bytes.resize(read);
    return bytes;
}

void MakeFolder(const std::wstring& path) {
    ASSERT_TRUE(CreateDirectoryW(path.c_str(), nullptr));
}

bool IsFolder(const std::wstring& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY);
}

CurrentFolder::CurrentFolder(const std::wstring& folder) {
    SetCurrentDirectoryW(folder.c_str());
}
CurrentFolder::~CurrentFolder() {
    SetCurrentDirectoryW(L"C:\\");
}

std::wstring TestProgram() {
    wchar_t path[MAX_PATH] = L"";
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    return path;
}

Child::Child(const std::wstring& arguments) {
    std::wstring line = L"\"" + TestProgram() + L"\" " + arguments;
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    EXPECT_TRUE(CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                               &process));
}

Child::~Child() {
    TerminateProcess(process.hProcess, 97);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
}

DWORD Child::ExitCode() {
    if (WaitForSingleObject(process.hProcess, kPatience) != WAIT_OBJECT_0) return 0xDEAD;
    DWORD code = 0xDEAD;
    GetExitCodeProcess(process.hProcess, &code);
    return code;
}

/// How the program was asked to show itself; 97 when it was not asked. It lives until the test has opened it.
int ShowStateAskedFor() {
    if (const HANDLE opened = OpenEventW(SYNCHRONIZE, FALSE, kChildOpened)) {
        WaitForSingleObject(opened, kPatience * 3);
        CloseHandle(opened);
    }
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    GetStartupInfoW(&startup);
    return (startup.dwFlags & STARTF_USESHOWWINDOW) != 0 ? startup.wShowWindow : 97;
}

int RunAsChild(int count, wchar_t** arguments) {
    if (count < 2) return -1;
    const std::wstring_view task = arguments[1];
    if (task == L"child-exit" && count == 3) return static_cast<int>(std::wcstol(arguments[2], nullptr, 10));
    if (task == L"child-sleep") {
        Sleep(kPatience * 3);
        return 96;
    }
    if (task == L"child-show-state") return ShowStateAskedFor();
    if (task == L"child-at-home") return IsInProgramFolder() ? 0 : 1;
    if (task == L"child-number") return static_cast<int>(UniqueNumber());
    if (task == L"child-instance") return RunInstanceProbe();
    return -1;
}

Hands::Hands(std::function<void()> task) : work(std::move(task)) {
    thread = CreateThread(nullptr, 0, RunHands, this, 0, nullptr);
}

Hands::~Hands() {
    EXPECT_EQ(WaitForSingleObject(thread, kPatience * 3), WAIT_OBJECT_0);
    CloseHandle(thread);
}

HWND FindDialog(const std::wstring& caption, int control) {
    DialogSearch search = {caption, control, nullptr};
    EnumWindows(LookAtWindow, reinterpret_cast<LPARAM>(&search));
    return search.found;
}

HWND WaitForDialog(const std::wstring& caption, int control) {
    for (DWORD waited = 0; waited < kPatience; waited += kPoll) {
        if (const HWND found = FindDialog(caption, control)) return found;
        Sleep(kPoll);
    }
    ADD_FAILURE() << "no dialog came: " << std::string(caption.begin(), caption.end());
    return nullptr;
}

void WaitUntilGone(HWND window) {
    for (DWORD waited = 0; waited < kPatience; waited += kPoll) {
        if (!IsWindow(window) || !IsWindowVisible(window)) return;
        Sleep(kPoll);
    }
    ADD_FAILURE() << "a window stayed";
}

std::wstring TextOf(HWND window) {
    wchar_t text[512] = L"";
    SendMessageW(window, WM_GETTEXT, std::size(text), reinterpret_cast<LPARAM>(text));
    return text;
}

std::wstring ControlText(HWND dialog, int control) {
    return TextOf(GetDlgItem(dialog, control));
}

void Press(HWND dialog, int control) {
    PostMessageW(dialog, WM_COMMAND, static_cast<WPARAM>(control),
                 reinterpret_cast<LPARAM>(GetDlgItem(dialog, control)));
}

void PressUntil(HWND dialog, int control, const std::function<bool()>& done) {
    constexpr DWORD again = 1000;
    for (DWORD waited = 0; waited < kPatience; waited += kPoll) {
        if (waited % again == 0 && waited / again % 2 == 0) Press(dialog, control);
        if (waited % again == 0 && waited / again % 2 == 1)
            PostMessageW(GetDlgItem(dialog, control), BM_CLICK, 0, 0);
        Sleep(kPoll);
        if (done()) return;
    }
    ADD_FAILURE() << "a button did nothing";
    PostMessageW(dialog, WM_CLOSE, 0, 0); // so that the others get their turn
}

void PressAway(HWND dialog, int control) {
    PressUntil(dialog, control, [=] { return !IsWindow(dialog) || !IsWindowVisible(dialog); });
}

Environment::Environment(const wchar_t* variable, const std::wstring& value) : name(variable) {
    const DWORD size = GetEnvironmentVariableW(name, nullptr, 0);
    had_previous = size > 0;
    previous.resize(size);
    if (size) previous.resize(GetEnvironmentVariableW(name, previous.data(), size));
    SetEnvironmentVariableW(name, value.c_str());
}

Environment::~Environment() {
    SetEnvironmentVariableW(name, had_previous ? previous.c_str() : nullptr);
}

TestKey::TestKey(std::wstring key_path, HKEY hive) : root(hive), path(std::move(key_path)) {
    RemoveKey(root, path);
}

TestKey::~TestKey() {
    RemoveKey(root, path);
}

void TestKey::Set(const std::wstring& name, DWORD type, const void* bytes, std::size_t count) const {
    HKEY key = nullptr;
    ASSERT_EQ(RegCreateKeyExW(root, path.c_str(), 0, nullptr, 0, KEY_SET_VALUE, nullptr, &key, nullptr), 0);
    EXPECT_EQ(RegSetValueExW(key, name.c_str(), 0, type, static_cast<const BYTE*>(bytes),
                             static_cast<DWORD>(count)),
              0);
    RegCloseKey(key);
}

void TestKey::SetText(const std::wstring& name, const std::wstring& text) const {
    Set(name, REG_SZ, text.c_str(), (text.size() + 1) * sizeof(wchar_t));
}

void RemoveKey(HKEY root, const std::wstring& path) {
    HKEY key = nullptr;
    if (RegOpenKeyExW(root, path.c_str(), 0, KEY_READ, &key)) return;
    wchar_t name[256];
    DWORD size = static_cast<DWORD>(std::size(name));
    while (RegEnumKeyExW(key, 0, name, &size, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS) {
        RemoveKey(root, path + L"\\" + name);
        size = static_cast<DWORD>(std::size(name));
    }
    RegCloseKey(key);
    RegDeleteKeyW(root, path.c_str());
}

std::wstring UserText(const std::wstring& path, const std::wstring& name) {
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, KEY_READ, &key)) return L"(missing)";
    wchar_t text[512] = L"";
    DWORD type = 0, bytes = sizeof text - sizeof(wchar_t);
    const LONG result =
        RegQueryValueExW(key, name.c_str(), nullptr, &type, reinterpret_cast<BYTE*>(text), &bytes);
    RegCloseKey(key);
    return result == ERROR_SUCCESS && type == REG_SZ ? text : L"(missing)";
}

} // namespace tonex::windows_test
