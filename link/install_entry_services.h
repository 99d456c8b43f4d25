// Reading the registry entry by which the link software is found.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace tonex {

/// The installation folder from the current user's registry, without a trailing backslash; nothing when the
/// key or the value is missing or empty.
std::optional<std::wstring> GetInstallDir();
/// The terminator rule by which the registry's text is cut: `buffer` as queried, `size` as reported.
std::wstring TrimRegistryText(const std::wstring& buffer, std::uint32_t size);

} // namespace tonex
