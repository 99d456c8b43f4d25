// platform/player.h on Win32.
#include "platform/player.h"

#include "platform/program_folder.h"
#include "platform/windows/desktop_windows.h"

#include <shellapi.h>

#include <vector>

namespace tonex {

namespace {

HANDLE AsHandle(ProcessHandle process) {
    return reinterpret_cast<HANDLE>(process);
}

// The name in our environment, which a program that starts meanwhile inherits.
struct SoundName {
    explicit SoundName(const std::wstring& name) {
        SetEnvironmentVariableW(kSoundNameVariable, name.c_str());
    }
    ~SoundName() { SetEnvironmentVariableW(kSoundNameVariable, nullptr); }
    SoundName(const SoundName&) = delete;
    SoundName& operator=(const SoundName&) = delete;
};

} // namespace

std::uint32_t StartCommandLine(const std::wstring& command_line, const std::wstring& sound_name) {
    std::vector<wchar_t> text(command_line.begin(), command_line.end()); // the system may write into it
    text.push_back(L'\0');
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESHOWWINDOW;
    startup.wShowWindow = SW_SHOWNORMAL;
    PROCESS_INFORMATION process = {};
    const InProgramFolder no_document_folder;
    const SoundName name(sound_name);
    if (!CreateProcessW(nullptr, text.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                        &process))
        return 0;
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return process.dwProcessId;
}

ProcessHandle OpenProcessForQuery(std::uint32_t process_id) {
    return reinterpret_cast<ProcessHandle>(
        OpenProcess(PROCESS_QUERY_INFORMATION | SYNCHRONIZE, FALSE, process_id));
}

bool StartDocument(const std::wstring& path, const std::wstring& verb, ProcessHandle& process) {
    process = 0;
    using ShellExecuteFunction = BOOL(WINAPI*)(SHELLEXECUTEINFOW*);
    const auto execute =
        LibraryFunction<ShellExecuteFunction>(SystemLibrary(L"shell32.dll"), "ShellExecuteExW");
    if (!execute) return false;
    // The document's program may be registered without a path. The folder of a melody must not decide which
    // one runs.
    const InProgramFolder no_document_folder;
    const std::wstring folder = ProgramFolder();
    SHELLEXECUTEINFOW document = {};
    document.cbSize = sizeof document;
    document.fMask = SEE_MASK_NOCLOSEPROCESS | SEE_MASK_FLAG_NO_UI;
    document.hwnd = Hooks().main_window;
    document.lpVerb = verb.c_str();
    document.lpFile = path.c_str();
    document.lpDirectory = folder.c_str();
    document.nShow = SW_SHOWNORMAL;
    if (!execute(&document)) return false;
    process = reinterpret_cast<ProcessHandle>(document.hProcess);
    return true;
}

std::uint32_t ExitCodeOf(ProcessHandle process) {
    DWORD code = 0;
    // A process that can not be asked any more counts as ended, or the editor would wait for ever.
    if (!GetExitCodeProcess(AsHandle(process), &code)) return 0;
    if (code != kStillActive || WaitForSingleObject(AsHandle(process), 0) != WAIT_OBJECT_0) return code;
    // It has ended since it was asked, or with the very number that stands for running.
    return GetExitCodeProcess(AsHandle(process), &code) && code != kStillActive ? code : 0;
}

void CloseProcess(ProcessHandle process) {
    if (process) CloseHandle(AsHandle(process));
}

} // namespace tonex
