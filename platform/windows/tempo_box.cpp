// The tempo box on the system's combo box. Windows-only by nature.
#include "platform/windows/tempo_box.h"

#include "platform/windows/main_window.h"
#include "platform/windows/window_place.h"
#include "score/rows.h"

#include <commctrl.h>

#include <algorithm>

namespace tonex {

namespace {

constexpr int kLongestText = 63; ///< characters that the box takes
constexpr LONG kMostRows = 30;   ///< of the open list; it has 28

std::wstring TextOf(HWND control) {
    wchar_t text[kLongestText + 1] = L"";
    GetWindowTextW(control, text, kLongestText + 1);
    return text;
}

COMBOBOXINFO PartsOf(HWND box) {
    COMBOBOXINFO parts{};
    parts.cbSize = sizeof parts;
    SendMessageW(box, CB_GETCOMBOBOXINFO, 0, reinterpret_cast<LPARAM>(&parts));
    return parts;
}

bool ListIsOpen(const MainWindow& main) {
    return SendMessageW(main.tempo, CB_GETDROPPEDSTATE, 0, 0) != 0;
}

// ---- what the user does ----

void Typed(MainWindow& main) {
    main.shown.tempo_text = TextOf(main.tempo);
    TempoComboChange(main.record, main.shown.tempo_text);
    // What was typed stays when the list is left; only what the list chose is taken back.
    if (main.tempo_state.before_list) main.tempo_state.before_list = CurrentTempo(main.record);
}

void Chosen(MainWindow& main) {
    const auto index = static_cast<int>(SendMessageW(main.tempo, CB_GETCURSEL, 0, 0));
    if (index >= 0) TempoComboClick(main.record, index);
}

/// As many rows as there is room for above or below the box. A list that lay over the box would take the
/// pointer that opened it: another item would be marked, and the next click would choose it.
void FitList(const MainWindow& main) {
    const RECT box = AreaOf(main.tempo), free = FreeScreenAround(main.window);
    const LONG room = std::max(box.top - free.top, free.bottom - box.bottom);
    const LRESULT row = SendMessageW(main.tempo, CB_GETITEMHEIGHT, 0, 0);
    if (row <= 0) return;
    const LONG rows = std::clamp(room / static_cast<LONG>(row) - 1, 1L, kMostRows); // one less for the frame
    SendMessageW(main.tempo, CB_SETMINVISIBLE, static_cast<WPARAM>(rows), 0);
}

void Opened(MainWindow& main) {
    main.tempo_state.before_list = CurrentTempo(main.record);
    FitList(main);
}

/// Left by Esc, by the arrow or for another control: the arrow keys may have chosen on the way.
void Cancelled(MainWindow& main) {
    if (main.tempo_state.before_list) RestoreTempo(main.record, *main.tempo_state.before_list);
    main.tempo_state.before_list.reset();
}

/// The list has moved text and item by itself: what they are now is what the record is compared with.
void Closed(MainWindow& main) {
    main.tempo_state.before_list.reset();
    main.shown.tempo_text = TextOf(main.tempo);
    main.shown.tempo_index = static_cast<int>(SendMessageW(main.tempo, CB_GETCURSEL, 0, 0));
}

void Step(MainWindow& main, int step) {
    TempoComboClick(main.record, TempoNeighbour(main.record, step));
    ShowDifferences(main);
    SendMessageW(main.tempo, CB_SETEDITSEL, 0, MAKELPARAM(0, -1));
}

void Wheel(MainWindow& main, int travel) {
    int& wheel = main.tempo_state.wheel;
    wheel += travel;
    for (; wheel >= WHEEL_DELTA; wheel -= WHEEL_DELTA)
        Step(main, -1);
    for (; wheel <= -WHEEL_DELTA; wheel += WHEEL_DELTA)
        Step(main, 1);
}

/// The closed list's own arrows start from an item: from the first when the text was typed.
LRESULT CALLBACK EditProcedure(HWND edit, UINT message, WPARAM wparam, LPARAM lparam) {
    MainWindow& main = TheMainWindow();
    if (!ListIsOpen(main)) {
        if (message == WM_KEYDOWN && (wparam == VK_UP || wparam == VK_DOWN))
            return Step(main, wparam == VK_DOWN ? 1 : -1), 0;
        if (message == WM_MOUSEWHEEL) return Wheel(main, GET_WHEEL_DELTA_WPARAM(wparam)), 0;
    }
    return CallWindowProcW(main.tempo_state.edit_procedure, edit, message, wparam, lparam);
}

/// The box looks for the item that begins with its text and takes 640 for 64: here it finds the number.
LRESULT CALLBACK ListProcedure(HWND list, UINT message, WPARAM wparam, LPARAM lparam) {
    MainWindow& main = TheMainWindow();
    if (message == LB_FINDSTRING || message == LB_FINDSTRINGEXACT)
        return TempoItemOf(main.record, reinterpret_cast<const wchar_t*>(lparam));
    return CallWindowProcW(main.tempo_state.list_procedure, list, message, wparam, lparam);
}

WNDPROC Replace(HWND window, WNDPROC procedure) {
    return reinterpret_cast<WNDPROC>(
        SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(procedure)));
}

// ---- what is shown ----

void Unmark(const MainWindow& main) {
    SendMessageW(main.tempo, CB_SETEDITSEL, 0, MAKELPARAM(0, 0));
}

/// Whenever the box is given a text or a size it may mark all of its text, which looks as if it had the
/// keyboard.
void UnmarkUnlessFocused(const MainWindow& main) {
    const HWND focus = GetFocus();
    if (!focus || (focus != main.tempo && GetParent(focus) != main.tempo)) Unmark(main);
}

void ShowList(MainWindow& main) {
    const TempoBox& box = main.record.TempoCombo;
    if (box.List == main.shown.tempo_list) return;
    main.shown.tempo_list = box.List;
    // The list is drawn again once, not for every item.
    const HWND list = PartsOf(main.tempo).hwndList;
    SendMessageW(list, WM_SETREDRAW, FALSE, 0);
    SendMessageW(main.tempo, CB_RESETCONTENT, 0, 0);
    for (const std::wstring& item : box.List)
        SendMessageW(main.tempo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(item.c_str()));
    SendMessageW(list, WM_SETREDRAW, TRUE, 0);
    main.shown.tempo_index = -2;
}

// ---- the line ----

struct TextLine {
    int top, height; ///< pixels in the main window
};

RECT PlaceInMain(const MainWindow& main, HWND control) {
    RECT area;
    GetWindowRect(control, &area);
    MapWindowPoints(nullptr, main.window, reinterpret_cast<POINT*>(&area), 2);
    return area;
}

int TextHeight(HWND window, HFONT font) {
    const HDC dc = GetDC(window);
    const HGDIOBJ old = SelectObject(dc, font);
    TEXTMETRICW metrics{};
    GetTextMetricsW(dc, &metrics);
    SelectObject(dc, old);
    ReleaseDC(window, dc);
    return static_cast<int>(metrics.tmHeight);
}

/// Where the number stands.
TextLine NumberLine(const MainWindow& main) {
    const HWND edit = PartsOf(main.tempo).hwndItem;
    RECT text{};
    SendMessageW(edit, EM_GETRECT, 0, reinterpret_cast<LPARAM>(&text));
    return {static_cast<int>(PlaceInMain(main, edit).top + text.top), TextHeight(edit, main.theme.fonts.ui)};
}

void MoveToTop(const MainWindow& main, HWND control, int top, int height) {
    const RECT area = PlaceInMain(main, control);
    SetWindowPos(control, nullptr, static_cast<int>(area.left), top, static_cast<int>(area.right - area.left),
                 height, SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOCOPYBITS);
}

} // namespace

void CreateTempoBox(MainWindow& main, HINSTANCE instance) {
    main.tempo = CreateWindowExW(
        0, L"COMBOBOX", L"", WS_CHILD | WS_VISIBLE | WS_TABSTOP | WS_VSCROLL | CBS_DROPDOWN | CBS_AUTOHSCROLL,
        0, 0, 10, 300, main.window, reinterpret_cast<HMENU>(static_cast<UINT_PTR>(kTempoId)), instance,
        nullptr);
    SendMessageW(main.tempo, WM_SETFONT, reinterpret_cast<WPARAM>(main.theme.fonts.ui), 0);
    SendMessageW(main.tempo, CB_LIMITTEXT, kLongestText, 0);
    const COMBOBOXINFO parts = PartsOf(main.tempo);
    main.tempo_state.edit_procedure = Replace(parts.hwndItem, EditProcedure);
    main.tempo_state.list_procedure = Replace(parts.hwndList, ListProcedure);
}

void TempoEvent(MainWindow& main, UINT notification) {
    if (notification == CBN_KILLFOCUS) Unmark(main);
    if (main.showing) return;
    if (!TakesInput(main) && notification != CBN_SELENDCANCEL && notification != CBN_CLOSEUP) {
        // Another program changed the box: what it showed before is shown again.
        main.shown.tempo_text = TextOf(main.tempo);
        main.shown.tempo_index = -2;
        return;
    }
    switch (notification) {
    case CBN_EDITCHANGE: Typed(main); break;
    case CBN_DROPDOWN: Opened(main); break;
    // The same item chosen again sends no change, but ends the selection all the same.
    case CBN_SELENDOK:
    case CBN_SELCHANGE: Chosen(main); break;
    case CBN_SELENDCANCEL: Cancelled(main); break;
    case CBN_CLOSEUP: Closed(main); break;
    default: break;
    }
}

void ShowTempoBox(MainWindow& main) {
    const TempoBox& box = main.record.TempoCombo;
    Shown& shown = main.shown;
    ShowList(main);
    if (shown.tempo_index == box.ListIndex && shown.tempo_text == box.Text) return;
    // Typing a number deselects the list's item; the text and its caret stay as typed.
    if (shown.tempo_index != box.ListIndex && box.ListIndex >= 0) {
        SendMessageW(main.tempo, CB_SETCURSEL, static_cast<WPARAM>(box.ListIndex), 0);
        shown.tempo_text = At(box.List, box.ListIndex);
    }
    shown.tempo_index = box.ListIndex;
    if (shown.tempo_text != box.Text) SetWindowTextW(main.tempo, box.Text.c_str());
    shown.tempo_text = box.Text;
    UnmarkUnlessFocused(main);
}

void CentreInPlace(const MainWindow& main, HWND label) {
    const RECT place = PlaceInMain(main, label);
    const int height = TextHeight(label, main.theme.fonts.ui);
    MoveToTop(main, label, static_cast<int>(place.top + place.bottom - height) / 2, height);
}

void AlignTempoLine(MainWindow& main) {
    const RECT row = ToPixels(main.theme.scale, main.record.TempoCombo.place);
    const RECT box = PlaceInMain(main, main.tempo);
    const LONG top = (row.top + row.bottom - (box.bottom - box.top)) / 2;
    SetWindowPos(main.tempo, nullptr, static_cast<int>(box.left), static_cast<int>(top), 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOCOPYBITS);
    const TextLine line = NumberLine(main);
    for (HWND label : {main.tempo_caption, main.tempo_label})
        MoveToTop(main, label, line.top, line.height);
    UnmarkUnlessFocused(main);
    // Parts of it drawn one by one do not make the whole: its button is stretched from a small picture.
    RedrawWindow(main.tempo, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_FRAME | RDW_ALLCHILDREN);
}

} // namespace tonex
