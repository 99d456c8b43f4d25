// Texts for pitches, lengths and entries. Pure.
#pragma once

#include "score/score.h"
#include "view/cell_text.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace tonex {

/// The grid's text of a slot: "c4", "c4 #", "ド #"; " - " for pitch 65535; empty for a pitch whose remainder
/// (pitch - 1) mod 12 is negative.
CellText NoteNameOf(std::uint16_t pitch, bool doremi);

/// The caption of a piano key: "c4#" with no blank, or "ド#". `semitone_from_c` is 0 or more; `octave` is
/// printed in letter mode only.
CellText KeyCaptionOf(int semitone_from_c, int octave, bool doremi);

/// "Quarter note", "Dotted eighth rest", "Double-dotted half note", "Triplet sixteenth note": for tooltips
/// and screen readers. `entry_code` is 1 to 40; empty for any other.
std::wstring LengthNameOf(std::uint16_t entry_code);

/// What a screen reader says of a slot: "c4#, Quarter note", "Eighth rest", "Separator", "End".
std::wstring EntryNameOf(std::uint16_t entry_code, std::uint16_t pitch, bool doremi);

/// Whether a pitch carries a sharp sign. The strip asks for each of its pictures.
bool IsSharp(std::uint16_t pitch);

} // namespace tonex
