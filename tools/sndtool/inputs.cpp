#include "tools/sndtool/inputs.h"

#include "platform/files.h"
#include "platform/refusal.h"
#include "score/snd_file.h"
#include "tools/sndtool/console.h"

#include <algorithm>

namespace tonex {

namespace {

/// Far above any melody, as a file or as text with comments.
constexpr std::size_t kLargestInput = std::size_t{16} * 1024 * 1024;

std::string NameOf(const std::string& argument) {
    return argument == kStandardStream ? "standard input" : argument;
}

/// Reads; on failure gives the reason, otherwise an empty text.
std::string TryReadInput(const std::string& argument, std::vector<std::uint8_t>& bytes) {
    if (argument == kStandardStream) {
        if (!ReadStandardInput(bytes, kLargestInput)) return "can not be read";
    } else {
        const std::wstring path = PathOfArgument(argument);
        const auto attributes = AttributesOf(path);
        if (!attributes) return "no such file";
        if ((*attributes & kAttributeDirectory) != 0) return "is a folder";
        if (!ReadWholeFile(path, bytes, kLargestInput + 1)) return "can not be read";
    }
    return bytes.size() > kLargestInput ? "is larger than any melody" : "";
}

} // namespace

void Complain(const std::string& argument, const std::string& reason) {
    WriteErrorText("sndtool: " + NameOf(argument) + ": " + reason + "\n");
}

void ComplainOffset(const std::string& argument, std::size_t offset, const std::string& reason) {
    Complain(argument, "offset " + std::to_string(offset) + ": " + reason);
}

void ComplainLine(const std::string& argument, int line, const std::string& reason) {
    Complain(argument, "line " + std::to_string(line) + ": " + reason);
}

void ComplainOfStandardOutput() {
    Complain("standard output", "can not be written: " + ReasonOfRefusal());
}

bool StandardInputOnce(const std::vector<std::string>& arguments) {
    if (std::count(arguments.begin(), arguments.end(), kStandardStream) <= 1) return true;
    WriteErrorText("sndtool: standard input can be read only once\n");
    return false;
}

bool ReadInput(const std::string& argument, std::vector<std::uint8_t>& bytes, std::string* reason) {
    const std::string found = TryReadInput(argument, bytes);
    if (!found.empty()) Complain(argument, found);
    if (reason != nullptr) *reason = found;
    return found.empty();
}

bool ReadSnd(const std::string& argument, SndInput& snd, std::string& reason) {
    reason = TryReadInput(argument, snd.bytes);
    if (!reason.empty()) {
        Complain(argument, reason);
        return false;
    }
    SndFault fault;
    if (DecodeSnd(snd.bytes, snd.tempo, snd.list, &snd.mode, &fault) != kSndDone) {
        reason = "offset " + std::to_string(fault.offset) + ": " + fault.reason;
        Complain(argument, reason);
        return false;
    }
    // The decoder has seen the play block's end mark, so this finds it too.
    PlayBlock block;
    if (!ReadPlayBlock(snd.bytes, block)) return false;
    constexpr std::size_t header_and_end_mark = 6;
    snd.edit_offset = block.records.size() + header_and_end_mark;
    return true;
}

std::size_t CodeOffsetOf(const SndInput& snd, int entry) {
    return snd.edit_offset + 4 + 2 * static_cast<std::size_t>(entry) + 1;
}

} // namespace tonex
