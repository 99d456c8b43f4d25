// A panel: one window that shows a row of items (pictures, cells, buttons, keys) and lets mouse, keyboard and
// screen readers reach each. What the items are is told by a static table of procedures, one a kind.
#pragma once

#include "platform/windows/canvas.h"

#include "platform/windows/desktop_windows.h"

#include <string>

namespace tonex {

struct MainWindow;
struct Panel;
struct Colours;
struct Rect;
struct Scale;
struct sndmain;

/// The first item whose area holds a point; -1 = none.
int FirstItemAt(const Panel& panel, POINT point);
/// Where a key leads in a row of items: to the neighbour left or right, to the first or the last; -1 for
/// other keys.
int NeighbourInRow(const Panel& panel, int item, WPARAM key);
/// The item that the keyboard was left on, the last one when it is gone; -1 = there is none.
int ItemLeftBehind(const Panel& panel);
/// Gives the panel's item the keyboard.
void FocusItem(Panel& panel, int item);

struct PanelKind {
    const wchar_t* class_name;
    const wchar_t* title; ///< of the whole panel, for screen readers
    long item_role;       ///< ROLE_SYSTEM_...
    DWORD style = 0;      ///< beyond that of a child window
    bool tooltips = false;
    int (*count)(const Panel&);
    RECT (*item_area)(const Panel&, int item); ///< pixels in the panel
    std::wstring (*item_name)(const Panel&, int item);
    bool (*item_chosen)(const Panel&, int item);
    int (*item_at)(const Panel&, POINT point) = FirstItemAt; ///< -1 = none
    void (*press)(Panel&, int item);                         ///< runs the item's command on the record
    /// The item that has the panel's keyboard; -1 = none that is there.
    int (*cursor)(const Panel&) = ItemLeftBehind;
    void (*take_cursor)(Panel&, int item) = FocusItem; ///< gives an item the keyboard, as assistive tools ask
    /// Where an arrow key, Home or End leads; -1 = nowhere.
    int (*neighbour)(const Panel&, int item, WPARAM key) = NeighbourInRow;
    void (*paint)(Panel&, const RECT& dirty);
    /// First look at a message; true when it was used up.
    bool (*message)(Panel&, UINT message, WPARAM wparam, LPARAM lparam, LRESULT& result) = nullptr;
};

struct Panel {
    const PanelKind* kind = nullptr;
    MainWindow* main = nullptr;
    HWND window = nullptr;
    HWND tooltip = nullptr;
    Canvas canvas;
    int origin_x = 0, origin_y = 0; ///< of the panel in the window's client area, twips
    int focus_item = 0;             ///< where the keyboard was left, in panels that keep their own place
    int hot_item = -1;              ///< under the mouse
    int pressed_item = -1;          ///< between button down and up
    bool focused = false;
    bool keyboard_used = false; ///< the focus came by keyboard: show where it is
    int wheel = 0;              ///< mouse wheel travel not yet used
    /// What screen readers were told last of the item that has the keyboard.
    struct Told {
        int item = -2; ///< as of `cursor`; -2 = nothing yet
        std::wstring name;
        bool operator==(const Told&) const = default;
    } told;
};

void RegisterPanelClass(const PanelKind& kind, HINSTANCE instance);
bool CreatePanel(Panel& panel, const PanelKind& kind, MainWindow& main, HINSTANCE instance);

// What a panel shows, and how.
const sndmain& RecordOf(const Panel& panel);
const Scale& ScaleOf(const Panel& panel);
const Colours& ColoursOf(const Panel& panel);
/// What a screen reader says of a slot of the score; empty behind the last slot.
std::wstring SlotName(const Panel& panel, int slot);

/// The first item of which `area` holds a point; -1 = none.
int FirstItemAt(const Panel& panel, POINT point, RECT (*area)(const Panel&, int item));
/// A rectangle of the record, which counts from the main window's corner, in pixels of the panel.
RECT AreaInPanel(const Panel& panel, const Rect& rect);
/// Adds an area of a panel to those that are to be drawn again; null = none yet.
void AddArea(HRGN& stale, const RECT& area);
/// Has areas of the panel drawn again, and deletes the region; nothing for null. All at once: to be told of
/// an area takes the system as long as to draw it.
void InvalidateAreas(Panel& panel, HRGN stale);
/// Has an item drawn again; nothing for one that is not there.
void InvalidateItem(Panel& panel, int item);
/// Tells screen readers which item has the keyboard, when it or what it is called changed since they were
/// told.
void TellCursor(Panel& panel);
/// Draws the mark of the keyboard focus inside an area when the panel has the keyboard and shows it.
void DrawFocusMark(Panel& panel, const RECT& area, COLORREF colour);
bool FocusShown(const Panel& panel, int item);

/// Answers WM_GETOBJECT with the panel's accessible object.
LRESULT AnswerGetObject(Panel& panel, WPARAM wparam, LPARAM lparam);

enum class PanelId { Staff, Grid, Lengths, Piano, Count };
inline constexpr int kPanels = static_cast<int>(PanelId::Count);

extern const PanelKind kStaffPanel, kGridPanel, kLengthPanel, kPianoPanel;

} // namespace tonex
