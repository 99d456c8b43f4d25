#include "tools/sndtool/console.h"

#include "platform/posix/utf8.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace tonex {

std::vector<std::string> StartConsole(int count, char** arguments) {
    // A file size limit then shows as a failed write, as a full disk does.
    std::signal(SIGXFSZ, SIG_IGN);
    return count > 0 ? std::vector<std::string>(arguments + 1, arguments + count)
                     : std::vector<std::string>();
}

std::wstring PathOfArgument(const std::string& argument) {
    if (argument.empty()) return {};
    const std::unique_ptr<char, decltype(&std::free)> resolved(realpath(argument.c_str(), nullptr),
                                                               &std::free);
    if (resolved != nullptr) return TextOfBytes(resolved.get());
    if (argument[0] == '/') return TextOfBytes(argument);
    const std::unique_ptr<char, decltype(&std::free)> here(getcwd(nullptr, 0), &std::free);
    return here == nullptr ? TextOfBytes(argument) : TextOfBytes(std::string(here.get()) + "/" + argument);
}

std::string ArgumentOfPath(const std::wstring& path) {
    return BytesOfText(path);
}

Stream StandardOutput() {
    return STDOUT_FILENO;
}

bool IsStreamPath(const std::wstring& path) {
    struct stat status {};
    if (stat(BytesOfText(path).c_str(), &status) != 0) return false;
    return !S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode);
}

Stream OpenStream(const std::wstring& path) {
    const int descriptor = open(BytesOfText(path).c_str(), O_WRONLY | O_CLOEXEC);
    return descriptor < 0 ? kNoStream : descriptor;
}

bool WriteStream(Stream stream, const std::uint8_t* bytes, std::size_t count) {
    while (count > 0) {
        const ssize_t taken = write(static_cast<int>(stream), bytes, count);
        if (taken < 0 && errno == EINTR) continue;
        if (taken == 0) errno = ENOSPC; // took nothing and gave no reason
        if (taken <= 0) return false;
        bytes += taken;
        count -= static_cast<std::size_t>(taken);
    }
    return true;
}

bool CloseStream(Stream stream) {
    return close(static_cast<int>(stream)) == 0;
}

bool ReadStandardInput(std::vector<std::uint8_t>& bytes, std::size_t limit) {
    bytes.clear();
    std::uint8_t block[4096];
    while (bytes.size() <= limit) {
        const ssize_t count = read(STDIN_FILENO, block, sizeof block);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return count == 0;
        bytes.insert(bytes.end(), block, block + count);
    }
    return true;
}

bool WriteText(std::string_view text) {
    return WriteStream(STDOUT_FILENO, reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
}

void WriteErrorText(std::string_view text) {
    WriteStream(STDERR_FILENO, reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
}

bool StandardOutputIsTerminal() {
    return isatty(STDOUT_FILENO) == 1;
}
bool StandardErrorIsTerminal() {
    return isatty(STDERR_FILENO) == 1;
}

} // namespace tonex
