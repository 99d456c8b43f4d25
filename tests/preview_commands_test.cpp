// Preview: which notes are played, the temporary files, the players, what the user is told, and that nothing
// is left behind whatever fails.
#include "app/sndmain.h"
#include "app/window_routes.h"
#include "platform/files.h"
#include "preview/leftover_services.h"
#include "preview/preview_commands.h"
#include "preview/synthesis.h"
#include "preview/wav_file_services.h"
#include "score/snd_file.h"
#include "score/temporary_names.h"
#include "tests/desktop/desktop.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

namespace tonex::preview_commands_test {

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr const wchar_t* kSndPath = L"C:\\Temp\\$$123456.snd";
constexpr const wchar_t* kWavPath = L"C:\\Temp\\$$123456.wav";

/// A window with an empty score, ready to play, on a fresh desktop whose clock stands at 12:34:56.
struct Preview : ::testing::Test {
    desktop::Desktop& desk = desktop::Reset();
    sndmain window;

    Preview() {
        ClearScore(window.score);
        window.tables = BuildTimingTables();
        window.TempoCombo.Text = L" 120";
        window.screen = desk.screen;
        window.grdScore.Cols = 1;
    }

    void Append(std::uint16_t code, std::uint16_t pitch) {
        const auto slot = static_cast<std::size_t>(EndColumn(window.score));
        const auto position = StaffPositionOf(pitch, 0);
        window.score.sound[slot] = {code, pitch, position ? AsCell(*position) : kEmpty};
        ++window.score.end_count;
        window.grdScore.Cols = std::min<int>(window.score.end_count, kMaxEntries);
    }
    static std::uint16_t AsCell(std::int16_t value) { return static_cast<std::uint16_t>(value); }

    /// c4 quarter, rest eighth, separator, e4 half.
    void FourEntries() {
        Append(11, 27);
        Append(27, kEmpty);
        window.score.sound[2] = {kSeparator, 0, 0};
        ++window.score.end_count;
        Append(15, 31);
    }

    void Select(int col, int col_sel) {
        window.grdScore.view.Col = col;
        window.grdScore.view.ColSel = col_sel;
    }

    std::vector<FileEntry> List() const {
        const FileList list = BuildPreviewList(window.score, window.grdScore);
        return {list.begin(), list.begin() + CountEntries(list)};
    }

    std::vector<std::wstring> Messages() const {
        std::vector<std::wstring> texts;
        for (const desktop::Message& message : desk.messages)
            texts.push_back(message.text);
        return texts;
    }

    /// Files in the temporary folder.
    std::vector<std::wstring> Left() const {
        std::vector<std::wstring> names;
        for (const auto& [path, file] : desk.files) {
            if (path.starts_with(desk.temporary_folder)) names.push_back(path);
        }
        return names;
    }

    int CountLog(const std::string& beginning) const {
        return static_cast<int>(std::count_if(desk.log.begin(), desk.log.end(), [&](const std::string& line) {
            return line.starts_with(beginning);
        }));
    }

    /// Place in the log of the first line that begins so; the log's size when there is none.
    std::size_t Find(const std::string& beginning, std::size_t from = 0) const {
        const auto found = std::find_if(desk.log.begin() + static_cast<std::ptrdiff_t>(from), desk.log.end(),
                                        [&](const std::string& line) { return line.starts_with(beginning); });
        return static_cast<std::size_t>(found - desk.log.begin());
    }

    /// Lets the clock go so many seconds before each look at the player, from shortly before midnight.
    void ClockGoes(int step, int& gone) {
        desk.hour = 23, desk.minute = 59, desk.second = 50;
        desk.during_events = [this, step, &gone] {
            if (window.Enabled) return;
            gone += step;
            const int now = (23 * 3600 + 59 * 60 + 50 + gone) % 86400;
            desk.hour = now / 3600, desk.minute = now / 60 % 60, desk.second = now % 60;
        };
    }

    void ExpectIdle() {
        EXPECT_FALSE(window.preview_busy);
        EXPECT_TRUE(window.Enabled);
        EXPECT_FALSE(window.FrmWavConvert.Loaded);
        EXPECT_EQ(desk.open_processes, 0);
    }

    void ExpectNothingLeft() {
        ExpectIdle();
        EXPECT_EQ(Left(), std::vector<std::wstring>{});
    }

    void ExpectSpoken(const std::wstring& text) {
        ASSERT_EQ(Messages(), std::vector<std::wstring>{text});
        EXPECT_EQ(desk.messages[0].buttons, MessageButtons::Ok);
        EXPECT_EQ(desk.messages[0].icon, MessageIcon::Exclamation);
    }
};

/// What a WAV file of these file entries holds, made without any file.
Bytes ExpectedWav(const TimingTables& tables, std::int16_t tempo, const std::vector<FileEntry>& entries) {
    FileList list{};
    std::copy(entries.begin(), entries.end(), list.begin());
    list[entries.size()] = {kEmpty, 0};
    const SndEncoding snd = EncodeSnd(tables, tempo, list);
    PlayBlock block;
    EXPECT_TRUE(ReadPlayBlock(snd.bytes, block));
    WaveTable table;
    BuildWaveTable(table, kSampleRate);
    Bytes samples;
    const ByteSink sink{&samples, [](void* context, const std::uint8_t* bytes, std::size_t count) {
                            Bytes& to = *static_cast<Bytes*>(context);
                            to.insert(to.end(), bytes, bytes + count);
                            return true;
                        }};
    for (std::size_t i = 0; i + 1 < block.records.size(); i += 2) {
        EXPECT_EQ(WriteNoteSamples(table, sink, block.records[i], block.records[i + 1], block.tempo_byte),
                  SynthesisResult::Done);
    }
    const auto header = WavHeader(static_cast<std::uint32_t>(samples.size()));
    Bytes wav(header.begin(), header.end());
    std::copy(samples.begin(), samples.end(), std::back_inserter(wav));
    return wav;
}

} // namespace

// Which notes are played.

TEST_F(Preview, WholeScoreWhenNoRangeIsSelected) {
    FourEntries();
    Select(1, 1);
    EXPECT_EQ(List(), (std::vector<FileEntry>{{10, 26}, {106, 0}, {14, 30}}));
}

TEST_F(Preview, RangeFromTheLowerToTheHigherPosition) {
    FourEntries();
    Select(1, 3);
    EXPECT_EQ(List(), (std::vector<FileEntry>{{106, 0}, {14, 30}}));
    Select(3, 1);
    EXPECT_EQ(List(), (std::vector<FileEntry>{{106, 0}, {14, 30}}));
    Select(1, 0);
    EXPECT_EQ(List(), (std::vector<FileEntry>{{10, 26}, {106, 0}}));
}

TEST_F(Preview, SeparatorsAndEmptySlotsAreLeftOutOnPurpose) {
    FourEntries();
    Select(2, 4);
    EXPECT_EQ(List(), (std::vector<FileEntry>{{14, 30}}));
    Select(2, 400);
    EXPECT_EQ(List(), (std::vector<FileEntry>{{14, 30}}));
}

TEST_F(Preview, EveryNoteAndRestCodeInTheFilesEncoding) {
    for (std::uint16_t code = 1; code <= 20; ++code)
        Append(code, 27);
    for (std::uint16_t code = 21; code <= 40; ++code)
        Append(code, kEmpty);
    const std::vector<FileEntry> list = List();
    ASSERT_EQ(list.size(), 40u);
    for (std::uint16_t i = 0; i < 20; ++i) {
        EXPECT_EQ(list[i], (FileEntry{i, 26}));
        EXPECT_EQ(list[i + 20u], (FileEntry{static_cast<std::uint16_t>(100 + i), 0}));
    }
}

TEST_F(Preview, ListIsClosedByTheEndCode) {
    Append(11, 27);
    const FileList list = BuildPreviewList(window.score, window.grdScore);
    EXPECT_EQ(list[1].code, kEmpty);
}

TEST_F(Preview, ListHoldsAtMost510Entries) {
    window.score.sound.fill({11, 27, 0}); // the guard slot too, which no command does
    window.score.end_count = kMaxEndCount;
    Select(0, 510);
    EXPECT_EQ(List().size(), 510u);
    Select(0, 0);
    EXPECT_EQ(List().size(), 510u);
    Select(1, 510);
    EXPECT_EQ(List().size(), 510u);
    Select(1, 600); // beyond the table
    EXPECT_EQ(List().size(), 510u);
}

TEST_F(Preview, PitchAndCodesThatNoFileHoldsAreAWriteError) {
    Append(11, 0x8000); // one less does not fit 16 bits
    mnuPreview_Click(window);
    ExpectSpoken(L"Write error!");
    ExpectNothingLeft();

    desk.messages.clear();
    window.score.sound[0] = {99, 27, 0};
    mnuPreview_Click(window);
    ExpectSpoken(L"Write error!");
    ExpectNothingLeft();
    EXPECT_EQ(CountLog("CreateOutput C:\\Temp\\$$123456.wav"), 0); // not even tried
    EXPECT_FALSE(desktop::Asked("FocusScoreGrid"));
}

TEST_F(Preview, ThePlayerIsToldTheMelodysNameWhereItWasGivenOne) {
    FourEntries();
    mnuPreview_Click(window);
    EXPECT_EQ(desk.sound_name, L"");
    window.document.current_path = L"C:\\My songs\\TUNE.SND";
    mnuPreview_Click(window);
    EXPECT_EQ(desk.sound_name, L"TUNE.SND");
}

// Temporary names.

TEST_F(Preview, TheTwoNamesAreFormedAtDifferentMoments) {
    FourEntries();
    desk.during_events = [&] { desk.second = 57; };
    mnuPreview_Click(window);
    EXPECT_TRUE(desktop::Asked("CreateOutput C:\\Temp\\$$123456.snd"));
    EXPECT_TRUE(desktop::Asked("CreateOutput C:\\Temp\\$$123456.wav")); // no event ran in between
    EXPECT_TRUE(desktop::Asked("StartCommandLine sndrec32 /play /close C:\\Temp\\$$123456.wav"));
    ExpectNothingLeft();
}

TEST_F(Preview, FilesOfOthersUnderTheTemporaryNamesAreNotTouched) {
    FourEntries();
    desk.files[L"C:\\Temp\\$$123456.SND"].bytes = {1, 2, 3};
    desk.files[L"C:\\Temp\\$$123456.wav"].bytes = {4, 5, 6};
    desk.files[L"C:\\Temp\\$$123457.wav"] = {Bytes{7}, kAttributeReadOnly | kAttributeHidden, 0};
    desk.folders.insert(L"C:\\Temp\\$$123458.wav");
    mnuPreview_Click(window);
    EXPECT_TRUE(desktop::Asked("StartCommandLine sndrec32 /play /close C:\\Temp\\$$123459.wav"));
    EXPECT_EQ(desk.files[L"C:\\Temp\\$$123456.snd"].bytes, (Bytes{1, 2, 3}));
    EXPECT_EQ(desk.files[L"C:\\Temp\\$$123456.wav"].bytes, (Bytes{4, 5, 6}));
    EXPECT_EQ(desk.files[L"C:\\Temp\\$$123457.wav"].bytes, (Bytes{7}));
    EXPECT_EQ(Left().size(), 3u);
    EXPECT_TRUE(desk.messages.empty());
    ExpectIdle();
}

TEST_F(Preview, NameSearchRunsOverMidnight) {
    FourEntries();
    desk.hour = 23, desk.minute = 59, desk.second = 59;
    desk.files[L"C:\\Temp\\$$235959.wav"].bytes = {1};
    mnuPreview_Click(window);
    EXPECT_TRUE(desktop::Asked("StartCommandLine sndrec32 /play /close C:\\Temp\\$$000000.wav"));
}

TEST_F(Preview, AllNamesOfAMinuteTakenIsAWriteError) {
    FourEntries();
    for (int i = 0; i < 59; ++i)
        desk.files[L"C:\\Temp\\" + PreviewFileName(45296 + i, L".snd")].bytes = {1};
    mnuPreview_Click(window);
    EXPECT_TRUE(desktop::Asked("CreateOutput C:\\Temp\\$$123555.snd"));
    EXPECT_EQ(Messages(), std::vector<std::wstring>{});
    desk.files[L"C:\\Temp\\$$123555.snd"].bytes = {1};
    desk.log.clear();
    mnuPreview_Click(window);
    EXPECT_FALSE(desktop::Asked("FocusScoreGrid"));
    ExpectSpoken(L"Write error!");
    EXPECT_EQ(Left().size(), 60u);
    ExpectIdle();
}

TEST_F(Preview, NoTemporaryFolderIsAWriteError) {
    FourEntries();
    desk.temporary_folder.clear();
    mnuPreview_Click(window);
    ExpectSpoken(L"Write error!");
    EXPECT_EQ(desk.files.size(), 0u);
    ExpectIdle();
}

TEST_F(Preview, RefusingTemporaryFolderIsAWriteError) {
    FourEntries();
    desk.refusing_folders.insert(L"C:\\Temp");
    mnuPreview_Click(window);
    ExpectSpoken(L"Write error!");
    ExpectNothingLeft();
    EXPECT_LE(CountLog("CreateOutput"), 1); // no name of this minute would do: the others are not tried
}

// What is said.

TEST_F(Preview, EmptyPositionsOnlyGiveAMessageAndNoFile) {
    FourEntries();
    Select(4, 30);
    mnuPreview_Click(window);
    ExpectSpoken(L"Cannot find music notes.");
    EXPECT_EQ(CountLog("CreateOutput"), 0);
    EXPECT_FALSE(desktop::Asked("FocusScoreGrid"));
    ExpectNothingLeft();
}

TEST_F(Preview, SeparatorsOnlyAndAnEmptyScoreHaveNoNotes) {
    mnuPreview_Click(window);
    ExpectSpoken(L"Cannot find music notes.");

    desk.messages.clear();
    window.score.sound[0] = {kSeparator, 0, 0};
    window.score.end_count = 2;
    mnuPreview_Click(window);
    ExpectSpoken(L"Cannot find music notes.");
    ExpectNothingLeft();
}

TEST_F(Preview, TempoThatIsNotInTheListIsAWriteError) {
    FourEntries();
    window.TempoCombo.Text = L"121";
    mnuPreview_Click(window);
    ExpectSpoken(L"Write error!");
    EXPECT_FALSE(desktop::Asked("StartCommandLine"));
    EXPECT_FALSE(desktop::Asked("FocusScoreGrid"));
    ExpectNothingLeft();
}

TEST_F(Preview, FullPlayBlockIsToldAndPlaysWhatFits) {
    for (int i = 0; i < kMaxEntries; ++i)
        Append(20, 27); // four records of two bytes each
    Bytes wav;
    desk.on_start = [&](const std::wstring&) { wav = desk.files[kWavPath].bytes; };
    mnuPreview_Click(window);
    ExpectSpoken(L"Cannot input the last382music notes.");
    EXPECT_EQ(wav, ExpectedWav(window.tables, 120, std::vector<FileEntry>(127, FileEntry{19, 26})));
    EXPECT_TRUE(desktop::Asked("FocusScoreGrid"));
    ExpectNothingLeft();
}

TEST_F(Preview, ConversionThatFailsIsAWriteErrorAndTheFocusComesBack) {
    Append(11, 121); // twelve octaves up: a phase beyond the table
    mnuPreview_Click(window);
    ExpectSpoken(L"Write error!");
    EXPECT_FALSE(desktop::Asked("StartCommandLine"));
    EXPECT_TRUE(desktop::Asked("FocusScoreGrid"));
    ExpectNothingLeft();
}

TEST_F(Preview, NoPlayerAtAllIsTold) {
    FourEntries();
    desk.command_line_starts = false;
    desk.document_starts = false;
    desk.during_events = [&] { EXPECT_TRUE(window.Enabled); };
    mnuPreview_Click(window);
    ExpectSpoken(L"Can not run Sound Player!");
    EXPECT_EQ(CountLog("ExitCodeOf"), 0);
    EXPECT_FALSE(desktop::Asked("BringMainWindowToForeground"));
    EXPECT_TRUE(desktop::Asked("FocusScoreGrid"));
    ExpectNothingLeft();
}

// The players.

TEST_F(Preview, RecorderIsStartedByItsCommandLineOnTheWholeMelody) {
    FourEntries();
    Bytes wav;
    desk.on_start = [&](const std::wstring&) {
        EXPECT_TRUE(desk.files.contains(kSndPath));
        EXPECT_FALSE(window.FrmWavConvert.Loaded);
        wav = desk.files[kWavPath].bytes;
    };
    mnuPreview_Click(window);
    EXPECT_EQ(CountLog("StartCommandLine sndrec32 /play /close C:\\Temp\\$$123456.wav"), 1);
    EXPECT_FALSE(desktop::Asked("StartDocument"));
    EXPECT_EQ(wav, ExpectedWav(window.tables, 120, {{10, 26}, {106, 0}, {14, 30}}));
    EXPECT_TRUE(desk.messages.empty());
    ExpectNothingLeft();
}

TEST_F(Preview, SelectionAloneIsPlayed) {
    FourEntries();
    Select(3, 1);
    window.TempoCombo.Text = L"60";
    Bytes wav;
    desk.on_start = [&](const std::wstring&) { wav = desk.files[kWavPath].bytes; };
    mnuPreview_Click(window);
    EXPECT_EQ(wav, ExpectedWav(window.tables, 60, {{106, 0}, {14, 30}}));
    ExpectNothingLeft();
}

TEST_F(Preview, WithoutRecorderTheFileIsOpenedWithPlayAndItsProcessAwaited) {
    FourEntries();
    desk.command_line_starts = false;
    desk.polls_until_exit = 5;
    mnuPreview_Click(window);
    EXPECT_EQ(CountLog("StartDocument C:\\Temp\\$$123456.wav Play"), 1);
    EXPECT_EQ(CountLog("ExitCodeOf"), 6);
    EXPECT_EQ(CountLog("CloseProcess"), 1);
    EXPECT_TRUE(desktop::Asked("BringMainWindowToForeground"));
    EXPECT_TRUE(desk.messages.empty());
    ExpectNothingLeft();
}

TEST_F(Preview, DocumentTakenByARunningProgramHasNothingToWaitFor) {
    FourEntries();
    desk.command_line_starts = false;
    desk.document_gives_process = false;
    mnuPreview_Click(window);
    EXPECT_EQ(CountLog("ExitCodeOf"), 0);
    EXPECT_EQ(CountLog("CloseProcess"), 0);
    EXPECT_TRUE(desktop::Asked("BringMainWindowToForeground"));
    EXPECT_TRUE(desk.messages.empty());
    ExpectNothingLeft();
}

TEST_F(Preview, PlayerThatFailedOrWasKilledIsAnEndLikeAnyOther) {
    FourEntries();
    for (const std::uint32_t code : {0u, 1u, 2u, 3u, 0xC0000005u}) {
        desk.polls_until_exit = 1;
        desk.exit_code = code;
        mnuPreview_Click(window);
        EXPECT_TRUE(desk.messages.empty());
        ExpectNothingLeft();
    }
}

TEST_F(Preview, WindowIsDisabledWhileThePlayerRunsAndEventsRunAfterEachPoll) {
    FourEntries();
    desk.polls_until_exit = 7;
    int disabled = 0;
    bool started = false;
    desk.on_start = [&](const std::wstring&) {
        EXPECT_TRUE(window.Enabled);
        started = true;
    };
    desk.during_events = [&] {
        EXPECT_TRUE(window.preview_busy);
        EXPECT_TRUE(started || window.Enabled);
        if (!window.Enabled) ++disabled;
    };
    mnuPreview_Click(window);
    EXPECT_EQ(CountLog("ExitCodeOf"), 8);
    EXPECT_EQ(CountLog("WaitForEvents 20"), 7);
    EXPECT_EQ(disabled, 8); // the last poll has its events too
    ExpectNothingLeft();
}

TEST_F(Preview, OrderAtTheEnd) {
    FourEntries();
    mnuPreview_Click(window);
    const std::size_t closed = Find("CloseProcess");
    const std::size_t front = Find("BringMainWindowToForeground", closed);
    const std::size_t wav_gone = Find("RemoveFile C:\\Temp\\$$123456.wav", front);
    const std::size_t snd_gone = Find("RemoveFile C:\\Temp\\$$123456.snd", wav_gone);
    const std::size_t focus = Find("FocusScoreGrid", snd_gone);
    EXPECT_LT(Find("OpenProcessForQuery"), closed);
    EXPECT_LT(focus, desk.log.size());
}

TEST_F(Preview, TheWindowIsShownEnabledBeforeItComesToTheFront) {
    FourEntries();
    mnuPreview_Click(window);
    const std::size_t shown = Find("ProcessPendingEvents", Find("CloseProcess"));
    EXPECT_LT(shown, Find("BringMainWindowToForeground"));
}

TEST_F(Preview, TheNextPreviewIsFreeBeforeTheFocusComesBack) {
    FourEntries();
    bool busy = true;
    desk.on_focus = [&] { busy = window.preview_busy; };
    mnuPreview_Click(window);
    EXPECT_FALSE(busy);
}

// Once at a time.

TEST_F(Preview, AgainWhileItRunsDoesNothing) {
    FourEntries();
    int tries = 0;
    desk.during_events = [&] {
        ++tries;
        const std::size_t asked = desk.log.size();
        mnuPreview_Click(window);
        EXPECT_EQ(desk.log.size(), asked);
        EXPECT_TRUE(window.preview_busy);
    };
    mnuPreview_Click(window);
    EXPECT_GT(tries, 5); // while converting and while playing
    EXPECT_EQ(CountLog("StartCommandLine"), 1);
    ExpectNothingLeft();
}

TEST_F(Preview, BusyFlagSetBeforeMakesTheCommandDoNothing) {
    FourEntries();
    window.preview_busy = true;
    mnuPreview_Click(window);
    EXPECT_TRUE(desk.log.empty());
    EXPECT_TRUE(window.preview_busy);
}

TEST_F(Preview, ClosingTheMainWindowIsRefusedWhileItRuns) {
    FourEntries();
    int asked = 0;
    desk.during_events = [&] {
        ++asked;
        EXPECT_FALSE(CloseAllowed(window));
    };
    mnuPreview_Click(window);
    EXPECT_GT(asked, 0);
    EXPECT_TRUE(desk.messages.empty());
    ExpectNothingLeft();
}

TEST_F(Preview, PlayerThatIsEndedAfterALongTime) {
    FourEntries();
    desk.polls_until_exit = -1;
    int polls = 0;
    desk.during_events = [&] {
        if (window.Enabled) return;
        mnuPreview_Click(window);
        if (++polls == 5000) desk.polls_until_exit = 0;
    };
    mnuPreview_Click(window);
    EXPECT_GE(polls, 5000);
    EXPECT_EQ(CountLog("StartCommandLine"), 1);
    EXPECT_TRUE(desktop::Asked("BringMainWindowToForeground"));
    ExpectNothingLeft();
}

TEST_F(Preview, PlayerThatNeverEndsIsLeftLongAfterTheSound) {
    FourEntries(); // 1.75 seconds
    desk.polls_until_exit = -1;
    int seconds = 0;
    desk.during_events = [&] {
        if (window.Enabled) return;
        ++seconds;
        if (++desk.second == 60) desk.second = 0, ++desk.minute;
    };
    mnuPreview_Click(window);
    EXPECT_EQ(seconds, 2 + kPlayerPatience + 1);
    EXPECT_TRUE(desk.messages.empty());
    EXPECT_TRUE(desktop::Asked("BringMainWindowToForeground"));
    ExpectNothingLeft();
}

TEST_F(Preview, ClockThatGoesFiveSecondsBetweenTwoLooksCountsAlsoOverMidnight) {
    FourEntries(); // 1.75 seconds
    desk.polls_until_exit = -1;
    int gone = 0;
    ClockGoes(5, gone);
    mnuPreview_Click(window);
    EXPECT_EQ(gone, 2 + kPlayerPatience + 3);
    ExpectNothingLeft();
}

TEST_F(Preview, ClockThatIsSetDoesNotEndTheWait) {
    FourEntries();
    for (const int step : {6, 3600}) {
        desk.polls_until_exit = 200;
        desk.log.clear();
        int gone = 0;
        ClockGoes(step, gone);
        mnuPreview_Click(window);
        EXPECT_EQ(CountLog("ExitCodeOf"), 201) << step;
        ExpectNothingLeft();
    }
}

// The converting window.

TEST_F(Preview, ConvertingWindowStepsOncePerNoteEveryTime) {
    FourEntries();
    std::vector<ConvertWindow> seen;
    desk.during_events = [&] {
        if (window.FrmWavConvert.Loaded) seen.push_back(window.FrmWavConvert);
    };
    for (int time = 0; time < 2; ++time) {
        seen.clear();
        mnuPreview_Click(window);
        ASSERT_EQ(seen.size(), 4u); // shown, then after each of three records
        for (int i = 0; i < 4; ++i) {
            EXPECT_EQ(seen[static_cast<std::size_t>(i)].Min, 0);
            EXPECT_EQ(seen[static_cast<std::size_t>(i)].Max, 3);
            EXPECT_EQ(seen[static_cast<std::size_t>(i)].Value, i);
        }
        ExpectIdle();
    }
}

TEST_F(Preview, ConvertingWindowIsUnloadedAndShownGoneBeforeThePlayerStarts) {
    FourEntries();
    bool gone_shown = false;
    desk.during_events = [&] { gone_shown = !window.FrmWavConvert.Loaded; };
    desk.on_start = [&](const std::wstring&) { EXPECT_TRUE(gone_shown); };
    mnuPreview_Click(window);
    EXPECT_EQ(CountLog("StartCommandLine"), 1);
}

TEST_F(Preview, ConvertingWindowStandsInTheMiddleOfTheScreen) {
    FourEntries();
    window.screen.width = 15360;
    window.screen.height = 11520;
    window.FrmWavConvert.Width = 5400;
    window.FrmWavConvert.Height = 1950;
    mnuPreview_Click(window);
    EXPECT_EQ(window.FrmWavConvert.Left, 4980);
    EXPECT_EQ(window.FrmWavConvert.Top, 4785);
}

TEST_F(Preview, ConvertingWindowStandsOneTwipFromTheEdgesOfAScreenThatIsHardlyLarger) {
    FourEntries();
    window.screen.width = window.FrmWavConvert.Width + 2;
    window.screen.height = window.FrmWavConvert.Height + 3;
    mnuPreview_Click(window);
    EXPECT_EQ(window.FrmWavConvert.Left, 1);
    EXPECT_EQ(window.FrmWavConvert.Top, 1);
}

TEST_F(Preview, ConvertingWindowKeepsItsPlaceOnAScreenThatIsTooSmall) {
    FourEntries();
    for (const int larger : {-50, -2, 0, 1}) {
        window.screen.width = window.FrmWavConvert.Width + larger;
        window.screen.height = window.FrmWavConvert.Height + larger;
        window.FrmWavConvert.Left = 11;
        window.FrmWavConvert.Top = 12;
        mnuPreview_Click(window);
        EXPECT_EQ(window.FrmWavConvert.Left, 11) << larger;
        EXPECT_EQ(window.FrmWavConvert.Top, 12) << larger;
    }
}

TEST_F(Preview, WithoutProgressNoConvertingWindowIsLoaded) {
    const Bytes snd = {7, 0, 4, 0, 26, 56, 255, 255};
    desk.files[L"C:\\a.snd"].bytes = snd;
    desk.during_events = [&] { EXPECT_FALSE(window.FrmWavConvert.Loaded); };
    PlayWavPreview(window, L"C:\\a.snd", false);
    EXPECT_TRUE(desktop::Asked("StartCommandLine sndrec32 /play /close C:\\Temp\\$$123456.wav"));
    EXPECT_EQ(desk.files[L"C:\\a.snd"].bytes, snd);
    ExpectNothingLeft();
}

TEST_F(Preview, MissingSndFileIsAWriteError) {
    PlayWavPreview(window, L"C:\\none.snd", true);
    ExpectSpoken(L"Write error!");
    ExpectNothingLeft();
}

// The document stays out of it.

TEST_F(Preview, NeverUploadsAndLeavesTheDocumentAlone) {
    FourEntries();
    window.document.current_path = L"C:\\Link\\pcferry\\cache\\System\\sound\\A.SND";
    window.document.location_flag = 0;
    window.document.device_path = L"\\system\\sound\\A.SND";
    window.Caption = L"Sound Editor - Veloxa:A.SND";
    window.score.changed = true;
    const auto before = window.score.sound;
    mnuPreview_Click(window); // a call into the empty link library would end this test
    EXPECT_EQ(window.document.current_path, L"C:\\Link\\pcferry\\cache\\System\\sound\\A.SND");
    EXPECT_EQ(window.document.device_path, L"\\system\\sound\\A.SND");
    EXPECT_EQ(window.document.location_flag, 0);
    EXPECT_EQ(window.Caption, L"Sound Editor - Veloxa:A.SND");
    EXPECT_TRUE(window.score.changed);
    EXPECT_EQ(window.score.sound, before);
    EXPECT_EQ(CountLog("CreateTemporaryFile"), 0);
    EXPECT_TRUE(desk.messages.empty());
    ExpectNothingLeft();
}

TEST_F(Preview, EditingWhileItConvertsDoesNotChangeWhatIsPlayed) {
    FourEntries();
    desk.during_events = [&] { window.score.sound[0].pitch = 40; };
    Bytes wav;
    desk.on_start = [&](const std::wstring&) { wav = desk.files[kWavPath].bytes; };
    mnuPreview_Click(window);
    EXPECT_EQ(wav, ExpectedWav(window.tables, 120, {{10, 26}, {106, 0}, {14, 30}}));
}

// Whatever fails.

TEST_F(Preview, EveryFileOperationFailingOnceLeavesNothingBehind) {
    FourEntries();
    desk.files[L"C:\\Temp\\$$123456.wav"].bytes = {1, 2, 3};
    mnuPreview_Click(window);
    const int operations = desk.file_operations;
    ASSERT_GT(operations, 10);
    int told = 0;
    for (int fail_at = 0; fail_at < operations; ++fail_at) {
        desk.file_operations = 0;
        desk.fail_at = fail_at;
        desk.messages.clear();
        desk.log.clear();
        desk.polls_until_exit = 1;
        mnuPreview_Click(window);
        SCOPED_TRACE("operation " + std::to_string(fail_at));
        ExpectIdle();
        EXPECT_EQ(Left(), std::vector<std::wstring>{L"C:\\Temp\\$$123456.wav"});
        EXPECT_EQ(desk.files[L"C:\\Temp\\$$123456.wav"].bytes, (Bytes{1, 2, 3}));
        // Either it was played or the user was told.
        EXPECT_EQ(CountLog("StartCommandLine") + static_cast<int>(desk.messages.size()), 1);
        if (!desk.messages.empty()) {
            ++told;
            EXPECT_EQ(desk.messages[0].text, L"Write error!");
        }
    }
    EXPECT_GT(told, 0);
}

TEST_F(Preview, EveryFileOperationFailingFromThenOnTouchesNoForeignFile) {
    FourEntries();
    mnuPreview_Click(window);
    const int operations = desk.file_operations;
    for (int fail_at = 0; fail_at < operations; ++fail_at) {
        desk.files.clear();
        desk.files[L"C:\\Temp\\$$123456.wav"].bytes = {1, 2, 3};
        desk.files[L"C:\\Temp\\$$123456.snd"].bytes = {4, 5, 6};
        desk.file_operations = 0;
        desk.fail_at = fail_at;
        desk.fail_for_good = true;
        desk.messages.clear();
        desk.log.clear();
        desk.polls_until_exit = 1;
        mnuPreview_Click(window);
        SCOPED_TRACE("from operation " + std::to_string(fail_at));
        ExpectIdle();
        EXPECT_EQ(desk.files[L"C:\\Temp\\$$123456.wav"].bytes, (Bytes{1, 2, 3}));
        EXPECT_EQ(desk.files[L"C:\\Temp\\$$123456.snd"].bytes, (Bytes{4, 5, 6}));
        EXPECT_EQ(CountLog("StartCommandLine") + static_cast<int>(desk.messages.size()), 1);
    }
}

TEST_F(Preview, EveryAmountOfDiskSpaceLeavesNothingBehind) {
    Append(1, 27); // 1378 bytes of samples
    bool played = false;
    for (std::size_t space = 0; !played; space += 7) {
        ASSERT_LT(space, 10000u);
        desk.disk_space = space;
        desk.messages.clear();
        desk.log.clear();
        desk.polls_until_exit = 1;
        mnuPreview_Click(window);
        SCOPED_TRACE(std::to_string(space) + " bytes");
        played = desktop::Asked("StartCommandLine");
        if (!played) ExpectSpoken(L"Write error!");
        ExpectNothingLeft();
    }
}

TEST_F(Preview, FileHeldForMomentsIsDeletedAfterAll) {
    FourEntries();
    int tries = 0;
    desk.polls_until_exit = 0;
    desk.during_events = [&] {
        // The player has ended: the next deletions are refused.
        if (!desktop::Asked("ExitCodeOf") || tries++ > 0) return;
        desk.files[kWavPath].attributes = kAttributeReadOnly;
        desk.fail_at = desk.file_operations + 1; // the attributes can not be set the first time
    };
    mnuPreview_Click(window);
    EXPECT_TRUE(desktop::Asked("PauseBriefly"));
    ExpectNothingLeft();
}

TEST_F(Preview, FileThatThePlayerKeepsIsDeletedByTheNextPreview) {
    FourEntries();
    desk.polls_until_exit = 0;
    desk.on_start = [&](const std::wstring&) { desk.refused = {"RemoveFile"}; };
    mnuPreview_Click(window);
    ExpectIdle();
    EXPECT_TRUE(desk.messages.empty());
    EXPECT_EQ(window.leftovers, (std::vector<std::wstring>{kWavPath, kSndPath}));
    EXPECT_EQ(Left().size(), 2u);

    desk.refused.clear();
    desk.on_start = nullptr;
    desk.second = 57;
    desk.log.clear();
    mnuPreview_Click(window);
    EXPECT_LT(Find("RemoveFile C:\\Temp\\$$123456.wav"), Find("CreateOutput"));
    EXPECT_TRUE(window.leftovers.empty());
    ExpectNothingLeft();
}

// The preview window, which the command does not open.

TEST_F(Preview, WindowPlaysOnLoadAndOnPlayAndStopsOnStopAndOnEnd) {
    PreviewWindow preview;
    LoadPreviewWindow(preview, L"C:\\My sounds\\a.wav");
    EXPECT_TRUE(preview.Loaded);
    PlayInPreviewWindow(preview);
    StopInPreviewWindow(preview);
    EndPreviewWindow(preview);
    EXPECT_FALSE(preview.Loaded);
    EXPECT_EQ(desk.log, (std::vector<std::string>{"PlaySoundFile C:\\My sounds\\a.wav",
                                                  "PlaySoundFile C:\\My sounds\\a.wav", "PlaySoundFile ",
                                                  "PlaySoundFile "}));
}

TEST_F(Preview, WindowThatIsNotLoadedPlaysNothing) {
    PreviewWindow preview;
    PlayInPreviewWindow(preview);
    StopInPreviewWindow(preview);
    EndPreviewWindow(preview);
    EXPECT_TRUE(desk.log.empty());
}

TEST_F(Preview, WindowTexts) {
    EXPECT_STREQ(kPreviewWindowCaption, L"Veloxa Sound Editor Preview Sound");
    EXPECT_STREQ(kPreviewPlayCaption, L"Play");
    EXPECT_STREQ(kPreviewStopCaption, L"Stop");
    EXPECT_STREQ(kPreviewEndCaption, L"End of preview");
}

TEST_F(Preview, CommandDoesNotOpenThePreviewWindow) {
    FourEntries();
    mnuPreview_Click(window);
    EXPECT_FALSE(desktop::Asked("PlaySoundFile"));
}

} // namespace tonex::preview_commands_test
