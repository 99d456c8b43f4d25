// The words of menu bar and toolbar: items, captions, shortcuts, tooltips, in static tables. Pure: what an
// item runs is told by app/menu_routes.h.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace tonex {

/// The menu items, in the order of the menu bar. Separator lines are items too: they have names.
// clang-format off
enum class MenuItem : std::uint8_t {
    mnuNewFile, kubun0, mnuFileOpen, mnuFileOverWrite, mnuFileSaveWithName, mnukubun1,
    mnuFileOpenZ730, mnuFileOverWriteZ730, mnuFileSaveWithNameZ730, mnuKubun2,
    Disconnection, mnuKubun6, mnuSoundEnd,
    mnuUndo, mnuKubun5, mnuCut, mnuCopy, mnuPaste, mnuInsert, mnuDelete, mnuKubun3,
    mnuOctUp, mnuOctDown, mnuSoundUp, mnuSoundDown, mnuKubun4, mnuPreview,
    mnuDoremi,
    MenuCheckMsg,
    MenuTopic, kubunhelp, MenuVersion,
    Count
};
// clang-format on
inline constexpr int kMenuItems = static_cast<int>(MenuItem::Count);

/// The top-level menus, left to right.
enum class Menu : std::uint8_t { mnuFile, mnuEdit, mnuDisp, MenuDefine, MenuHelp, Count };
inline constexpr int kMenus = static_cast<int>(Menu::Count);

/// A shortcut key. `key` is an upper-case letter, or one of the constants.
struct Shortcut {
    bool control = false;
    char key = 0; ///< 0 = none
};
inline constexpr char kDeleteKey = 0x2E; ///< the platform's code of the Del key

struct MenuRow {
    Menu menu;
    MenuItem item;
    std::wstring_view name;    ///< "mnuFileOpen"
    std::wstring_view caption; ///< "&Open on PC..."; "-" is a separator line
    Shortcut shortcut;
};

struct MenuTitle {
    Menu menu;
    std::wstring_view name;
    std::wstring_view caption; ///< "&File"
};

inline constexpr int kToolButtons = 11;

struct ToolButtonRow {
    std::wstring_view key; ///< name of the menu item it stands for, with two historical spellings
    std::wstring_view tooltip;
    MenuItem item;
};

/// All menu items, in the order of MenuItem (row i is item i).
std::span<const MenuRow, kMenuItems> MenuRows();
/// The menu bar, left to right (row i is menu i).
std::span<const MenuTitle, kMenus> MenuTitles();
/// The toolbar, left to right.
std::span<const ToolButtonRow, kToolButtons> ToolButtonRows();

} // namespace tonex
