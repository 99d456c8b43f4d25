// Melodies as files on the PC. Saving is all or nothing: whatever fails, and whenever the machine stops, the
// file at the path is the old one whole or the new one whole.
#pragma once

#include "score/snd_file.h"

#include <cstdint>
#include <span>
#include <string>

namespace tonex {

/// Age in seconds from which a temporary file of a save or an upload counts as left behind; none takes a day.
inline constexpr std::uint64_t kAbandonedAge = std::uint64_t{24} * 60 * 60;

/// Writes bytes to a path through a checked temporary file in the same folder, renamed over the target. A
/// read-only, hidden or system file at the path is replaced. False when anything failed: the old file is then
/// as it was, attributes included, the temporary file is gone, and `reason`, which may be null, holds what
/// the system gave for one, in UTF-8. What another program holds is tried again for 1.5 seconds.
bool SaveWholeFile(const std::wstring& path, std::span<const std::uint8_t> bytes,
                   std::string* reason = nullptr);

/// Writes an encoded melody to a path as SaveWholeFile does. The encoding's own result, with nothing written
/// unless it holds a file; kSndWriteError also when the disk refused.
SndResult SaveSndFile(const SndEncoding& melody, const std::wstring& path);

/// Writes a list as a SND file at a path. Results as EncodeSnd; kSndWriteError also when the disk refused
/// (the old file is then whole). `entries_written` is given out whatever the result.
SndResult SoundDataToFile(const TimingTables& tables, std::int16_t tempo, const FileList& list,
                          const std::wstring& path, std::int16_t& entries_written);

/// Reads a SND file. Results: kSndDone, kSndNotFound, kSndBadFormat.
SndResult FileToSoundData(std::int16_t& tempo, FileList& list, const std::wstring& path);

/// Deletes temporary files that saves which were killed left in a folder long ago.
void SweepAbandonedSaves(const std::wstring& folder);

/// Deletes a file if a listing query that includes hidden and system files finds it: attributes to
/// archive-only, then deletion, tried again for 1.5 seconds while another program holds it. Errors are
/// ignored.
void DeleteFileIfExists(const std::wstring& path);

} // namespace tonex
