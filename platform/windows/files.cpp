// platform/files.h and platform/refusal.h on Win32. Needs nothing but kernel32, so console programs use it
// too.
#include "platform/files.h"
#include "platform/refusal.h"

#include "link/paths.h"
#include "platform/windows/desktop_windows.h"

#include <algorithm>
#include <cassert>
#include <new>
#include <string_view>

namespace tonex {

static_assert(kAttributeReadOnly == FILE_ATTRIBUTE_READONLY && kAttributeHidden == FILE_ATTRIBUTE_HIDDEN &&
              kAttributeSystem == FILE_ATTRIBUTE_SYSTEM && kAttributeDirectory == FILE_ATTRIBUTE_DIRECTORY &&
              kAttributeArchive == FILE_ATTRIBUTE_ARCHIVE);

struct OutputFile {
    HANDLE handle = INVALID_HANDLE_VALUE;
};

namespace {

// Bytes handed to the system in one call. Larger single calls fail on network folders of old systems.
constexpr DWORD kLargestTransfer = 16 * 1024 * 1024;

// The characters that a listing takes as wildcards, the three of the old system among them.
bool HasWildcard(std::wstring_view path) {
    return path.find_first_of(L"*?<>\"") != std::wstring_view::npos;
}

std::wstring_view WithoutEndingBackslashes(std::wstring_view path) {
    while (!path.empty() && path.back() == L'\\')
        path.remove_suffix(1);
    return path;
}

// Lets an error outlive what is cleaned up behind it.
struct KeepError {
    DWORD error = GetLastError();
    ~KeepError() { SetLastError(error); }
};

bool WriteAll(HANDLE handle, const std::uint8_t* bytes, std::size_t count) {
    while (count > 0) {
        const DWORD part = static_cast<DWORD>(std::min<std::size_t>(count, kLargestTransfer));
        DWORD written = 0;
        if (!WriteFile(handle, bytes, part, &written, nullptr)) return false;
        // A full disk takes a part and reports success, so the count decides.
        if (written != part) {
            SetLastError(ERROR_DISK_FULL);
            return false;
        }
        bytes += part;
        count -= part;
    }
    return true;
}

bool ReadUpTo(HANDLE handle, std::vector<std::uint8_t>& bytes, std::size_t limit) {
    LARGE_INTEGER size = {};
    GetFileSizeEx(handle, &size);
    std::size_t step = std::min<std::size_t>(limit, 64 * 1024);
    // One byte more than the size, so that the first call that reads nothing needs no larger buffer.
    if (size.QuadPart > 0 && size.QuadPart < static_cast<LONGLONG>(kLargestTransfer))
        step = std::min<std::size_t>(limit, static_cast<std::size_t>(size.QuadPart) + 1);

    while (bytes.size() < limit) {
        const std::size_t start = bytes.size();
        const std::size_t wanted =
            std::min({step, limit - start, static_cast<std::size_t>(kLargestTransfer)});
        bytes.resize(start + wanted);
        DWORD read = 0;
        const bool good =
            ReadFile(handle, bytes.data() + start, static_cast<DWORD>(wanted), &read, nullptr) != 0;
        bytes.resize(start + (good ? read : 0));
        if (!good) return false;
        if (read == 0) return true;
    }
    return true;
}

wchar_t UpperCased(wchar_t letter) {
    wchar_t upper = letter;
    LCMapStringW(LOCALE_INVARIANT, LCMAP_UPPERCASE, &letter, 1, &upper, 1);
    return upper;
}

bool SameLetter(wchar_t a, wchar_t b) {
    return UpperCased(a) == UpperCased(b);
}

} // namespace

bool FileExists(const std::wstring& path) {
    SetLastError(ERROR_INVALID_NAME);
    if (path.empty() || HasWildcard(path) || path.ends_with(L'\\')) return false;
    WIN32_FIND_DATAW found;
    const HANDLE listing = FindFirstFileW(path.c_str(), &found);
    if (listing == INVALID_HANDLE_VALUE) return false;
    FindClose(listing);
    return (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

bool FolderExists(const std::wstring& path) {
    const std::optional<std::uint32_t> attributes = AttributesOf(path);
    return attributes && (*attributes & kAttributeDirectory) != 0;
}

std::optional<std::uint32_t> AttributesOf(const std::wstring& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) return std::nullopt;
    return attributes;
}

bool SetAttributesOf(const std::wstring& path, std::uint32_t attributes) {
    // No attribute at all has a value of its own.
    return SetFileAttributesW(path.c_str(), attributes ? attributes : FILE_ATTRIBUTE_NORMAL) != 0;
}

bool RemoveFile(const std::wstring& path) {
    return DeleteFileW(path.c_str()) != 0;
}

bool ReadWholeFile(const std::wstring& path, std::vector<std::uint8_t>& bytes, std::size_t limit) {
    bytes.clear();
    const HANDLE handle =
        CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    nullptr, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
    if (handle == INVALID_HANDLE_VALUE) return false;
    bool good = false;
    try {
        good = ReadUpTo(handle, bytes, limit);
    } catch (const std::bad_alloc&) {
        good = false;
    }
    const KeepError error;
    CloseHandle(handle);
    if (!good) bytes.clear();
    return good;
}

void OutputFileCloser::operator()(OutputFile* file) const {
    CloseHandle(file->handle);
    delete file;
}

OutputFilePtr CreateOutput(const std::wstring& path) {
    const HANDLE handle = CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                                      CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) return nullptr;
    return OutputFilePtr(new OutputFile{handle});
}

bool WriteOutput(OutputFile& file, const std::uint8_t* bytes, std::size_t count) {
    return WriteAll(file.handle, bytes, count);
}

bool PatchOutput(OutputFile& file, std::uint64_t offset, const std::uint8_t* bytes, std::size_t count) {
    LARGE_INTEGER append = {}, target = {}, none = {};
    if (!SetFilePointerEx(file.handle, none, &append, FILE_CURRENT)) return false;
    assert(offset + count <= static_cast<std::uint64_t>(append.QuadPart));
    target.QuadPart = static_cast<LONGLONG>(offset);
    if (!SetFilePointerEx(file.handle, target, nullptr, FILE_BEGIN)) return false;
    const bool written = WriteAll(file.handle, bytes, count);
    return SetFilePointerEx(file.handle, append, nullptr, FILE_BEGIN) && written;
}

bool FlushOutput(OutputFile& file) {
    return FlushFileBuffers(file.handle) != 0;
}

bool CloseOutput(OutputFilePtr file) {
    if (!file) return false;
    OutputFile* const released = file.release();
    const bool closed = CloseHandle(released->handle) != 0;
    delete released;
    return closed;
}

bool RenameOver(const std::wstring& from, const std::wstring& to) {
    return MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != FALSE;
}

std::vector<std::wstring> ListFiles(const std::wstring& folder, const std::wstring& pattern) {
    std::vector<std::wstring> names;
    const std::wstring query = std::wstring(WithoutEndingBackslashes(folder)) + L"\\" + pattern;
    WIN32_FIND_DATAW found;
    const HANDLE listing = FindFirstFileW(query.c_str(), &found);
    if (listing == INVALID_HANDLE_VALUE) return names;
    do {
        // The system compares the short names too, by which "*.snd" also finds "tune.sndx".
        if (!(found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) &&
            MatchesPattern(found.cFileName, pattern, SameLetter))
            names.emplace_back(found.cFileName);
    } while (FindNextFileW(listing, &found));
    FindClose(listing);
    return names;
}

std::optional<std::uint64_t> AgeOfFile(const std::wstring& path) {
    WIN32_FILE_ATTRIBUTE_DATA data;
    if (!GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data)) return std::nullopt;
    if (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) return std::nullopt;
    FILETIME time_now;
    GetSystemTimeAsFileTime(&time_now);
    const auto ticks = [](const FILETIME& time) { // of 100 ns
        return static_cast<std::uint64_t>(time.dwHighDateTime) << 32 | time.dwLowDateTime;
    };
    const std::uint64_t now = ticks(time_now), written = ticks(data.ftLastWriteTime);
    return now > written ? (now - written) / 10'000'000 : 0; // a clock set back makes no file older
}

std::wstring FullPathOf(const std::wstring& path) {
    std::wstring full(MAX_PATH, L'\0');
    const auto room = [&] { return static_cast<DWORD>(full.size()); };
    DWORD length = GetFullPathNameW(path.c_str(), room(), full.data(), nullptr);
    if (length >= room()) { // the size that it wants, its NUL counted
        full.resize(length);
        length = GetFullPathNameW(path.c_str(), room(), full.data(), nullptr);
    }
    if (length == 0 || length >= room()) return path;
    full.resize(length);
    return full;
}

void PauseBriefly(std::uint32_t milliseconds) {
    Sleep(milliseconds);
}

std::uint32_t UniqueNumber() {
    // The start differs between processes, the counter between calls.
    static LONG counter = 0;
    static const std::uint32_t start = [] {
        LARGE_INTEGER fine = {};
        QueryPerformanceCounter(&fine);
        return GetCurrentProcessId() * 2654435761u ^ GetTickCount() * 40503u ^ fine.LowPart;
    }();
    return start + static_cast<std::uint32_t>(InterlockedIncrement(&counter));
}

bool FileIsBusy() {
    switch (GetLastError()) {
    case ERROR_ACCESS_DENIED: // a file that is open without sharing its deletion
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
    case ERROR_USER_MAPPED_FILE: return true;
    default: return false;
    }
}

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
