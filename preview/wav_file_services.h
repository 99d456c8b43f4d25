// Converting a SND file to a WAV file on the disk.
#pragma once

#include "preview/synthesis.h"

#include <cstdint>
#include <optional>
#include <string>

namespace tonex {

/// What a conversion tells while it runs. All may be null.
struct ConversionProgress {
    void* context = nullptr;
    void (*begin)(void* context, int note_count) = nullptr;   ///< once, the notes that will be done
    void (*advance)(void* context, int notes_done) = nullptr; ///< after each note
    void (*end)(void* context) = nullptr;                     ///< once, also after a failure
};

/// Converts. 0 on success; -1 when the SND file is missing, its header is rejected or its end mark is missing
/// (no WAV file is then created or touched); -4 when a note can not be computed or the disk refuses (no WAV
/// file is left behind). `reason`, which may be null, then holds what the system gave for one, in UTF-8.
std::int16_t sndfile2wavfile(const WaveTable& table, const std::wstring& snd_path,
                             const std::wstring& wav_path, const ConversionProgress& progress,
                             std::string* reason = nullptr);

/// The length in whole seconds, rounded up, of the sound in a WAV file that the editor wrote; nothing when
/// its header is not the editor's or the file can not be read.
std::optional<int> SecondsOfSound(const std::wstring& wav_path);

} // namespace tonex
