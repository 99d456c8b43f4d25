// Random commands on the record of the window, compared after each with a second model.
//
//   random_editor [--seed S] [--commands N]
//
// The commands follow from the seed alone. A failure prints the seed and the shortest run of commands found
// that shows it. Each run is a process of its own, so that a crash is a failure like any other.

#include "score/document_commands.h"
#include "tests/random_editor_model.h"
#include "tests/set_up_window.h"
#include "view/edit_commands.h"

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

using namespace tonex;
using namespace tonex::testing;

constexpr const wchar_t* kPath = L"C:\\Melody\\RANDOM.SND";
constexpr int kTempos[] = {640, 480, 320, 240, 214, 160, 128, 120, 108, 96, 92, 80, 72, 70,
                           64,  60,  58,  54,  50,  48,  46,  44,  40,  38, 36, 34, 32, 30};

// --- Commands

enum class Kind {
    WhiteKey,
    BlackKey,
    NoteLength,
    RestLength,
    Character,
    Move,
    Step,
    Range,
    MouseUp,
    Scroll,
    StripClick,
    Copy,
    Cut,
    Delete,
    Insert,
    Paste,
    Undo,
    OctaveUp,
    OctaveDown,
    HalfToneUp,
    HalfToneDown,
    Doremi,
    TypeTempo,
    ChooseTempo,
    New,
    Save,
    SaveAndLoad,
    LoadForeign,
    Resize,
    Count
};

struct KindRow {
    const char* name;
    int weight; ///< how often, in a thousand or so
};

constexpr KindRow kKinds[] = {
    {"white key", 150},
    {"black key", 100},
    {"note length", 60},
    {"rest length", 60},
    {"character", 80},
    {"move cursor", 110},
    {"step cursor", 80},
    {"select range", 70},
    {"mouse up", 10},
    {"scroll", 40},
    {"strip click", 30},
    {"copy", 30},
    {"cut", 25},
    {"delete", 30},
    {"insert", 30},
    {"paste", 50},
    {"undo", 40},
    {"octave up", 8},
    {"octave down", 8},
    {"half tone up", 12},
    {"half tone down", 12},
    {"do-re-mi", 5},
    {"type tempo", 5},
    {"choose tempo", 5},
    {"new", 1},
    {"save", 3},
    {"save and load", 2},
    {"load foreign file", 4},
    {"resize", 3},
};
static_assert(std::size(kKinds) == static_cast<std::size_t>(Kind::Count));

std::uint64_t Mix(std::uint64_t x) {
    x += 0x9E3779B97F4A7C15u;
    x = (x ^ (x >> 30)) * 0xBF58476D1CE4E5B9u;
    x = (x ^ (x >> 27)) * 0x94D049BB133111EBu;
    return x ^ (x >> 31);
}

struct Command {
    Kind kind;
    std::uint32_t a, b; ///< raw numbers; what they mean depends on the window they meet
};

std::array<Kind, 4096> BuildKindTable() {
    std::array<Kind, 4096> table{};
    int sum = 0;
    for (const KindRow& row : kKinds)
        sum += row.weight;
    std::size_t filled = 0;
    int so_far = 0;
    for (int kind = 0; kind < static_cast<int>(Kind::Count); ++kind) {
        so_far += kKinds[kind].weight;
        const auto end = static_cast<std::size_t>(so_far) * table.size() / static_cast<std::size_t>(sum);
        while (filled < end)
            table[filled++] = static_cast<Kind>(kind);
    }
    return table;
}

const std::array<Kind, 4096> kKindTable = BuildKindTable();

Command CommandAt(std::uint64_t seed, std::uint64_t index) {
    const std::uint64_t first = Mix(seed * 0x100000001B3u + index);
    const std::uint64_t second = Mix(first);
    return {kKindTable[first % kKindTable.size()], static_cast<std::uint32_t>(second),
            static_cast<std::uint32_t>(second >> 32)};
}

int Below(std::uint32_t number, int limit) {
    return static_cast<int>(number % static_cast<std::uint32_t>(limit));
}

// A column: often near the end or the start, sometimes outside.
int ColumnOf(std::uint32_t number, const Model& model) {
    const auto rest = number / 8;
    switch (number % 8) {
    case 0: return model.Cols() - 1;
    case 1: return model.Cols() - 1 - Below(rest, 5);
    case 2: return Below(rest, 4);
    case 3: return Below(rest, 600) - 40;
    default: return Below(rest, model.Cols());
    }
}

wchar_t CharacterOf(std::uint32_t number) {
    return L"++--x "[number % 6];
}

// --- Files that another program might have made

struct ForeignFile {
    std::vector<std::uint8_t> bytes;
    std::vector<std::uint8_t> pairs; ///< of the edit block, without its end
    int tempo;
};

int ForeignSize(std::uint32_t number) {
    constexpr int sizes[] = {0, 1, 2, 5, 12, 28, 29, 30, 31, 60, 300, 500, 507, 508, 509, 510, 511};
    return sizes[number % std::size(sizes)];
}

ForeignFile MakeForeignFile(std::uint32_t a, std::uint32_t b) {
    ForeignFile file;
    const bool plain_codes = a % 4 != 0;
    const bool odd_pitches = a % 3 == 0;
    std::uint64_t state = Mix(b);
    const int size = ForeignSize(a / 16);
    for (int i = 0; i < size; ++i) {
        state = Mix(state);
        int code = static_cast<int>(state % 20);
        if (state >> 8 & 1) code += (state >> 9 & 3) == 0 ? 100 : 0;
        if ((state >> 16) % 16 == 0) code = 200;
        if (!plain_codes) code = static_cast<int>((state >> 20) % 256);
        // The code that ends the melody is rare, so that what comes before it is long.
        if (code == 78 && (state >> 30) % 8 != 0) code = 79;
        const int pitch =
            odd_pitches ? static_cast<int>((state >> 40) % 256) : 26 + static_cast<int>((state >> 40) % 49);
        if (pitch == 255 && code == 255) continue;
        file.pairs.push_back(static_cast<std::uint8_t>(pitch));
        file.pairs.push_back(static_cast<std::uint8_t>(code));
    }
    file.tempo = b % 3 == 0 ? 30 + Below(b / 3, 611) : kTempos[b % std::size(kTempos)];
    file.bytes = {7,
                  0,
                  4,
                  0,
                  255,
                  255,
                  static_cast<std::uint8_t>(a % 3),
                  0,
                  static_cast<std::uint8_t>(file.tempo % 256),
                  static_cast<std::uint8_t>(file.tempo / 256)};
    file.bytes.insert(file.bytes.end(), file.pairs.begin(), file.pairs.end());
    file.bytes.insert(file.bytes.end(), {255, 255});
    return file;
}

// --- The editor and its model, side by side

struct Editor {
    std::unique_ptr<sndmain> window;
    Model model;
    std::string fault; ///< of a command itself; empty = good
};

// Sound and scale differ from seed to seed.
Editor StartEditor(std::uint64_t seed) {
    constexpr float scales[] = {15, 12, 10, 7.5f};
    Editor editor;
    editor.window = SetUpWindow(scales[seed % 4]);
    desktop::Current().wave_outputs = seed / 4 % 3 == 0 ? 0 : 1;
    editor.model.offset = editor.window->StaffOffset;
    return editor;
}

void LoadBytes(Editor& editor, const std::vector<std::uint8_t>& bytes) {
    desktop::Current().files[kPath].bytes = bytes;
    editor.window->document.current_path = kPath;
    if (LoadDocument(*editor.window, kSuffixPc)) editor.fault = "a sound file was refused";
}

void RunSave(Editor& editor, bool load_again) {
    sndmain& window = *editor.window;
    Model& model = editor.model;
    desktop::Current().files.erase(kPath);
    const SndResult result = SaveDocument(window, kPath);
    const bool in_list = std::find(std::begin(kTempos), std::end(kTempos), model.tempo) != std::end(kTempos);
    if ((result == kSndNotFound) != !in_list) editor.fault = "saving took a tempo that is not in the list";
    const int unwritable = model.FirstUnwritable();
    if (result == kSndDone && unwritable < model.Size()) editor.fault = "saving took what no file can hold";
    if (result == kSndWriteError && unwritable == model.Size()) editor.fault = "saving refused a good score";
    if (result == kSndWriteError) model.Select(unwritable, unwritable);
    if (result != kSndDone && result != kSndFull) return;

    const auto bytes = desktop::Current().files[kPath].bytes;
    std::int16_t tempo = 0;
    FileList list{};
    if (DecodeSnd(bytes, tempo, list) != kSndDone) editor.fault = "what was saved can not be read";
    if (tempo != model.tempo) editor.fault = "another tempo was saved";
    const int saved = CountEntries(list);
    if (result == kSndDone && saved != model.Size()) editor.fault = "entries were lost in saving";
    if (saved > model.Size()) editor.fault = "more entries were saved than there are";
    if (!load_again || !editor.fault.empty()) return;
    LoadBytes(editor, bytes);
    model.Reload(saved);
}

void RunForeign(Editor& editor, const Command& command) {
    const ForeignFile file = MakeForeignFile(command.a, command.b);
    LoadBytes(editor, file.bytes);
    editor.model.Load(file.pairs, file.tempo);
}

void RunTempo(Editor& editor, const Command& command) {
    Model& model = editor.model;
    if (command.kind == Kind::ChooseTempo) {
        const int index = Below(command.a, 28);
        TempoComboClick(*editor.window, index);
        model.tempo = kTempos[index];
    } else {
        model.tempo = 30 + Below(command.a, 611);
        TempoComboChange(*editor.window, std::to_wstring(model.tempo));
    }
    model.changed = true;
    if (TempoForWriting(*editor.window) != model.tempo) editor.fault = "the tempo is another";
}

void RunSelect(Editor& editor, const Command& command) {
    Model& model = editor.model;
    int column = ColumnOf(command.a, model);
    int far_end = column;
    if (command.kind == Kind::Step) column = far_end = model.far + (command.a % 2 == 0 ? 1 : -1);
    if (command.kind == Kind::Range && command.b % 2 == 0) far_end = column + Below(command.b / 2, 41) - 20;
    if (command.kind == Kind::Range && command.b % 2 == 1) {
        column = model.col; // an end is dragged on
        far_end = ColumnOf(command.a, model);
    }
    grdScore_SelChange(*editor.window, column, far_end);
    model.Select(column, far_end);
}

void Run(Editor& editor, const Command& command) {
    sndmain& window = *editor.window;
    Model& model = editor.model;
    const std::uint32_t a = command.a;
    model.view = {window.grdScore.view.LeftCol, window.score.first_shown, window.score.strip_cursor};
    model.in_view.reset();
    model.view_restored.reset();
    switch (command.kind) {
    case Kind::WhiteKey: {
        const int steps[7] = {0, 2, 4, 5, 7, 9, 11};
        const int key = Below(a, 29);
        kenWhite_Click(window, key);
        model.Key(27 + key / 7 * 12 + steps[key % 7]);
        break;
    }
    case Kind::BlackKey: {
        const int steps[5] = {1, 3, 6, 8, 10};
        const int key = Below(a, 20);
        kenBlack_Click(window, key);
        model.Key(27 + key / 5 * 12 + steps[key % 5]);
        break;
    }
    case Kind::NoteLength:
        cbtNote_Click(window, 1 + Below(a, 20));
        model.LengthButton(1 + Below(a, 20));
        break;
    case Kind::RestLength:
        cbtNote_Click(window, 101 + Below(a, 20));
        model.LengthButton(101 + Below(a, 20));
        break;
    case Kind::Character:
        grdScore_KeyPress(window, CharacterOf(a));
        model.Character(CharacterOf(a));
        break;
    case Kind::Move:
    case Kind::Step:
    case Kind::Range: RunSelect(editor, command); break;
    case Kind::MouseUp: grdScore_MouseUp(window); break;
    case Kind::Scroll: grdScore_Scroll(window, ColumnOf(a, model)); break;
    case Kind::StripClick:
        model.StripClick(window.score.first_shown, Below(a, 30));
        imgNote_Click(window, Below(a, 30));
        break;
    case Kind::Copy:
        mnuCopy_Click(window);
        model.CopyColumns();
        break;
    case Kind::Cut:
        mnuCut_Click(window);
        model.CopyColumns();
        model.Delete();
        break;
    case Kind::Delete:
        mnuDelete_Click(window);
        model.Delete();
        break;
    case Kind::Insert:
        mnuInsert_Click(window);
        model.Insert();
        break;
    case Kind::Paste:
        mnuPaste_Click(window);
        model.Paste();
        break;
    case Kind::Undo:
        SwapUndo(window);
        model.Undo();
        break;
    case Kind::OctaveUp:
        mnuOctUp_Click(window);
        model.Octave(1);
        break;
    case Kind::OctaveDown:
        mnuOctDown_Click(window);
        model.Octave(-1);
        break;
    case Kind::HalfToneUp:
        mnuSoundUp_Click(window);
        model.HalfTone(1);
        break;
    case Kind::HalfToneDown:
        mnuSoundDown_Click(window);
        model.HalfTone(-1);
        break;
    case Kind::Doremi:
        ToggleDoremi(window);
        model.doremi = !model.doremi;
        break;
    case Kind::TypeTempo:
    case Kind::ChooseTempo: RunTempo(editor, command); break;
    case Kind::New:
        ClearAll(window);
        model.Clear();
        break;
    case Kind::Save: RunSave(editor, false); break;
    case Kind::SaveAndLoad: RunSave(editor, true); break;
    case Kind::LoadForeign: RunForeign(editor, command); break;
    case Kind::Resize:
        LayoutWindow(window, kMinClientWidth + Below(a, 3000), kMinClientHeight + Below(command.b, 3000));
        break;
    case Kind::Count: break;
    }
}

// --- Checks. Each gives what is wrong, or null.

bool SameTable(const std::array<Entry, kSlots>& table, const std::vector<Entry>& entries) {
    static_assert(sizeof(Entry) == 6, "entries are compared as bytes");
    static const std::array<Entry, kSlots> empty{};
    const std::size_t count = entries.size();
    if (count > kMaxEntries) return false;
    if (count > 0 && std::memcmp(table.data(), entries.data(), count * sizeof(Entry)) != 0) return false;
    return std::memcmp(table.data() + count, empty.data(), (kSlots - count) * sizeof(Entry)) == 0;
}

const CellText& ExpectedText(std::uint16_t pitch, bool doremi) {
    static std::vector<CellText> texts[2] = {std::vector<CellText>(65536), std::vector<CellText>(65536)};
    static std::vector<bool> known[2] = {std::vector<bool>(65536), std::vector<bool>(65536)};
    if (!known[doremi][pitch]) {
        texts[doremi][pitch] = CellText(ModelText(pitch, doremi));
        known[doremi][pitch] = true;
    }
    return texts[doremi][pitch];
}

const char* CheckScore(const sndmain& window, const Model& model) {
    const Score& score = window.score;
    if (score.end_count != model.Size() + 1) return "the end count is another";
    if (!SameTable(score.sound, model.entries)) return "the score is another";
    if (score.changed != model.changed) return "the changed flag is another";
    if (window.current_length != model.length) return "the current length is another";
    if (window.imgNow.Picture != model.length) return "another current length is shown";
    return nullptr;
}

const char* CheckUndo(const sndmain& window, const Model& model) {
    const UndoCopy& undo = window.undo;
    const Model::Copy& expected = model.undo;
    if (undo.score.end_count != static_cast<int>(expected.entries.size()) + 1)
        return "the undo copy's end count";
    if (!SameTable(undo.score.sound, expected.entries)) return "the undo copy's score";
    if (undo.current_length != expected.length) return "the undo copy's length";
    if (undo.view.Col != expected.col || undo.view.ColSel != expected.far) return "the undo copy's selection";
    if (undo.view.LeftCol != expected.view.left || undo.score.first_shown != expected.view.first)
        return "the undo copy's view";
    if (undo.score.strip_cursor != expected.view.strip) return "the undo copy's strip cursor";
    if (window.clipboard.columns != model.clipboard) return "the clipboard is another";
    if (window.clipboard.filled != model.filled) return "the clipboard's flag is another";
    return nullptr;
}

const char* CheckGrid(const sndmain& window, const Model& model) {
    const ScoreGrid& grid = window.grdScore;
    if (grid.Cols != model.Cols()) return "the column count";
    if (grid.view.Col != model.col || grid.view.ColSel != model.far) return "cursor or selection";
    if (grid.view.LeftCol < 0 || grid.view.LeftCol > std::max(0, model.Cols() - 30))
        return "the first visible column";
    for (int column = 0; column < grid.Cols; ++column) {
        const std::uint16_t pitch = At(window.score.sound, column).pitch;
        if (At(grid.Text, column) != ExpectedText(pitch, model.doremi)) return "a cell's text";
    }
    return nullptr;
}

const char* CheckView(const sndmain& window, const Model& model) {
    const Score& score = window.score;
    const int left = window.grdScore.view.LeftCol;
    if (score.first_shown != left) return "grid and strip show different columns";
    if (score.strip_cursor < 0 || score.strip_cursor > 29) return "the strip cursor is outside the strip";
    const int place = model.col - score.first_shown;
    if (place >= 0 && place < 30 && score.strip_cursor != place)
        return "the strip cursor is not at the cursor";
    if (model.in_view && (*model.in_view < left || *model.in_view >= left + 30))
        return "the cursor is out of view";
    if (!model.view_restored) return nullptr;
    const Model::View& view = *model.view_restored;
    if (left != view.left || score.first_shown != view.first) return "the view was not restored";
    return score.strip_cursor == view.strip ? nullptr : "the strip cursor was not restored";
}

const char* CheckStrip(const sndmain& window, const Model& model) {
    for (int i = 0; i < 30; ++i) {
        const NoteImage& image = At(window.imgNote, i);
        const int slot = window.score.first_shown + i;
        const int picture = slot < model.Size() ? ModelPicture(At(model.entries, slot)) : 0;
        if (image.Visible != (picture != 0)) return "a picture's visibility";
        if (image.place.Left != 735 + i * 390 + model.offset || image.place.Width != 300)
            return "a picture's place";
        if (picture == 0) continue;
        const Entry& entry = At(model.entries, slot);
        const bool bar = picture == 58;
        const int top = bar ? 1170 : static_cast<std::int16_t>(entry.position);
        if (image.Picture != picture) return "a picture";
        if (image.place.Top != top || image.place.Height != 480) return "a picture's height";
        const bool sharp =
            entry.code >= 1 && entry.code <= 20 && ExpectedText(entry.pitch, false).View().ends_with(L"#");
        if (image.Sharp != sharp) return "a sharp sign";
    }
    return nullptr;
}

const char* CheckPressed(const sndmain& window, const Model& model) {
    int button = 0, pitch = 0;
    if (model.col == model.far && model.col < model.Size()) {
        const Entry& entry = At(model.entries, model.col);
        if (entry.code >= 1 && entry.code <= 40) button = entry.code;
        if (entry.code >= 1 && entry.code <= 20) pitch = entry.pitch;
    }
    for (int i = 1; i <= 40; ++i) {
        const int picture = At(window.cbtNote, i - 1).Picture;
        if (picture != (i == button ? i + 40 : i)) return "a length button's picture";
    }
    const bool black[12] = {false, true, false, true, false, false, true, false, true, false, true, false};
    std::size_t white_key = 0, black_key = 0;
    for (int p = 27; p <= 75; ++p) {
        const bool is_black = black[(p - 27) % 12];
        const auto colour =
            is_black ? window.kenBlack[black_key++].BackColor : window.kenWhite[white_key++].BackColor;
        const auto normal = is_black ? 0u : 0xFFFFFFu;
        if ((colour != normal) != (p == pitch)) return "a piano key's colour";
    }
    return nullptr;
}

const char* CheckEnabling(const sndmain& window, const Model& model) {
    const bool some = model.Size() > 0;
    const std::pair<MenuItem, bool> expected[] = {
        {MenuItem::mnuCut, some},
        {MenuItem::mnuCopy, some},
        {MenuItem::mnuDelete, some},
        {MenuItem::mnuInsert, some && model.Size() < 508},
        {MenuItem::mnuPreview, some && desktop::Current().wave_outputs > 0},
        {MenuItem::mnuPaste, model.filled && model.Size() <= 508},
    };
    const auto rows = ToolButtonRows();
    for (const auto& [item, enabled] : expected) {
        if (window.item(item).Enabled != enabled) return "a menu item's enabling";
        for (std::size_t i = 0; i < rows.size(); ++i) {
            if (rows[i].item == item && window.toolbar_enabled[i] != enabled)
                return "a toolbar button's enabling";
        }
    }
    return window.item(MenuItem::mnuDoremi).Checked == model.doremi ? nullptr : "the check mark of the names";
}

std::string Check(const Editor& editor) {
    using Checker = const char* (*)(const sndmain&, const Model&);
    constexpr Checker checkers[] = {CheckScore, CheckUndo,    CheckGrid,    CheckView,
                                    CheckStrip, CheckPressed, CheckEnabling};
    if (!editor.fault.empty()) return editor.fault;
    for (const Checker checker : checkers) {
        if (const char* fault = checker(*editor.window, editor.model)) return fault;
    }
    return {};
}

// --- Runs in processes of their own

struct Progress {
    std::uint64_t next; ///< place of the command that runs or ran last
    char fault[200];
};

Progress* SharedProgress() {
    void* memory = mmap(nullptr, sizeof(Progress), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) std::abort();
    return static_cast<Progress*>(memory);
}

/// Runs commands `from` to `to`, but not the dropped ones, on a fresh editor. True when all was well.
bool RunCommands(std::uint64_t seed, std::uint64_t from, std::uint64_t to, const std::vector<bool>& dropped,
                 Progress& progress) {
    Editor editor = StartEditor(seed);
    for (std::uint64_t i = from; i < to; ++i) {
        if (i - from < dropped.size() && dropped[i - from]) continue;
        progress.next = i;
        Run(editor, CommandAt(seed, i));
        const std::string fault = Check(editor);
        if (!fault.empty()) {
            std::snprintf(progress.fault, sizeof progress.fault, "%s", fault.c_str());
            return false;
        }
        desktop::Current().log.clear();
        desktop::Current().messages.clear();
    }
    return true;
}

bool RunInProcess(std::uint64_t seed, std::uint64_t from, std::uint64_t to, const std::vector<bool>& dropped,
                  Progress& progress, bool quiet) {
    progress = Progress();
    std::snprintf(progress.fault, sizeof progress.fault, "the editor ended");
    std::fflush(stdout);
    const pid_t child = fork();
    if (child < 0) std::abort();
    if (child == 0) {
        if (quiet && std::freopen("/dev/null", "w", stderr) == nullptr) _exit(2);
        _exit(RunCommands(seed, from, to, dropped, progress) ? 0 : 1);
    }
    int status = 0;
    if (waitpid(child, &status, 0) != child) std::abort();
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

// --- Shortest run that shows a failure

void PrintCommands(std::uint64_t seed, std::uint64_t from, std::uint64_t to,
                   const std::vector<bool>& dropped) {
    for (std::uint64_t i = from; i < to; ++i) {
        if (dropped[i - from]) continue;
        const Command command = CommandAt(seed, i);
        std::printf("  %llu: %s (%u, %u)\n", static_cast<unsigned long long>(i),
                    kKinds[static_cast<int>(command.kind)].name, command.a, command.b);
    }
}

void ReportFailure(std::uint64_t seed, Progress& progress) {
    const std::uint64_t end = progress.next + 1;
    std::printf("seed %llu fails at command %llu: %s\n", static_cast<unsigned long long>(seed),
                static_cast<unsigned long long>(progress.next), progress.fault);
    std::printf("looking for the shortest tail of commands ...\n");

    const auto give_up = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    const auto fails = [&](std::uint64_t from, const std::vector<bool>& dropped) {
        return !RunInProcess(seed, from, end, dropped, progress, true) && progress.next + 1 == end;
    };
    // A tail that fails on a fresh editor: twice as long until one is found.
    std::uint64_t length = 1;
    while (length < end && !fails(end - length, {}))
        length *= 2;
    length = std::min(length, end);
    const std::uint64_t from = end - length;

    // Then commands are dropped, in ever smaller pieces, as long as the rest still fails. What is shown is a
    // failure at the same command.
    std::vector<bool> dropped(static_cast<std::size_t>(length), false);
    for (std::size_t piece = std::max<std::size_t>(dropped.size() / 2, 1);; piece /= 2) {
        for (std::size_t start = 0; start + 1 < dropped.size(); start += piece) {
            auto tried = dropped;
            const std::size_t stop = std::min(start + piece, dropped.size() - 1);
            std::fill(tried.begin() + static_cast<std::ptrdiff_t>(start),
                      tried.begin() + static_cast<std::ptrdiff_t>(stop), true);
            if (tried != dropped && fails(from, tried)) dropped = tried;
        }
        if (piece == 1 || std::chrono::steady_clock::now() > give_up) break;
    }
    fails(from, dropped);
    std::printf("shown on a fresh editor by these %d commands: %s\n",
                static_cast<int>(std::count(dropped.begin(), dropped.end(), false)), progress.fault);
    PrintCommands(seed, from, end, dropped);
}

bool ReadNumber(const char* text, std::uint64_t& number) {
    char* end = nullptr;
    number = std::strtoull(text, &end, 10);
    return *text != '\0' && *end == '\0';
}

} // namespace

int main(int argc, char** argv) {
    std::uint64_t seed = 1, commands = 1000000;
    for (int i = 1; i < argc; i += 2) {
        const std::string option = argv[i];
        std::uint64_t* number = option == "--seed" ? &seed : option == "--commands" ? &commands : nullptr;
        if (number == nullptr || i + 1 >= argc || !ReadNumber(argv[i + 1], *number)) {
            std::fprintf(stderr, "usage: random_editor [--seed S] [--commands N]\n");
            return 2;
        }
    }

    const auto start = std::chrono::steady_clock::now();
    Progress* progress = SharedProgress();
    if (!RunInProcess(seed, 0, commands, {}, *progress, false)) {
        ReportFailure(seed, *progress);
        return 1;
    }
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    std::printf("seed %llu: %llu commands, editor and model agree after each (%.1f s)\n",
                static_cast<unsigned long long>(seed), static_cast<unsigned long long>(commands),
                seconds.count());
    return 0;
}
