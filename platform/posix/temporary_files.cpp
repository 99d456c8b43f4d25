#include "platform/temporary_files.h"

#include "platform/files.h"
#include "platform/posix/utf8.h"

#include <cstddef>
#include <cstdlib>

namespace tonex {

namespace {

constexpr std::size_t kFolderBuffer = 256; ///< characters, the closing NUL included
constexpr int kTries = 100;                ///< unique names tried before giving up

} // namespace

std::wstring TemporaryFolder() {
    const char* named = std::getenv("TMPDIR");
    std::wstring folder = TextOfBytes(named != nullptr && named[0] != '\0' ? named : "/tmp");
    if (folder.back() != L'/') folder.push_back(L'/');
    if (folder.size() >= kFolderBuffer) return {};
    return folder;
}

std::wstring ShortNameOf(const std::wstring& path) {
    return path; // disks here keep no short names
}

std::wstring CreateTemporaryFile(const std::wstring& folder, const std::wstring& prefix) {
    std::wstring front = folder;
    if (!front.empty() && front.back() != L'/') front.push_back(L'/');
    front += prefix.substr(0, 3);
    for (int i = 0; i < kTries; ++i) {
        std::wstring path = front + std::to_wstring(UniqueNumber()) + L".tmp";
        OutputFilePtr file = CreateOutput(path);
        if (file != nullptr && CloseOutput(std::move(file))) return path;
    }
    return {};
}

} // namespace tonex
