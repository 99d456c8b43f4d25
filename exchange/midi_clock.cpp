#include "exchange/midi_clock.h"

#include <algorithm>
#include <iterator>

namespace tonex {

MidiClock ClockOf(const MidiFile& file, int track) {
    MidiClock clock;
    const double quarter = file.ticks_of_quarter;
    clock.stretches.push_back({0.0, 0.0, file.ticks_of_quarter == 0 ? file.seconds_of_tick : 0.5 / quarter});
    if (file.ticks_of_quarter == 0) return clock;
    for (const MidiTempo& tempo : file.tempos) {
        if (file.format == 2 && tempo.track != track) continue;
        const auto tick = static_cast<double>(tempo.tick);
        clock.stretches.push_back({tick, SecondsAt(clock, tick), tempo.microseconds / 1e6 / quarter});
    }
    return clock;
}

double SecondsAt(const MidiClock& clock, double tick) {
    auto stretch =
        std::upper_bound(clock.stretches.begin(), clock.stretches.end(), tick,
                         [](double at, const MidiClock::Stretch& other) { return at < other.tick; });
    if (stretch != clock.stretches.begin()) --stretch;
    return stretch->seconds + (tick - stretch->tick) * stretch->seconds_of_tick;
}

double TickAt(const MidiClock& clock, double seconds) {
    const auto behind =
        std::upper_bound(clock.stretches.begin(), clock.stretches.end(), seconds,
                         [](double at, const MidiClock::Stretch& other) { return at < other.seconds; });
    const MidiClock::Stretch& stretch = *std::prev(behind);
    return stretch.tick + (seconds - stretch.seconds) / stretch.seconds_of_tick;
}

} // namespace tonex
