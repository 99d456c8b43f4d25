// Any bytes as a melody to convert: every sample equals the plain model's, whatever the records say.
#include "fuzz/share.h"
#include "preview/synthesis.h"
#include "tests/plain_synthesis.h"

#include <algorithm>
#include <cstdlib>

namespace {

using namespace tonex;

/// Samples a try may last. One of so many tries is a long one at its own tempo; the others are short and at
/// the fastest tempo, so that the fuzzer tries many.
constexpr std::uint64_t kMostSamples = 400000, kMostOfShort = 1000;
constexpr std::uint32_t kLongShare = 512;
constexpr std::uint8_t kFastest = 1;

void Require(bool condition) {
    if (!condition) std::abort();
}

struct Sink {
    std::vector<std::uint8_t> samples;
    std::size_t left = SIZE_MAX; ///< writes that are taken
};

bool Take(void* context, const std::uint8_t* bytes, std::size_t count) {
    auto& sink = *static_cast<Sink*>(context);
    Require(count > 0);
    if (sink.left-- == 0) return false;
    sink.samples.insert(sink.samples.end(), bytes, bytes + count);
    return true;
}

void TryNote(std::uint8_t pitch, std::uint8_t length, std::uint8_t tempo) {
    Sink sink;
    const SynthesisResult result = WriteNoteSamples(Table(), {&sink, Take}, pitch, length, tempo);
    const PlainNote expected = PlainNoteSamples(Table(), pitch, length, tempo);
    Require(result == expected.result);
    if (result != SynthesisResult::Done) return;
    Require(sink.samples == expected.samples);
    Require(sink.samples.size() == NoteSampleCount(length, tempo));

    Sink refusing;
    refusing.left = length % 4U;
    const SynthesisResult refused = WriteNoteSamples(Table(), {&refusing, Take}, pitch, length, tempo);
    Require(refused == SynthesisResult::Done || refused == SynthesisResult::WriteError);
    Require(refusing.samples.size() <= sink.samples.size());
    Require(std::equal(refusing.samples.begin(), refusing.samples.end(), sink.samples.begin()));
}

void Try(std::span<const std::uint8_t> file) {
    PlayBlock block;
    if (!ReadPlayBlock(file, block)) return;
    Require(block.tempo_byte >= 1 && block.tempo_byte <= 32);
    Require(block.records.size() % 2 == 0 && block.records.size() + 6 <= file.size());
    const bool is_long = IsOneOf(kLongShare, file);
    const std::uint64_t most = is_long ? kMostSamples : kMostOfShort;
    const std::uint8_t tempo = is_long ? block.tempo_byte : kFastest;
    std::uint64_t samples = 0;
    for (std::size_t i = 0; i < block.records.size(); i += 2) {
        Require(block.records[i] != 255 || block.records[i + 1] != 255);
        samples += NoteSampleCount(block.records[i + 1], tempo);
        if (samples > most) return;
        TryNote(block.records[i], block.records[i + 1], tempo);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    Try({bytes, size});
    return 0;
}
