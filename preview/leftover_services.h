// Temporary files of the editor that outlive their use: a player holds them, or the program that made them
// was killed.
#pragma once

#include <string>
#include <vector>

namespace tonex {

/// How long, in seconds, a player may outlive its sound before the editor stops waiting for it.
inline constexpr int kPlayerPatience = 30;

/// Deletes a temporary file. Where another program goes on holding it, its path is added to `leftovers`.
void DeleteTemporaryFile(const std::wstring& path, std::vector<std::wstring>& leftovers);

/// Tries once more to delete the leftovers, without waiting. What is still held stays in the list.
void DeleteLeftovers(std::vector<std::wstring>& leftovers);

/// Deletes the previews and uploads that runs before this one left in a folder: a sound when no player can
/// need it any more, all else after a day. Files that only look alike stay.
void SweepTemporaryFiles(const std::wstring& folder);

} // namespace tonex
