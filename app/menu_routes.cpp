#include "app/menu_routes.h"

#include "app/enabling_commands.h"
#include "app/sndmain.h"
#include "link/device_commands.h"
#include "link/settings_commands.h"
#include "platform/main_window.h"
#include "preview/preview_commands.h"
#include "score/document_commands.h"
#include "score/rows.h"
#include "view/drawing_commands.h"
#include "view/edit_commands.h"

#include <array>

namespace tonex {

namespace {

void mnuSoundEnd_Click(sndmain&) {
    CloseMainWindow();
}

struct Route {
    MenuItem item;
    Command command;
};

constexpr Route kRoutes[] = {
    {MenuItem::mnuNewFile, mnuNewFile_Click},
    {MenuItem::mnuFileOpen, mnuFileOpen_Click},
    {MenuItem::mnuFileOverWrite, mnuFileOverWrite_Click},
    {MenuItem::mnuFileSaveWithName, mnuFileSaveWithName_Click},
    {MenuItem::mnuFileOpenZ730, mnuFileOpenZ730_Click},
    {MenuItem::mnuFileOverWriteZ730, mnuFileOverWriteZ730_Click},
    {MenuItem::mnuFileSaveWithNameZ730, mnuFileSaveWithNameZ730_Click},
    {MenuItem::Disconnection, Disconnection_Click},
    {MenuItem::mnuSoundEnd, mnuSoundEnd_Click},
    {MenuItem::mnuUndo, SwapUndo},
    {MenuItem::mnuCut, mnuCut_Click},
    {MenuItem::mnuCopy, mnuCopy_Click},
    {MenuItem::mnuPaste, mnuPaste_Click},
    {MenuItem::mnuInsert, mnuInsert_Click},
    {MenuItem::mnuDelete, mnuDelete_Click},
    {MenuItem::mnuOctUp, mnuOctUp_Click},
    {MenuItem::mnuOctDown, mnuOctDown_Click},
    {MenuItem::mnuSoundUp, mnuSoundUp_Click},
    {MenuItem::mnuSoundDown, mnuSoundDown_Click},
    {MenuItem::mnuPreview, mnuPreview_Click},
    {MenuItem::mnuDoremi, ToggleDoremi},
    {MenuItem::MenuCheckMsg, MenuCheckMsg_Click},
    {MenuItem::MenuTopic, MenuTopic_Click},
    {MenuItem::MenuVersion, MenuVersion_Click},
};

/// The commands by item; the separator lines have none.
constexpr std::array<Command, kMenuItems> kCommands = [] {
    std::array<Command, kMenuItems> commands{};
    for (const Route& route : kRoutes)
        At(commands, route.item) = route.command;
    return commands;
}();

/// A window that is disabled while a melody plays takes no command, not even from a key already pressed.
void Run(sndmain& window, MenuItem item) {
    const Command command = CommandOf(item);
    if (!window.Enabled || !command) return;
    command(window);
}

} // namespace

Command CommandOf(MenuItem item) {
    return At(kCommands, item);
}

void RunMenuItem(sndmain& window, MenuItem item) {
    if (item >= MenuItem::Count || !window.item(item).Enabled) return;
    Run(window, item);
}

void RunToolButton(sndmain& window, std::wstring_view key) {
    const auto rows = ToolButtonRows();
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (rows[i].key == key && window.toolbar_enabled[i]) Run(window, rows[i].item);
    }
}

void OpenMenu(sndmain& window, Menu menu) {
    if (menu == Menu::MenuDefine) MenuDefine_Open(window);
    // A sound device may have come or gone.
    if (menu == Menu::mnuEdit) RefreshEnabling(window);
}

} // namespace tonex
