// The system's own words for its last error. Needs nothing but kernel32, so console programs use it too.
#include "platform/refusal.h"

#include "platform/windows/desktop_windows.h"

namespace tonex {

std::string ReasonOfRefusal() {
    const DWORD error = GetLastError();
    wchar_t wide[256];
    DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, error,
                                  0, wide, ARRAYSIZE(wide), nullptr);
    while (length > 0 && (wide[length - 1] <= L' ' || wide[length - 1] == L'.'))
        --length;
    if (length == 0) return "error " + std::to_string(error);
    char text[3 * ARRAYSIZE(wide)]; // a unit of UTF-16 takes at most three bytes
    const int size =
        WideCharToMultiByte(CP_UTF8, 0, wide, static_cast<int>(length), text, sizeof text, nullptr, nullptr);
    return {text, static_cast<std::size_t>(size)};
}

} // namespace tonex
