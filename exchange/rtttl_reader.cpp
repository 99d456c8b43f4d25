#include "exchange/rtttl.h"
#include "score/number_text.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace tonex {

namespace {

constexpr int kUsualLength = 4;
constexpr int kUsualOctave = 6;
constexpr int kUsualBeats = 63;
constexpr int kMostReadBeats = 1000;
constexpr int kShortestLength = 128;
constexpr int kHighestOctave = 9;
constexpr std::size_t kMostTextName = 60; ///< bytes of a name that are kept
constexpr std::size_t kQuoted = 16;       ///< bytes of what is wrong that a reason shows
constexpr std::size_t kMostLetters = 32;  ///< of a control or an item that means something

/// A letter of the text without blanks, and where it stood.
struct Letter {
    char letter;
    std::size_t at;
};
using Word = std::vector<Letter>;

bool IsLineEnd(char letter) {
    return letter == '\n' || letter == '\r';
}

/// What a tune is read with, and how far.
struct Reading {
    std::string_view text; ///< the whole file
    Tune tune;
    int length = kUsualLength;
    int octave = kUsualOctave;
    double beats = kUsualBeats;
    bool has_beats = false;
    bool in_notes = false;
    std::string reason; ///< what is wrong, empty when nothing is
    std::size_t at = 0; ///< where
};

bool Wrong(Reading& reading, std::size_t at, std::string reason) {
    reading.at = at;
    reading.reason = std::move(reason);
    return false;
}

std::string Quoted(const Word& word) {
    std::string text = "\"";
    for (const Letter& letter : word) {
        if (text.size() > kQuoted) return text + "...\"";
        text += letter.letter >= ' ' && letter.letter < 127 ? letter.letter : '?';
    }
    return text + "\"";
}

/// The digits at the front of a word as a number, taken off; -1 when there are none or it is above `largest`.
int TakeNumber(Word& word, int largest) {
    std::string digits;
    while (!word.empty() && IsDigit(word.front().letter)) {
        digits += word.front().letter;
        word.erase(word.begin());
    }
    return NumberOfDigits(std::string_view(digits), largest).value_or(-1);
}

bool TakeLetter(Word& word, char letter) {
    if (word.empty() || word.front().letter != letter) return false;
    word.erase(word.begin());
    return true;
}

/// What stands between two commas, one after another: blanks go, and letters become small. Of a word that is
/// longer than any, one letter too many is kept. Texts may be long: none is copied.
struct Words {
    std::string_view text;
    std::size_t at;
    std::size_t end;
    bool voices = false;  ///< only the first voice: from a bar to the next semicolon all is left out
    bool other = false;   ///< in another voice
    int other_voices = 0; ///< that were left out
    bool ended = false;
};

/// Whether the letter belongs to another voice.
bool IsOfOtherVoice(Words& words, char letter) {
    if (!words.voices) return false;
    if (letter == ';') words.other = false;
    if (letter == '|' && !words.other) {
        words.other = true;
        ++words.other_voices;
    }
    return words.other;
}

/// The next word, which may be empty. False behind the last.
bool TakeWord(Words& words, Word& word) {
    word.clear();
    if (words.ended) return false;
    while (words.at < words.end) {
        const std::size_t at = words.at++;
        const char letter = SmallLetter(words.text[at]);
        if (IsOfOtherVoice(words, letter)) continue;
        if (letter == ',' || letter == ';') return true;
        const bool means = !IsBlank(letter) && !IsLineEnd(letter);
        if (means && word.size() <= kMostLetters) word.push_back({letter, at});
    }
    words.ended = true;
    return true;
}

bool SetControl(Reading& reading, char control, int value, const Word& whole) {
    const std::size_t at = whole.front().at;
    switch (control) {
    case 'd':
        if (value < 1 || value > kShortestLength) return Wrong(reading, at, Quoted(whole) + " is no length");
        reading.length = value;
        return true;
    case 'o':
        if (value < 0 || value > kHighestOctave) return Wrong(reading, at, Quoted(whole) + " is no octave");
        reading.octave = value;
        return true;
    default:
        if (value < 1) {
            return Wrong(reading, at,
                         Quoted(whole) + " is no tempo: b is 1 to " + std::to_string(kMostReadBeats));
        }
        if (reading.in_notes && value != static_cast<int>(reading.beats)) reading.tune.bends = true;
        reading.beats = value;
        reading.has_beats = true;
        return true;
    }
}

bool ReadControl(Reading& reading, const Word& whole) {
    Word word = whole;
    const char control = word.front().letter;
    word.erase(word.begin());
    if (!TakeLetter(word, '=')) {
        return Wrong(reading, whole.front().at, Quoted(whole) + " is no control such as d=4, o=5 or b=120");
    }
    if (control != 'd' && control != 'o' && control != 'b') {
        Remark(reading.tune.remarks, "left out an unknown control");
        return true;
    }
    const int value = TakeNumber(word, kMostReadBeats);
    if (!word.empty() || whole.size() > kMostLetters)
        return Wrong(reading, whole.front().at, Quoted(whole) + " has no number behind the =");
    return SetControl(reading, control, value, whole);
}

bool ReadControls(Reading& reading, std::size_t begin, std::size_t end) {
    Words words{reading.text, begin, end};
    Word word;
    while (TakeWord(words, word)) {
        if (!word.empty() && !ReadControl(reading, word)) return false;
    }
    if (!reading.has_beats) Remark(reading.tune.remarks, "no tempo is given: 63");
    reading.tune.tempo = reading.beats;
    return true;
}

/// Half tones above c by letter; -1 for a letter that is no note. h is another name of b.
int HalfTonesOf(char letter) {
    constexpr std::string_view letters = "cdefgabh";
    constexpr std::array half_tones = {0, 2, 4, 5, 7, 9, 11, 11};
    const std::size_t place = letters.find(letter);
    return place == std::string_view::npos ? -1 : half_tones[place];
}

/// The quarter notes of a length, 1 to 128, with dots.
double QuartersOfNumber(Reading& reading, int number, int dots) {
    constexpr std::array plain = {1, 2, 4, 8, 16, 32, 64, 128};
    constexpr std::array triplets = {6, 12, 24, 48};
    if (std::find(triplets.begin(), triplets.end(), number) != triplets.end()) {
        Remark(reading.tune.remarks, "read a length of 6, 12, 24 or 48 as a triplet");
    } else if (std::find(plain.begin(), plain.end(), number) == plain.end()) {
        Remark(reading.tune.remarks,
               "read a length that the format does not have as that part of a whole note");
    }
    constexpr std::array factors = {1.0, 1.5, 1.75};
    return 4.0 / number * At(factors, dots);
}

/// What stands behind a note's letter.
struct Tail {
    int dots = 0;
    int half_tones = 0;
    int octave = -1;
};

bool ReadTail(Reading& reading, Word& word, const Word& whole, Tail& tail) {
    const int dots_in_front = tail.dots;
    while (!word.empty()) {
        const std::size_t at = word.front().at;
        if (TakeLetter(word, '.')) {
            if (++tail.dots > 2) return Wrong(reading, at, Quoted(whole) + " has more than two dots");
            if (tail.dots == 2)
                Remark(reading.tune.remarks, "read a second dot, which the format does not have");
        } else if (TakeLetter(word, '#')) {
            ++tail.half_tones;
        } else if (TakeLetter(word, 'b') || TakeLetter(word, '_')) {
            --tail.half_tones;
            Remark(reading.tune.remarks, "read a flat as the sharp below");
        } else {
            const int octave = TakeNumber(word, kHighestOctave);
            if (octave < 0 || tail.octave >= 0)
                return Wrong(reading, at, Quoted(whole) + " is no note or rest");
            tail.octave = octave;
            if (tail.dots > dots_in_front)
                Remark(reading.tune.remarks, "read a dot in front of an octave as one behind it");
        }
    }
    return true;
}

bool AddItem(Reading& reading, TuneKind kind, int pitch, double quarters, std::size_t at) {
    if (reading.tune.items.size() >= kMostTuneItems) {
        return Wrong(reading, at, "more than " + std::to_string(kMostTuneItems) + " notes and rests");
    }
    reading.tune.items.push_back({kind, pitch, quarters, quarters * 60.0 / reading.beats});
    return true;
}

bool ReadNote(Reading& reading, const Word& whole) {
    Word word = whole;
    const std::size_t at = whole.front().at;
    if (whole.size() > kMostLetters) return Wrong(reading, at, Quoted(whole) + " is no note or rest");
    const bool has_length = IsDigit(word.front().letter);
    const int number = has_length ? TakeNumber(word, kShortestLength) : reading.length;
    Tail tail;
    if (TakeLetter(word, '.')) {
        tail.dots = 1;
        Remark(reading.tune.remarks, "read a dot behind a length as one behind the note");
    }
    if (word.empty()) return Wrong(reading, at, Quoted(whole) + " is no note or rest");
    const char letter = word.front().letter;
    word.erase(word.begin());
    const int half_tones = HalfTonesOf(letter);
    if (half_tones < 0 && letter != 'p') return Wrong(reading, at, Quoted(whole) + " is no note or rest");
    if (letter == 'h') Remark(reading.tune.remarks, "read h as b");
    if (!ReadTail(reading, word, whole, tail)) return false;
    if (number < 1)
        return Wrong(reading, at, Quoted(whole) + " has no length 1 to " + std::to_string(kShortestLength));
    const double quarters = QuartersOfNumber(reading, number, tail.dots);
    if (letter == 'p') return AddItem(reading, TuneKind::Rest, 0, quarters, at);
    const int octave = tail.octave < 0 ? reading.octave : tail.octave;
    const int pitch = kLowestKey + kOctave * (octave - 4) + half_tones + tail.half_tones;
    return AddItem(reading, TuneKind::Note, pitch, quarters, at);
}

bool ReadNotes(Reading& reading, std::size_t begin, std::size_t end) {
    reading.in_notes = true;
    Words words{reading.text, begin, end, true};
    Word word;
    while (TakeWord(words, word)) {
        if (word.empty()) {
            Remark(reading.tune.remarks, "left out an empty item");
            continue;
        }
        const bool control = word.size() > 1 && word[1].letter == '=';
        if (!(control ? ReadControl(reading, word) : ReadNote(reading, word))) return false;
    }
    if (words.other_voices > 0) Remark(reading.tune.remarks, "took the first of several voices");
    if (CountNotes(reading.tune) == 0) return Wrong(reading, begin, "the tune has no note");
    return true;
}

/// Where a tune stands in the text.
struct Place {
    std::size_t begin;
    std::size_t end;
    std::vector<std::size_t> colons;
};

std::string NameIn(std::string_view text) {
    std::string name;
    for (const char letter : text) {
        const bool kept = static_cast<unsigned char>(letter) >= ' ' && letter != 127;
        if (kept && name.size() < kMostTextName) name += letter;
    }
    const std::size_t first = name.find_first_not_of(' ');
    return first == std::string::npos ? "" : name.substr(first, name.find_last_not_of(' ') - first + 1);
}

/// The tempo that most of the tune has: its whole length in quarter notes by its seconds.
void TakeMeanTempo(Tune& tune) {
    double quarters = 0.0;
    for (const TuneItem& item : tune.items)
        quarters += item.quarters;
    if (tune.bends) tune.tempo = quarters * 60.0 / LengthOf(tune);
}

bool ReadTune(Reading& reading, const Place& place) {
    const std::string_view text = reading.text;
    const auto& colons = place.colons;
    if (colons.empty()) return Wrong(reading, place.begin, "this is no ring tone: name:d=4,o=5,b=120:8c,8d");
    const std::string_view front = text.substr(place.begin, colons[0] - place.begin);
    const bool named = colons.size() > 1;
    if (!named && front.find('=') == std::string_view::npos) {
        return Wrong(reading, colons[0], "the tune has no second colon: name:d=4,o=5,b=120:8c,8d");
    }
    if (named) reading.tune.name = NameIn(front);
    if (reading.tune.name.empty()) Remark(reading.tune.remarks, "the tune has no name");
    const std::size_t controls = named ? colons[0] + 1 : place.begin;
    const std::size_t notes = (named ? colons[1] : colons[0]) + 1;
    if (!ReadControls(reading, controls, notes - 1) || !ReadNotes(reading, notes, place.end)) return false;
    TakeMeanTempo(reading.tune);
    return true;
}

/// Whether what was found so far is a whole head: name and controls, or controls alone.
bool HasHead(std::string_view text, const Place& place) {
    if (place.colons.empty()) return false;
    const std::string_view front = text.substr(place.begin, place.colons[0] - place.begin);
    return place.colons.size() > 1 || front.find('=') != std::string_view::npos;
}

/// A line's part of the places: a new tune, or more of the last one.
void AddLine(std::string_view text, std::size_t begin, std::size_t end, std::vector<Place>& places) {
    const std::string_view line = text.substr(begin, end - begin);
    if (line.find_first_not_of(" \t") == std::string_view::npos) return;
    const bool colon = line.find(':') != std::string_view::npos;
    if (places.empty() || (colon && HasHead(text, places.back()))) places.push_back({begin, end, {}});
    Place& place = places.back();
    place.end = end;
    for (std::size_t i = begin; i < end; ++i) {
        if (text[i] != ':') continue;
        if (HasHead(text, place)) return;
        place.colons.push_back(i);
    }
}

/// Comments become blanks: lines that start with # and what stands behind //.
std::string WithoutComments(std::string_view text) {
    std::string plain(text);
    bool comment = false;
    bool at_start = true;
    for (std::size_t i = 0; i < plain.size(); ++i) {
        if (IsLineEnd(text[i])) {
            comment = false;
            at_start = true;
            continue;
        }
        if (text.substr(i, 2) == "//" || (at_start && text[i] == '#')) comment = true;
        if (!IsBlank(text[i])) at_start = false;
        if (comment) plain[i] = ' ';
    }
    return plain;
}

std::vector<Place> PlacesOf(std::string_view text) {
    std::vector<Place> places;
    std::size_t begin = 0;
    while (begin < text.size()) {
        const std::size_t end = std::min(text.find_first_of("\r\n", begin), text.size());
        AddLine(text, begin, end, places);
        if (places.size() > kMostTunes) break;
        begin = end + 1;
    }
    return places;
}

/// Text of two bytes a letter, as some editors keep it, with a mark in front, as one byte a letter; what has
/// none becomes a question mark. Other text stays as it is.
std::string OneByteText(std::string_view bytes) {
    const bool low_first = bytes.starts_with("\xFF\xFE");
    if (!low_first && !bytes.starts_with("\xFE\xFF")) return std::string(bytes);
    std::string text;
    for (std::size_t i = 2; i + 1 < bytes.size(); i += 2) {
        const char low = bytes[low_first ? i : i + 1];
        const char high = bytes[low_first ? i + 1 : i];
        text += high == 0 && static_cast<unsigned char>(low) < 128 ? low : '?';
    }
    return text;
}

RtttlFault FaultAt(std::string_view text, std::size_t at, std::string reason) {
    RtttlFault fault{1, 1, std::move(reason)};
    for (std::size_t i = 0; i < at; ++i) {
        ++fault.column;
        if (text[i] == '\n' || (text[i] == '\r' && text.substr(i + 1, 1) != "\n")) {
            ++fault.line;
            fault.column = 1;
        }
    }
    return fault;
}

} // namespace

bool LooksLikeRtttl(std::string_view bytes) {
    const std::string text = OneByteText(bytes);
    const auto odd = [](char letter) {
        return static_cast<unsigned char>(letter) < ' ' && letter != '\t' && !IsLineEnd(letter) &&
               letter != '\x1a';
    };
    return text.find(':') != std::string::npos && std::none_of(text.begin(), text.end(), odd);
}

std::optional<std::vector<Tune>> ReadRtttl(std::string_view bytes, RtttlFault& fault) {
    constexpr std::string_view mark = "\xEF\xBB\xBF";
    std::string text = OneByteText(bytes);
    if (text.starts_with(mark)) text.replace(0, mark.size(), mark.size(), ' ');
    std::string plain = WithoutComments(text);
    std::replace(plain.begin(), plain.end(), '\x1a', ' ');
    std::vector<Tune> tunes;
    for (const Place& place : PlacesOf(plain)) {
        Reading reading;
        reading.text = plain;
        if (tunes.size() == kMostTunes) {
            fault = FaultAt(plain, place.begin, "more than " + std::to_string(kMostTunes) + " tunes");
            return std::nullopt;
        }
        if (!ReadTune(reading, place)) {
            fault = FaultAt(plain, reading.at, reading.reason);
            return std::nullopt;
        }
        tunes.push_back(std::move(reading.tune));
    }
    if (!tunes.empty()) return tunes;
    fault = {1, 1, "there is no ring tone in it"};
    return std::nullopt;
}

} // namespace tonex
