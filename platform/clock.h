// The time of day.
#pragma once

namespace tonex {

struct TimeOfDay {
    int hour;   ///< 0 to 23
    int minute; ///< 0 to 59
    int second; ///< 0 to 59
};

/// Local time.
TimeOfDay CurrentTime();

} // namespace tonex
