#include "link/settings_commands.h"

#include "app/sndmain.h"
#include "platform/help.h"
#include "platform/main_window.h"
#include "platform/message_box.h"
#include "platform/settings.h"
#include "score/number_text.h"

#include <limits>
#include <string_view>

namespace tonex {

namespace {

constexpr const wchar_t* kLastFileKey = L"File1";
constexpr const wchar_t* kPlacementKey = L"WindwInformation"; // spelled so; kept as it is
constexpr const wchar_t* kReminderKey = L"MsgDsp";
constexpr std::uint32_t kHelpPartialKey = 261; ///< help command: keyword search
constexpr int kMinimised = 2;
constexpr int kNormal = 1;

void CentreMainWindow(const sndmain& window) {
    const WindowSize size = MainWindowSize();
    MoveMainWindow(window.screen.width / 2 - size.width / 2, window.screen.height / 2 - size.height / 2);
}

bool FitsInt(double value) {
    return value >= std::numeric_limits<std::int32_t>::min() &&
           value <= std::numeric_limits<std::int32_t>::max();
}

/// A window whose size is fixed takes the stored corner only, pixels turned into the screen's units.
void MoveToStoredCorner(const sndmain& window, const WindowPlacement& stored) {
    const double left = stored.left * static_cast<double>(window.screen.twips_per_pixel_x);
    const double top = stored.top * static_cast<double>(window.screen.twips_per_pixel_y);
    if (!FitsInt(left) || !FitsInt(top)) return CentreMainWindow(window);
    MoveMainWindow(static_cast<int>(left), static_cast<int>(top));
}

bool MainWindowIsSizable() {
    const int style = MainWindowBorderStyle();
    return style == kBorderSizable || style == kBorderSizableToolWindow;
}

} // namespace

void StoreLastDocument(const sndmain& window) {
    WriteSetting(kSettingsApplication, kSettingsSection, kLastFileKey,
                 LastDocumentText(window.document.location_flag, window.document.current_path));
}

LastDocument ReadLastDocument(const std::wstring& section) {
    return ParseLastDocument(ReadSetting(kSettingsApplication, section, kLastFileKey, L""));
}

void SaveWindowPlacement(const std::wstring& section) {
    WindowPlacement placement;
    if (!GetMainWindowPlacement(placement)) return;
    WriteSetting(kSettingsApplication, section, kPlacementKey, PlacementText(placement));
}

bool RestoreWindowPlacement(sndmain& window, const std::wstring& section) {
    std::optional<WindowPlacement> stored =
        ParsePlacement(ReadSetting(kSettingsApplication, section, kPlacementKey, L""));
    if (!stored) {
        CentreMainWindow(window);
        return false;
    }
    if (!MainWindowIsSizable()) {
        MoveToStoredCorner(window, *stored);
        return false;
    }
    if (stored->show_state == kMinimised) stored->show_state = kNormal;
    if (SetMainWindowPlacement(*stored)) return true;
    CentreMainWindow(window);
    return false;
}

bool ReadMsgDsp() {
    return NumericValueOf(ReadSetting(kSettingsApplication, kSettingsGlobal, kReminderKey, L"0")) == 1;
}

void SaveMsgDsp(int value) {
    WriteSetting(kSettingsApplication, kSettingsGlobal, kReminderKey, std::to_wstring(value));
}

void ShowHelp(sndmain& window) {
    if (OpenHelpFile(window.link.HelpFilePath, kHelpPartialKey, L"")) return;
    if (OpenHelpGuide()) return;
    ShowMessage(L"The help file is missing.");
}

void MenuTopic_Click(sndmain& window) {
    ShowHelp(window);
}

void MenuVersion_Click(sndmain&) {
    ShowAboutWindow();
}

void MenuCheckMsg_Click(sndmain& window) {
    bool& ticked = window.item(MenuItem::MenuCheckMsg).Checked;
    ticked = !ticked;
    SaveMsgDsp(ticked ? 0 : 1);
}

void MenuDefine_Open(sndmain& window) {
    window.item(MenuItem::MenuCheckMsg).Checked = !ReadMsgDsp();
}

} // namespace tonex
