// The real window of preview/preview_window_services.h.
#pragma once

#include "platform/windows/desktop_windows.h"
#include "preview/preview_window_services.h"

#include <string>

namespace tonex {

inline constexpr int kPreviewPlayButton = 1001;
inline constexpr int kPreviewStopButton = 1002;
inline constexpr int kPreviewEndButton = IDCANCEL; ///< Esc and the close box too

/// Shows the preview window for a WAV file, in the middle of its owner or of the screen, and waits until it
/// is closed. `preview` follows what the user does. False when the system refuses the window.
bool ShowPreviewWindow(HWND owner, const std::wstring& wav_path, PreviewWindow& preview);

} // namespace tonex
