// Text between the editor's wide characters and the system's ANSI code page.
#pragma once

#include <string>
#include <string_view>

namespace tonex {

/// In the ANSI code page; characters it lacks become its default character. A double-byte character is two.
std::string ToAnsi(std::wstring_view text);

/// From the ANSI code page.
std::wstring FromAnsi(std::string_view text);

} // namespace tonex
