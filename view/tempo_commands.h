// The tempo box and the classical name beside it.
#pragma once

#include <cstdint>
#include <string>

namespace tonex {

struct sndmain;

/// Fills the box from the tempo list and selects the default, 120.
void FillTempoCombo(sndmain& window);
/// Selects the item whose number equals the tempo; none when no item has it (the text then shows the number).
/// The name beside the box follows; the changed flag stays.
void SelectTempo(sndmain& window, int tempo);
/// Shows the classical name of the number in the box.
void UpdateTempoLabel(sndmain& window);
/// The tempo that preview and writer receive: the whole number in the box's text.
std::int16_t TempoForWriting(const sndmain& window);
/// Typed text in the box: label, changed flag.
void TempoComboChange(sndmain& window, const std::wstring& text);
/// An item chosen from the list (also the same again): text, label, changed flag.
void TempoComboClick(sndmain& window, int list_index);

/// Place in the list of the item with a text's whole number; -1 = none. Texts are not compared: items have a
/// leading blank that nobody types, and 64 is not the beginning of 640.
int TempoItemOf(const sndmain& window, const std::wstring& text);
/// Place in the list of the next slower (`step` 1) or faster (-1) tempo beside the number in the box, whether
/// the list has that number or not; -1 = there is none.
int TempoNeighbour(const sndmain& window, int step);

/// What choosing changes.
struct TempoChoice {
    std::wstring text;
    int list_index;
    bool changed; ///< the score's changed flag
};
TempoChoice CurrentTempo(const sndmain& window);
/// Takes back all that was chosen since: who leaves the open list without choosing has changed nothing.
void RestoreTempo(sndmain& window, const TempoChoice& before);

} // namespace tonex
