#include "app/menus.h"

#include <algorithm>
#include <array>
#include <functional>

namespace tonex {

namespace {

constexpr Shortcut kNone{};
constexpr Shortcut Control(char letter) {
    return {true, letter};
}

constexpr std::array<MenuTitle, kMenus> kMenuTitles{{
    {Menu::mnuFile, L"mnuFile", L"&File"},
    {Menu::mnuEdit, L"mnuEdit", L"&Edit"},
    {Menu::mnuDisp, L"mnuDisp", L"&View"},
    {Menu::MenuDefine, L"MenuDefine", L"&Setting"},
    {Menu::MenuHelp, L"MenuHelp", L"&Help"},
}};

// clang-format off
constexpr std::array<MenuRow, kMenuItems> kMenuRows{{
    {Menu::mnuFile, MenuItem::mnuNewFile, L"mnuNewFile", L"&New", kNone},
    {Menu::mnuFile, MenuItem::kubun0, L"kubun0", L"-", kNone},
    {Menu::mnuFile, MenuItem::mnuFileOpen, L"mnuFileOpen", L"&Open on PC...", Control('O')},
    {Menu::mnuFile, MenuItem::mnuFileOverWrite, L"mnuFileOverWrite", L"&Save to PC", Control('S')},
    {Menu::mnuFile, MenuItem::mnuFileSaveWithName, L"mnuFileSaveWithName", L"Save to PC &as...", kNone},
    {Menu::mnuFile, MenuItem::mnukubun1, L"mnukubun1", L"-", kNone},
    {Menu::mnuFile, MenuItem::mnuFileOpenZ730, L"mnuFileOpenZ730", L"Open on Velo&xa...", kNone},
    {Menu::mnuFile, MenuItem::mnuFileOverWriteZ730, L"mnuFileOverWriteZ730", L"Save to Ve&loxa", kNone},
    {Menu::mnuFile, MenuItem::mnuFileSaveWithNameZ730, L"mnuFileSaveWithNameZ730", L"Save &to Veloxa as...", kNone},
    {Menu::mnuFile, MenuItem::mnuKubun2, L"mnuKubun2", L"-", kNone},
    {Menu::mnuFile, MenuItem::Disconnection, L"Disconnection", L"Dis&connection Setup...", kNone},
    {Menu::mnuFile, MenuItem::mnuKubun6, L"mnuKubun6", L"-", kNone},
    {Menu::mnuFile, MenuItem::mnuSoundEnd, L"mnuSoundEnd", L"&Exit", kNone},
    {Menu::mnuEdit, MenuItem::mnuUndo, L"mnuUndo", L"&Undo", Control('Z')},
    {Menu::mnuEdit, MenuItem::mnuKubun5, L"mnuKubun5", L"-", kNone},
    {Menu::mnuEdit, MenuItem::mnuCut, L"mnuCut", L"Cu&t", Control('X')},
    {Menu::mnuEdit, MenuItem::mnuCopy, L"mnuCopy", L"&Copy", Control('C')},
    {Menu::mnuEdit, MenuItem::mnuPaste, L"mnuPaste", L"&Paste", Control('V')},
    {Menu::mnuEdit, MenuItem::mnuInsert, L"mnuInsert", L"&Insert", Control('I')},
    {Menu::mnuEdit, MenuItem::mnuDelete, L"mnuDelete", L"&Delete", {false, kDeleteKey}},
    {Menu::mnuEdit, MenuItem::mnuKubun3, L"mnuKubun3", L"-", kNone},
    {Menu::mnuEdit, MenuItem::mnuOctUp, L"mnuOctUp", L"Up &an octave", kNone},
    {Menu::mnuEdit, MenuItem::mnuOctDown, L"mnuOctDown", L"Down an &octave", kNone},
    {Menu::mnuEdit, MenuItem::mnuSoundUp, L"mnuSoundUp", L"Up &half a tone", kNone},
    {Menu::mnuEdit, MenuItem::mnuSoundDown, L"mnuSoundDown", L"Down half a to&ne", kNone},
    {Menu::mnuEdit, MenuItem::mnuKubun4, L"mnuKubun4", L"-", kNone},
    {Menu::mnuEdit, MenuItem::mnuPreview, L"mnuPreview", L"Pre&view", kNone},
    // Half-width katakana and kanji in a menu that is English otherwise: kept as it is.
    {Menu::mnuDisp, MenuItem::mnuDoremi, L"mnuDoremi", L"ﾄﾞﾚﾐ表示(&D)", kNone},
    {Menu::MenuDefine, MenuItem::MenuCheckMsg, L"MenuCheckMsg", L"&Verify to transfer all data", kNone},
    {Menu::MenuHelp, MenuItem::MenuTopic, L"MenuTopic", L"&Help Topics", kNone},
    {Menu::MenuHelp, MenuItem::kubunhelp, L"kubunhelp", L"-", kNone},
    {Menu::MenuHelp, MenuItem::MenuVersion, L"MenuVersion", L"&About Sound Editor...", kNone},
}};

// Two keys spell their menu item the other way round: kept as it is.
constexpr std::array<ToolButtonRow, kToolButtons> kToolButtonRows{{
    {L"mnuNewFile", L"New", MenuItem::mnuNewFile},
    {L"mnuFileOpen", L"Open on PC", MenuItem::mnuFileOpen},
    {L"mnuFileOverWrite", L"Save to PC", MenuItem::mnuFileOverWrite},
    {L"mnuZ730FileOpen", L"Open on Veloxa", MenuItem::mnuFileOpenZ730},
    {L"mnuZ730FileOverWrite", L"Save to Veloxa", MenuItem::mnuFileOverWriteZ730},
    {L"mnuCut", L"Cut", MenuItem::mnuCut},
    {L"mnuCopy", L"Copy", MenuItem::mnuCopy},
    {L"mnuPaste", L"Paste", MenuItem::mnuPaste},
    {L"mnuDelete", L"Delete", MenuItem::mnuDelete},
    {L"mnuInsert", L"Insert", MenuItem::mnuInsert},
    {L"mnuPreview", L"Preview Sound", MenuItem::mnuPreview},
}};
// clang-format on

// The rest of the program finds a row by its item's number and an item's state by the same number: as many
// rows as there are items, each of a higher item than the row before, stand in their order. So do the titles.
static_assert(std::ranges::adjacent_find(kMenuRows, std::greater_equal(), &MenuRow::item) == kMenuRows.end());
static_assert(std::ranges::adjacent_find(kMenuRows, std::greater(), &MenuRow::menu) == kMenuRows.end());
static_assert(std::ranges::adjacent_find(kMenuTitles, std::greater_equal(), &MenuTitle::menu) ==
              kMenuTitles.end());
static_assert(kMenuItems == 32 && kMenus == 5);

} // namespace

std::span<const MenuRow, kMenuItems> MenuRows() {
    return kMenuRows;
}
std::span<const MenuTitle, kMenus> MenuTitles() {
    return kMenuTitles;
}
std::span<const ToolButtonRow, kToolButtons> ToolButtonRows() {
    return kToolButtonRows;
}

} // namespace tonex
