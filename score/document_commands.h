// The document on the PC: New, Open, Save, Save as, the save prompt, the title.
#pragma once

#include "score/snd_file.h"

#include <cstdint>
#include <string>

namespace tonex {

struct sndmain;

inline constexpr std::wstring_view kSuffixUntitled = L" - Untitled";
inline constexpr std::wstring_view kSuffixPc = L" - PC:";
inline constexpr std::wstring_view kSuffixVeloxa = L" - Veloxa:";

/// Writes the caption "Sound Editor" + suffix + file name; unless untitled, stores the last document.
void SetTitle(sndmain& window, std::wstring_view suffix);
/// True for a path ending in ".SND" in any letter case; otherwise tells the user and gives false.
bool CheckSndExtension(const std::wstring& path);
/// True when the file name without ".SND" has at most 8 bytes in the ANSI code page; otherwise tells the
/// user.
bool CheckNameLength(const std::wstring& path);
/// Asks to save a changed score. True = go on.
bool AskToSaveChanges(sndmain& window);
/// Loads the document at the current path. True when it failed: the user was told, the score is empty.
bool LoadDocument(sndmain& window, std::wstring_view suffix);
/// Saves the score at `path`, which becomes the current path, sets the title, and tells the user of a tempo
/// that is not in the list ("Read error!") or a full play block. kSndWriteError: the user was told "Write
/// error!"; path, title and changed flag are as they were.
SndResult SaveDocument(sndmain& window, const std::wstring& path, std::wstring_view suffix);

/// Writes a list as a SND file at the path, or uploads it when the document asks for that. `path` is in and
/// out. Results as EncodeSnd; kSndWriteError also when the disk refused (the old file is then whole).
SndResult SoundDataToFile(sndmain& window, std::int16_t tempo, const FileList& list, std::wstring& path,
                          std::int16_t& entries_written);
/// Reads a SND file. Results: kSndDone, kSndNotFound, kSndBadFormat.
SndResult FileToSoundData(std::int16_t& tempo, FileList& list, const std::wstring& path);

/// New: an empty untitled score.
void mnuNewFile_Click(sndmain& window);
/// Open on PC.
void mnuFileOpen_Click(sndmain& window);
/// Save to PC; runs Save to PC as for an untitled document, a device file and a name that is too long.
void mnuFileOverWrite_Click(sndmain& window);
/// Save to PC as.
void mnuFileSaveWithName_Click(sndmain& window);

} // namespace tonex
