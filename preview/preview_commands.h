// Hearing the melody: SND file, WAV file, player.
#pragma once

#include "preview/preview_window_services.h"
#include "score/score.h"

#include <cstdint>
#include <string>

namespace tonex {

struct sndmain;
struct ScoreGrid;

/// The longest list that a preview writes, its end code not counted.
inline constexpr int kPreviewEntries = 510;

/// The Preview command: writes the selected notes, or all of them when no range is selected, to a temporary
/// SND file and plays it. Does nothing while a preview runs. Tells the user what fails. A file
/// that the player still holds at the end is deleted at the next occasion.
void mnuPreview_Click(sndmain& window);

/// Converts a SND file to a temporary WAV file, has a player play it with the main window disabled, waits for
/// the player's end and deletes the WAV file. `show_progress` shows the converting window.
void PlayWavPreview(sndmain& window, const std::wstring& snd_path, bool show_progress);

/// The notes and rests of the selection, or of the whole score when no range is selected, as the SND writer
/// takes them. Separators and empty slots are left out on purpose: they have no duration.
FileList BuildPreviewList(const Score& score, const ScoreGrid& grid);

} // namespace tonex
