#include "tools/sndtool/sndtool.h"

#include "platform/refusal.h"
#include "preview/synthesis.h"
#include "preview/wav_file_services.h"
#include "tools/sndtool/console.h"
#include "tools/sndtool/inputs.h"
#include "tools/sndtool/outputs.h"
#include "tools/sndtool/progress.h"

namespace tonex {

namespace {

constexpr std::size_t kWriteStep = std::size_t{256} * 1024;

/// Samples on their way to a stream; to nowhere when there is none, to try a melody out.
struct SampleWriter {
    Stream stream = kNoStream;
    std::vector<std::uint8_t> waiting;
};

bool Flush(SampleWriter& writer) {
    const bool taken = writer.stream == kNoStream ||
                       WriteStream(writer.stream, writer.waiting.data(), writer.waiting.size());
    writer.waiting.clear();
    return taken;
}

bool TakeSamples(void* context, const std::uint8_t* bytes, std::size_t count) {
    SampleWriter& writer = *static_cast<SampleWriter*>(context);
    if (writer.stream == kNoStream) return true;
    writer.waiting.insert(writer.waiting.end(), bytes, bytes + count);
    return writer.waiting.size() < kWriteStep || Flush(writer);
}

bool KeepSamples(void* context, const std::uint8_t* bytes, std::size_t count) {
    auto& kept = *static_cast<std::vector<std::uint8_t>*>(context);
    kept.insert(kept.end(), bytes, bytes + count);
    return true;
}

/// Synthesises all records. On a fault `record` is the index of the one.
SynthesisResult Synthesise(const WaveTable& table, const PlayBlock& block, const ByteSink& sink,
                           Progress* progress, std::size_t& record) {
    const std::size_t count = block.records.size() / 2;
    if (progress != nullptr) BeginFile(*progress, static_cast<int>(count));
    for (record = 0; record < count; ++record) {
        const SynthesisResult result = WriteNoteSamples(table, sink, block.records[2 * record],
                                                        block.records[2 * record + 1], block.tempo_byte);
        if (result != SynthesisResult::Done) return result;
        if (progress != nullptr) AdvanceFile(*progress, static_cast<int>(record + 1));
    }
    return SynthesisResult::Done;
}

/// Tells why a play block is none. True when it is one.
bool FindPlayBlock(const std::string& input, const std::vector<std::uint8_t>& bytes, PlayBlock& block) {
    if (ReadPlayBlock(bytes, block)) return true;
    const auto wrong = [&](std::size_t offset, const std::string& expected) {
        ComplainOffset(input, offset, "byte " + std::to_string(bytes[offset]) + " where " + expected);
        return false;
    };
    if (bytes.size() > 0 && bytes[0] != 7) return wrong(0, "a SND file has 7");
    if (bytes.size() > 1 && bytes[1] != 0) return wrong(1, "a SND file has 0");
    if (bytes.size() > 2 && (bytes[2] < 1 || bytes[2] > 32)) return wrong(2, "a tempo byte 1 to 32 stands");
    if (bytes.size() > 3 && bytes[3] != 0) return wrong(3, "a SND file has 0");
    ComplainOffset(input, bytes.size(), "the file ends before the end of the play block");
    return false;
}

/// Tells whether every record can be played. Runs the synthesis to nowhere.
bool CanBePlayed(const WaveTable& table, const std::string& input, const PlayBlock& block) {
    SampleWriter nowhere;
    std::size_t record = 0;
    const auto result = Synthesise(table, block, {&nowhere, TakeSamples}, nullptr, record);
    if (result == SynthesisResult::Done) return true;
    ComplainOffset(input, 4 + 2 * record,
                   "record " + std::to_string(record + 1) +
                       (result == SynthesisResult::PhaseError ? " is too high to be played"
                                                              : " is too long to be played"));
    return false;
}

/// The melody to a device, a pipe or standard output. All that can go wrong with the melody was tried before.
bool ConvertToStream(const WaveTable& table, const Job& job, const PlayBlock& block, std::uint32_t data_size,
                     Progress& progress) {
    SampleWriter writer;
    writer.stream = job.path.empty() ? StandardOutput() : OpenStream(job.path);
    const auto header = WavHeader(data_size);
    std::size_t record = 0;
    bool written =
        writer.stream != kNoStream && TakeSamples(&writer, header.data(), header.size()) &&
        Synthesise(table, block, {&writer, TakeSamples}, &progress, record) == SynthesisResult::Done &&
        Flush(writer);
    std::string reason = written ? "" : ReasonOfRefusal();
    if (!job.path.empty() && writer.stream != kNoStream && !CloseStream(writer.stream) && written) {
        reason = ReasonOfRefusal();
        written = false;
    }
    HideProgress(progress);
    if (!written) ComplainOutput(job, reason);
    return written;
}

/// The melody of standard input to a file.
bool ConvertInMemory(const WaveTable& table, const Job& job, const PlayBlock& block, std::uint32_t data_size,
                     Progress& progress) {
    const auto header = WavHeader(data_size);
    std::vector<std::uint8_t> wav(header.begin(), header.end());
    wav.reserve(kWavHeaderSize + data_size);
    std::size_t record = 0;
    if (Synthesise(table, block, {&wav, KeepSamples}, &progress, record) != SynthesisResult::Done)
        return false;
    HideProgress(progress);
    return WriteJobOutput(job, wav);
}

bool ConvertFile(const WaveTable& table, const Job& job, Progress& progress) {
    ConversionProgress steps;
    steps.context = &progress;
    steps.begin = [](void* context, int notes) { BeginFile(*static_cast<Progress*>(context), notes); };
    steps.advance = [](void* context, int done) { AdvanceFile(*static_cast<Progress*>(context), done); };
    std::string reason;
    const bool done = sndfile2wavfile(table, PathOfArgument(job.input), job.path, steps, &reason) == 0;
    HideProgress(progress);
    if (!done) ComplainOutput(job, reason);
    return done;
}

bool ConvertOne(const WaveTable& table, const Job& job, Progress& progress) {
    std::vector<std::uint8_t> bytes;
    if (!ReadInput(job.input, bytes)) return false;
    PlayBlock block;
    if (!FindPlayBlock(job.input, bytes, block)) return false;
    const std::optional<std::uint32_t> data_size = DataSizeOf(block);
    if (!data_size) {
        Complain(job.input, "is too long for a WAV file");
        return false;
    }
    if (!CanBePlayed(table, job.input, block)) return false;
    if (job.stream) return ConvertToStream(table, job, block, *data_size, progress);
    if (job.input == kStandardStream) return ConvertInMemory(table, job, block, *data_size, progress);
    return ConvertFile(table, job, progress);
}

} // namespace

int WavCommand(const Arguments& files, const std::string& output) {
    std::vector<Job> jobs;
    if (!PlanJobs(files, output, ".wav", jobs)) return kExitWrongUsage;
    WaveTable table;
    BuildWaveTable(table, kSampleRate);
    Progress progress = StartProgress(jobs.size());
    int status = kExitGood;
    for (const Job& job : jobs) {
        HideProgress(progress); // what a file has to complain of stands on a line of its own
        if (!ConvertOne(table, job, progress)) status = kExitBadInput;
        EndFile(progress);
    }
    return status;
}

} // namespace tonex
