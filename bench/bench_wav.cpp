// Converting the longest melody that the format holds, against writing the same bytes from memory, and
// against sox's tone generator. The files are made in the current folder, so both sides use one file system.
#include "bench/pairs.h"
#include "platform/files.h"
#include "preview/wav_file_services.h"
#include "tests/plain_synthesis.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <unistd.h>
#include <utility>
#include <vector>

namespace {

using namespace tonex;

constexpr int kRecords = 510;
constexpr int kTempoByte = 32;
constexpr std::uint8_t kSixteenUnits = 48;
constexpr int kLowestPitch = 26;
constexpr int kPitches = 49;
constexpr std::size_t kWriteSize = 256 * 1024;

const std::wstring kSnd = L"longest.snd";
const std::wstring kWav = L"longest.wav";
const char* const kPlain = "plain.wav";
const char* const kSox = "sox.wav";

int PitchOf(int record) {
    return kLowestPitch + record * 5 % kPitches;
}

[[noreturn]] void GiveUp(const char* what) {
    std::fprintf(stderr, "bench_wav: %s\n", what);
    std::exit(1);
}

void WriteMelody() {
    std::vector<std::uint8_t> file = {7, 0, kTempoByte, 0};
    for (int i = 0; i < kRecords; ++i)
        file.insert(file.end(), {static_cast<std::uint8_t>(PitchOf(i)), kSixteenUnits});
    file.insert(file.end(), {255, 255});
    RemoveFile(kSnd);
    OutputFilePtr out = CreateOutput(kSnd);
    if (!out || !WriteOutput(*out, file.data(), file.size()) || !CloseOutput(std::move(out)))
        GiveUp("no melody");
}

void Convert() {
    if (sndfile2wavfile(Table(), kSnd, kWav, {}) != 0) GiveUp("the conversion failed");
}

/// What the conversion writes, in memory.
const std::vector<std::uint8_t>& WavBytes() {
    static const std::vector<std::uint8_t> bytes = [] {
        std::vector<std::uint8_t> read;
        RemoveFile(kWav);
        Convert();
        if (!ReadWholeFile(kWav, read, SIZE_MAX) || read.size() != 44 + std::size_t{kRecords} * 176400) {
            GiveUp("the converted file is not what it must be");
        }
        return read;
    }();
    return bytes;
}

void WritePlainly() {
    const std::vector<std::uint8_t>& bytes = WavBytes();
    const int file = open(kPlain, O_WRONLY | O_CREAT | O_EXCL, 0666);
    if (file < 0) GiveUp("no plain file");
    for (std::size_t at = 0; at < bytes.size(); at += kWriteSize) {
        const std::size_t count = std::min(kWriteSize, bytes.size() - at);
        if (write(file, bytes.data() + at, count) != static_cast<ssize_t>(count)) GiveUp("short write");
    }
    if (close(file) != 0) GiveUp("late write error");
}

/// sox makes the tones in one process, one after another: each as long as our note, a quarter of it silent.
const std::string& SoxCommand() {
    static const std::string command = [] {
        std::string text = "sox -D -n -r 22050 -c 1 -b 8 -e unsigned-integer " + std::string(kSox);
        for (int i = 0; i < kRecords; ++i) {
            const int pitch = PitchOf(i);
            const double cycle = At(Table().period, pitch % kPitchClasses);
            const double frequency = 22050.0 * (1 << (pitch / kPitchClasses)) / cycle;
            text += (i > 0 ? " : synth 6 sine " : " synth 6 sine ") + std::to_string(frequency) + " pad 0 2";
        }
        return text;
    }();
    return command;
}

void RunSox() {
    if (std::system(SoxCommand().c_str()) != 0) GiveUp("sox failed");
}

void RemoveOutputs() {
    RemoveFile(kWav);
    unlink(kPlain);
    unlink(kSox);
}

/// The time of one side on a folder without old outputs.
template <typename Work> double TimeOf(const Work& work) {
    RemoveOutputs();
    return bench::MillisecondsOf(work);
}

void BM_ConvertAgainstPlainWrites(benchmark::State& state) {
    WavBytes();
    bench::MeasurePair(
        state, [] { return TimeOf(Convert); }, [] { return TimeOf(WritePlainly); });
}
BENCHMARK(BM_ConvertAgainstPlainWrites)->Iterations(1)->Repetitions(21)->UseManualTime();

void BM_ConvertAgainstSox(benchmark::State& state) {
    bench::MeasurePair(
        state, [] { return TimeOf(Convert); }, [] { return TimeOf(RunSox); });
}
BENCHMARK(BM_ConvertAgainstSox)->Iterations(1)->Repetitions(3)->UseManualTime();

} // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    WriteMelody();
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    RemoveOutputs();
    RemoveFile(kSnd);
    return 0;
}
