// What probe.exe and the part that works inside the watched program agree on, and the writing of JSON.
#pragma once

#include <windows.h>

#include <string>

namespace probe {

/// Sent to the watched window with one of the requests in wParam and its number in lParam.
inline constexpr wchar_t kMessageName[] = L"TonexProbeRequest";
/// Shared memory with the answer: a 32-bit length and so many bytes of UTF-8.
inline constexpr wchar_t kAnswerName[] = L"TonexProbeAnswer";
inline constexpr DWORD kAnswerSize = 1 << 20;

enum Request : WPARAM {
    kMenu = 1,
    kToolbar,
    kAccessible,
    kCombo,
    kPressItem,
    kFocusItem,
    kInputMethod,
    kTextSize,
    kMessageFont,
    kFailCall,
    kFailCallsFrom,
    kProcess,
    kPending
};

/// UTF-8 of wide text.
inline std::string Utf8(const wchar_t* text, int length) {
    if (length <= 0) {
        return {};
    }
    const int size = WideCharToMultiByte(CP_UTF8, 0, text, length, nullptr, 0, nullptr, nullptr);
    std::string result(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text, length, result.data(), size, nullptr, nullptr);
    return result;
}

/// A text as a JSON string.
inline std::string Quoted(const wchar_t* text, int length) {
    std::string result = "\"";
    for (const char c : Utf8(text, length)) {
        if (c == '"' || c == '\\') {
            result += '\\';
            result += c;
        } else if (static_cast<unsigned char>(c) < 0x20) {
            static constexpr char kDigits[] = "0123456789abcdef";
            result += "\\u00";
            result += kDigits[(c >> 4) & 15];
            result += kDigits[c & 15];
        } else {
            result += c;
        }
    }
    return result + "\"";
}

inline std::string Quoted(const std::wstring& text) {
    return Quoted(text.c_str(), static_cast<int>(text.size()));
}

inline std::string Bool(bool value) {
    return value ? "true" : "false";
}

inline std::string RectText(const RECT& rect) {
    return "[" + std::to_string(rect.left) + "," + std::to_string(rect.top) + "," +
           std::to_string(rect.right) + "," + std::to_string(rect.bottom) + "]";
}

} // namespace probe
