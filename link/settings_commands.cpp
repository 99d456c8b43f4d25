#include "link/settings_commands.h"

#include "app/sndmain.h"
#include "link/paths.h"
#include "platform/help.h"
#include "platform/main_window.h"
#include "platform/message_box.h"
#include "platform/settings.h"
#include "preview/timing_tables.h"

#include <array>
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
constexpr std::size_t kPlacementFields = 5;

/// Optional minus sign and digits, nothing else; nothing when the number leaves 32 bits.
std::optional<int> WholeField(std::wstring_view text) {
    const bool negative = text.starts_with(L'-');
    if (negative) text.remove_prefix(1);
    if (text.empty()) return std::nullopt;
    std::int64_t value = 0;
    for (const wchar_t c : text) {
        if (c < L'0' || c > L'9') return std::nullopt;
        value = value * 10 + (c - L'0');
        if (value > std::numeric_limits<std::int32_t>::max()) return std::nullopt;
    }
    return static_cast<int>(negative ? -value : value);
}

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

std::wstring LastDocumentText(std::int16_t location_flag, const std::wstring& path) {
    return std::to_wstring(location_flag) + (location_flag == kOnPc ? L",PC:" : L",Veloxa:") +
           FileNameOfPath(path) + L"," + path;
}

void StoreLastDocument(const sndmain& window) {
    WriteSetting(kSettingsApplication, kSettingsSection, kLastFileKey,
                 LastDocumentText(window.document.location_flag, window.document.current_path));
}

std::wstring PlacementText(const WindowPlacement& placement) {
    // Bottom stands before left: kept as it is, because users' stores hold this order.
    return std::to_wstring(placement.show_state) + L"," + std::to_wstring(placement.bottom) + L"," +
           std::to_wstring(placement.left) + L"," + std::to_wstring(placement.right) + L"," +
           std::to_wstring(placement.top);
}

std::optional<WindowPlacement> ParsePlacement(const std::wstring& text) {
    std::array<int, kPlacementFields> fields{};
    std::wstring_view rest = text;
    for (std::size_t i = 0; i < kPlacementFields; ++i) {
        const bool last = i + 1 == kPlacementFields;
        const std::size_t end = last ? rest.size() : rest.find(L',');
        if (end == std::wstring_view::npos) return std::nullopt;
        const std::optional<int> field = WholeField(rest.substr(0, end));
        if (!field) return std::nullopt;
        fields[i] = *field;
        if (!last) rest.remove_prefix(end + 1);
    }
    WindowPlacement placement;
    placement.show_state = fields[0];
    placement.bottom = fields[1];
    placement.left = fields[2];
    placement.right = fields[3];
    placement.top = fields[4];
    return placement;
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
