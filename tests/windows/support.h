// What the tests of the Windows layer share: a folder of their own, copies of the test program as other
// processes, and hands that use the boxes a test opens.
#pragma once

#include "platform/windows/desktop_windows.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace tonex::windows_test {

/// A new folder below the system's temporary folder, removed with all in it.
struct TestFolder {
    TestFolder();
    ~TestFolder();
    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;

    std::wstring path; ///< without a backslash at its end

    std::wstring operator/(const std::wstring& name) const { return path + L"\\" + name; }
};

/// Writes a file, failing the test when that does not work.
void WriteBytes(const std::wstring& path, const std::string& bytes);
/// The bytes of a file; "(missing)" when there is none.
std::string ReadBytes(const std::wstring& path);
void MakeFolder(const std::wstring& path);
bool IsFolder(const std::wstring& path);

/// A current folder for a while; afterwards it is the drive's root again.
struct CurrentFolder {
    explicit CurrentFolder(const std::wstring& folder);
    ~CurrentFolder();
    CurrentFolder(const CurrentFolder&) = delete;
    CurrentFolder& operator=(const CurrentFolder&) = delete;
};

/// The path of the test program itself.
std::wstring TestProgram();

/// Another process of the test program.
struct Child {
    explicit Child(const std::wstring& arguments);
    ~Child();
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    PROCESS_INFORMATION process = {};

    /// Waits for the end; the exit code, or 0xDEAD after ten seconds.
    DWORD ExitCode();
};

/// The event that a child waits for which tells its show state.
inline constexpr wchar_t kChildOpened[] = L"Tonex.Test.ChildOpened";

/// What a process does whose first argument begins with "child-"; its exit code.
int RunAsChild(int count, wchar_t** arguments);

/// A second pair of hands: runs on its own thread while the test's thread shows something modal.
struct Hands {
    explicit Hands(std::function<void()> work);
    ~Hands(); ///< waits until the work is done
    Hands(const Hands&) = delete;
    Hands& operator=(const Hands&) = delete;

    std::function<void()> work;
    HANDLE thread = nullptr;
};

/// Waits up to ten seconds for a visible dialog of this process with the caption; null, and a failed test,
/// when none comes. With a control number, only a dialog that has such a control.
HWND WaitForDialog(const std::wstring& caption, int control = 0);

/// The same without waiting and without failing.
HWND FindDialog(const std::wstring& caption, int control = 0);

/// Waits until the window is gone; fails the test after ten seconds.
void WaitUntilGone(HWND window);

std::wstring TextOf(HWND window);
std::wstring ControlText(HWND dialog, int control);
/// Presses a button without waiting for what it does.
void Press(HWND dialog, int control);
/// Presses a button, once a second, until it has done its work; fails the test and closes the dialog after
/// ten seconds. Now and then Wine's item dialog does nothing for the message alone; every other time the
/// button itself is clicked.
void PressUntil(HWND dialog, int control, const std::function<bool()>& done);
/// The same for a button that ends the dialog.
void PressAway(HWND dialog, int control);

/// Sets an environment variable for as long as it lives.
struct Environment {
    Environment(const wchar_t* name, const std::wstring& value);
    ~Environment();
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;

    const wchar_t* name;
    std::wstring previous;
    bool had_previous;
};

/// A key that is removed before and after, with all below it.
struct TestKey {
    explicit TestKey(std::wstring key_path, HKEY hive = HKEY_CURRENT_USER);
    ~TestKey();
    TestKey(const TestKey&) = delete;
    TestKey& operator=(const TestKey&) = delete;

    HKEY root;
    std::wstring path;

    void Set(const std::wstring& name, DWORD type, const void* bytes, std::size_t count) const;
    void SetText(const std::wstring& name, const std::wstring& text) const;
};

/// Removes a key and all below it.
void RemoveKey(HKEY root, const std::wstring& path);
/// A text value; "(missing)" when there is none.
std::wstring UserText(const std::wstring& path, const std::wstring& name);

/// Puts the hooks back as they were.
struct KeepHooks {
    DesktopHooks hooks = Hooks();
    ~KeepHooks() { Hooks() = hooks; }
};

} // namespace tonex::windows_test
