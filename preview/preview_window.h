// The preview window `sndPreview`: plays a WAV file again and again without leaving the editor. The Preview
// command does not open it; whoever has a WAV file at hand may.
#pragma once

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

/// Loads the window for a WAV file; the sound starts at once.
void LoadPreviewWindow(PreviewWindow& preview, const std::wstring& wav_path);
/// The button "Play": starts the sound from its beginning and returns at once.
void PlayInPreviewWindow(const PreviewWindow& preview);
/// The button "Stop".
void StopInPreviewWindow(const PreviewWindow& preview);
/// The button "End of preview" and the close box: stops the sound and unloads the window.
void EndPreviewWindow(PreviewWindow& preview);

} // namespace tonex
