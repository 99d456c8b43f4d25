#include "tools/sndtool/sndtool.h"

#include "preview/timing_tables.h"
#include "score/snd_file.h"
#include "tools/sndtool/console.h"
#include "tools/sndtool/inputs.h"

#include <algorithm>

namespace tonex {

namespace {

struct Fault {
    std::size_t offset = 0;
    std::string reason; ///< empty when there is none
};

std::string Number(long long value) {
    return std::to_string(value);
}

Fault EntryFault(const SndInput& snd) {
    const int count = CountEntries(snd.list);
    for (int i = 0; i < count; ++i) {
        if (i == kMaxEntries) {
            return {CodeOffsetOf(snd, i) - 1,
                    Number(count) + " entries, a melody has at most " + Number(kMaxEntries)};
        }
        const std::uint16_t code = At(snd.list, i).code;
        if (KindOfFileCode(code) == EntryKind::Foreign) {
            return {CodeOffsetOf(snd, i), "entry " + Number(i + 1) + " has the unknown code " + Number(code)};
        }
    }
    const std::size_t end = CodeOffsetOf(snd, count) + 1; // behind the edit block's end mark
    if (snd.bytes.size() > end)
        return {end, Number(static_cast<long long>(snd.bytes.size() - end)) +
                         " bytes behind the end of the edit block"};
    return {};
}

/// Compares the play block with the one that the entries give in the timing mode that the file states. That
/// mode need not be the cheapest for these entries: the writer chose it for the melody before it was cut.
Fault PlayFault(const TimingTables& tables, const SndInput& snd) {
    const int index = TempoIndexOf(tables, snd.tempo);
    if (index < 0) return {snd.edit_offset + 2, "tempo " + Number(snd.tempo) + " is not in the tempo list"};
    TimingTables stated = tables;
    for (int mode = 0; mode < kTimingModes; ++mode) {
        if (mode != snd.mode) At(At(stated.mode_tempo_bytes, mode), index) = 0;
    }
    if (At(At(stated.mode_tempo_bytes, snd.mode), index) == 0) {
        return {snd.edit_offset,
                "timing mode " + Number(snd.mode) + " can not express tempo " + Number(snd.tempo)};
    }
    const SndEncoding wanted = EncodeSnd(stated, snd.tempo, snd.list);
    if (wanted.result == kSndFull) {
        return {CodeOffsetOf(snd, wanted.entries_written) - 1,
                "entry " + Number(wanted.entries_written + 1) + " does not fit the play block"};
    }
    if (wanted.result != kSndDone) {
        return {CodeOffsetOf(snd, wanted.fault_entry),
                "entry " + Number(wanted.fault_entry + 1) + " is one that no file can hold"};
    }
    const std::size_t both = std::min({snd.edit_offset, snd.bytes.size(), wanted.bytes.size()});
    for (std::size_t i = 0; i < both; ++i) {
        if (snd.bytes[i] == wanted.bytes[i]) continue;
        return {i, "the play block has " + Number(snd.bytes[i]) + " where the entries give " +
                       Number(wanted.bytes[i])};
    }
    return {};
}

} // namespace

int CheckCommand(const Arguments& files) {
    if (!StandardInputOnce(files)) return kExitWrongUsage;
    const TimingTables tables = BuildTimingTables();
    int status = kExitGood;
    for (const std::string& file : files) {
        SndInput snd;
        std::string reason;
        if (!ReadSnd(file, snd, reason)) {
            status = kExitBadInput;
            continue;
        }
        Fault fault = EntryFault(snd);
        if (fault.reason.empty()) fault = PlayFault(tables, snd);
        if (!fault.reason.empty()) {
            ComplainOffset(file, fault.offset, fault.reason);
            status = kExitBadInput;
        } else if (!WriteText(file + ": good\n")) {
            ComplainOfStandardOutput();
            return kExitBadInput;
        }
    }
    return status;
}

} // namespace tonex
