#include "score/document_commands.h"

#include "app/enabling_commands.h"
#include "app/sndmain.h"
#include "link/device_commands.h"
#include "link/paths.h"
#include "link/settings_commands.h"
#include "platform/file_dialogs.h"
#include "platform/files.h"
#include "platform/message_box.h"
#include "score/file_services.h"
#include "score/message_services.h"
#include "view/drawing_commands.h"
#include "view/note_entry_commands.h"
#include "view/tempo_commands.h"

#include <algorithm>

namespace tonex {

namespace {

constexpr std::wstring_view kProgramTitle = L"Sound Editor";

/// The open dialog with what it always shows; the folder and the name change.
void PrepareOpenDialog(sndmain& window) {
    FileDialog& dialog = window.document.ComOpen;
    dialog.Title = L"Open on PC";
    dialog.Filter = L"Sound Files(*.snd)|*.snd"; // "Files" here, "File" when saving: kept as it is
    dialog.DefaultExt = L"SND";
    dialog.InitDir = window.link.PcSoundDir;
    dialog.FileName.clear();
}

void PrepareSaveDialog(sndmain& window) {
    FileDialog& dialog = window.document.ComSave;
    dialog.Title = L"Save to PC";
    dialog.Filter = L"Sound File(*.snd)|*.snd";
    dialog.DefaultExt = L"SND";
    dialog.InitDir = window.link.PcSoundDir;
    dialog.FileName = FileNameOfPath(window.document.current_path);
}

/// Shows the save dialog until the chosen name, its extension added where it is missing, has at most 8 bytes.
/// Empty = cancelled.
std::wstring ChooseNameOnPc(sndmain& window) {
    PrepareSaveDialog(window);
    FileDialog& dialog = window.document.ComSave;
    while (ShowSaveDialog(dialog)) {
        std::wstring path = WithExtension(dialog.FileName, L".snd");
        // The dialog has asked about the name it was given. Of a completed one that is taken it asks next
        // time.
        const bool asked = path == dialog.FileName || !FileExists(path);
        if (CheckNameLength(path) && asked) return path;
        dialog.FileName = FileNameOfPath(path);
    }
    return {};
}

/// As SaveDocument, for the PC commands: any outcome but an unwritten disk clears the changed flag, a tempo
/// that is not in the list too (kept as it is).
void SaveByCommand(sndmain& window, const std::wstring& path) {
    if (SaveDocument(window, path) == kSndWriteError) return;
    window.score.changed = false;
}

bool HasSoundingEntry(const Score& score) {
    for (int slot = 0; slot < score.end_count; ++slot) {
        if (IsSounding(score.sound[static_cast<std::size_t>(slot)].code)) return true;
    }
    return false;
}

/// The user wants the changes saved. True when a file now holds the melody, whole or as far as it fits: only
/// then may the command that asked go on and throw the score away.
bool SaveBeforeGoingOn(sndmain& window) {
    Document& document = window.document;
    std::wstring path = document.current_path;
    if (path.empty() || !CheckNameLength(path)) {
        path = ChooseNameOnPc(window);
        if (path.empty()) return false;
        window.link.PcSoundDir = FolderOfPath(path);
    } else if (document.location_flag != kOnPc) {
        return SaveToDevice(window);
    }
    const SndResult result = SaveDocument(window, path);
    if (result == kSndDone) window.score.changed = false;
    return IsWritten(result);
}

void ShowLoadedScore(sndmain& window) {
    ScoreGrid& grid = window.grdScore;
    grid.view.Col = std::min(EndColumn(window.score), kLastColumn); // a full score shows no end column
    grid.view.ColSel = grid.view.Col;
    RedrawGrid(window);
    DrawStrip(window, 0);
}

/// Nothing was written: because of the disk, or of an entry at a slot that no file can hold (-1: none).
void TellNotSaved(sndmain& window, int slot) {
    if (slot < 0) return TellWriteError();
    grdScore_SelChange(window, slot, slot); // the user sees it behind the message and has it to hand then
    TellEntryNotSaved(slot + 1, IsNote(SlotAt(window, slot).code));
}

void StartUntitled(sndmain& window) {
    window.document.current_path.clear();
    window.document.location_flag = kOnPc;
    StoreLastDocument(window);
    SetTitle(window, kSuffixUntitled);
}

} // namespace

void SetTitle(sndmain& window, std::wstring_view suffix) {
    window.Caption = kProgramTitle;
    window.Caption += suffix;
    window.Caption += FileNameOfPath(window.document.current_path);
    if (suffix != kSuffixUntitled) StoreLastDocument(window);
}

bool HasUnsavedMelody(const sndmain& window) {
    return window.score.changed && HasSoundingEntry(window.score);
}

bool AskToSaveChanges(sndmain& window) {
    // Separators alone are no melody to lose; kept as it is.
    if (!HasSoundingEntry(window.score)) window.score.changed = false;
    if (!window.score.changed) return true;
    switch (ShowMessage(L"Do you want to save the changes?", MessageButtons::YesNoCancel)) {
    case MessageAnswer::Yes: return SaveBeforeGoingOn(window);
    case MessageAnswer::No: return true;
    default: return false;
    }
}

bool LoadDocument(sndmain& window, std::wstring_view suffix) {
    ClearAll(window); // the changed flag too; nothing below sets it
    std::int16_t tempo = 0;
    FileList list{};
    const bool failed = FileToSoundData(tempo, list, window.document.current_path) != kSndDone;
    int left_out = 0;
    if (failed) {
        TellReadError();
        StartUntitled(window);
    } else {
        left_out = FillFromFileList(window.score, list, window.StaffOffset);
        SelectTempo(window, tempo);
        ShowLoadedScore(window);
        SetTitle(window, suffix);
    }
    RefreshNoteDisplay(window);
    RefreshEnabling(window);
    if (left_out > 0) TellHowManyDidNotFit(left_out);
    return failed;
}

void EndSave(sndmain& window, const SndEncoding& melody, SndResult result, const std::wstring& path,
             std::int16_t location) {
    switch (result) {
    case kSndWriteError: return TellNotSaved(window, melody.fault_entry);
    case kSndNotFound:
    case kSndBadFormat: TellReadError(); break;
    case kSndFull: TellHowManyDidNotFit(melody.entries_left_out); break;
    case kSndDone: break;
    }
    window.document.current_path = path;
    window.document.location_flag = location; // before the title, which stores it
    SetTitle(window, location == kOnPc ? kSuffixPc : kSuffixVeloxa);
}

SndResult SaveDocument(sndmain& window, const std::wstring& path) {
    const SndEncoding melody = EncodeSnd(window.tables, TempoForWriting(window), BuildSaveList(window.score));
    const SndResult result = SaveSndFile(melody, path);
    EndSave(window, melody, result, path, kOnPc);
    if (IsWritten(result)) SweepAbandonedSaves(FolderOfPath(path));
    return result;
}

void mnuNewFile_Click(sndmain& window) {
    if (!AskToSaveChanges(window)) return;
    ClearAll(window);
    window.document.current_path.clear();
    SetTitle(window, kSuffixUntitled);
}

void mnuFileOpen_Click(sndmain& window) {
    if (!AskToSaveChanges(window)) return;
    PrepareOpenDialog(window);
    FileDialog& dialog = window.document.ComOpen;
    if (!ShowOpenDialog(dialog)) return;
    if (!CheckSndExtension(dialog.FileName)) return;
    window.document.current_path = dialog.FileName;
    window.link.PcSoundDir = FolderOfPath(dialog.FileName);
    window.document.location_flag = kOnPc;
    LoadDocument(window, kSuffixPc);
}

void mnuFileOverWrite_Click(sndmain& window) {
    const std::wstring path = window.document.current_path;
    if (path.empty() || !CheckNameLength(path) || window.document.location_flag != kOnPc) {
        mnuFileSaveWithName_Click(window);
        return;
    }
    SaveByCommand(window, path);
}

void mnuFileSaveWithName_Click(sndmain& window) {
    const std::wstring path = ChooseNameOnPc(window);
    if (path.empty()) return;
    window.link.PcSoundDir = FolderOfPath(path);
    SaveByCommand(window, path);
}

} // namespace tonex
