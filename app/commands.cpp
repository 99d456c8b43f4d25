#include "app/commands.h"

#include "app/sndmain.h"
#include "link/device_commands.h"
#include "link/settings.h"
#include "platform/main_window.h"
#include "preview/preview.h"
#include "score/document.h"
#include "view/edit_commands.h"
#include "view/score_view.h"

#include <algorithm>

namespace tonex {

namespace {

void mnuSoundEnd_Click(sndmain&) {
    CloseMainWindow();
}

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
    {Menu::mnuFile, MenuItem::mnuNewFile, L"mnuNewFile", L"&New", kNone, mnuNewFile_Click},
    {Menu::mnuFile, MenuItem::kubun0, L"kubun0", L"-", kNone, nullptr},
    {Menu::mnuFile, MenuItem::mnuFileOpen, L"mnuFileOpen", L"&Open on PC...", Control('O'), mnuFileOpen_Click},
    {Menu::mnuFile, MenuItem::mnuFileOverWrite, L"mnuFileOverWrite", L"&Save to PC", Control('S'), mnuFileOverWrite_Click},
    {Menu::mnuFile, MenuItem::mnuFileSaveWithName, L"mnuFileSaveWithName", L"Save to PC &as...", kNone, mnuFileSaveWithName_Click},
    {Menu::mnuFile, MenuItem::mnukubun1, L"mnukubun1", L"-", kNone, nullptr},
    {Menu::mnuFile, MenuItem::mnuFileOpenZ730, L"mnuFileOpenZ730", L"Open on Velo&xa...", kNone, mnuFileOpenZ730_Click},
    {Menu::mnuFile, MenuItem::mnuFileOverWriteZ730, L"mnuFileOverWriteZ730", L"Save to Ve&loxa", kNone, mnuFileOverWriteZ730_Click},
    {Menu::mnuFile, MenuItem::mnuFileSaveWithNameZ730, L"mnuFileSaveWithNameZ730", L"Save &to Veloxa as...", kNone, mnuFileSaveWithNameZ730_Click},
    {Menu::mnuFile, MenuItem::mnuKubun2, L"mnuKubun2", L"-", kNone, nullptr},
    {Menu::mnuFile, MenuItem::Disconnection, L"Disconnection", L"Dis&connection Setup...", kNone, Disconnection_Click},
    {Menu::mnuFile, MenuItem::mnuKubun6, L"mnuKubun6", L"-", kNone, nullptr},
    {Menu::mnuFile, MenuItem::mnuSoundEnd, L"mnuSoundEnd", L"&Exit", kNone, mnuSoundEnd_Click},
    {Menu::mnuEdit, MenuItem::mnuUndo, L"mnuUndo", L"&Undo", Control('Z'), SwapUndo},
    {Menu::mnuEdit, MenuItem::mnuKubun5, L"mnuKubun5", L"-", kNone, nullptr},
    {Menu::mnuEdit, MenuItem::mnuCut, L"mnuCut", L"Cu&t", Control('X'), mnuCut_Click},
    {Menu::mnuEdit, MenuItem::mnuCopy, L"mnuCopy", L"&Copy", Control('C'), mnuCopy_Click},
    {Menu::mnuEdit, MenuItem::mnuPaste, L"mnuPaste", L"&Paste", Control('V'), mnuPaste_Click},
    {Menu::mnuEdit, MenuItem::mnuInsert, L"mnuInsert", L"&Insert", Control('I'), mnuInsert_Click},
    {Menu::mnuEdit, MenuItem::mnuDelete, L"mnuDelete", L"&Delete", {false, kDeleteKey}, mnuDelete_Click},
    {Menu::mnuEdit, MenuItem::mnuKubun3, L"mnuKubun3", L"-", kNone, nullptr},
    {Menu::mnuEdit, MenuItem::mnuOctUp, L"mnuOctUp", L"Up &an octave", kNone, mnuOctUp_Click},
    {Menu::mnuEdit, MenuItem::mnuOctDown, L"mnuOctDown", L"Down an &octave", kNone, mnuOctDown_Click},
    {Menu::mnuEdit, MenuItem::mnuSoundUp, L"mnuSoundUp", L"Up &half a tone", kNone, mnuSoundUp_Click},
    {Menu::mnuEdit, MenuItem::mnuSoundDown, L"mnuSoundDown", L"Down half a to&ne", kNone, mnuSoundDown_Click},
    {Menu::mnuEdit, MenuItem::mnuKubun4, L"mnuKubun4", L"-", kNone, nullptr},
    {Menu::mnuEdit, MenuItem::mnuPreview, L"mnuPreview", L"Pre&view", kNone, mnuPreview_Click},
    // Half-width katakana and kanji in a menu that is English otherwise: kept as it is.
    {Menu::mnuDisp, MenuItem::mnuDoremi, L"mnuDoremi", L"ﾄﾞﾚﾐ表示(&D)", kNone, ToggleDoremi},
    {Menu::MenuDefine, MenuItem::MenuCheckMsg, L"MenuCheckMsg", L"&Verify to transfer all data", kNone, MenuCheckMsg_Click},
    {Menu::MenuHelp, MenuItem::MenuTopic, L"MenuTopic", L"&Help Topics", kNone, MenuTopic_Click},
    {Menu::MenuHelp, MenuItem::kubunhelp, L"kubunhelp", L"-", kNone, nullptr},
    {Menu::MenuHelp, MenuItem::MenuVersion, L"MenuVersion", L"&About Sound Editor...", kNone, MenuVersion_Click},
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

// The rest of the program finds a row by its item's number and an item's state by the same number.
constexpr bool RowsStandInOrder() {
    for (std::size_t i = 0; i < kMenuRows.size(); ++i) {
        if (static_cast<std::size_t>(kMenuRows[i].item) != i) return false;
        if (i > 0 && kMenuRows[i].menu < kMenuRows[i - 1].menu) return false;
    }
    for (std::size_t i = 0; i < kMenuTitles.size(); ++i) {
        if (static_cast<std::size_t>(kMenuTitles[i].menu) != i) return false;
    }
    return true;
}
static_assert(RowsStandInOrder());
static_assert(kMenuItems == 32 && kMenus == 5);

const MenuRow& RowOf(MenuItem item) {
    return kMenuRows[static_cast<std::size_t>(item)];
}

/// A window that is disabled while a melody plays takes no command, not even from a key already pressed.
void Run(sndmain& window, MenuItem item) {
    if (!window.Enabled || !RowOf(item).command) return;
    RowOf(item).command(window);
}

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

void RunMenuItem(sndmain& window, MenuItem item) {
    if (item >= MenuItem::Count || !window.item(item).Enabled) return;
    Run(window, item);
}

void RunToolButton(sndmain& window, std::wstring_view key) {
    const auto row = std::find_if(kToolButtonRows.begin(), kToolButtonRows.end(),
                                  [&](const ToolButtonRow& button) { return button.key == key; });
    if (row == kToolButtonRows.end()) return;
    if (!window.toolbar_enabled[static_cast<std::size_t>(row - kToolButtonRows.begin())]) return;
    Run(window, row->item);
}

void OpenMenu(sndmain& window, Menu menu) {
    if (menu == Menu::MenuDefine) MenuDefine_Open(window);
}

} // namespace tonex
