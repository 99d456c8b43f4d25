// Where a command's files go.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace tonex {

/// What becomes of one input.
struct Job {
    std::string input;   ///< the argument; "-" is standard input
    std::string output;  ///< the argument it amounts to; "-" is standard output
    std::wstring path;   ///< absolute path of the output; empty for standard output
    bool stream = false; ///< standard output, a device or a pipe: written in place
};

/// Works out the outputs: beside each input with another extension, or as `output` says. False, with the user
/// told, when the arguments make no sense together.
bool PlanJobs(const std::vector<std::string>& inputs, const std::string& output, const std::string& extension,
              std::vector<Job>& jobs);

/// Where the file name starts in an argument.
std::size_t NameStartOf(const std::string& argument);

/// Whether one of the jobs writes to standard output.
bool GoesToStandardOutput(const std::vector<Job>& jobs);

/// Writes a job's output whole: a file is replaced in one step. False, with the user told, when it could not.
bool WriteJobOutput(const Job& job, std::span<const std::uint8_t> bytes);

/// Tells that a job's output could not be written, and the reason.
void ComplainOutput(const Job& job, const std::string& reason);

} // namespace tonex
