// Saving that is all or nothing: whatever fails, and whenever the machine stops, the file at the path is the
// old one whole or the new one whole.
#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace tonex {

/// Writes bytes to a path through a checked temporary file in the same folder, renamed over the target. A
/// read-only, hidden or system file at the path is replaced. False when anything failed: the old file is then
/// as it was, attributes included, and the temporary file is gone.
bool SaveWholeFile(const std::wstring& path, std::span<const std::uint8_t> bytes);

/// Deletes temporary files that saves which were killed left in a folder long ago.
void SweepAbandonedSaves(const std::wstring& folder);

/// Deletes a file if a listing query that includes hidden and system files finds it: attributes to
/// archive-only, then deletion. Errors are ignored.
void DeleteFileIfExists(const std::wstring& path);

} // namespace tonex
