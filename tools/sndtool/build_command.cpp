#include "tools/sndtool/sndtool.h"

#include "preview/timing_tables.h"
#include "score/melody_text.h"
#include "score/snd_file.h"
#include "tools/sndtool/inputs.h"
#include "tools/sndtool/outputs.h"

namespace tonex {

namespace {

/// Cuts a melody until it fits. The timing mode is chosen by the entries that are left, so that the file is
/// the one that those entries give by themselves.
SndEncoding EncodeWhatFits(const TimingTables& tables, Melody& melody) {
    SndEncoding encoding = EncodeSnd(tables, melody.tempo, melody.list);
    while (encoding.result == kSndFull) {
        melody.list[static_cast<std::size_t>(encoding.entries_written)] = FileEntry{};
        encoding = EncodeSnd(tables, melody.tempo, melody.list);
    }
    return encoding;
}

bool BuildOne(const TimingTables& tables, const Job& job, bool fit) {
    std::vector<std::uint8_t> bytes;
    if (!ReadInput(job.input, bytes)) return false;
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    MelodyTextFault fault;
    auto melody = ParseMelodyText(tables, text, fault);
    if (!melody) {
        ComplainLine(job.input, fault.line, fault.reason);
        return false;
    }
    SndEncoding encoding = EncodeSnd(tables, melody->tempo, melody->list);
    if (encoding.result == kSndFull) {
        const int count = CountEntries(melody->list);
        if (fit) encoding = EncodeWhatFits(tables, *melody);
        const int left_out = count - encoding.entries_written;
        const int line = LineOfEntry(text, encoding.entries_written);
        ComplainLine(job.input, line,
                     "entry " + std::to_string(encoding.entries_written + 1) +
                         " does not fit the play block; " +
                         (fit ? "left out the last " : "too many by the last ") + std::to_string(left_out));
        if (!fit) return false;
    }
    if (encoding.result != kSndDone) {
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
