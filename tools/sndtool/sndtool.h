// The commands of sndtool. Each takes the arguments as given and returns the exit status.
#pragma once

#include <string>
#include <vector>

namespace tonex {

inline constexpr int kExitGood = 0;
inline constexpr int kExitBadInput = 1; ///< also an output that can not be written
inline constexpr int kExitWrongUsage = 2;

using Arguments = std::vector<std::string>;

/// What the files hold, for people or as JSON: one object a file in an array.
int InfoCommand(const Arguments& files, bool as_json);
/// Whether the files are as the editor writes them.
int CheckCommand(const Arguments& files);
/// Converts SND files to WAV files.
int WavCommand(const Arguments& files, const std::string& output);
/// Prints a SND file as melody text.
int TextCommand(const std::string& file);
/// Builds SND files from melody text. With `fit`, what does not fit the play block is left out and reported.
int BuildCommand(const Arguments& files, const std::string& output, bool fit);

} // namespace tonex
