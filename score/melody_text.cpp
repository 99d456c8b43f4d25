#include "score/melody_text.h"

#include "score/number_text.h"

#include <cassert>
#include <cstddef>

namespace tonex {

namespace {

constexpr int kMaxPitch = kFileMaxPitch + 1;
constexpr std::size_t kQuotedBytes = 24; ///< of a wrong word, shown in a reason

/// Walks over the lines of a text.
struct Lines {
    std::string_view rest;
    int number = 0; ///< of the line taken last, counted from 1
    bool at_end = false;
};

Lines LinesOf(std::string_view text) {
    constexpr std::string_view mark = "\xEF\xBB\xBF";
    if (text.substr(0, mark.size()) == mark) text.remove_prefix(mark.size());
    return {text};
}

/// Takes the next line, ended by CR, LF, CR LF or the end of the text. False behind the last.
bool TakeLine(Lines& lines, std::string_view& line) {
    if (lines.at_end) return false;
    ++lines.number;
    const std::size_t end = lines.rest.find_first_of("\r\n");
    line = lines.rest.substr(0, end);
    if (end == std::string_view::npos) {
        lines.at_end = true;
        return true;
    }
    const bool pair = lines.rest[end] == '\r' && end + 1 < lines.rest.size() && lines.rest[end + 1] == '\n';
    lines.rest.remove_prefix(end + (pair ? 2 : 1));
    // What stands behind the last line end is a line only when there is something.
    lines.at_end = lines.rest.empty();
    return true;
}

/// Takes the next word of a line; empty at its end or where a comment starts.
std::string_view TakeWord(std::string_view& line) {
    line = SkipBlanks(line);
    if (line.empty() || line.front() == '#') return {};
    std::size_t length = 0;
    while (length < line.size() && !IsBlank(line[length]))
        ++length;
    const std::string_view word = line.substr(0, length);
    line.remove_prefix(length);
    return word;
}

/// A word of the text as a reason shows it: short, without control characters, never cut inside a character.
std::string Quoted(std::string_view word) {
    std::size_t length = word.size();
    if (length > kQuotedBytes) {
        length = kQuotedBytes;
        while (length > 0 && (static_cast<std::uint8_t>(word[length]) & 0xC0) == 0x80)
            --length;
    }
    std::string quoted = "\"";
    for (const char character : word.substr(0, length)) {
        const auto byte = static_cast<std::uint8_t>(character);
        quoted.push_back(byte < 0x20 || byte == 0x7F ? '?' : character);
    }
    return quoted + (length < word.size() ? "...\"" : "\"");
}

/// A whole number without sign or leading zeros, at most `largest`; -1 for anything else.
int NumberOf(std::string_view digits, int largest) {
    if (digits.size() > 1 && digits[0] == '0') return -1;
    return NumberOfDigits(digits, largest).value_or(-1);
}

/// The pitch that a word names, 1 to 256, or 0 with the reason.
int PitchOf(std::string_view word, std::string& reason) {
    const std::string_view whole = word;
    const char letter = word.front();
    if (letter < 'a' || letter > 'g') {
        reason = Quoted(whole) + " is no note, r or |";
        return 0;
    }
    word.remove_prefix(1);
    const bool sharp = !word.empty() && word.back() == '#';
    if (sharp) word.remove_suffix(1);
    constexpr int highest_octave = 23;
    const int octave = NumberOf(word, highest_octave);
    if (octave < 0) {
        reason = Quoted(whole) + " is no note: an octave 1 to 23 follows the letter, then # for a sharp";
        return 0;
    }
    for (int lowest = 1; lowest <= kOctave; ++lowest) {
        const Semitone& semitone = *SemitoneOf(lowest);
        if (semitone.letter != letter || semitone.sharp != sharp) continue;
        const int pitch = lowest + kOctave * (octave - OctaveNumberOf(lowest, semitone));
        if (pitch >= 1 && pitch <= kMaxPitch) return pitch;
        reason = Quoted(whole) + " is outside a1# to c23#";
        return 0;
    }
    reason = Quoted(whole) + " is no note: e and b have no sharp";
    return 0;
}

int LengthCodeOf(std::string_view word) {
    for (int code = 0; code < kLengthCodes; ++code) {
        if (LengthTextOf(code) == word) return code;
    }
    return -1;
}

/// Reads what follows the word "tempo".
bool ParseTempo(const TimingTables& tables, std::string_view line, std::int16_t& tempo, std::string& reason) {
    const std::string_view word = TakeWord(line);
    if (word.empty()) {
        reason = "a number follows tempo";
        return false;
    }
    const int number = NumberOf(word, 32767);
    if (TempoIndexOf(tables, static_cast<std::int16_t>(number)) < 0) {
        reason = Quoted(word) + " is not in the tempo list:";
        for (const std::int16_t listed : tables.tempo_list) {
            if (listed == 0) break;
            reason += " " + std::to_string(listed);
        }
        return false;
    }
    if (const std::string_view more = TakeWord(line); !more.empty()) {
        reason = Quoted(more) + " behind the tempo: one entry a line";
        return false;
    }
    tempo = static_cast<std::int16_t>(number);
    return true;
}

/// Reads an entry: its first word, and the line behind it. `pitch_before` is the pitch byte of the entry
/// before.
bool ParseEntry(std::string_view word, std::string_view line, std::uint16_t pitch_before, FileEntry& entry,
                std::string& reason) {
    if (word == "|") {
        entry = {kFileSeparator, pitch_before};
    } else {
        const bool rest = word == "r";
        const int pitch = rest ? kFileRestPitch + 1 : PitchOf(word, reason);
        if (pitch == 0) return false;
        const std::string_view length = TakeWord(line);
        if (length.empty()) {
            reason = "a length follows " + Quoted(word);
            return false;
        }
        const int code = LengthCodeOf(length);
        if (code < 0) {
            reason = Quoted(length) +
                     " is no length: 1/1 1/2 1/4 1/8 1/16 1/32, with . or .. on 1/1 to 1/16, "
                     "with t on 1/4 to 1/32";
            return false;
        }
        entry = {static_cast<std::uint16_t>(rest ? kFileRests + code : code),
                 static_cast<std::uint16_t>(pitch - 1)};
    }
    if (const std::string_view more = TakeWord(line); !more.empty()) {
        reason = Quoted(more) + " behind the entry: one entry a line";
        return false;
    }
    return true;
}

/// One line of the text into the melody. `count` is the number of entries so far.
bool ParseLine(const TimingTables& tables, std::string_view line, Melody& melody, int& count,
               std::string& reason) {
    const std::string_view word = TakeWord(line);
    if (word.empty()) return true;
    if (word == "tempo") {
        if (melody.tempo == 0) return ParseTempo(tables, line, melody.tempo, reason);
        reason = "the tempo comes once";
        return false;
    }
    if (melody.tempo == 0) {
        reason = "the tempo comes first";
        return false;
    }
    FileEntry entry;
    const std::uint16_t before = count == 0 ? 0 : At(melody.list, count - 1).pitch;
    if (!ParseEntry(word, line, before, entry, reason)) return false;
    if (count == kMaxEntries) {
        reason = "entry " + std::to_string(kMaxEntries + 1) + ": a melody has at most " +
                 std::to_string(kMaxEntries);
        return false;
    }
    At(melody.list, count++) = entry;
    return true;
}

/// An entry's line without its end; empty when the text can not name the entry's code or pitch.
std::string LineOf(const FileEntry& entry) {
    switch (KindOfFileCode(entry.code)) {
    case EntryKind::Separator: return "|";
    case EntryKind::Rest: return "r " + LengthTextOf(LengthCodeOfFileCode(entry.code));
    case EntryKind::Note:
        if (entry.pitch > kFileMaxPitch) return {};
        return PitchTextOf(entry.pitch + 1) + " " + LengthTextOf(LengthCodeOfFileCode(entry.code));
    default: return {};
    }
}

} // namespace

std::optional<Melody> ParseMelodyText(const TimingTables& tables, std::string_view text,
                                      MelodyTextFault& fault) {
    fault = {};
    Melody melody;
    int count = 0;
    Lines lines = LinesOf(text);
    std::string_view line;
    while (TakeLine(lines, line)) {
        if (ParseLine(tables, line, melody, count, fault.reason)) continue;
        fault.line = lines.number;
        return std::nullopt;
    }
    if (melody.tempo == 0) {
        fault = {lines.number, "the tempo is missing"};
        return std::nullopt;
    }
    return melody;
}

std::optional<std::string> FormatMelodyText(const Melody& melody, int& fault_entry) {
    std::string text = "tempo " + std::to_string(melody.tempo) + "\n";
    const int count = CountEntries(melody.list);
    for (int i = 0; i < count; ++i) {
        const std::string line = i < kMaxEntries ? LineOf(At(melody.list, i)) : std::string();
        if (line.empty()) {
            fault_entry = i;
            return std::nullopt;
        }
        text += line + "\n";
    }
    fault_entry = -1;
    return text;
}

int LineOfEntry(std::string_view text, int entry) {
    Lines lines = LinesOf(text);
    std::string_view line;
    while (TakeLine(lines, line)) {
        const std::string_view word = TakeWord(line);
        if (word.empty() || word == "tempo") continue;
        if (entry-- == 0) return lines.number;
    }
    return 0;
}

std::string LengthTextOf(int length_code) {
    const NoteLength& length = At(kNoteLengths, length_code);
    std::string text = "1/" + std::to_string(length.division);
    text.append(static_cast<std::size_t>(length.dots), '.');
    return length.triplet ? text + "t" : text;
}

std::string PitchTextOf(int pitch) {
    assert(pitch >= 1 && pitch <= kMaxPitch);
    const Semitone& semitone = *SemitoneOf(pitch);
    std::string text(1, semitone.letter);
    text += std::to_string(OctaveNumberOf(pitch, semitone));
    return semitone.sharp ? text + "#" : text;
}

} // namespace tonex
