#include "view/note_names.h"

namespace tonex {

const NoteName kNoteNames[12] = {
    {L"a", L"ラ", true, -1}, {L"b", L"シ", false, -1}, {L"c", L"ド", false, 0}, {L"c", L"ド", true, 0},
    {L"d", L"レ", false, 0}, {L"d", L"レ", true, 0},   {L"e", L"ミ", false, 0}, {L"f", L"ﾌｧ", false, 0},
    {L"f", L"ﾌｧ", true, 0},  {L"g", L"ソ", false, 0},  {L"g", L"ソ", true, 0},  {L"a", L"ラ", false, 0},
};

namespace {

// The table starts at a-sharp; c is its row 2.
constexpr int kRowOfC = 2;

const NoteName* NameRowOf(std::uint16_t pitch) {
    if (pitch == kEmpty) return nullptr;
    const int semitone = SemitoneOf(static_cast<std::int16_t>(pitch));
    return semitone < 0 ? nullptr : &kNoteNames[semitone];
}

int OctaveOf(std::uint16_t pitch, const NoteName& row) {
    return (static_cast<std::int16_t>(pitch) - 1) / 12 + 2 + row.octave_shift;
}

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

struct LengthName {
    std::wstring_view prefix;
    std::wstring_view value;
};

// By length code, the shortest first. A triplet is named after the notes that stand three to the time of two:
// three triplet eighths fill a quarter.
constexpr LengthName kLengthNames[20] = {
    {L"", L"thirty-second"},
    {L"triplet ", L"thirty-second"},
    {L"", L"sixteenth"},
    {L"dotted ", L"sixteenth"},
    {L"double-dotted ", L"sixteenth"},
    {L"triplet ", L"sixteenth"},
    {L"", L"eighth"},
    {L"dotted ", L"eighth"},
    {L"double-dotted ", L"eighth"},
    {L"triplet ", L"eighth"},
    {L"", L"quarter"},
    {L"dotted ", L"quarter"},
    {L"double-dotted ", L"quarter"},
    {L"triplet ", L"quarter"},
    {L"", L"half"},
    {L"dotted ", L"half"},
    {L"double-dotted ", L"half"},
    {L"", L"whole"},
    {L"dotted ", L"whole"},
    {L"double-dotted ", L"whole"},
};

} // namespace

CellText NoteNameOf(std::uint16_t pitch, bool doremi) {
    if (pitch == kEmpty) return CellText(L" - ");
    const NoteName* row = NameRowOf(pitch);
    if (row == nullptr) return {};
    CellText text(doremi ? row->doremi : row->letter);
    if (!doremi) AppendNumber(text, OctaveOf(pitch, *row));
    if (row->sharp) text.Append(L" #");
    return text;
}

CellText KeyCaptionOf(int semitone_from_c, int octave, bool doremi) {
    const NoteName& row = kNoteNames[(semitone_from_c + kRowOfC) % 12];
    CellText text(doremi ? row.doremi : row.letter);
    if (!doremi) AppendNumber(text, octave);
    if (row.sharp) text.Append(L'#');
    return text;
}

std::wstring LengthNameOf(std::uint16_t entry_code) {
    if (!IsNote(entry_code) && !IsRest(entry_code)) return {};
    const LengthName& name = kLengthNames[(entry_code - 1) % 20];
    std::wstring text(name.prefix);
    text += name.value;
    text += IsNote(entry_code) ? L" note" : L" rest";
    text[0] = static_cast<wchar_t>(text[0] - L'a' + L'A');
    return text;
}

bool IsSharp(std::uint16_t pitch) {
    const NoteName* row = NameRowOf(pitch);
    return row != nullptr && row->sharp;
}

std::wstring EntryNameOf(std::uint16_t entry_code, std::uint16_t pitch, bool doremi) {
    if (entry_code == kEmpty) return L"End";
    if (entry_code == kSeparator) return L"Separator";
    const std::wstring length = LengthNameOf(entry_code);
    if (length.empty()) return L"Unknown entry";
    const NoteName* row = NameRowOf(pitch);
    if (!IsNote(entry_code) || row == nullptr) return length;
    CellText name(doremi ? row->doremi : row->letter);
    if (!doremi) AppendNumber(name, OctaveOf(pitch, *row));
    if (row->sharp) name.Append(L'#');
    return std::wstring(name.View()) + L", " + length;
}

} // namespace tonex
