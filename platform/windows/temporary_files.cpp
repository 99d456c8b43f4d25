// platform/temporary_files.h on Win32.
#include "platform/temporary_files.h"

#include "platform/windows/desktop_windows.h"

#include <iterator>

namespace tonex {

std::wstring TemporaryFolder() {
    wchar_t folder[256];
    const DWORD length = GetTempPathW(static_cast<DWORD>(std::size(folder)), folder);
    if (length == 0 || length >= std::size(folder)) return {};
    return std::wstring(folder, length);
}

std::wstring ShortNameOf(const std::wstring& path) {
    wchar_t name[MAX_PATH];
    const DWORD length = GetShortPathNameW(path.c_str(), name, static_cast<DWORD>(std::size(name)));
    if (length == 0 || length >= std::size(name)) return path;
    return std::wstring(name, length);
}

std::wstring CreateTemporaryFile(const std::wstring& folder, const std::wstring& prefix) {
    wchar_t path[MAX_PATH + 1] = L"";
    if (GetTempFileNameW(folder.c_str(), prefix.c_str(), 0, path) == 0) return {};
    return path;
}

} // namespace tonex
