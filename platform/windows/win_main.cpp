// The program's entry: window, start-up, messages. Windows-only by nature.
#include "app/window_routes.h"
#include "platform/windows/main_window.h"

#include <shellapi.h>

namespace {

/// The file named on the command line, or nothing. A path may have come without quotes around its blanks.
std::wstring CommandLinePath() {
    const wchar_t* text = GetCommandLineW();
    const wchar_t stop = *text == L'"' ? L'"' : L' ';
    if (*text == L'"') ++text;
    while (*text && *text != stop)
        ++text; // over the program's own name
    if (*text == L'"') ++text;
    while (*text == L' ' || *text == L'\t')
        ++text;
    std::wstring path = text;
    while (!path.empty() && (path.back() == L' ' || path.back() == L'\t'))
        path.pop_back();
    return path;
}

int RunMessages(tonex::MainWindow& main) {
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        if (tonex::TranslateMainKey(main, message)) continue;
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    return static_cast<int>(message.wParam);
}

} // namespace

int WINAPI wWinMain(HINSTANCE instance, HINSTANCE, PWSTR, int show) {
    tonex::SecureLibrarySearch();
    tonex::TurnSystemErrorBoxesOff();
    if (!tonex::CreateMainWindow(instance)) return 1;
    tonex::MainWindow& main = tonex::TheMainWindow();
    if (tonex::StartUp(main.record, CommandLinePath()) == tonex::StartResult::EndSilent) {
        DestroyWindow(main.window);
        return 0;
    }
    main.up = true;
    tonex::FitContent(main);
    tonex::ShowDifferences(main);
    ShowWindow(main.window, show == SW_SHOWDEFAULT || show == SW_SHOWNORMAL ? main.first_show : show);
    UpdateWindow(main.window);
    SetFocus(main.panel(tonex::PanelId::Grid).window);
    tonex::EnterApartment();
    return RunMessages(main);
}
