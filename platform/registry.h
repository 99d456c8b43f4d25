// Queries of the current user's registry.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace tonex {

struct RegistryKey;
struct RegistryKeyCloser {
    void operator()(RegistryKey* key) const;
};
using RegistryKeyPtr = std::unique_ptr<RegistryKey, RegistryKeyCloser>;

/// Opens a key below the current user's hive with query access only; null when it is not there.
RegistryKeyPtr OpenUserKey(const std::wstring& path);

/// The size of a text value in characters, its ending NUL counted; 0 when it is missing or no text.
std::uint32_t QueryTextSize(RegistryKey& key, const std::wstring& name);

/// Queries a text value into a buffer that already has its size, ending NUL and all as the store holds them.
/// False when refused.
bool QueryText(RegistryKey& key, const std::wstring& name, std::wstring& buffer);

} // namespace tonex
