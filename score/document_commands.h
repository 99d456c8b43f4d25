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
/// Whether a changed melody would be lost now: what AskToSaveChanges would ask about.
bool HasUnsavedMelody(const sndmain& window);
/// Asks to save a changed score. True = go on.
bool AskToSaveChanges(sndmain& window);
/// Loads the document at the current path. True when it failed: the user was told, the score is empty. The
/// changed flag is off either way.
bool LoadDocument(sndmain& window, std::wstring_view suffix);
/// Saves the score as a PC file, as EndSave says. The changed flag stays as it is.
SndResult SaveDocument(sndmain& window, const std::wstring& path);
/// Ends a save of `melody`, on the PC or the device, with what became of it. kSndWriteError: path, location
/// and title stay; the user is told "Write error!", or which entry no file can hold, and the cursor is put on
/// it. Otherwise `path` becomes the current path, `location` (kOnPc or kOnDevice) its place, and the title is
/// set; the user is told of a tempo that is not in the list ("Read error!") and of entries left out.
void EndSave(sndmain& window, const SndEncoding& melody, SndResult result, const std::wstring& path,
             std::int16_t location);

/// New: an empty untitled score.
void mnuNewFile_Click(sndmain& window);
/// Open on PC.
void mnuFileOpen_Click(sndmain& window);
/// Save to PC; runs Save to PC as for an untitled document, a device file and a name that is too long.
void mnuFileOverWrite_Click(sndmain& window);
/// Save to PC as.
void mnuFileSaveWithName_Click(sndmain& window);

} // namespace tonex
