// Lengths that no entry has by itself, as a few entries.
#pragma once

#include <vector>

namespace tonex {

/// The length codes, 0 to 19, that come nearest to a length in quarter notes with the fewest entries, longest
/// first. Of a note, the first sounds and the others are rests. Never empty.
std::vector<int> ChainOf(double quarters);

/// What the entries of a chain last together, quarter notes.
double QuartersOfChain(const std::vector<int>& chain);

/// The length code of exactly this length, -1 when there is none.
int CodeOfQuarters(double quarters);

} // namespace tonex
