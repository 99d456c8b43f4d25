// The system's folder for temporary files, and how it is spelled.
#pragma once

#include <string>

namespace tonex {

/// The folder, with a backslash at its end; read through a buffer of 256 characters. Empty when the system
/// has none or its name is longer.
std::wstring TemporaryFolder();

/// The short name of a folder or file (parts of eight characters and three); the name it was given where the
/// disk keeps no short ones.
std::wstring ShortNameOf(const std::wstring& path);

/// Creates an empty file with a unique name in a folder and gives its full path: three letters of the prefix,
/// a number, ".tmp". Empty when it can not.
std::wstring CreateTemporaryFile(const std::wstring& folder, const std::wstring& prefix);

} // namespace tonex
