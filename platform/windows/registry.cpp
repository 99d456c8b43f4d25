// platform/registry.h on Win32.
#include "platform/registry.h"

#include "platform/windows/desktop_windows.h"

namespace tonex {

struct RegistryKey {
    HKEY handle;
};

namespace {

bool IsText(DWORD type) {
    return type == REG_SZ || type == REG_EXPAND_SZ;
}

} // namespace

void RegistryKeyCloser::operator()(RegistryKey* key) const {
    RegCloseKey(key->handle);
    delete key;
}

RegistryKeyPtr OpenUserKey(const std::wstring& path) {
    HKEY handle = nullptr;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, KEY_QUERY_VALUE, &handle) != ERROR_SUCCESS)
        return nullptr;
    return RegistryKeyPtr(new RegistryKey{handle});
}

std::uint32_t QueryTextSize(RegistryKey& key, const std::wstring& name) {
    DWORD type = 0, bytes = 0;
    if (RegQueryValueExW(key.handle, name.c_str(), nullptr, &type, nullptr, &bytes) != ERROR_SUCCESS)
        return 0;
    return IsText(type) ? bytes / sizeof(wchar_t) : 0;
}

bool QueryText(RegistryKey& key, const std::wstring& name, std::wstring& buffer) {
    DWORD type = 0, bytes = static_cast<DWORD>(buffer.size() * sizeof(wchar_t));
    return RegQueryValueExW(key.handle, name.c_str(), nullptr, &type, reinterpret_cast<BYTE*>(buffer.data()),
                            &bytes) == ERROR_SUCCESS &&
           IsText(type);
}

} // namespace tonex
