// The registry entry by which the link software is found: the editor reads it, the tools make it or read it
// too.
#pragma once

namespace tonex {

/// The entry's key, below the current user's hive.
inline constexpr const wchar_t* kInstallKey = L"Software\\QMT\\Corvane-e\\PC";
/// The entry's value: the link software's installation folder.
inline constexpr const wchar_t* kInstallValue = L"InstallDir";

} // namespace tonex
