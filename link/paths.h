// Path text. Pure; separators are backslashes.
#pragma once

#include <string>
#include <string_view>

namespace tonex {

/// The characters behind the last backslash; the whole text when there is none.
std::wstring FileNameOfPath(std::wstring_view path);
/// The characters up to and including the last backslash; empty when there is none.
std::wstring FolderOfPath(std::wstring_view path);
/// Whether the last four characters of the name equal the extension (with its dot), in any letter case. A
/// shorter name is compared whole.
bool HasExtension(std::wstring_view name, std::wstring_view extension);
/// The path with the extension (".snd") behind it where it has another or none. Dots and blanks at its end,
/// which the system drops, go first.
std::wstring WithExtension(std::wstring_view path, std::wstring_view extension);
/// The path without a double quote at its end and one at its beginning.
std::wstring WithoutQuotes(std::wstring_view path);
/// The path without one backslash at its end.
std::wstring WithoutTrailingBackslash(std::wstring_view path);
/// Whether two characters are the same letter, in any case.
using SameLetterRule = bool (*)(wchar_t, wchar_t);
/// Whether a name matches a pattern of '*' (any run of characters) and '?' (any one).
bool MatchesPattern(std::wstring_view name, std::wstring_view pattern, SameLetterRule same_letter);
/// Upper case of the letters a to z only, as extensions are compared.
std::wstring UpperCase(std::wstring_view text);

} // namespace tonex
