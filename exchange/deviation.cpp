#include "exchange/deviation.h"

#include <cassert>
#include <cmath>
#include <cstddef>

namespace tonex {

namespace {

/// All that is played by all that was meant; 1 when nothing was.
double DurationOf(std::span<const double> meant, std::span<const double> played) {
    double all_meant = 0.0;
    double all_played = 0.0;
    for (std::size_t i = 0; i < meant.size(); ++i) {
        all_meant += meant[i];
        all_played += played[i];
    }
    return all_meant > 0.0 && all_played > 0.0 ? all_played / all_meant : 1.0;
}

} // namespace

Deviation DeviationOf(std::span<const double> meant, std::span<const double> played) {
    assert(meant.size() == played.size());
    Deviation deviation;
    deviation.duration = DurationOf(meant, played);
    double squares = 0.0;
    double worst = 1e-6; // below is rounding
    int count = 0;
    for (std::size_t i = 0; i < meant.size(); ++i) {
        if (meant[i] <= 0.0) continue;
        const double wanted = deviation.duration * meant[i];
        const double error = played[i] - wanted;
        const double heard = error / HeardFrom(meant[i]);
        squares += heard * heard;
        deviation.mean_seconds += std::abs(error);
        deviation.mean_part += std::abs(error) / wanted;
        ++count;
        if (std::abs(heard) <= worst) continue;
        worst = std::abs(heard);
        deviation.worst = static_cast<int>(i);
        deviation.worst_seconds = error;
        deviation.worst_part = error / wanted;
    }
    if (count == 0) return deviation;
    deviation.unevenness = std::sqrt(squares / count);
    deviation.mean_seconds /= count;
    deviation.mean_part /= count;
    deviation.j = std::hypot(std::log(deviation.duration) / kLeastHeardSpeed, deviation.unevenness);
    return deviation;
}

} // namespace tonex
