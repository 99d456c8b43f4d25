// About, transfer reminder and converting window, from dialog resources. Windows-only by nature.
#include "platform/windows/dialogs.h"

#include "link/settings_commands.h"
#include "platform/windows/main_window.h"
#include "platform/windows/resource.h"
#include "platform/windows/window_place.h"

#include <commctrl.h>

namespace tonex {

namespace {

std::wstring VersionText() {
    return L"Version " TONEX_VERSION;
}

bool ClosesDialog(WPARAM wparam) {
    const int id = LOWORD(wparam);
    return id == IDC_COMMAND1 || id == IDCANCEL || id == IDOK;
}

INT_PTR CALLBACK VersionSndProc(HWND dialog, UINT message, WPARAM wparam, LPARAM) {
    switch (message) {
    case WM_INITDIALOG:
        SetDlgItemTextW(dialog, IDC_OWN_VERSION, VersionText().c_str());
        MoveTo(dialog, InTheMiddle(dialog, WholeScreen()));
        return TRUE;
    case WM_COMMAND: return ClosesDialog(wparam) ? EndDialog(dialog, 0) : FALSE;
    default: return FALSE;
    }
}

/// The program's own About window, centred on the screen.
void ShowVersionSnd(HWND owner) {
    DialogBoxParamW(Hooks().instance, MAKEINTRESOURCEW(IDD_VERSION_SND), owner, VersionSndProc, 0);
}

INT_PTR CALLBACK GlobalVersionProc(HWND dialog, UINT message, WPARAM wparam, LPARAM) {
    switch (message) {
    case WM_INITDIALOG:
        SetDlgItemTextW(dialog, IDC_APPLICATIONS, (L"Sound Editor, " + VersionText()).c_str());
        MoveTo(dialog, OntoScreen(InTheMiddle(dialog, AreaOf(TheMainWindow().window))));
        return TRUE;
    case WM_COMMAND:
        if (LOWORD(wparam) == IDC_DETAILS) ShowVersionSnd(dialog);
        return ClosesDialog(wparam) ? EndDialog(dialog, 0) : FALSE;
    default: return FALSE;
    }
}

INT_PTR CALLBACK FormZ730MsgProc(HWND dialog, UINT message, WPARAM wparam, LPARAM) {
    switch (message) {
    case WM_INITDIALOG:
        SetDlgItemTextW(dialog, IDC_MSG,
                        L"Transfer all data by PC Ferry to Corvane after close\r\n[Sound Editor]");
        MoveTo(dialog, InTheMiddle(dialog, WholeScreen()));
        // Whoever presses Enter or Space has read it; the check box is for those who look for it.
        SetFocus(GetDlgItem(dialog, IDC_COMMAND1));
        return FALSE;
    case WM_HELP: // F1
        ShowHelp(TheMainWindow().record);
        return TRUE;
    case WM_COMMAND:
        if (!ClosesDialog(wparam)) return FALSE;
        EndDialog(dialog, IsDlgButtonChecked(dialog, IDC_MSG_CHECK) == BST_CHECKED);
        return TRUE;
    default: return FALSE;
    }
}

INT_PTR CALLBACK ConvertProc(HWND, UINT message, WPARAM, LPARAM) {
    return message == WM_INITDIALOG || message == WM_CLOSE; // the conversion can not be cancelled
}

INT_PTR RunDialog(MainWindow& main, int id, DLGPROC procedure) {
    ShowDifferences(main);
    return DialogBoxParamW(Hooks().instance, MAKEINTRESOURCEW(id), main.window, procedure, 0);
}

HWND CreateConvertWindow(MainWindow& main) {
    HWND made =
        CreateDialogParamW(Hooks().instance, MAKEINTRESOURCEW(IDD_CONVERT), main.window, ConvertProc, 0);
    if (!made) return nullptr;
    const ConvertWindow& convert = main.record.FrmWavConvert;
    const Scale& scale = main.screen_scale;
    MoveTo(made, {ToPixelsX(scale, convert.Left), ToPixelsY(scale, convert.Top), 0, 0});
    ShowWindow(made, SW_SHOWNOACTIVATE);
    return made;
}

} // namespace

void ShowConvertWindow(MainWindow& main) {
    const ConvertWindow& convert = main.record.FrmWavConvert;
    if (!convert.Loaded) {
        if (main.convert) DestroyWindow(main.convert);
        main.convert = nullptr;
        return;
    }
    if (!main.convert) main.convert = CreateConvertWindow(main);
    HWND bar = GetDlgItem(main.convert, IDC_PROGRESS);
    SendMessageW(bar, PBM_SETRANGE32, static_cast<WPARAM>(convert.Min), convert.Max);
    SendMessageW(bar, PBM_SETPOS, static_cast<WPARAM>(convert.Value), 0);
    UpdateWindow(main.convert);
}

void ShowGlobalVersion(MainWindow& main) {
    RunDialog(main, IDD_GLOBAL_VERSION, GlobalVersionProc);
}
bool ShowFormZ730Msg(MainWindow& main) {
    return RunDialog(main, IDD_FORM_Z730_MSG, FormZ730MsgProc) == 1;
}

} // namespace tonex
