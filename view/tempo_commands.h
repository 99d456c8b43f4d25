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

} // namespace tonex
