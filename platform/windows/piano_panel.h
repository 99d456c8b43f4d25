// The items of the piano panel: they count semitones up from c4, as the keys lie from left to right.
#pragma once

#include "app/sndmain.h"

namespace tonex {

inline constexpr int kPianoItems = kWhiteKeys + kBlackKeys;

/// The key that an item stands for.
PianoKey KeyOfItem(int item);
const PianoKeyControl& ControlOf(const sndmain& window, PianoKey key);
const KeyLabel& LabelOf(const sndmain& window, PianoKey key);

} // namespace tonex
