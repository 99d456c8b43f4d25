// The per-user settings store: application, section, key, text value.
#pragma once

#include <string>

namespace tonex {

/// The stored text, or the default when there is none.
std::wstring ReadSetting(const std::wstring& application, const std::wstring& section,
                         const std::wstring& key, const std::wstring& default_text);

/// Stores a text. False when the store refuses.
bool WriteSetting(const std::wstring& application, const std::wstring& section, const std::wstring& key,
                  const std::wstring& text);

} // namespace tonex
