#include "tools/link/library_calls.h"

#include "link/install_entry_services.h"
#include "platform/link_library.h"

#include <cstring>

namespace tonex {

namespace {

std::wstring Environment(const wchar_t* name) {
    std::wstring text(GetEnvironmentVariableW(name, nullptr, 0), L'\0');
    if (!text.empty())
        text.resize(GetEnvironmentVariableW(name, text.data(), static_cast<DWORD>(text.size())));
    return text;
}

} // namespace

bool Fault(const wchar_t* word) {
    return (L"," + Environment(L"TONEX_LINK_FAULT") + L",").find(L"," + std::wstring(word) + L",") !=
           std::wstring::npos;
}

FolderDevice InstalledDevice() {
    return DeviceOfInstallation(GetInstallDir().value_or(std::wstring()));
}

void RecordCall(const char* function, std::initializer_list<const char*> arguments, int result) {
    const std::wstring path = Environment(L"TONEX_LINK_LOG");
    if (path.empty()) return;
    std::string line = function;
    for (const char* argument : arguments)
        line += std::string(" ") + (argument ? argument : "(null)");
    line += " -> " + std::to_string(result) + "\r\n";
    const HANDLE file = CreateFileW(path.c_str(), FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                    nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return;
    DWORD written = 0;
    WriteFile(file, line.data(), static_cast<DWORD>(line.size()), &written, nullptr);
    CloseHandle(file);
}

int Spoiled(char* buffer, std::int32_t size, int count) {
    if (!buffer || size <= 0) return count;
    const bool full = Fault(L"full");
    if (!full && !Fault(L"nonul")) return count;
    std::memset(buffer + count, 'x', static_cast<std::size_t>(size - count));
    return full ? size : count;
}

int WriteFixedChoice(char* device_path, std::int32_t size) {
    // 83 5C is one katakana letter in code page 932.
    const char* path = Fault(L"dbcs") ? "\\System\\sound\\\x83\x5C\x83\x8D.SND" : "\\System\\sound\\LINK.SND";
    const int length = static_cast<int>(std::strlen(path));
    if (!device_path || length >= size) return 0;
    std::memcpy(device_path, path, static_cast<std::size_t>(length) + 1);
    return Spoiled(device_path, size, length);
}

} // namespace tonex
