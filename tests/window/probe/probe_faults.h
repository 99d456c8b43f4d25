// Lets file calls of the watched program fail, by its import table.
#pragma once

namespace probe {

struct Failure {
    long calls = 0;        ///< file calls that were made
    const char* name = ""; ///< of the first that failed; empty when none did
};

/// From now on the program's file calls are counted from 0. The call with this number fails, as with a disk
/// that refuses, and with `for_good` all after it; a negative number lets all go well. Gives how many calls
/// were made since the last order.
Failure OrderFailure(long number, bool for_good);

} // namespace probe
