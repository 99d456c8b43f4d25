// Keys that belong to the whole window: shortcuts of the menu table, F1, Tab through every control, F6 from
// pane to pane. Windows-only because key codes and focus are.
#include "app/menu_routes.h"
#include "platform/windows/main_window.h"

#include "link/settings_commands.h"

#include <algorithm>

namespace tonex {

namespace {

bool TempoHasFocus(const MainWindow& main) {
    HWND focus = GetFocus();
    return focus && (focus == main.tempo || GetParent(focus) == main.tempo);
}

/// In the tempo box the keys of the text field keep their meaning there: Undo, Cut, Copy, Paste, Del.
bool BelongsToTextField(const MainWindow& main, const Shortcut& shortcut) {
    if (!TempoHasFocus(main)) return false;
    constexpr std::string_view kTextKeys = "ZXCV\x2E";
    return kTextKeys.find(shortcut.key) != std::string_view::npos;
}

bool RunShortcut(MainWindow& main, WPARAM key) {
    const bool control = GetKeyState(VK_CONTROL) < 0;
    if (GetKeyState(VK_MENU) < 0 || GetKeyState(VK_SHIFT) < 0) return false;
    for (const MenuRow& row : MenuRows()) {
        if (row.shortcut.key == 0 || row.shortcut.control != control) continue;
        if (static_cast<WPARAM>(static_cast<unsigned char>(row.shortcut.key)) != key) continue;
        if (BelongsToTextField(main, row.shortcut)) return false;
        RunMenuItem(main.record, row.item);
        ShowDifferences(main);
        return true;
    }
    return false;
}

// ---- panes: the order of Tab and F6 ----

struct Pane {
    HWND window;
    Panel* panel; ///< null for the system's own controls
};

constexpr int kPanes = kPanels + 2;

std::array<Pane, kPanes> Panes(MainWindow& main) {
    const auto pane = [&](PanelId id) { return Pane{main.panel(id).window, &main.panel(id)}; };
    return {pane(PanelId::Grid),  pane(PanelId::Lengths),      Pane{main.tempo, nullptr},
            pane(PanelId::Piano), Pane{main.toolbar, nullptr}, pane(PanelId::Staff)};
}

int FocusedPane(MainWindow& main) {
    const auto panes = Panes(main);
    HWND focus = GetFocus();
    for (int i = 0; i < kPanes; ++i)
        if (focus && (panes[static_cast<std::size_t>(i)].window == focus ||
                      IsChild(panes[static_cast<std::size_t>(i)].window, focus)))
            return i;
    return 0;
}

/// A pane with nothing to reach (the strip of an empty score) is passed over.
bool CanEnter(const Pane& pane) {
    return !pane.panel || pane.panel->kind->count(*pane.panel) > 0;
}

void EnterPane(const Pane& pane, int step, bool by_tab) {
    if (!pane.panel) {
        SetFocus(pane.window);
        return;
    }
    Panel& panel = *pane.panel;
    const int count = panel.kind->count(panel);
    if (by_tab && panel.kind->tab_each) panel.focus_item = step > 0 ? 0 : count - 1;
    FocusItem(panel, std::clamp(panel.focus_item, 0, count - 1));
}

void NextPane(MainWindow& main, int step, bool by_tab) {
    const auto panes = Panes(main);
    int at = FocusedPane(main);
    do
        at = (at + step + kPanes) % kPanes;
    while (!CanEnter(panes[static_cast<std::size_t>(at)]));
    EnterPane(panes[static_cast<std::size_t>(at)], step, by_tab);
}

void NextStop(MainWindow& main, int step) {
    const auto panes = Panes(main);
    Panel* panel = panes[static_cast<std::size_t>(FocusedPane(main))].panel;
    if (panel && panel->focused && panel->kind->tab_each) {
        const int next = panel->focus_item + step;
        if (next >= 0 && next < panel->kind->count(*panel)) {
            FocusItem(*panel, next);
            return;
        }
    }
    NextPane(main, step, true);
}

/// Enter and Esc in the tempo box go back to the score.
bool LeaveTempo(MainWindow& main, WPARAM key) {
    if ((key != VK_RETURN && key != VK_ESCAPE) || !TempoHasFocus(main)) return false;
    if (SendMessageW(main.tempo, CB_GETDROPPEDSTATE, 0, 0)) return false;
    SetFocus(main.panel(PanelId::Grid).window);
    return true;
}

} // namespace

bool TranslateMainKey(MainWindow& main, const MSG& message) {
    if (message.message != WM_KEYDOWN || !main.up || !main.record.Enabled) return false;
    if (message.hwnd != main.window && !IsChild(main.window, message.hwnd)) return false;
    const int step = GetKeyState(VK_SHIFT) < 0 ? -1 : 1;
    const bool control = GetKeyState(VK_CONTROL) < 0;
    if (message.wParam == VK_TAB && !control) return NextStop(main, step), true;
    if (message.wParam == VK_F6) return NextPane(main, step, false), true;
    if (message.wParam == VK_F1 && step > 0 && !control)
        return ShowHelp(main.record), ShowDifferences(main), true;
    if (LeaveTempo(main, message.wParam)) return true;
    return RunShortcut(main, message.wParam);
}

} // namespace tonex
