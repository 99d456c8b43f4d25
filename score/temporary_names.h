// The names of the temporary files that the editor makes, so that no others are ever taken for its own. Pure.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tonex {

/// The name under which a file is written beside its target: "~snd", at most three digits of `number`,
/// ".tmp". No longer than the shortest names that every folder has room for.
std::wstring SaveName(std::uint32_t number);
/// Whether a name is one that SaveName gives.
bool IsSaveName(std::wstring_view name);

/// The front of the names that the system makes up for uploads.
inline constexpr std::wstring_view kUploadPrefix = L"Snd";
/// Whether a name is one that the system makes up for an upload: the prefix, one to four hexadecimal digits,
/// ".tmp".
bool IsUploadName(std::wstring_view name);

/// Name of a temporary preview file: "$$", hour, minute and second with two digits each, the extension.
/// `second_of_day` is 0 to 86399.
std::wstring PreviewFileName(int second_of_day, std::wstring_view extension);
/// Whether a name is one that PreviewFileName gives, with the extension ".snd" or ".wav".
bool IsPreviewFileName(std::wstring_view name);

} // namespace tonex
