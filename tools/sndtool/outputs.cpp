#include "tools/sndtool/outputs.h"

#include "platform/files.h"
#include "platform/refusal.h"
#include "score/file_services.h"
#include "tools/sndtool/console.h"
#include "tools/sndtool/inputs.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <set>

namespace tonex {

namespace {

#ifdef _WIN32
constexpr std::string_view kSeparators = "\\/";
constexpr char kSeparator = '\\';
#else
constexpr std::string_view kSeparators = "/";
constexpr char kSeparator = '/';
#endif

bool IsFolder(const std::string& argument) {
    const auto attributes = AttributesOf(PathOfArgument(argument));
    return attributes && (*attributes & kAttributeDirectory) != 0;
}

bool EndsWithSeparator(const std::string& argument) {
    return !argument.empty() && kSeparators.find(argument.back()) != std::string_view::npos;
}

std::string WithExtension(const std::string& argument, const std::string& extension) {
    const std::size_t dot = argument.rfind('.');
    // A dot in a folder's name, or the one that a hidden file's name starts with, begins no extension.
    if (dot == std::string::npos || dot <= NameStartOf(argument)) return argument + extension;
    return argument.substr(0, dot) + extension;
}

bool Refuse(const std::string& reason) {
    WriteErrorText("sndtool: " + reason + "\n");
    return false;
}

/// The output of one input, as an argument; false with the user told.
bool OutputOf(const std::string& input, const std::string& output, bool into_folder,
              const std::string& extension, std::string& result) {
    if (output.empty()) {
        result = input == kStandardStream ? std::string(kStandardStream) : WithExtension(input, extension);
        return true;
    }
    if (!into_folder) {
        result = output;
        return true;
    }
    if (input == kStandardStream) return Refuse("standard input has no name for a file in " + output);
    const std::string name = WithExtension(input.substr(NameStartOf(input)), extension);
    result = EndsWithSeparator(output) ? output + name : output + kSeparator + name;
    return true;
}

/// Where an output is. False, with the user told, when it is a terminal.
bool FindPlace(Job& job) {
    if (job.output == kStandardStream) {
        job.stream = true;
        return !StandardOutputIsTerminal() || Refuse("the result is no text for a terminal: give -o");
    }
    job.path = PathOfArgument(job.output);
    job.stream = IsStreamPath(job.path);
    return true;
}

/// Whether no output would replace an input; tells which does.
bool KeepsInputs(const std::vector<std::string>& inputs, const std::vector<Job>& jobs) {
    std::set<std::wstring> paths;
    for (const std::string& input : inputs) {
        if (input != kStandardStream) paths.insert(PathOfArgument(input));
    }
    for (const Job& job : jobs) {
        if (!job.stream && paths.contains(job.path))
            return Refuse(job.output + " is an input and would be replaced");
    }
    return true;
}

/// Writes to a device, a pipe or standard output.
bool WriteToStream(const Job& job, std::span<const std::uint8_t> bytes, std::string& reason) {
    const Stream stream = job.path.empty() ? StandardOutput() : OpenStream(job.path);
    const bool taken = stream != kNoStream && WriteStream(stream, bytes.data(), bytes.size());
    if (!taken) reason = ReasonOfRefusal();
    if (job.path.empty() || stream == kNoStream) return taken;
    const bool closed = CloseStream(stream);
    if (taken && !closed) reason = ReasonOfRefusal();
    return taken && closed;
}

} // namespace

std::size_t NameStartOf(const std::string& argument) {
    const std::size_t separator = argument.find_last_of(kSeparators);
    return separator == std::string::npos ? 0 : separator + 1;
}

bool GoesToStandardOutput(const std::vector<Job>& jobs) {
    return std::any_of(jobs.begin(), jobs.end(),
                       [](const Job& job) { return job.output == kStandardStream; });
}

bool PlanJobs(const std::vector<std::string>& inputs, const std::string& output, const std::string& extension,
              std::vector<Job>& jobs) {
    if (!StandardInputOnce(inputs)) return false;
    const bool into_folder = !output.empty() && output != kStandardStream && IsFolder(output);
    if (!into_folder && EndsWithSeparator(output)) return Refuse(output + " is no folder");
    if (!into_folder && !output.empty() && inputs.size() > 1) {
        return Refuse("several files need a folder behind -o, and " + output + " is none");
    }
    std::map<std::wstring, std::string> inputs_of; // by the path that each becomes
    for (const std::string& input : inputs) {
        Job job;
        job.input = input;
        if (!OutputOf(input, output, into_folder, extension, job.output)) return false;
        if (!FindPlace(job)) return false;
        if (!job.stream) {
            const auto [other, is_new] = inputs_of.emplace(job.path, input);
            if (!is_new) return Refuse(other->second + " and " + input + " would both become " + job.output);
        }
        jobs.push_back(job);
    }
    return KeepsInputs(inputs, jobs);
}

bool WriteJobOutput(const Job& job, std::span<const std::uint8_t> bytes) {
    std::string reason;
    const bool written =
        job.stream ? WriteToStream(job, bytes, reason) : SaveWholeFile(job.path, bytes, &reason);
    if (!written) ComplainOutput(job, reason);
    return written;
}

void ComplainOutput(const Job& job, const std::string& reason) {
    const std::string name = job.output == kStandardStream ? "standard output" : job.output;
    WriteErrorText("sndtool: " + name + ": can not be written: " + reason + "\n");
}

} // namespace tonex
