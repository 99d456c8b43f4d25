#include "exchange/chains.h"
#include "exchange/deviation.h"
#include "exchange/played.h"
#include "exchange/rtttl.h"
#include "score/number_text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

namespace tonex {

namespace {

constexpr int kLeastBeats = 25;
constexpr int kMostBeats = 900;
constexpr int kLowestOctave = 4;
constexpr int kOctaves = 4; ///< 4 to 7
constexpr int kHighestPitch = kLowestKey + kOctaves * kOctave - 1;
/// Lengths in the text by those of the melody; the first wins where all do as well. With one and a half, a
/// triplet eighth becomes a plain one.
constexpr std::array kTextScales = {1.0, 1.5, 0.75, 2.0, 0.5};

/// A length that the format has.
struct TextLength {
    int number; ///< 1 to 32
    bool dotted;
};

struct TextItem {
    TextLength length;
    int pitch; ///< 0 = rest
    int interval;
};

double QuartersOfText(const TextLength& length) {
    return 4.0 / length.number * (length.dotted ? 1.5 : 1.0);
}

/// All of them, longest first.
constexpr std::array<TextLength, 12> kTextLengths = {{
    {1, true},
    {1, false},
    {2, true},
    {2, false},
    {4, true},
    {4, false},
    {8, true},
    {8, false},
    {16, true},
    {16, false},
    {32, true},
    {32, false},
}};

/// The longest length of the text that is no longer than this, quarter notes; the shortest when all are.
TextLength LongestWithin(double quarters) {
    const auto found = std::find_if(kTextLengths.begin(), kTextLengths.end(), [&](const TextLength& length) {
        return QuartersOfText(length) <= quarters + 1e-4;
    });
    return found == kTextLengths.end() ? kTextLengths.back() : *found;
}

/// How far a length of the text is from this one, quarter notes.
double DistanceOf(const TextLength& length, double quarters) {
    return std::abs(QuartersOfText(length) - quarters);
}

/// The length of the text nearest to this.
TextLength NearestTo(double quarters) {
    return *std::min_element(kTextLengths.begin(), kTextLengths.end(),
                             [&](const TextLength& one, const TextLength& other) {
                                 return DistanceOf(one, quarters) < DistanceOf(other, quarters);
                             });
}

/// Whether the text has just this length.
bool IsHeld(double quarters) {
    return DistanceOf(NearestTo(quarters), quarters) < 1e-4;
}

/// A length as a note or rest and at most two rests behind it.
std::vector<TextLength> LengthsOf(double quarters) {
    std::vector<TextLength> lengths;
    constexpr double least_rest = 1.0 / 16.0; // half of the shortest
    const TextLength nearest = NearestTo(quarters);
    if (DistanceOf(nearest, quarters) < least_rest / 2.0) return {nearest};
    while (lengths.size() < 3 && (lengths.empty() || quarters >= least_rest)) {
        lengths.push_back(LongestWithin(quarters));
        quarters -= QuartersOfText(lengths.back());
    }
    return lengths;
}

/// The tune's items as the text has them at a scale. What one can not hold, the later ones make up for.
std::vector<TextItem> TextItemsOf(const Tune& tune, double scale) {
    std::vector<TextItem> items;
    double late = 0.0;
    int interval = -1;
    for (const TuneItem& item : tune.items) {
        if (item.kind == TuneKind::Note || interval < 0) ++interval;
        if (item.kind == TuneKind::Separator) continue;
        const double quarters = item.quarters * scale;
        int pitch = item.pitch;
        for (const TextLength& length : LengthsOf(IsHeld(quarters) ? quarters : quarters - late)) {
            items.push_back({length, pitch, interval});
            late += QuartersOfText(length);
            pitch = 0;
        }
        late -= quarters;
    }
    return items;
}

std::vector<double> SecondsOf(const std::vector<TextItem>& items, std::size_t intervals, double beats) {
    std::vector<double> seconds(intervals, 0.0);
    for (const TextItem& item : items)
        At(seconds, item.interval) += QuartersOfText(item.length) * 60.0 / beats;
    return seconds;
}

/// The value that most items have, of several the first to have come so often; `usual` when there are
/// none. Items of value 0 do not count.
template <class Of> int MostFrequent(const std::vector<TextItem>& items, int usual, Of of) {
    std::array<int, 33> counts{}; // the longest number is 32
    int best = usual;
    for (const TextItem& item : items) {
        const int value = of(item);
        if (value == 0) continue;
        if (++At(counts, value) > At(counts, best)) best = value;
    }
    return best;
}

int OctaveOf(int pitch) {
    return kLowestOctave + (pitch - kLowestKey) / kOctave;
}

/// The octave that is left out: where most dotted notes lie, as some readers overlook a dot behind an octave.
int OctaveToLeaveOut(const std::vector<TextItem>& items) {
    const int most = MostFrequent(items, kLowestOctave, [](const TextItem& item) {
        return item.pitch == 0 ? 0 : OctaveOf(item.pitch);
    });
    return MostFrequent(items, most, [](const TextItem& item) {
        return item.pitch == 0 || !item.length.dotted ? 0 : OctaveOf(item.pitch);
    });
}

std::string TextOf(const TextItem& item, int length, int octave) {
    std::string text = item.length.number == length ? "" : std::to_string(item.length.number);
    if (item.pitch == 0) {
        text += 'p';
    } else {
        const Semitone& semitone = *SemitoneOf(item.pitch);
        text += semitone.letter;
        if (semitone.sharp) text += '#';
        if (OctaveOf(item.pitch) != octave) text += std::to_string(OctaveOf(item.pitch));
    }
    return item.length.dotted ? text + "." : text;
}

/// Letters, digits and a few signs; a reader must not take any of it for something else.
std::string PlainName(std::string_view name) {
    std::string plain;
    for (const char letter : name) {
        const bool kept = IsDigit(letter) || (letter >= 'a' && letter <= 'z') ||
                          (letter >= 'A' && letter <= 'Z') || letter == '-' || letter == '_';
        if (kept && plain.size() < kMostRtttlName) plain += letter;
    }
    return plain.empty() ? "melody" : plain;
}

std::string WholeText(const std::vector<TextItem>& items, std::string_view name, int beats) {
    const int length = MostFrequent(items, 4, [](const TextItem& item) { return item.length.number; });
    const int octave = OctaveToLeaveOut(items);
    std::string text = PlainName(name) + ":d=" + std::to_string(length) + ",o=" + std::to_string(octave) +
                       ",b=" + std::to_string(beats) + ":";
    bool first = true;
    for (const TextItem& item : items) {
        text += (first ? "" : ",") + TextOf(item, length, octave);
        first = false;
    }
    return text + "\n";
}

/// A scale and a tempo, and how far that is from what the file plays.
struct Trial {
    double scale = 1.0;
    int beats = 0;
    double j = 1e9;
};

void TryBeats(const std::vector<TextItem>& items, const std::vector<double>& played, double scale,
              double beats, Trial& best) {
    const int whole = static_cast<int>(std::lround(beats));
    if (whole < kLeastBeats || whole > kMostBeats) return;
    const double j = DeviationOf(played, SecondsOf(items, played.size(), whole)).j;
    if (j < best.j - 0.001) best = {scale, whole, j};
}

/// Whether the text has all the tune's lengths as they are.
bool HoldsLengths(const Tune& tune) {
    return std::all_of(tune.items.begin(), tune.items.end(), [](const TuneItem& item) {
        return item.kind == TuneKind::Separator || IsHeld(item.quarters);
    });
}

/// The tempo that is written or the one that is really played, where that is hardly heard or the text has all
/// the lengths; else what comes nearest to what the file plays.
Trial BestTrial(const Tune& tune, const std::vector<double>& played, double true_tempo) {
    Trial best;
    const std::vector<TextItem> as_written = TextItemsOf(tune, 1.0);
    TryBeats(as_written, played, 1.0, tune.tempo, best);
    if (best.j > 1.0) TryBeats(as_written, played, 1.0, true_tempo, best);
    if (best.j <= 1.0 || HoldsLengths(tune)) return best;
    for (const double scale : kTextScales) {
        const std::vector<TextItem> items = TextItemsOf(tune, scale);
        const std::vector<double> at_sixty = SecondsOf(items, played.size(), 60.0);
        TryBeats(items, played, scale, true_tempo * scale, best);
        TryBeats(items, played, scale, 60.0 / DeviationOf(at_sixty, played).duration, best);
    }
    return best;
}

/// Why a text can not hold the melody, its range aside; empty when it can.
std::string ReasonAgainstRtttl(const Melody& melody) {
    const int count = CountEntries(melody.list);
    bool note = false;
    for (int i = 0; i < count; ++i) {
        const std::uint16_t code = At(melody.list, i).code;
        if (KindOfFileCode(code) == EntryKind::Foreign)
            return "entry " + std::to_string(i + 1) + " has the unknown code " + std::to_string(code);
        note = note || KindOfFileCode(code) == EntryKind::Note;
    }
    return note ? "" : "the melody has no note";
}

void RemarkLosses(const Tune& tune, const std::vector<TextItem>& items, Remarks& remarks) {
    int sounds = 0;
    for (const TuneItem& item : tune.items) {
        if (item.kind == TuneKind::Separator) {
            Remark(remarks, "left out a separator, which the format does not have");
        } else {
            ++sounds;
        }
    }
    for (int more = static_cast<int>(items.size()) - sounds; more > 0; --more)
        Remark(remarks, "added a rest to a length that the format does not have");
}

} // namespace

RtttlText WriteRtttl(const Melody& melody, const std::vector<double>& played, double true_tempo,
                     std::string_view name) {
    RtttlText result;
    Tune tune = TuneOfMelody(melody);
    result.reason = ReasonAgainstRtttl(melody);
    if (!result.reason.empty()) return result;
    if (!HalfTonesInto(RangeOf(tune), {kLowestKey, kHighestPitch}, true, result.half_tones)) {
        result.reason = "the melody is wider than the four octaves that a ring tone has";
        return result;
    }
    TransposeTune(tune, result.half_tones);
    const Trial best = BestTrial(tune, played, true_tempo);
    if (best.beats == 0) {
        result.reason = "no tempo from 25 to 900 fits";
        return result;
    }
    const std::vector<TextItem> items = TextItemsOf(tune, best.scale);
    result.scale = best.scale;
    result.beats = best.beats;
    result.text = WholeText(items, name, best.beats);
    result.seconds = SecondsOf(items, played.size(), best.beats);
    RemarkLosses(tune, items, result.remarks);
    return result;
}

} // namespace tonex
