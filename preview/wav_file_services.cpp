#include "preview/wav_file_services.h"

#include "platform/files.h"
#include "platform/refusal.h"
#include "score/file_services.h"

#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

namespace tonex {
namespace {

constexpr std::int16_t kDone = 0;
constexpr std::int16_t kNotAMelody = -1;
constexpr std::int16_t kFailed = -4;

/// Far above the longest file that the editor writes; what is behind it is not read.
constexpr std::size_t kMostSndBytes = std::size_t{1024} * 1024;

bool WriteToFile(void* context, const std::uint8_t* bytes, std::size_t count) {
    return WriteOutput(*static_cast<OutputFile*>(context), bytes, count);
}

/// The header with placeholders for both sizes: they stay only where a conversion was stopped from outside.
bool WriteOpenHeader(OutputFile& file) {
    std::array<std::uint8_t, kWavHeaderSize> header = WavHeader(0);
    std::memcpy(&header[4], "SIZE", 4);
    std::memcpy(&header[40], "size", 4);
    return WriteOutput(file, header.data(), header.size());
}

bool WriteNotes(const WaveTable& table, const PlayBlock& block, OutputFile& file,
                const ConversionProgress& progress) {
    const ByteSink sink{&file, WriteToFile};
    for (std::size_t i = 0; i < block.records.size(); i += 2) {
        const SynthesisResult result =
            WriteNoteSamples(table, sink, block.records[i], block.records[i + 1], block.tempo_byte);
        if (result != SynthesisResult::Done) return false;
        if (progress.advance != nullptr) progress.advance(progress.context, static_cast<int>(i / 2 + 1));
    }
    return true;
}

/// Everything up to the last sample. Null when nothing could be created; `written` tells the rest.
OutputFilePtr WriteSamples(const WaveTable& table, const PlayBlock& block, const std::wstring& wav_path,
                           const ConversionProgress& progress, bool& written) {
    DeleteFileIfExists(wav_path);
    OutputFilePtr file = CreateOutput(wav_path);
    if (file == nullptr) return nullptr;
    written = WriteOpenHeader(*file) && WriteNotes(table, block, *file, progress);
    return file;
}

bool PatchSizes(OutputFile& file, std::uint32_t data_size) {
    const std::array<std::uint8_t, kWavHeaderSize> header = WavHeader(data_size);
    return PatchOutput(file, 0, header.data(), header.size());
}

/// Keeps the system's reason before anything else is asked of it.
void KeepReason(std::string* reason) {
    if (reason != nullptr) *reason = ReasonOfRefusal();
}

} // namespace

std::int16_t sndfile2wavfile(const WaveTable& table, const std::wstring& snd_path,
                             const std::wstring& wav_path, const ConversionProgress& progress,
                             std::string* reason) {
    std::vector<std::uint8_t> snd;
    if (!ReadWholeFile(snd_path, snd, kMostSndBytes)) return kNotAMelody;
    PlayBlock block;
    if (!ReadPlayBlock(snd, block)) return kNotAMelody;

    const std::optional<std::uint32_t> data_size = DataSizeOf(block);
    if (!data_size) return kFailed;
    if (progress.begin != nullptr)
        progress.begin(progress.context, static_cast<int>(block.records.size() / 2));
    bool written = false;
    OutputFilePtr file = WriteSamples(table, block, wav_path, progress, written);
    if (!written) KeepReason(reason);
    if (progress.end != nullptr) progress.end(progress.context);
    if (file == nullptr) return kFailed;

    const bool patched = written && PatchSizes(*file, *data_size);
    if (written && !patched) KeepReason(reason);
    const bool closed = CloseOutput(std::move(file));
    if (patched && closed) return kDone;
    if (patched) KeepReason(reason);
    RemoveFile(wav_path);
    return kFailed;
}

std::optional<int> SecondsOfSound(const std::wstring& wav_path) {
    std::vector<std::uint8_t> header;
    if (!ReadWholeFile(wav_path, header, kWavHeaderSize) || header.size() < kWavHeaderSize)
        return std::nullopt;
    const std::uint32_t samples = header[40] | std::uint32_t{header[41]} << 8 |
                                  std::uint32_t{header[42]} << 16 | std::uint32_t{header[43]} << 24;
    const std::array<std::uint8_t, kWavHeaderSize> ours = WavHeader(samples);
    if (!std::equal(header.begin(), header.end(), ours.begin())) return std::nullopt;
    return static_cast<int>(samples / static_cast<std::uint32_t>(kSampleRate)) + 1;
}

} // namespace tonex
