// platform/message_box.h on Win32.
#include "platform/message_box.h"

#include "platform/windows/desktop_windows.h"

namespace tonex {

namespace {

/// The main window, or a dialog that is open over it: a box wakes its owner when it closes, and the main
/// window must sleep on below that dialog.
HWND Owner() {
    HWND main = Hooks().main_window;
    return main && !IsWindowEnabled(main) ? GetLastActivePopup(main) : main;
}

} // namespace

MessageAnswer ShowMessage(const std::wstring& text, MessageButtons buttons, MessageIcon icon) {
    ShowDifferencesNow();
    UINT style = buttons == MessageButtons::YesNoCancel ? MB_YESNOCANCEL : MB_OK;
    if (icon == MessageIcon::Exclamation) style |= MB_ICONEXCLAMATION;
    switch (MessageBoxW(Owner(), text.c_str(), L"Sound Editor", style)) {
    case IDYES: return MessageAnswer::Yes;
    case IDNO: return MessageAnswer::No;
    case IDOK: return MessageAnswer::Ok;
    default: // closed, or no box could be made
        return buttons == MessageButtons::Ok ? MessageAnswer::Ok : MessageAnswer::Cancel;
    }
}

} // namespace tonex
