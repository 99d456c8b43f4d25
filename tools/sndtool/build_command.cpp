#include "tools/sndtool/sndtool.h"

#include "preview/timing_tables.h"
#include "score/melody_text.h"
#include "score/snd_file.h"
#include "tools/sndtool/inputs.h"
#include "tools/sndtool/outputs.h"

namespace tonex {

namespace {

/// Tells which entries the play block has no room for. With `fit` they are left out of the file, which is the
/// one that the editor writes for the whole melody.
void ComplainFull(const Job& job, std::string_view text, const SndEncoding& encoding, bool fit) {
    ComplainLine(job.input, LineOfEntry(text, encoding.entries_written),
                 "entry " + std::to_string(encoding.entries_written + 1) + " does not fit the play block; " +
                     (fit ? "left out the last " : "too many by the last ") +
                     std::to_string(encoding.entries_left_out));
}

bool BuildOne(const TimingTables& tables, const Job& job, bool fit) {
    std::vector<std::uint8_t> bytes;
    if (!ReadInput(job.input, bytes)) return false;
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    MelodyTextFault fault;
    const auto melody = ParseMelodyText(tables, text, fault);
    if (!melody) {
        ComplainLine(job.input, fault.line, fault.reason);
        return false;
    }
    const SndEncoding encoding = EncodeSnd(tables, melody->tempo, melody->list);
    if (encoding.result == kSndFull) {
        ComplainFull(job, text, encoding, fit);
        if (!fit) return false;
    }
    if (!IsWritten(encoding.result)) {
        ComplainLine(job.input, LineOfEntry(text, encoding.fault_entry), "no file can hold this entry");
        return false;
    }
    return WriteJobOutput(job, encoding.bytes);
}

} // namespace

int BuildCommand(const Arguments& files, const std::string& output, bool fit) {
    std::vector<Job> jobs;
    if (!PlanJobs(files, output, ".snd", jobs)) return kExitWrongUsage;
    const TimingTables tables = BuildTimingTables();
    int status = kExitGood;
    for (const Job& job : jobs) {
        if (!BuildOne(tables, job, fit)) status = kExitBadInput;
    }
    return status;
}

} // namespace tonex
