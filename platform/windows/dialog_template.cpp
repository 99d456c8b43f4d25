// Windows-only by nature: a dialog's template is the system's.
#include "platform/windows/dialog_template.h"

#include <initializer_list>

namespace tonex {

namespace {

constexpr std::size_t kControlCount = 8; ///< place of the number of controls among the template's words

void AddWord(DialogTemplate& dialog, int word) {
    dialog.words.push_back(static_cast<WORD>(word));
}

void AddLong(DialogTemplate& dialog, DWORD value) {
    AddWord(dialog, LOWORD(value));
    AddWord(dialog, HIWORD(value));
}

void AddText(DialogTemplate& dialog, std::wstring_view text) {
    for (const wchar_t letter : text)
        AddWord(dialog, letter);
    AddWord(dialog, 0);
}

void AddArea(DialogTemplate& dialog, const DialogArea& area) {
    for (const short value : {area.left, area.top, area.width, area.height})
        AddWord(dialog, value);
}

} // namespace

DialogTemplate MakeDialog(std::wstring_view title, short width, short height, const DialogFont& font) {
    DialogTemplate dialog;
    AddWord(dialog, 1);      // version of the extended template ...
    AddWord(dialog, 0xFFFF); // ... which this number announces
    AddLong(dialog, 0);      // help
    AddLong(dialog, 0);      // extended style
    AddLong(dialog, WS_POPUP | WS_CAPTION | WS_SYSMENU | DS_MODALFRAME | DS_SHELLFONT);
    AddWord(dialog, 0); // controls
    AddArea(dialog, {0, 0, width, height});
    AddWord(dialog, 0); // no menu
    AddWord(dialog, 0); // the system's dialog class
    AddText(dialog, title);
    AddWord(dialog, font.points);
    AddWord(dialog, font.weight);
    AddWord(dialog, font.italic | font.charset << 8);
    AddText(dialog, font.face);
    return dialog;
}

void AddControl(DialogTemplate& dialog, const DialogControl& control) {
    ++dialog.words[kControlCount];
    if (dialog.words.size() % 2) AddWord(dialog, 0);
    const bool framed = control.kind == ControlClass::Edit || control.kind == ControlClass::ListBox;
    AddLong(dialog, 0); // help
    AddLong(dialog, framed ? WS_EX_CLIENTEDGE : 0);
    AddLong(dialog, WS_CHILD | WS_VISIBLE | control.style);
    AddArea(dialog, control.area);
    AddLong(dialog, static_cast<DWORD>(control.id));
    AddWord(dialog, 0xFFFF); // a class by its number
    AddWord(dialog, static_cast<int>(control.kind));
    AddText(dialog, control.text);
    AddWord(dialog, 0); // no creation data
}

INT_PTR RunDialog(const DialogTemplate& dialog, HWND owner, DLGPROC procedure, LPARAM data) {
    return DialogBoxIndirectParamW(GetModuleHandleW(nullptr),
                                   reinterpret_cast<const DLGTEMPLATE*>(dialog.words.data()), owner,
                                   procedure, data);
}

} // namespace tonex
