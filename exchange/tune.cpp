#include "exchange/tune.h"

#include "score/codes.h"

#include <algorithm>

namespace tonex {

namespace {

constexpr double kNothing = 1e-9; ///< seconds; shorter is rounding

/// The least half tones, whole steps, that bring a range into a room.
bool LeastShift(std::pair<int, int> range, std::pair<int, int> room, int step, int& half_tones) {
    const auto whole_steps = [step](int missing) { return (std::max(missing, 0) + step - 1) / step * step; };
    const int shift = whole_steps(room.first - range.first) - whole_steps(range.second - room.second);
    if (range.first + shift < room.first || range.second + shift > room.second) return false;
    half_tones = shift;
    return true;
}

} // namespace

void Remark(Remarks& remarks, std::string_view what) {
    const auto found = std::find_if(remarks.begin(), remarks.end(),
                                    [&](const auto& remark) { return remark.first == what; });
    if (found != remarks.end()) {
        ++found->second;
    } else {
        remarks.emplace_back(what, 1);
    }
}

std::vector<Interval> IntervalsOf(const Tune& tune) {
    std::vector<Interval> intervals;
    for (int i = 0; i < static_cast<int>(tune.items.size()); ++i) {
        const TuneItem& item = At(tune.items, i);
        if (item.kind == TuneKind::Note) {
            intervals.push_back({i, 0, item.pitch, 0.0, item.seconds});
        } else if (intervals.empty()) {
            intervals.push_back({i, 0, 0, 0.0, 0.0});
        }
        ++intervals.back().items;
        intervals.back().seconds += item.seconds;
    }
    return intervals;
}

double LengthOf(const Tune& tune) {
    double seconds = 0.0;
    for (const TuneItem& item : tune.items)
        seconds += item.seconds;
    return seconds;
}

int CountNotes(const Tune& tune) {
    return static_cast<int>(std::count_if(tune.items.begin(), tune.items.end(),
                                          [](const TuneItem& item) { return item.kind == TuneKind::Note; }));
}

std::pair<int, int> RangeOf(const Tune& tune) {
    std::pair<int, int> range = {0, 0};
    bool first = true;
    for (const TuneItem& item : tune.items) {
        if (item.kind != TuneKind::Note) continue;
        range.first = first ? item.pitch : std::min(range.first, item.pitch);
        range.second = first ? item.pitch : std::max(range.second, item.pitch);
        first = false;
    }
    return range;
}

void TransposeTune(Tune& tune, int half_tones) {
    for (TuneItem& item : tune.items) {
        if (item.kind == TuneKind::Note) item.pitch += half_tones;
    }
}

bool HalfTonesInto(std::pair<int, int> range, std::pair<int, int> room, bool whole_octaves_first,
                   int& half_tones) {
    if (whole_octaves_first && LeastShift(range, room, kOctave, half_tones)) return true;
    return LeastShift(range, room, 1, half_tones);
}

bool HalfTonesToPiano(std::pair<int, int> range, bool whole_octaves_first, int& half_tones) {
    return HalfTonesInto(range, {kLowestKey, kHighestKey}, whole_octaves_first, half_tones);
}

void SpeedUp(Tune& tune, double speed) {
    tune.tempo *= speed;
    for (TuneItem& item : tune.items)
        item.seconds /= speed;
}

void KeepPart(Tune& tune, double from, double to) {
    std::vector<TuneItem> kept;
    double start = 0.0;
    for (TuneItem item : tune.items) {
        const double end = start + item.seconds;
        const bool note = item.kind == TuneKind::Note;
        const double first = note ? start : std::max(start, from);
        const double last = std::min(end, to);
        const bool inside = item.kind == TuneKind::Separator
                                ? start >= from - kNothing && start < to
                                : first >= from - kNothing && last - first > kNothing;
        if (inside && item.seconds > 0.0) {
            const double part = (last - first) / item.seconds;
            item.quarters *= part;
            item.seconds *= part;
        }
        if (inside && kept.empty()) tune.start = first;
        if (inside) kept.push_back(item);
        start = end;
    }
    tune.items = std::move(kept);
}

} // namespace tonex
