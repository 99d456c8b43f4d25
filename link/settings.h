// The settings this program keeps, by the names that the suite's programs share.
#pragma once

#include "platform/main_window.h"

#include <cstdint>
#include <optional>
#include <string>

namespace tonex {

struct sndmain;

inline constexpr const wchar_t* kSettingsApplication = L"Corvane";
inline constexpr const wchar_t* kSettingsSection = L"Tonex";
inline constexpr const wchar_t* kSettingsGlobal = L"Global";

/// Stores the current path and location flag as the last document.
void StoreLastDocument(const sndmain& window);
/// The stored text: flag, display name ("PC:" exactly when the flag is 1, else "Veloxa:"), full path.
std::wstring LastDocumentText(std::int16_t location_flag, const std::wstring& path);

/// The five fields of a placement: show state, bottom, left, right, top.
std::wstring PlacementText(const WindowPlacement& placement);
/// Nothing when the text has fewer than five whole numbers, or one that overflows.
std::optional<WindowPlacement> ParsePlacement(const std::wstring& text);
void SaveWindowPlacement(const std::wstring& section);
/// True when the full placement was applied; otherwise the window is to be centred or only moved.
bool RestoreWindowPlacement(sndmain& window, const std::wstring& section);

/// True when the transfer reminder is not wanted (`MsgDsp` = 1).
bool ReadMsgDsp();
void SaveMsgDsp(int value);

void ShowHelp(sndmain& window);
void MenuTopic_Click(sndmain& window);
void MenuVersion_Click(sndmain& window);
void MenuCheckMsg_Click(sndmain& window);
/// The Setting menu is about to open: its entry is ticked when the reminder is wanted.
void MenuDefine_Open(sndmain& window);

} // namespace tonex
