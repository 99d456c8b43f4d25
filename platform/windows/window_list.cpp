// platform/window_list.h on Win32.
#include "platform/window_list.h"

#include "platform/windows/desktop_windows.h"

namespace tonex {

namespace {

HWND AsWindow(WindowId window) {
    return reinterpret_cast<HWND>(window);
}
WindowId AsId(HWND window) {
    return reinterpret_cast<WindowId>(window);
}

// Creating a name is one step for the system, so of two copies that start in the same instant exactly one
// finds the name taken. The handle is kept until the process ends.
bool NameIsTaken() {
    const HANDLE name = CreateMutexW(nullptr, FALSE, L"Local\\Tonex Sound Editor");
    const DWORD error = GetLastError();
    // Without access to it, somebody else has it.
    return name ? error == ERROR_ALREADY_EXISTS : error == ERROR_ACCESS_DENIED;
}

} // namespace

bool PreviousInstanceRunning() {
    static const bool running = NameIsTaken();
    return running;
}

WindowId FirstTopLevelWindow() {
    return AsId(GetWindow(GetDesktopWindow(), GW_CHILD));
}

WindowId NextWindow(WindowId window) {
    return AsId(GetWindow(AsWindow(window), GW_HWNDNEXT));
}

int CaptionLength(WindowId window) {
    return GetWindowTextLengthW(AsWindow(window));
}

int ReadCaption(WindowId window, std::wstring& buffer) {
    if (buffer.empty()) return 0;
    return GetWindowTextW(AsWindow(window), buffer.data(), static_cast<int>(buffer.size()));
}

WindowId OwnerOf(WindowId window) {
    return AsId(GetWindow(AsWindow(window), GW_OWNER));
}

bool IsMinimised(WindowId window) {
    return IsIconic(AsWindow(window)) != 0;
}

void RestoreWindow(WindowId window) {
    ShowWindow(AsWindow(window), SW_RESTORE);
}

void BringToForeground(WindowId window) {
    // While a box is open the window behind it is disabled, and the box is what can be used.
    const HWND front =
        IsWindowEnabled(AsWindow(window)) ? AsWindow(window) : GetLastActivePopup(AsWindow(window));
    SetForegroundWindow(front ? front : AsWindow(window));
}

} // namespace tonex
