// What a console program asks of the system: its arguments, the standard streams as bytes, terminals.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tonex {

/// Prepares the standard streams for bytes and gives the arguments without the program's name. UTF-8 on
/// Windows; elsewhere the bytes that were given, which may not be UTF-8.
std::vector<std::string> StartConsole(int count, char** arguments);

/// The absolute path that an argument names. Links at its end are followed, so that a file which is replaced
/// is the one that the link names.
std::wstring PathOfArgument(const std::string& argument);

/// A path as an argument or a message has it.
std::string ArgumentOfPath(const std::wstring& path);

/// A stream open for writing: standard output, or a device or pipe, which is written in place where a file
/// would be replaced.
using Stream = std::intptr_t;
inline constexpr Stream kNoStream = -1;

/// Standard output as a stream; it stays open.
Stream StandardOutput();
/// Whether something other than a file or folder is at the path.
bool IsStreamPath(const std::wstring& path);
/// Opens a device or pipe; kNoStream when refused.
Stream OpenStream(const std::wstring& path);
/// Writes all the bytes. False when the stream did not take every one.
bool WriteStream(Stream stream, const std::uint8_t* bytes, std::size_t count);
/// Closes what OpenStream gave. False on a late write error.
bool CloseStream(Stream stream);

/// Reads standard input to its end, or until one byte more than `limit` was read. False on a read error.
bool ReadStandardInput(std::vector<std::uint8_t>& bytes, std::size_t limit);

/// Text to standard output. False when it was not taken.
bool WriteText(std::string_view text);
/// Text to standard error.
void WriteErrorText(std::string_view text);

bool StandardOutputIsTerminal();
bool StandardErrorIsTerminal();

} // namespace tonex
