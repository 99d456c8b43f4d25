// Hearing the melody: SND file, WAV file, player.
#pragma once

#include <cstdint>
#include <string>

namespace tonex {

struct sndmain;

/// The Preview command.
void mnuPreview_Click(sndmain& window);
/// Converts a SND file to a temporary WAV file, has a player play it and waits for its end.
void PlayWavPreview(sndmain& window, const std::wstring& snd_path, bool show_progress);

} // namespace tonex
