// platform/events.h on Win32.
#include "platform/events.h"

#include "platform/windows/desktop_windows.h"

namespace tonex {

namespace {

constexpr DWORD kPassingPause = 15; // milliseconds; well below what a user notices

DWORD events_ran_at = 0; // tick count

// Runs what is in the queue. True when the program is asked to end; that message is put back for the loop of
// WinMain.
bool RunPendingMessages() {
    MSG message;
    bool quit = false;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        if (message.message == WM_QUIT) {
            PostQuitMessage(static_cast<int>(message.wParam));
            quit = true;
            break;
        }
        if (Hooks().translate_message && Hooks().translate_message(message)) continue;
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    ShowDifferencesNow();
    events_ran_at = GetTickCount();
    return quit;
}

} // namespace

void ProcessPendingEvents() {
    RunPendingMessages();
}

void ProcessEventsInPassing() {
    if (GetTickCount() - events_ran_at >= kPassingPause) RunPendingMessages();
}

void WaitForEvents(int milliseconds) {
    const DWORD wait = milliseconds > 0 ? static_cast<DWORD>(milliseconds) : 0;
    ShowDifferencesNow();
    MsgWaitForMultipleObjectsEx(0, nullptr, wait, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
    // A quit message that was put back would end every wait at once.
    if (RunPendingMessages()) Sleep(wait);
}

} // namespace tonex
