// Two sides of a figure, taken in turn in one run, so that whatever else the machine does falls on both.
#pragma once

#include <benchmark/benchmark.h>

#include <chrono>

namespace tonex::bench {

template <typename Work> double MillisecondsOf(const Work& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

/// One repetition: each side once, the side that goes first alternating. A side gives the milliseconds that
/// it took; what it prepares is not in them. The counters "ours_ms" and "other_ms" tell the times; over the
/// repetitions the library gives their medians.
template <typename Ours, typename Other>
void MeasurePair(benchmark::State& state, const Ours& ours, const Other& other) {
    static bool ours_first = false;
    double ours_ms = 0;
    double other_ms = 0;
    for ([[maybe_unused]] auto round : state) {
        ours_first = !ours_first;
        if (ours_first) ours_ms += ours();
        other_ms += other();
        if (!ours_first) ours_ms += ours();
        state.SetIterationTime((ours_ms + other_ms) / 1000);
    }
    const auto rounds = static_cast<double>(state.iterations());
    state.counters["ours_ms"] = ours_ms / rounds;
    state.counters["other_ms"] = other_ms / rounds;
}

} // namespace tonex::bench
