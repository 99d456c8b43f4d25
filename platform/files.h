// Files, one small operation a procedure, so that a test can make any single one of them fail.
// Paths are absolute, separated by backslashes on Windows. No procedure throws.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tonex {

inline constexpr std::uint32_t kAttributeReadOnly = 1;
inline constexpr std::uint32_t kAttributeHidden = 2;
inline constexpr std::uint32_t kAttributeSystem = 4;
inline constexpr std::uint32_t kAttributeDirectory = 16;
inline constexpr std::uint32_t kAttributeArchive = 32;

/// Whether a directory listing that includes hidden and system files shows a file at the path. False for a
/// folder, for a path with a wildcard in it, and on any error.
bool FileExists(const std::wstring& path);

/// Whether a folder is at the path, with or without a backslash at its end. A file of that name is none.
/// False on any error.
bool FolderExists(const std::wstring& path);

/// The attributes of a file or folder, or nothing when there is none.
std::optional<std::uint32_t> AttributesOf(const std::wstring& path);

/// Sets a file's attributes. False when refused.
bool SetAttributesOf(const std::wstring& path, std::uint32_t attributes);

/// Deletes a file. False when refused or not there.
bool RemoveFile(const std::wstring& path);

/// Reads a whole file of at most `limit` bytes; of a longer one the first `limit` bytes. False when it can
/// not be opened or read.
bool ReadWholeFile(const std::wstring& path, std::vector<std::uint8_t>& bytes, std::size_t limit);

/// A file open for writing. Closed, and its state unknown, when dropped without CloseOutput.
struct OutputFile;
struct OutputFileCloser {
    void operator()(OutputFile* file) const;
};
using OutputFilePtr = std::unique_ptr<OutputFile, OutputFileCloser>;

/// Creates a new file for writing; null when one is there already or the folder refuses.
OutputFilePtr CreateOutput(const std::wstring& path);

/// Appends bytes. False unless every byte was taken (a full disk may take some and report no error).
bool WriteOutput(OutputFile& file, const std::uint8_t* bytes, std::size_t count);

/// Overwrites bytes at an offset that was written before; the append position is unchanged.
bool PatchOutput(OutputFile& file, std::uint64_t offset, const std::uint8_t* bytes, std::size_t count);

/// Asks the system to bring what was written to the disk. False when it could not.
bool FlushOutput(OutputFile& file);

/// Closes the file. False when the system reports a late write error.
bool CloseOutput(OutputFilePtr file);

/// Renames a file over another in one step: whoever looks sees the old file whole or the new one whole.
/// Both are in the same folder. False when refused; both files are then as they were.
bool RenameOver(const std::wstring& from, const std::wstring& to);

/// The names of the files in a folder that match a pattern such as "*.snd"; no folders, in no fixed order.
std::vector<std::wstring> ListFiles(const std::wstring& folder, const std::wstring& pattern);

/// Seconds since a file was last written, or nothing when it is not there.
std::optional<std::uint64_t> AgeOfFile(const std::wstring& path);

/// The path completed from the current folder; as it is where it is complete or the system can not.
std::wstring FullPathOf(const std::wstring& path);

/// Waits a short while, milliseconds, between tries of an operation that a scanner may block.
void PauseBriefly(std::uint32_t milliseconds);

/// A number that differs between processes and calls, for names of temporary files.
std::uint32_t UniqueNumber();

} // namespace tonex
