// Dialogs whose template is made in memory, so that every program and library can show them without resources
// of its own.
#pragma once

#include "platform/windows/desktop_windows.h"

#include <string>
#include <string_view>
#include <vector>

namespace tonex {

/// Class names of a dialog template, as the system numbers them.
enum class ControlClass : WORD { Button = 0x0080, Edit = 0x0081, Static = 0x0082, ListBox = 0x0083 };

/// In dialog units, which the system scales by the dialog's font.
struct DialogArea {
    short left, top, width, height;
};

struct DialogFont {
    WORD points = 8;
    WORD weight = FW_DONTCARE;
    BYTE italic = 0;
    BYTE charset = DEFAULT_CHARSET;
    std::wstring face = L"MS Shell Dlg";
};

struct DialogControl {
    ControlClass kind;
    int id;
    DWORD style; ///< beyond that of a visible child window
    DialogArea area;
    std::wstring_view text;
};

/// The template as the system reads it: 16-bit words, every control on a boundary of two.
struct DialogTemplate {
    std::vector<WORD> words;
};

/// A dialog with a title, without controls.
DialogTemplate MakeDialog(std::wstring_view title, short width, short height, const DialogFont& font);
/// Adds a control behind the others, in the order of Tab.
void AddControl(DialogTemplate& dialog, const DialogControl& control);
/// Shows the dialog over its owner (may be null) and waits for its end: what EndDialog was given; -1 when the
/// system refuses.
INT_PTR RunDialog(const DialogTemplate& dialog, HWND owner, DLGPROC procedure, LPARAM data);

} // namespace tonex
