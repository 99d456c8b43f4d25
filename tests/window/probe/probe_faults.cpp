#include "probe_faults.h"

#include <windows.h>

#include <cstring>

namespace probe {
namespace {

long calls = 0, failing = -1;
bool failing_for_good = false;
const char* failed = ""; ///< the first call that failed since the last order

/// Counts a call of a function. Whether it is to fail, with this error.
bool Fails(const char* function, DWORD error) {
    const long number = calls++;
    if (failing < 0 || number < failing || (number > failing && !failing_for_good)) return false;
    if (number == failing) failed = function;
    SetLastError(error);
    return true;
}

// The program's imports lead here; what does not fail goes on to the system.

HANDLE WINAPI FaultyCreateFile(LPCWSTR path, DWORD access, DWORD share, SECURITY_ATTRIBUTES* security,
                               DWORD disposition, DWORD flags, HANDLE pattern) {
    if (Fails("CreateFileW", ERROR_ACCESS_DENIED)) return INVALID_HANDLE_VALUE;
    return CreateFileW(path, access, share, security, disposition, flags, pattern);
}
BOOL WINAPI FaultyWriteFile(HANDLE file, LPCVOID bytes, DWORD count, DWORD* written, OVERLAPPED* overlapped) {
    return !Fails("WriteFile", ERROR_DISK_FULL) && WriteFile(file, bytes, count, written, overlapped);
}
BOOL WINAPI FaultyReadFile(HANDLE file, LPVOID bytes, DWORD count, DWORD* read, OVERLAPPED* overlapped) {
    return !Fails("ReadFile", ERROR_CRC) && ReadFile(file, bytes, count, read, overlapped);
}
BOOL WINAPI FaultyFlushFileBuffers(HANDLE file) {
    return !Fails("FlushFileBuffers", ERROR_WRITE_FAULT) && FlushFileBuffers(file);
}
BOOL WINAPI FaultySetFilePointerEx(HANDLE file, LARGE_INTEGER distance, LARGE_INTEGER* place, DWORD method) {
    return !Fails("SetFilePointerEx", ERROR_SEEK) && SetFilePointerEx(file, distance, place, method);
}
BOOL WINAPI FaultyMoveFileEx(LPCWSTR from, LPCWSTR to, DWORD flags) {
    return !Fails("MoveFileExW", ERROR_ACCESS_DENIED) && MoveFileExW(from, to, flags);
}
BOOL WINAPI FaultyDeleteFile(LPCWSTR path) {
    return !Fails("DeleteFileW", ERROR_SHARING_VIOLATION) && DeleteFileW(path);
}
DWORD WINAPI FaultyGetFileAttributes(LPCWSTR path) {
    return Fails("GetFileAttributesW", ERROR_ACCESS_DENIED) ? INVALID_FILE_ATTRIBUTES
                                                            : GetFileAttributesW(path);
}
BOOL WINAPI FaultySetFileAttributes(LPCWSTR path, DWORD attributes) {
    return !Fails("SetFileAttributesW", ERROR_ACCESS_DENIED) && SetFileAttributesW(path, attributes);
}
HANDLE WINAPI FaultyFindFirstFile(LPCWSTR path, WIN32_FIND_DATAW* found) {
    return Fails("FindFirstFileW", ERROR_ACCESS_DENIED) ? INVALID_HANDLE_VALUE : FindFirstFileW(path, found);
}
UINT WINAPI FaultyGetTempFileName(LPCWSTR folder, LPCWSTR prefix, UINT unique, LPWSTR path) {
    return Fails("GetTempFileNameW", ERROR_DIRECTORY) ? 0 : GetTempFileNameW(folder, prefix, unique, path);
}

struct Replacement {
    const char* name;
    void* function;
};

template <class Function> void* Address(Function* function) {
    return reinterpret_cast<void*>(function);
}

const Replacement kReplacements[] = {
    {"CreateFileW", Address(FaultyCreateFile)},
    {"WriteFile", Address(FaultyWriteFile)},
    {"ReadFile", Address(FaultyReadFile)},
    {"FlushFileBuffers", Address(FaultyFlushFileBuffers)},
    {"SetFilePointerEx", Address(FaultySetFilePointerEx)},
    {"MoveFileExW", Address(FaultyMoveFileEx)},
    {"DeleteFileW", Address(FaultyDeleteFile)},
    {"GetFileAttributesW", Address(FaultyGetFileAttributes)},
    {"SetFileAttributesW", Address(FaultySetFileAttributes)},
    {"FindFirstFileW", Address(FaultyFindFirstFile)},
    {"GetTempFileNameW", Address(FaultyGetTempFileName)},
};

void* ReplacementOf(const char* name) {
    for (const Replacement& replacement : kReplacements)
        if (std::strcmp(replacement.name, name) == 0) return replacement.function;
    return nullptr;
}

void Write(ULONG_PTR& slot, void* function) {
    DWORD old = 0;
    VirtualProtect(&slot, sizeof slot, PAGE_READWRITE, &old);
    slot = reinterpret_cast<ULONG_PTR>(function);
    VirtualProtect(&slot, sizeof slot, old, &old);
}

/// One library's part of the program's import table: names beside the addresses that calls go to.
void ReplaceIn(const char* base, const IMAGE_IMPORT_DESCRIPTOR& library) {
    const auto* name = reinterpret_cast<const IMAGE_THUNK_DATA*>(base + library.OriginalFirstThunk);
    auto* address = reinterpret_cast<IMAGE_THUNK_DATA*>(const_cast<char*>(base) + library.FirstThunk);
    for (; name->u1.AddressOfData != 0; ++name, ++address) {
        if (IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal)) continue;
        const auto* entry = reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(base + name->u1.AddressOfData);
        if (void* const function = ReplacementOf(reinterpret_cast<const char*>(entry->Name)))
            Write(address->u1.Function, function);
    }
}

void ReplaceImports() {
    const char* base = reinterpret_cast<const char*>(GetModuleHandleW(nullptr));
    const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    const DWORD imports = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    const auto* library = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + imports);
    for (; library->Name != 0; ++library)
        ReplaceIn(base, *library);
}

/// The hook that brought this library in goes again, but the import table leads here from now on.
void StayLoaded() {
    HMODULE self = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                       reinterpret_cast<LPCWSTR>(&calls), &self);
}

} // namespace

Failure OrderFailure(long number, bool for_good) {
    static bool replaced = false;
    if (!replaced) {
        StayLoaded();
        ReplaceImports();
        replaced = true;
    }
    const Failure before = {calls, failed};
    calls = 0;
    failed = "";
    failing = number;
    failing_for_good = for_good;
    return before;
}

} // namespace probe
