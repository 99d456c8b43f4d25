#include "link/install_entry_services.h"

#include "link/install_entry.h"
#include "link/paths.h"
#include "platform/registry.h"

#include <algorithm>

namespace tonex {

std::wstring TrimRegistryText(const std::wstring& buffer, std::uint32_t size) {
    std::size_t position = std::min<std::size_t>(size, buffer.size());
    while (position > 0 && buffer[position - 1] != L'\0')
        --position;
    return position == 0 ? std::wstring() : buffer.substr(0, position - 1);
}

std::optional<std::wstring> GetInstallDir() {
    const RegistryKeyPtr key = OpenUserKey(kInstallKey);
    if (!key) return std::nullopt;
    const std::uint32_t size = QueryTextSize(*key, kInstallValue);
    if (size <= 1) return std::nullopt;
    std::wstring buffer(std::size_t{size} + 1, L' ');
    if (!QueryText(*key, kInstallValue, buffer)) return std::nullopt;
    return WithoutTrailingBackslash(TrimRegistryText(buffer, size));
}

} // namespace tonex
