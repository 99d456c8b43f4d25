// The preview window `sndPreview`: plays a WAV file again and again without leaving the editor. The Preview
// command does not open it; whoever has a WAV file at hand may.
#pragma once

#include "platform/sound_devices.h"

#include <string>

namespace tonex {

inline constexpr const wchar_t* kPreviewWindowCaption = L"Veloxa Sound Editor Preview Sound";
inline constexpr const wchar_t* kPreviewPlayCaption = L"Play";
inline constexpr const wchar_t* kPreviewStopCaption = L"Stop";
inline constexpr const wchar_t* kPreviewEndCaption = L"End of preview";

struct PreviewWindow {
    std::wstring wav_path;
    bool Loaded = false;
};

/// The button "Play": starts the sound from its beginning and returns at once.
inline void PlayInPreviewWindow(const PreviewWindow& preview) {
    if (preview.Loaded) PlaySoundFile(preview.wav_path);
}

/// The button "Stop".
inline void StopInPreviewWindow(const PreviewWindow& preview) {
    if (preview.Loaded) PlaySoundFile(L"");
}

/// Loads the window for a WAV file; the sound starts at once.
inline void LoadPreviewWindow(PreviewWindow& preview, const std::wstring& wav_path) {
    preview.wav_path = wav_path;
    preview.Loaded = true;
    PlayInPreviewWindow(preview);
}

/// The button "End of preview" and the close box: stops the sound and unloads the window.
inline void EndPreviewWindow(PreviewWindow& preview) {
    StopInPreviewWindow(preview);
    preview.Loaded = false;
}

} // namespace tonex
