// Reading the files that a command is given, and telling what is wrong with them.
#pragma once

#include "score/score.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tonex {

inline constexpr std::string_view kStandardStream = "-"; ///< the argument for standard input or output

/// Tells on standard error what is wrong with a file: "sndtool: NAME: REASON".
void Complain(const std::string& argument, const std::string& reason);
void ComplainOffset(const std::string& argument, std::size_t offset, const std::string& reason);
void ComplainLine(const std::string& argument, int line, const std::string& reason);

/// Tells that standard output could not be written, and the system's reason.
void ComplainOfStandardOutput();

/// Tells that standard input is named more than once. True when it is not.
bool StandardInputOnce(const std::vector<std::string>& arguments);

/// Reads a file or standard input whole. False, with the user told, when it can not be read or is larger than
/// any file of its kind; `reason` then holds what the user was told.
bool ReadInput(const std::string& argument, std::vector<std::uint8_t>& bytes, std::string* reason = nullptr);

/// A SND file taken apart.
struct SndInput {
    std::vector<std::uint8_t> bytes;
    std::int16_t tempo = 0;
    std::int16_t mode = 0;
    FileList list{};
    std::size_t edit_offset = 0; ///< of the edit block, in bytes
};

/// Reads and decodes a SND file. On false `reason` holds what was wrong, which the user was told.
bool ReadSnd(const std::string& argument, SndInput& snd, std::string& reason);

/// Offset in the file of the code byte of an entry, counted from 0.
std::size_t CodeOffsetOf(const SndInput& snd, int entry);

} // namespace tonex
