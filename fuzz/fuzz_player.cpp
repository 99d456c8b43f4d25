// Any bytes as the file and as the command line of the small sound player.
#include "tools/player/command_line.h"
#include "tools/player/wav_format.h"

#include <algorithm>
#include <cstdlib>
#include <span>
#include <string>

namespace {

using namespace tonex;
using Bytes = std::span<const std::uint8_t>;

void Require(bool condition) {
    if (!condition) std::abort();
}

bool Read(void* context, std::uint64_t offset, std::uint8_t* bytes, std::uint32_t count) {
    const Bytes& file = *static_cast<Bytes*>(context);
    if (offset > file.size() || count > file.size() - offset) return false;
    std::copy_n(file.begin() + static_cast<std::ptrdiff_t>(offset), count, bytes);
    return true;
}

void TryFile(Bytes file) {
    WavFormat format;
    if (ReadWavFormat({&file, Read, file.size()}, format) != WavFault::None) return;
    Require(format.channels == 1 || format.channels == 2);
    Require(format.bits == 8 || format.bits == 16);
    Require(format.rate >= 1000 && format.rate <= 192000);
    Require(format.frame == format.channels * format.bits / 8);
    Require(format.data_size % format.frame == 0);
    Require(format.data_offset <= file.size() && format.data_size <= file.size() - format.data_offset);
}

void TryCommandLine(const std::wstring& line) {
    const PlayerCommand command = ParsePlayerArguments(line);
    Require(line.find(command.path) != std::wstring::npos);
    Require(command.path.find(L'"') == std::wstring::npos || !line.starts_with(L'"'));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    TryFile({bytes, size});
    TryCommandLine(std::wstring(bytes, bytes + size));
    return 0;
}
