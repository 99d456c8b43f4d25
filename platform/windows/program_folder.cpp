// platform/program_folder.h on Win32.
#include "platform/program_folder.h"

#include "platform/windows/desktop_windows.h"

namespace tonex {

std::wstring ProgramFolder() {
    std::wstring path(MAX_PATH, L'\0');
    for (;;) { // a path that fills the buffer was cut
        const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
        if (length < path.size()) {
            path.resize(length);
            break;
        }
        path.resize(path.size() * 2);
    }
    const std::size_t backslash = path.rfind(L'\\');
    return backslash == std::wstring::npos ? std::wstring() : path.substr(0, backslash);
}

} // namespace tonex
