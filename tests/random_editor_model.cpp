#include "tests/random_editor_model.h"

#include "score/rows.h"

#include <algorithm>

namespace tonex::testing {

namespace {

bool Fits16(int value) {
    return value >= -32768 && value <= 32767;
}

int Signed(std::uint16_t cell) {
    return cell < 32768 ? cell : cell - 65536;
}

std::uint16_t Cell(int value) {
    return static_cast<std::uint16_t>(value & 0xFFFF);
}

bool Note(const Entry& entry) {
    return entry.code >= 1 && entry.code <= 20;
}

} // namespace

bool Model::Position(int pitch, std::uint16_t& cell) const {
    if (Cell(pitch) == 65535) {
        cell = 1200;
        return true;
    }
    const int steps[12] = {7, 6, 5, 5, 4, 4, 3, 2, 2, 1, 1, 0};
    const int d = pitch - 1;
    const int rise = (d / 12 - 3) * 420;
    const int step = d % 12 < 0 ? 0 : steps[d % 12];
    const int place = step * 60 + 1200 - rise;
    if (!Fits16(d) || !Fits16(rise) || !Fits16(place) || !Fits16(place + offset)) return false;
    cell = Cell(place + offset);
    return true;
}

void Model::Save() {
    undo.entries = entries;
    undo.length = length;
    undo.col = col;
    undo.far = far;
    undo.view = view;
}

void Model::Enter(int code, int pitch) {
    if (col != far) return;
    Entry entry;
    entry.code = Cell(code);
    entry.pitch = Cell(pitch);
    if (!Position(pitch, entry.position)) entry.position = 1200;
    changed = true;
    if (col == Size()) {
        entries.push_back(entry);
        if (Size() < 509) ++col;
    } else {
        Entry& old = At(entries, col);
        if (Note(old) && entry.pitch != 65535) entry.code = old.code;
        old = entry;
        if (col < 508 || Size() < 509) ++col;
    }
    far = col;
    in_view = col;
}

void Model::Key(int pitch) {
    Save();
    Enter(length, pitch);
}

void Model::LengthButton(int index) {
    if (col != far) return;
    if (index > 100) {
        Save();
        Enter(index - 80, 65535);
        return;
    }
    changed = true;
    if (col == Size() || !Note(At(entries, col))) {
        length = index;
        return;
    }
    Save();
    At(entries, col).code = Cell(index);
    if (col != 508) ++col;
    far = col;
    in_view = col;
}

void Model::Character(wchar_t character) {
    if (col == Size()) return;
    const Entry entry = At(entries, col);
    if (Signed(entry.code) <= 0) return;
    Save();
    if (col != far || !Note(entry)) return;
    const int pitch = Signed(entry.pitch);
    if (character == L'+' && pitch <= 74) Enter(length, pitch + 1);
    if (character == L'-' && pitch >= 28) Enter(length, pitch - 1);
}

void Model::Select(int column, int far_end) {
    const int old_col = col, old_far = far;
    col = std::max(0, std::min(column, Cols() - 1));
    far = std::max(0, std::min(far_end, Cols() - 1));
    in_view = far == old_far && col != old_col ? col : far;
}

void Model::StripClick(int first_shown, int image) {
    const int column = first_shown + image;
    if (column < Cols()) col = far = column;
}

void Model::CopyColumns() {
    if (Lo() == Size()) return;
    const int behind = std::min(Hi() + 1, Size());
    clipboard.assign(entries.begin() + Lo(), entries.begin() + behind);
    filled = true;
}

void Model::Delete() {
    Save();
    if (Lo() == Size()) return;
    const int lo = Lo();
    const int behind = std::min(Hi() + 1, Size());
    entries.erase(entries.begin() + lo, entries.begin() + behind);
    col = far = lo;
    changed = true;
    in_view = col;
}

void Model::Insert() {
    Save();
    const int lo = Lo();
    int count = Hi() - lo + 1;
    if (Size() + 1 + count > 509) count = 509 - (Size() + 1);
    if (count <= 0) return;
    const bool backwards = far < col;
    entries.insert(entries.begin() + lo, static_cast<std::size_t>(count), Entry{0, 0, 0});
    col = backwards ? lo + count - 1 : lo;
    far = backwards ? lo : lo + count - 1;
    changed = true;
}

void Model::Paste() {
    Save();
    const int lo = Lo();
    int count = static_cast<int>(clipboard.size());
    if (Size() + 1 + count > 510) count = 510 - (Size() + 1);
    if (count <= 0) return;
    entries.insert(entries.begin() + lo, clipboard.begin(), clipboard.begin() + count);
    col = far = std::min(lo + count, Cols() - 1);
    changed = true;
    in_view = col;
}

void Model::Octave(int direction) {
    Save();
    auto moved = entries;
    for (Entry& entry : moved) {
        if (!Note(entry)) continue;
        const int pitch = Signed(entry.pitch) + 12 * direction;
        const int place = Signed(entry.position) - 420 * direction;
        if (!Fits16(pitch) || !Fits16(place)) return;
        entry.pitch = Cell(pitch);
        entry.position = Cell(place);
    }
    entries = moved;
    changed = true;
}

void Model::HalfTone(int direction) {
    Save();
    auto moved = entries;
    for (Entry& entry : moved) {
        if (!Note(entry)) continue;
        const int pitch = Signed(entry.pitch) + direction;
        if (!Fits16(pitch) || !Position(pitch, entry.position)) return;
        entry.pitch = Cell(pitch);
    }
    entries = moved;
    changed = true;
}

void Model::Undo() {
    const Copy before = undo;
    Save();
    entries = before.entries;
    length = before.length;
    col = before.col;
    far = before.far;
    changed = true;
    view_restored = before.view;
}

void Model::Clear() {
    entries.clear();
    col = far = 0;
    tempo = 120;
    changed = false;
    view_restored = View();
}

void Model::Load(const std::vector<std::uint8_t>& pairs, int tempo_of_file) {
    Clear();
    tempo = tempo_of_file;
    for (std::size_t i = 0; i + 1 < pairs.size() && Size() < 509; i += 2) {
        const int pitch = pairs[i];
        const int code = pairs[i + 1];
        if ((pitch == 255 && code == 255) || code == 78) break;
        Entry entry{0, 0, 0};
        if (code < 20) {
            entry.code = Cell(code + 1);
            entry.pitch = Cell(pitch + 1);
            Position(pitch + 1, entry.position);
        } else if (code != 200 && code != 79) {
            entry = {Cell(code - 79), 65535, 1200};
        }
        entries.push_back(entry);
    }
    col = far = std::min(Size(), 508);
    view_restored = View{0, 0, Size() % 30};
}

int Model::FirstUnwritable() const {
    const auto found = std::find_if(entries.begin(), entries.end(), [](const Entry& entry) {
        if (Note(entry)) return entry.pitch < 1 || entry.pitch > 256;
        return entry.code > 40;
    });
    return static_cast<int>(found - entries.begin());
}

void Model::Reload(int entries_saved) {
    entries.resize(static_cast<std::size_t>(entries_saved));
    for (Entry& entry : entries) {
        if (Note(entry)) Position(Signed(entry.pitch), entry.position);
        if (entry.code > 20) entry = {entry.code, 65535, 1200};
    }
    col = far = std::min(Size(), 508);
    changed = false;
    view_restored = View{0, 0, Size() % 30};
}

std::wstring ModelText(std::uint16_t pitch, bool doremi) {
    if (pitch == 65535) return L" - ";
    const int d = Signed(pitch) - 1;
    if (d % 12 < 0) return L"";
    const std::wstring letters[12] = {L"a#", L"b", L"c",  L"c#", L"d",  L"d#",
                                      L"e",  L"f", L"f#", L"g",  L"g#", L"a"};
    const std::wstring names[12] = {L"ラ#", L"シ", L"ド",  L"ド#", L"レ",  L"レ#",
                                    L"ミ",  L"ﾌｧ", L"ﾌｧ#", L"ソ",  L"ソ#", L"ラ"};
    std::wstring text = doremi ? names[d % 12] : letters[d % 12];
    const bool sharp = text.back() == L'#';
    if (sharp) text.pop_back();
    const int octave = d / 12 + 2 - (d % 12 < 2 ? 1 : 0);
    if (!doremi) text += std::to_wstring(octave);
    if (sharp) text += L" #";
    return text;
}

int ModelPicture(const Entry& entry) {
    if (entry.code == 0) return 58;
    if (entry.code > 40) return 59;
    return entry.code <= 17 && Signed(entry.pitch) >= 50 ? entry.code + 40 : entry.code;
}

} // namespace tonex::testing
