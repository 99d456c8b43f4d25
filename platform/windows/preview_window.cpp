// The preview window as a dialog made in memory. Windows-only by nature.
#include "platform/windows/preview_window.h"

#include "platform/windows/dialog_template.h"
#include "platform/windows/window_place.h"

namespace tonex {

namespace {

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

DialogTemplate MakeTemplate() {
    DialogTemplate dialog = MakeDialog(kPreviewWindowCaption, kDialogWidth, kDialogHeight, {});
    for (const Button& button : kButtons)
        AddControl(dialog, {.kind = ControlClass::Button,
                            .id = button.id,
                            .style = WS_TABSTOP | button.style,
                            .area = {button.left, kButtonTop, button.width, kButtonHeight},
                            .text = button.caption});
    return dialog;
}

void Centre(HWND dialog) {
    HWND owner = GetWindow(dialog, GW_OWNER);
    MoveTo(dialog, InTheMiddle(dialog, owner ? AreaOf(owner) : WholeScreen()));
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
    const Opening opening{wav_path, preview};
    ShowDifferencesNow();
    return RunDialog(MakeTemplate(), owner, PreviewProcedure, reinterpret_cast<LPARAM>(&opening)) > 0;
}

} // namespace tonex
