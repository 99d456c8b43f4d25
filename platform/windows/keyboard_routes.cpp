// Keys that belong to the whole window: shortcuts of the menu table, F1, Tab through every control, F6 from
// pane to pane. Windows-only because key codes and focus are.
#include "app/layout_commands.h"
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

// ---- panes: Tab goes from stop to stop, F6 from pane to pane, both in the record's order ----

struct PaneWindow {
    HWND window;
    Panel* panel; ///< null for the system's own controls
};

PaneWindow WindowOf(MainWindow& main, Pane pane) {
    const auto of_panel = [&](PanelId id) { return PaneWindow{main.panel(id).window, &main.panel(id)}; };
    switch (pane) {
    case Pane::cbtNote: return of_panel(PanelId::Lengths);
    case Pane::TempoCombo: return {main.tempo, nullptr};
    case Pane::Keys: return of_panel(PanelId::Piano);
    case Pane::Toolbar1: return {main.toolbar, nullptr};
    case Pane::imgNote: return of_panel(PanelId::Staff);
    default: return of_panel(PanelId::Grid);
    }
}

/// The window of the pane that has the keyboard, perhaps in a part of it; null when none has.
HWND FocusedPane(const MainWindow& main) {
    HWND at = GetFocus();
    while (at && GetParent(at) != main.window)
        at = GetParent(at);
    return at;
}

/// Place in the order of the stop that has the keyboard; the first one when no pane has it.
int FocusedStop(MainWindow& main, const std::vector<TabStop>& order) {
    HWND focused = FocusedPane(main);
    const auto is_there = [&](const TabStop& stop) {
        const PaneWindow pane = WindowOf(main, stop.pane);
        if (pane.window != focused) return false;
        return stop.item == kWholePane || stop.item == pane.panel->kind->cursor(*pane.panel);
    };
    const auto found = std::find_if(order.begin(), order.end(), is_there);
    return found == order.end() ? 0 : static_cast<int>(found - order.begin());
}

/// `item` as in a Tab stop: a whole pane goes on where it was left.
void Enter(const PaneWindow& pane, int item) {
    if (!pane.panel) {
        SetFocus(pane.window);
        return;
    }
    FocusItem(*pane.panel, item == kWholePane ? pane.panel->kind->cursor(*pane.panel) : item);
}

/// Goes to the next stop, or to that of the next pane.
void GoOn(MainWindow& main, int step, bool to_other_pane) {
    const std::vector<TabStop> order = TabOrder(main.record);
    const auto stops = static_cast<int>(order.size());
    int at = FocusedStop(main, order);
    const Pane left = At(order, at).pane;
    do
        at = (at + step + stops) % stops;
    while (to_other_pane && At(order, at).pane == left);
    const TabStop& stop = At(order, at);
    Enter(WindowOf(main, stop.pane), to_other_pane ? kWholePane : stop.item);
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
    if (message.wParam == VK_TAB && !control) return GoOn(main, step, false), true;
    if (message.wParam == VK_F6) return GoOn(main, step, true), true;
    if (message.wParam == VK_F1 && step > 0 && !control)
        return ShowHelp(main.record), ShowDifferences(main), true;
    if (LeaveTempo(main, message.wParam)) return true;
    return RunShortcut(main, message.wParam);
}

} // namespace tonex
