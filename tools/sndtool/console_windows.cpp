// Windows: arguments and console text are wide there, and the C library would translate line ends.
#include "tools/sndtool/console.h"

#include <windows.h>

#include <shellapi.h>

namespace tonex {

namespace {

std::wstring WideOf(std::string_view text) {
    const int size = static_cast<int>(text.size());
    const int length = MultiByteToWideChar(CP_UTF8, 0, text.data(), size, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(length > 0 ? length : 0), L'\0');
    if (length > 0) MultiByteToWideChar(CP_UTF8, 0, text.data(), size, wide.data(), length);
    return wide;
}

std::string NarrowOf(std::wstring_view text) {
    const int size = static_cast<int>(text.size());
    const int length = WideCharToMultiByte(CP_UTF8, 0, text.data(), size, nullptr, 0, nullptr, nullptr);
    std::string narrow(static_cast<std::size_t>(length > 0 ? length : 0), '\0');
    if (length > 0)
        WideCharToMultiByte(CP_UTF8, 0, text.data(), size, narrow.data(), length, nullptr, nullptr);
    return narrow;
}

HANDLE HandleOf(Stream stream) {
    return reinterpret_cast<HANDLE>(stream);
}

bool IsConsole(HANDLE handle) {
    DWORD mode = 0;
    return GetConsoleMode(handle, &mode) != 0;
}

/// Text to a console in its own characters, to anything else as UTF-8.
bool WriteTo(HANDLE handle, std::string_view text) {
    if (!IsConsole(handle)) {
        return WriteStream(reinterpret_cast<Stream>(handle),
                           reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
    }
    const std::wstring wide = WideOf(text);
    constexpr std::size_t step = 4096; // a console takes no more than 64 KB at once
    for (std::size_t at = 0; at < wide.size(); at += step) {
        const std::size_t left = wide.size() - at;
        DWORD taken = 0;
        if (!WriteConsoleW(handle, wide.data() + at, static_cast<DWORD>(left < step ? left : step), &taken,
                           nullptr)) {
            return false;
        }
    }
    return true;
}

} // namespace

std::vector<std::string> StartConsole(int, char**) {
    std::vector<std::string> given;
    int count = 0;
    wchar_t** arguments = CommandLineToArgvW(GetCommandLineW(), &count);
    for (int i = 1; i < count; ++i)
        given.push_back(NarrowOf(arguments[i]));
    LocalFree(arguments);
    return given;
}

std::wstring PathOfArgument(const std::string& argument) {
    std::wstring wide = WideOf(argument);
    const DWORD needed = GetFullPathNameW(wide.c_str(), 0, nullptr, nullptr);
    if (needed == 0) return wide;
    std::wstring path(needed, L'\0');
    const DWORD length = GetFullPathNameW(wide.c_str(), needed, path.data(), nullptr);
    if (length == 0 || length >= needed) return wide;
    path.resize(length);
    return path;
}

std::string ArgumentOfPath(const std::wstring& path) {
    return NarrowOf(path);
}

Stream StandardOutput() {
    return reinterpret_cast<Stream>(GetStdHandle(STD_OUTPUT_HANDLE));
}

// NUL, CON and their like: their full path is in the name space of devices.
bool IsStreamPath(const std::wstring& path) {
    return path.compare(0, 4, L"\\\\.\\") == 0;
}

Stream OpenStream(const std::wstring& path) {
    const HANDLE handle = CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                      nullptr, OPEN_EXISTING, 0, nullptr);
    return handle == INVALID_HANDLE_VALUE ? kNoStream : reinterpret_cast<Stream>(handle);
}

bool WriteStream(Stream stream, const std::uint8_t* bytes, std::size_t count) {
    constexpr std::size_t step = 256 * 1024;
    while (count > 0) {
        DWORD taken = 0;
        const DWORD wanted = static_cast<DWORD>(count < step ? count : step);
        if (!WriteFile(HandleOf(stream), bytes, wanted, &taken, nullptr)) return false;
        // A full disk reports success and a short count, so the count decides.
        if (taken != wanted) {
            SetLastError(ERROR_DISK_FULL);
            return false;
        }
        bytes += taken;
        count -= taken;
    }
    return true;
}

bool CloseStream(Stream stream) {
    return CloseHandle(HandleOf(stream)) != 0;
}

bool ReadStandardInput(std::vector<std::uint8_t>& bytes, std::size_t limit) {
    bytes.clear();
    const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
    std::uint8_t block[4096];
    while (bytes.size() <= limit) {
        DWORD count = 0;
        if (!ReadFile(input, block, sizeof block, &count, nullptr)) {
            return GetLastError() == ERROR_BROKEN_PIPE; // how a pipe whose writer is done reports its end
        }
        if (count == 0) return true;
        bytes.insert(bytes.end(), block, block + count);
    }
    return true;
}

bool WriteText(std::string_view text) {
    return WriteTo(GetStdHandle(STD_OUTPUT_HANDLE), text);
}
void WriteErrorText(std::string_view text) {
    WriteTo(GetStdHandle(STD_ERROR_HANDLE), text);
}

bool StandardOutputIsTerminal() {
    return IsConsole(GetStdHandle(STD_OUTPUT_HANDLE));
}
bool StandardErrorIsTerminal() {
    return IsConsole(GetStdHandle(STD_ERROR_HANDLE));
}

} // namespace tonex
