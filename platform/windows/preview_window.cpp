// The preview window as a dialog whose template is made in memory, so that every program can show it.
// Windows-only by nature.
#include "platform/windows/preview_window.h"

#include <string_view>
#include <vector>

namespace tonex {

namespace {

constexpr WORD kButtonClass = 0x0080; // as the system numbers the classes of a template
constexpr WORD kFontPoints = 8;
constexpr wchar_t kFontFace[] = L"MS Shell Dlg";

// Dialog units.
struct Button {
    const wchar_t* caption;
    DWORD style;
    int id;
    short left, width;
};
constexpr short kDialogWidth = 214;
constexpr short kDialogHeight = 28;
constexpr short kButtonTop = 7;
constexpr short kButtonHeight = 14;
constexpr Button kButtons[] = {
    {kPreviewPlayCaption, BS_DEFPUSHBUTTON | WS_GROUP, kPreviewPlayButton, 7, 60},
    {kPreviewStopCaption, BS_PUSHBUTTON, kPreviewStopButton, 71, 60},
    {kPreviewEndCaption, BS_PUSHBUTTON, kPreviewEndButton, 135, 72},
};

// A dialog template: 16-bit words, every control on a boundary of two.
struct Template {
    std::vector<WORD> words;

    void Word(int word) { words.push_back(static_cast<WORD>(word)); }
    void Long(DWORD value) {
        Word(LOWORD(value));
        Word(HIWORD(value));
    }
    void Text(std::wstring_view text) {
        for (const wchar_t letter : text)
            Word(letter);
        Word(0);
    }
    void Place(short left, short top, short width, short height) {
        for (const short value : {left, top, width, height})
            Word(value);
    }
};

Template MakeTemplate() {
    Template dialog;
    dialog.Long(DS_SETFONT | DS_FIXEDSYS | DS_MODALFRAME | WS_POPUP | WS_CAPTION | WS_SYSMENU);
    dialog.Long(0);
    dialog.Word(static_cast<int>(sizeof kButtons / sizeof *kButtons));
    dialog.Place(0, 0, kDialogWidth, kDialogHeight);
    dialog.Word(0); // no menu
    dialog.Word(0); // the system's dialog class
    dialog.Text(kPreviewWindowCaption);
    dialog.Word(kFontPoints);
    dialog.Text(kFontFace);
    for (const Button& button : kButtons) {
        if (dialog.words.size() % 2) dialog.Word(0);
        dialog.Long(WS_CHILD | WS_VISIBLE | WS_TABSTOP | button.style);
        dialog.Long(0);
        dialog.Place(button.left, kButtonTop, button.width, kButtonHeight);
        dialog.Word(button.id);
        dialog.Word(0xFFFF);
        dialog.Word(kButtonClass);
        dialog.Text(button.caption);
        dialog.Word(0); // no creation data
    }
    return dialog;
}

void Centre(HWND dialog) {
    RECT area = {0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
    if (HWND owner = GetWindow(dialog, GW_OWNER)) GetWindowRect(owner, &area);
    RECT own;
    GetWindowRect(dialog, &own);
    const LONG left = (area.left + area.right - (own.right - own.left)) / 2;
    const LONG top = (area.top + area.bottom - (own.bottom - own.top)) / 2;
    SetWindowPos(dialog, nullptr, static_cast<int>(left), static_cast<int>(top), 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER);
}

struct Opening {
    const std::wstring& wav_path;
    PreviewWindow& preview;
};

void SetUp(HWND dialog, const Opening& opening) {
    SetWindowLongPtrW(dialog, DWLP_USER, reinterpret_cast<LONG_PTR>(&opening.preview));
    Centre(dialog);
    LoadPreviewWindow(opening.preview, opening.wav_path);
}

void Press(HWND dialog, PreviewWindow& preview, int button) {
    switch (button) {
    case kPreviewPlayButton: PlayInPreviewWindow(preview); break;
    case kPreviewStopButton: StopInPreviewWindow(preview); break;
    case kPreviewEndButton:
        EndPreviewWindow(preview);
        EndDialog(dialog, 1);
        break;
    default: break;
    }
}

INT_PTR CALLBACK PreviewProcedure(HWND dialog, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_INITDIALOG) {
        SetUp(dialog, *reinterpret_cast<const Opening*>(lparam));
        return TRUE;
    }
    if (message != WM_COMMAND) return FALSE;
    auto* preview = reinterpret_cast<PreviewWindow*>(GetWindowLongPtrW(dialog, DWLP_USER));
    if (!preview) return FALSE;
    Press(dialog, *preview, LOWORD(wparam));
    return TRUE;
}

} // namespace

bool ShowPreviewWindow(HWND owner, const std::wstring& wav_path, PreviewWindow& preview) {
    const Template dialog = MakeTemplate();
    const Opening opening{wav_path, preview};
    ShowDifferencesNow();
    return DialogBoxIndirectParamW(GetModuleHandleW(nullptr),
                                   reinterpret_cast<const DLGTEMPLATE*>(dialog.words.data()), owner,
                                   PreviewProcedure, reinterpret_cast<LPARAM>(&opening)) > 0;
}

} // namespace tonex
