// Wide text and the bytes that the system's calls take. The bytes are UTF-8; a file name may hold bytes that
// are not, and those must come back as they were.
#pragma once

#include <string>
#include <string_view>

namespace tonex {

/// UTF-8 of a text. A character U+DC80 to U+DCFF becomes the single byte 80 to FF that it stands for.
std::string BytesOfText(std::wstring_view text);

/// The text of UTF-8 bytes. A byte that is no part of a character becomes U+DC00 + byte, so that BytesOfText
/// gives the same bytes back, whatever they are.
std::wstring TextOfBytes(std::string_view bytes);

} // namespace tonex
