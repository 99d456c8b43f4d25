// Files on a POSIX system. Paths use forward slashes. A name that starts with a dot counts as hidden; a file
// that nobody may write counts as read-only; an ordinary file always carries the archive attribute.
#include "platform/files.h"
#include "platform/refusal.h"

#include "link/paths.h"
#include "platform/posix/utf8.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <cwctype>
#include <dirent.h>
#include <fcntl.h>
#include <string_view>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tonex {

struct OutputFile {
    int descriptor;
    std::uint64_t size; ///< bytes appended so far
};

namespace {

constexpr mode_t kAnyWrite = S_IWUSR | S_IWGRP | S_IWOTH;
constexpr std::size_t kReadStep = std::size_t{64} * 1024;

/// The path as the system takes it; false for a path that no system call could be given.
bool ToSystemPath(const std::wstring& path, std::string& bytes) {
    bytes = BytesOfText(path);
    return !bytes.empty() && bytes.find('\0') == std::string::npos;
}

bool StatusOf(const std::wstring& path, struct stat& status) {
    std::string bytes;
    return ToSystemPath(path, bytes) && stat(bytes.c_str(), &status) == 0;
}

/// The name behind the last slash; slashes at the end of the path do not count.
std::wstring NameOf(std::wstring_view path) {
    while (path.size() > 1 && path.back() == L'/')
        path.remove_suffix(1);
    const std::size_t slash = path.rfind(L'/');
    return std::wstring(slash == std::wstring_view::npos || path.size() == 1 ? path : path.substr(slash + 1));
}

/// Closes a descriptor when it goes out of sight.
struct Descriptor {
    int number;
    ~Descriptor() {
        if (number >= 0) close(number);
    }
};

int OpenFor(const std::string& path, int flags) {
    int descriptor = -1;
    do
        descriptor = open(path.c_str(), flags | O_CLOEXEC, 0666);
    while (descriptor < 0 && errno == EINTR);
    return descriptor;
}

bool WriteAll(int descriptor, const std::uint8_t* bytes, std::size_t count, std::int64_t offset) {
    while (count > 0) {
        const ssize_t taken = offset < 0 ? write(descriptor, bytes, count)
                                         : pwrite(descriptor, bytes, count, static_cast<off_t>(offset));
        if (taken < 0 && errno == EINTR) continue;
        if (taken == 0) errno = ENOSPC; // took nothing and gave no reason
        if (taken <= 0) return false;
        bytes += taken;
        count -= static_cast<std::size_t>(taken);
        if (offset >= 0) offset += taken;
    }
    return true;
}

bool SameLetter(wchar_t a, wchar_t b) {
    return std::towlower(static_cast<std::wint_t>(a)) == std::towlower(static_cast<std::wint_t>(b));
}

} // namespace

bool FileExists(const std::wstring& path) {
    const auto attributes = AttributesOf(path);
    return attributes && (*attributes & kAttributeDirectory) == 0;
}

bool FolderExists(const std::wstring& path) {
    const auto attributes = AttributesOf(path);
    return attributes && (*attributes & kAttributeDirectory) != 0;
}

std::optional<std::uint32_t> AttributesOf(const std::wstring& path) {
    struct stat status {};
    if (!StatusOf(path, status)) return std::nullopt;
    std::uint32_t attributes = 0;
    if ((status.st_mode & kAnyWrite) == 0) attributes |= kAttributeReadOnly;
    if (S_ISDIR(status.st_mode)) attributes |= kAttributeDirectory;
    if (S_ISREG(status.st_mode)) attributes |= kAttributeArchive;
    const std::wstring name = NameOf(path);
    if (name.size() > 1 && name[0] == L'.' && name != L"..") attributes |= kAttributeHidden;
    return attributes;
}

// Only the read-only attribute can be set here: the others follow from the name and kind of the file.
bool SetAttributesOf(const std::wstring& path, std::uint32_t attributes) {
    std::string bytes;
    struct stat status {};
    if (!ToSystemPath(path, bytes) || stat(bytes.c_str(), &status) != 0) return false;
    const mode_t permissions = status.st_mode & 07777;
    mode_t wanted = permissions;
    if ((attributes & kAttributeReadOnly) != 0) {
        wanted &= ~kAnyWrite;
    } else if ((permissions & kAnyWrite) == 0) {
        wanted |= S_IWUSR;
    }
    return wanted == permissions || chmod(bytes.c_str(), wanted) == 0;
}

bool RemoveFile(const std::wstring& path) {
    std::string bytes;
    return ToSystemPath(path, bytes) && unlink(bytes.c_str()) == 0;
}

bool ReadWholeFile(const std::wstring& path, std::vector<std::uint8_t>& bytes, std::size_t limit) {
    bytes.clear();
    std::string name;
    if (!ToSystemPath(path, name)) return false;
    const Descriptor file{OpenFor(name, O_RDONLY)};
    if (file.number < 0) return false;
    while (bytes.size() < limit) {
        const std::size_t filled = bytes.size();
        const std::size_t step = limit - filled < kReadStep ? limit - filled : kReadStep;
        bytes.resize(filled + step);
        const ssize_t count = read(file.number, bytes.data() + filled, step);
        bytes.resize(filled + (count > 0 ? static_cast<std::size_t>(count) : 0));
        if (count == 0) return true;
        if (count < 0 && errno != EINTR) return false;
    }
    return true;
}

void OutputFileCloser::operator()(OutputFile* file) const {
    if (file == nullptr) return;
    close(file->descriptor);
    delete file;
}

OutputFilePtr CreateOutput(const std::wstring& path) {
    std::string bytes;
    if (!ToSystemPath(path, bytes)) return nullptr;
    const int descriptor = OpenFor(bytes, O_WRONLY | O_CREAT | O_EXCL);
    if (descriptor < 0) return nullptr;
    return OutputFilePtr(new OutputFile{descriptor, 0});
}

bool WriteOutput(OutputFile& file, const std::uint8_t* bytes, std::size_t count) {
    if (!WriteAll(file.descriptor, bytes, count, -1)) return false;
    file.size += count;
    return true;
}

bool PatchOutput(OutputFile& file, std::uint64_t offset, const std::uint8_t* bytes, std::size_t count) {
    if (offset > file.size || count > file.size - offset) return false;
    return WriteAll(file.descriptor, bytes, count, static_cast<std::int64_t>(offset));
}

bool FlushOutput(OutputFile& file) {
    int result = 0;
    do
        result = fsync(file.descriptor);
    while (result != 0 && errno == EINTR);
    return result == 0;
}

bool CloseOutput(OutputFilePtr file) {
    if (file == nullptr) return false;
    const int descriptor = file->descriptor;
    delete file.release();
    // After EINTR the descriptor is gone all the same, and what was written had been flushed where it
    // matters.
    return close(descriptor) == 0 || errno == EINTR;
}

bool RenameOver(const std::wstring& from, const std::wstring& to) {
    std::string old_name;
    std::string new_name;
    if (!ToSystemPath(from, old_name) || !ToSystemPath(to, new_name)) return false;
    if (std::rename(old_name.c_str(), new_name.c_str()) != 0) return false;
    // The rename itself reaches the disk with the folder. Whoever looks sees it already, so a folder that can
    // not be flushed is no failure.
    const std::size_t slash = new_name.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : new_name.substr(0, slash + 1);
    const Descriptor opened{OpenFor(folder, O_RDONLY | O_DIRECTORY)};
    if (opened.number >= 0) fsync(opened.number);
    return true;
}

std::vector<std::wstring> ListFiles(const std::wstring& folder, const std::wstring& pattern) {
    std::vector<std::wstring> names;
    std::string bytes;
    if (!ToSystemPath(folder, bytes)) return names;
    DIR* listing = opendir(bytes.c_str());
    if (listing == nullptr) return names;
    while (const dirent* entry = readdir(listing)) {
        struct stat status {};
        if (fstatat(dirfd(listing), entry->d_name, &status, 0) != 0 || !S_ISREG(status.st_mode)) continue;
        std::wstring name = TextOfBytes(entry->d_name);
        if (MatchesPattern(name, pattern, SameLetter)) names.push_back(std::move(name));
    }
    closedir(listing);
    return names;
}

std::optional<std::uint64_t> AgeOfFile(const std::wstring& path) {
    struct stat status {};
    if (!StatusOf(path, status)) return std::nullopt;
    const std::time_t now = std::time(nullptr);
    return now > status.st_mtime ? static_cast<std::uint64_t>(now - status.st_mtime) : 0;
}

void PauseBriefly(std::uint32_t milliseconds) {
    timespec left{};
    left.tv_sec = static_cast<std::time_t>(milliseconds / 1000);
    left.tv_nsec = static_cast<long>(milliseconds % 1000) * 1000000;
    while (nanosleep(&left, &left) != 0 && errno == EINTR) {
    }
}

std::uint32_t UniqueNumber() {
    std::uint32_t number = 0;
    if (getrandom(&number, sizeof number, 0) == static_cast<ssize_t>(sizeof number)) return number;
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<std::uint32_t>(now.tv_nsec) ^ (static_cast<std::uint32_t>(getpid()) << 16);
}

bool FileIsBusy() {
    return errno == EBUSY || errno == ETXTBSY;
}

std::string ReasonOfRefusal() {
    return std::strerror(errno);
}

} // namespace tonex
