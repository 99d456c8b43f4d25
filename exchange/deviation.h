// How far what is played lies from what was meant, as a listener judges it.
#pragma once

#include <span>

namespace tonex {

/// Unevenness below 6 ms, or below a fortieth of a length, is not heard; nor is a tempo that is 3 % off.
inline constexpr double kLeastHeardSeconds = 0.006;
inline constexpr double kLeastHeardPart = 0.025;
inline constexpr double kLeastHeardSpeed = 0.03;

/// What a listener just hears of a length, in seconds.
constexpr double HeardFrom(double seconds) {
    const double part = kLeastHeardPart * seconds;
    return part > kLeastHeardSeconds ? part : kLeastHeardSeconds;
}

struct Deviation {
    double j = 0.0;          ///< speed and evenness together; up to 1 is hardly heard
    double duration = 1.0;   ///< all that is played by all that was meant: 1.02 is 2 % slower
    double unevenness = 0.0; ///< root of the mean square of the errors, each by what is just heard of it
    int worst = -1;          ///< index of the length that is heard worst; -1 when none is off
    double worst_seconds = 0.0;
    double worst_part = 0.0; ///< of its length
    double mean_seconds = 0.0;
    double mean_part = 0.0;
};

/// Compares lengths in seconds, pair by pair. Errors are counted against the speed of the whole.
/// Both have the same size; lengths of 0 are left out.
Deviation DeviationOf(std::span<const double> meant, std::span<const double> played);

} // namespace tonex
