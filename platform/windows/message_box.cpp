// platform/message_box.h on Win32.
#include "platform/message_box.h"

#include "platform/windows/desktop_windows.h"

namespace tonex {

MessageAnswer ShowMessage(const std::wstring& text, MessageButtons buttons, MessageIcon icon) {
    ShowDifferencesNow();
    UINT style = buttons == MessageButtons::YesNoCancel ? MB_YESNOCANCEL : MB_OK;
    if (icon == MessageIcon::Exclamation) style |= MB_ICONEXCLAMATION;
    switch (MessageBoxW(Hooks().main_window, text.c_str(), L"Sound Editor", style)) {
    case IDYES: return MessageAnswer::Yes;
    case IDNO: return MessageAnswer::No;
    case IDOK: return MessageAnswer::Ok;
    default: // closed, or no box could be made
        return buttons == MessageButtons::Ok ? MessageAnswer::Ok : MessageAnswer::Cancel;
    }
}

} // namespace tonex
