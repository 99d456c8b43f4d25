// The settings this program keeps, by the names that the suite's programs share.
#pragma once

#include "link/stored_texts.h"

#include <string>

namespace tonex {

struct sndmain;

inline constexpr const wchar_t* kSettingsApplication = L"Corvane";
inline constexpr const wchar_t* kSettingsSection = L"Tonex";
inline constexpr const wchar_t* kSettingsGlobal = L"Global";

/// Stores the current path and location flag as the last document.
void StoreLastDocument(const sndmain& window);
/// The last document that a settings section holds; its path is empty when it holds none.
LastDocument ReadLastDocument(const std::wstring& section);

/// Stores the main window's placement, unless the system refuses to tell it.
void SaveWindowPlacement(const std::wstring& section);
/// Places the main window as stored. True when the full placement was applied; false when the window was
/// centred, or, being of a fixed size, only moved.
bool RestoreWindowPlacement(sndmain& window, const std::wstring& section);

/// True when the transfer reminder is not wanted (`MsgDsp` = 1).
bool ReadMsgDsp();
/// Stores `MsgDsp`: 1 = the transfer reminder is not wanted.
void SaveMsgDsp(int value);

/// Opens the help file, or the guide where the system shows no help files.
void ShowHelp(sndmain& window);
/// Help Topics.
void MenuTopic_Click(sndmain& window);
/// About Sound Editor.
void MenuVersion_Click(sndmain& window);
/// Verify to transfer all data: turns the transfer reminder on or off.
void MenuCheckMsg_Click(sndmain& window);
/// The Setting menu is about to open: its entry is ticked when the reminder is wanted.
void MenuDefine_Open(sndmain& window);

} // namespace tonex
