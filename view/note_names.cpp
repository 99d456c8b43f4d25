#include "view/note_names.h"

#include "score/int16.h"

#include <bit>

namespace tonex {

namespace {

/// Do-re-mi names of the letters a to g; that of f is two half-width characters.
constexpr std::array<std::wstring_view, 7> kDoremi = {L"ラ", L"シ", L"ド", L"レ", L"ミ", L"ﾌｧ", L"ソ"};

/// By how often the whole note is halved.
constexpr std::array<std::wstring_view, 6> kDivisions = {L"whole",  L"half",      L"quarter",
                                                         L"eighth", L"sixteenth", L"thirty-second"};

/// By the number of dots.
constexpr std::array<std::wstring_view, 3> kDots = {L"", L"dotted ", L"double-dotted "};

constexpr int kPitchOfC = 3; ///< the lowest c

void AppendNumber(CellText& text, int number) {
    if (number < 0) text.Append(L'-');
    unsigned rest = number < 0 ? 0u - static_cast<unsigned>(number) : static_cast<unsigned>(number);
    wchar_t digits[10];
    int count = 0;
    do {
        digits[count++] = static_cast<wchar_t>(L'0' + rest % 10);
        rest /= 10;
    } while (rest != 0);
    while (count > 0)
        text.Append(digits[--count]);
}

/// Do-re-mi names carry no octave number.
CellText NameOf(const Semitone& semitone, int octave, bool doremi, std::wstring_view sharp) {
    CellText text;
    if (doremi) {
        text.Append(At(kDoremi, semitone.letter - 'a'));
    } else {
        text.Append(static_cast<wchar_t>(semitone.letter));
        AppendNumber(text, octave);
    }
    if (semitone.sharp) text.Append(sharp);
    return text;
}

CellText NameOfPitch(std::uint16_t pitch, bool doremi, std::wstring_view sharp) {
    const int number = AsSigned(pitch);
    const Semitone* semitone = SemitoneOf(number);
    if (semitone == nullptr) return {};
    return NameOf(*semitone, OctaveNumberOf(number, *semitone), doremi, sharp);
}

} // namespace

CellText NoteNameOf(std::uint16_t pitch, bool doremi) {
    return pitch == kEmpty ? CellText(L" - ") : NameOfPitch(pitch, doremi, L" #");
}

CellText KeyCaptionOf(int semitone_from_c, int octave, bool doremi) {
    return NameOf(*SemitoneOf(kPitchOfC + semitone_from_c), octave, doremi, L"#");
}

std::wstring LengthNameOf(std::uint16_t entry_code) {
    if (!IsNote(entry_code) && !IsRest(entry_code)) return {};
    const NoteLength& length = At(kNoteLengths, (entry_code - 1) % kLengthCodes);
    std::wstring text(length.triplet ? L"triplet " : At(kDots, length.dots));
    text += At(kDivisions, std::countr_zero(static_cast<unsigned>(length.division)));
    text += IsNote(entry_code) ? L" note" : L" rest";
    text[0] = static_cast<wchar_t>(text[0] - L'a' + L'A');
    return text;
}

bool IsSharp(std::uint16_t pitch) {
    const Semitone* semitone = SemitoneOf(AsSigned(pitch));
    return semitone != nullptr && semitone->sharp;
}

std::wstring EntryNameOf(std::uint16_t entry_code, std::uint16_t pitch, bool doremi) {
    if (entry_code == kEmpty) return L"End";
    if (entry_code == kSeparator) return L"Separator";
    const std::wstring length = LengthNameOf(entry_code);
    if (length.empty()) return L"Unknown entry";
    const CellText name = IsNote(entry_code) ? NameOfPitch(pitch, doremi, L"#") : CellText();
    return name.View().empty() ? length : std::wstring(name.View()) + L", " + length;
}

} // namespace tonex
