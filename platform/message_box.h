// Modal message boxes. Every one is titled "Sound Editor" and owned by the main window.
#pragma once

#include <string>

namespace tonex {

enum class MessageButtons { Ok, YesNoCancel };
enum class MessageIcon { None, Exclamation };
enum class MessageAnswer { Ok, Yes, No, Cancel };

/// Shows a message and waits for the answer. Closing the box counts as Cancel (as Ok when there is only OK).
MessageAnswer ShowMessage(const std::wstring& text, MessageButtons buttons = MessageButtons::Ok,
                          MessageIcon icon = MessageIcon::Exclamation);

} // namespace tonex
