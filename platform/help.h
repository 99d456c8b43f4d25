// The help that the system can show.
#pragma once

#include <cstdint>
#include <string>

namespace tonex {

/// Opens a help file with a help command and key. False when the system has no reader or no such file.
bool OpenHelpFile(const std::wstring& path, std::uint32_t command, const std::wstring& key);
/// Opens the HTML guide beside the program. False when it can not.
bool OpenHelpGuide();

} // namespace tonex
