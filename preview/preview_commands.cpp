#include "preview/preview_commands.h"
#include "app/sndmain.h"
#include "link/paths.h"
#include "platform/clock.h"
#include "platform/events.h"
#include "platform/files.h"
#include "platform/main_window.h"
#include "platform/message_box.h"
#include "platform/player.h"
#include "platform/temporary_files.h"
#include "preview/leftover_services.h"
#include "preview/synthesis.h"
#include "preview/wav_file_services.h"
#include "score/file_services.h"
#include "score/message_services.h"
#include "score/temporary_names.h"
#include "view/tempo_commands.h"

#include <algorithm>
#include <optional>

namespace tonex {

namespace {

constexpr int kSecondsADay = 24 * 60 * 60;
constexpr int kNamesTried = 60;    // names of one minute
constexpr int kPollInterval = 20;  // milliseconds between two looks at the player
constexpr int kLongestPollGap = 5; // seconds; a longer gap is a clock that was set or a machine that slept
constexpr const wchar_t* kPlayerCommand = L"sndrec32 /play /close ";
constexpr const wchar_t* kPlayVerb = L"Play";

int SecondOfDay() {
    const TimeOfDay now = CurrentTime();
    return (now.hour * 60 + now.minute) * 60 + now.second;
}

// Creates an empty file of our own under the time's name, so that a file of somebody else that happens to
// have such a name is never overwritten or deleted: its second is taken, the next one is tried.
std::optional<std::wstring> ClaimTemporaryFile(const std::wstring& extension) {
    const std::wstring folder = TemporaryFolder();
    if (folder.empty()) return std::nullopt;
    const int now = SecondOfDay();
    for (int tried = 0; tried < kNamesTried; ++tried) {
        const std::wstring path = folder + PreviewFileName((now + tried) % kSecondsADay, extension);
        OutputFilePtr file = CreateOutput(path);
        if (file) {
            CloseOutput(std::move(file)); // empty: there is nothing that a late error could lose
            return path;
        }
        if (!AttributesOf(path)) return std::nullopt; // the folder refuses
    }
    return std::nullopt;
}

// The converting window follows the conversion.

void BeginConversion(void* context, int note_count) {
    sndmain& window = *static_cast<sndmain*>(context);
    ConvertWindow& converting = window.FrmWavConvert;
    const int left = (window.screen.width - converting.Width) / 2;
    const int top = (window.screen.height - converting.Height) / 2;
    if (left > 0) converting.Left = left;
    if (top > 0) converting.Top = top;
    converting.Max = note_count;
    converting.Value = 0;
    converting.Loaded = true;
    ProcessPendingEvents();
}

void AdvanceConversion(void* context, int notes_done) {
    static_cast<sndmain*>(context)->FrmWavConvert.Value = notes_done;
    ProcessEventsInPassing();
}

void EndConversion(void* context) {
    static_cast<sndmain*>(context)->FrmWavConvert.Loaded = false;
    ProcessPendingEvents();
}

std::int16_t Convert(sndmain& window, const std::wstring& snd_path, const std::wstring& wav_path,
                     bool show_progress) {
    WaveTable table;
    BuildWaveTable(table, kSampleRate);
    ConversionProgress progress;
    if (show_progress) progress = {&window, BeginConversion, AdvanceConversion, EndConversion};
    return sndfile2wavfile(table, snd_path, wav_path, progress);
}

struct Player {
    bool started = false;
    ProcessHandle process = 0; // 0 = started, but there is nothing to wait for
};

Player StartPlayer(const std::wstring& wav_path, const std::wstring& melody_name) {
    Player player;
    const std::uint32_t process_id = StartCommandLine(kPlayerCommand + wav_path, melody_name);
    if (process_id != 0) {
        player.started = true;
        player.process = OpenProcessForQuery(process_id);
        return player;
    }
    player.started = StartDocument(wav_path, kPlayVerb, player.process);
    return player;
}

// Waits for the player's end with the window alive. A player that hangs must not lock the user out of the
// melody for ever: long after the sound is over the wait ends without it.
void WaitForPlayer(ProcessHandle process, std::optional<int> sound_seconds) {
    int last_look = SecondOfDay();
    int waited = 0;
    while (ExitCodeOf(process) == kStillActive) {
        WaitForEvents(kPollInterval);
        const int now = SecondOfDay();
        const int gap = (now - last_look + kSecondsADay) % kSecondsADay;
        last_look = now;
        if (gap <= kLongestPollGap) waited += gap;
        if (sound_seconds && waited > *sound_seconds + kPlayerPatience) return;
    }
    ProcessPendingEvents();
}

void PlayConverted(sndmain& window, const std::wstring& wav_path) {
    const std::optional<int> seconds = SecondsOfSound(wav_path);
    const Player player = StartPlayer(wav_path, FileNameOfPath(window.document.current_path));
    if (!player.started) {
        ShowMessage(L"Can not run Sound Player!");
        return;
    }
    window.Enabled = false;
    if (player.process != 0) {
        WaitForPlayer(player.process, seconds);
        CloseProcess(player.process);
    }
    window.Enabled = true;
    ProcessPendingEvents(); // a window that is still disabled on the screen could not take the foreground
    BringMainWindowToForeground();
}

/// False when there was nothing to play: the user was told.
bool PreviewList(sndmain& window, const FileList& list) {
    const std::optional<std::wstring> snd_path = ClaimTemporaryFile(L".snd");
    if (!snd_path) {
        TellWriteError();
        return false;
    }
    std::int16_t entries_written = 0;
    const SndResult result =
        SoundDataToFile(window.tables, TempoForWriting(window), list, *snd_path, entries_written);
    if (!IsWritten(result)) {
        TellWriteError();
        DeleteTemporaryFile(*snd_path, window.leftovers);
        return false;
    }
    if (result == kSndFull) TellHowManyDidNotFit(CountEntries(list) - entries_written);
    PlayWavPreview(window, *snd_path, true);
    DeleteTemporaryFile(*snd_path, window.leftovers);
    return true;
}

} // namespace

FileList BuildPreviewList(const Score& score, const ScoreGrid& grid) {
    int first = 0;
    int last = score.end_count - 1;
    if (RangeSelected(grid.view)) {
        const ColumnRange range = SelectedColumns(grid.view);
        first = range.lo;
        last = range.hi;
    }
    FileList list{};
    int count = 0;
    for (int slot = std::max(first, 0); slot <= std::min(last, kSlots - 1); ++slot) {
        const Entry& entry = score.sound[static_cast<std::size_t>(slot)];
        if (!IsSounding(entry.code)) continue;
        if (count == kPreviewEntries) break;
        list[static_cast<std::size_t>(count++)] = ToFileEntry(entry);
    }
    return list;
}

void mnuPreview_Click(sndmain& window) {
    if (window.preview_busy) return;
    window.preview_busy = true;
    DeleteLeftovers(window.leftovers);
    const FileList list = BuildPreviewList(window.score, window.grdScore);
    bool played = false;
    if (CountEntries(list) == 0) {
        ShowMessage(L"Cannot find music notes.");
    } else {
        played = PreviewList(window, list);
    }
    window.preview_busy = false;
    if (played) FocusScoreGrid();
}

void PlayWavPreview(sndmain& window, const std::wstring& snd_path, bool show_progress) {
    const std::optional<std::wstring> wav_path = ClaimTemporaryFile(L".wav");
    if (!wav_path) {
        TellWriteError();
        return;
    }
    if (Convert(window, snd_path, *wav_path, show_progress) != 0) {
        TellWriteError();
    } else {
        PlayConverted(window, *wav_path);
    }
    DeleteTemporaryFile(*wav_path, window.leftovers);
}

} // namespace tonex
