// The hooks, what a process sets once, and the rules by which libraries are found.
#include "platform/windows/desktop_windows.h"

#include "platform/program_folder.h"

#include <objbase.h>

#include <iterator>

namespace tonex {

DesktopHooks& Hooks() {
    static DesktopHooks hooks;
    return hooks;
}

void ShowDifferencesNow() {
    if (Hooks().show_differences) Hooks().show_differences();
}

void SecureLibrarySearch() {
    // Not in the first edition of XP; there InProgramFolder alone guards the search.
    using SetDllDirectoryFunction = BOOL(WINAPI*)(const wchar_t*);
    const auto set_folder =
        LibraryFunction<SetDllDirectoryFunction>(GetModuleHandleW(L"kernel32.dll"), "SetDllDirectoryW");
    if (set_folder) set_folder(L"");
}

void TurnSystemErrorBoxesOff() {
    const UINT before = SetErrorMode(0);
    SetErrorMode(before | SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX);
}

Apartment::Apartment() {
    using Enter = HRESULT(WINAPI*)(void*, DWORD);
    const auto enter = LibraryFunction<Enter>(SystemLibrary(L"ole32.dll"), "CoInitializeEx");
    entered = enter && SUCCEEDED(enter(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE));
}

Apartment::~Apartment() {
    if (!entered) return;
    const auto leave = LibraryFunction<void(WINAPI*)()>(SystemLibrary(L"ole32.dll"), "CoUninitialize");
    if (leave) leave();
}

void EnterApartment() {
    static const Apartment apartment;
}

bool UnderWine() {
    return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
}

HMODULE SystemLibrary(const wchar_t* file_name) {
    wchar_t folder[MAX_PATH];
    const UINT length = GetSystemDirectoryW(folder, static_cast<UINT>(std::size(folder)));
    if (length == 0 || length >= std::size(folder)) return nullptr;
    const std::wstring path = std::wstring(folder, length) + L"\\" + file_name;
    // The system counts the loads of a library; a second one only finds it.
    return LoadLibraryExW(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
}

InProgramFolder::InProgramFolder() {
    const DWORD size = GetCurrentDirectoryW(0, nullptr);
    previous.resize(size);
    previous.resize(size ? GetCurrentDirectoryW(size, previous.data()) : 0);
    SetCurrentDirectoryW((ProgramFolder() + L"\\").c_str());
}

InProgramFolder::~InProgramFolder() {
    if (!previous.empty()) SetCurrentDirectoryW(previous.c_str());
}

} // namespace tonex
