// Why the system refused.
#pragma once

#include <string>

namespace tonex {

/// What the system says of the last operation that it refused, in its own words, UTF-8, without a full stop
/// at the end. To be asked at once: whatever succeeds or fails next may change it.
std::string ReasonOfRefusal();

/// Whether the last operation on a file was refused because another program holds it: it may succeed a moment
/// later. To be asked at once, too.
bool FileIsBusy();

} // namespace tonex
