// platform/text.h on Win32.
#include "platform/text.h"

#include "platform/windows/desktop_windows.h"

namespace tonex {

std::string ToAnsi(std::wstring_view text) {
    const int length = static_cast<int>(text.size());
    if (length == 0) return {};
    const int size = WideCharToMultiByte(CP_ACP, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    std::string ansi(static_cast<std::size_t>(size > 0 ? size : 0), '\0');
    WideCharToMultiByte(CP_ACP, 0, text.data(), length, ansi.data(), size, nullptr, nullptr);
    return ansi;
}

std::wstring FromAnsi(std::string_view text) {
    const int length = static_cast<int>(text.size());
    if (length == 0) return {};
    const int size = MultiByteToWideChar(CP_ACP, 0, text.data(), length, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(size > 0 ? size : 0), L'\0');
    MultiByteToWideChar(CP_ACP, 0, text.data(), length, wide.data(), size);
    return wide;
}

} // namespace tonex
