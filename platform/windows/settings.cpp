// platform/settings.h in the current user's registry, where the suite's programs keep theirs.
#include "platform/settings.h"

#include "platform/windows/desktop_windows.h"

#include <algorithm>

namespace tonex {

namespace {

std::wstring SectionPath(const std::wstring& application, const std::wstring& section) {
    return L"Software\\VB and VBA Program Settings\\" + application + L"\\" + section;
}

} // namespace

std::wstring ReadSetting(const std::wstring& application, const std::wstring& section,
                         const std::wstring& key, const std::wstring& default_text) {
    HKEY handle = nullptr;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, SectionPath(application, section).c_str(), 0, KEY_QUERY_VALUE,
                      &handle))
        return default_text;
    DWORD type = 0, bytes = 0;
    LONG result = RegQueryValueExW(handle, key.c_str(), nullptr, &type, nullptr, &bytes);
    std::wstring text;
    if (!result && type == REG_SZ) {
        text.resize(bytes / sizeof(wchar_t) + 1);
        bytes = static_cast<DWORD>(text.size() * sizeof(wchar_t));
        result = RegQueryValueExW(handle, key.c_str(), nullptr, &type, reinterpret_cast<BYTE*>(text.data()),
                                  &bytes);
    }
    RegCloseKey(handle);
    if (result || type != REG_SZ) return default_text;
    text.resize(std::min<std::size_t>(text.size(), bytes / sizeof(wchar_t)));
    return text.substr(0, text.find(L'\0')); // the store may or may not hold the ending NUL
}

bool WriteSetting(const std::wstring& application, const std::wstring& section, const std::wstring& key,
                  const std::wstring& text) {
    HKEY handle = nullptr;
    if (RegCreateKeyExW(HKEY_CURRENT_USER, SectionPath(application, section).c_str(), 0, nullptr,
                        REG_OPTION_NON_VOLATILE, KEY_SET_VALUE, nullptr, &handle, nullptr))
        return false;
    const DWORD bytes = static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t));
    const LONG result =
        RegSetValueExW(handle, key.c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()), bytes);
    RegCloseKey(handle);
    return result == ERROR_SUCCESS;
}

} // namespace tonex
