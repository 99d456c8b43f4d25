#include "score/document_commands.h"

#include "app/enabling_commands.h"
#include "app/sndmain.h"
#include "link/device_commands.h"
#include "link/paths.h"
#include "link/settings_commands.h"
#include "platform/file_dialogs.h"
#include "platform/files.h"
#include "platform/message_box.h"
#include "platform/temporary_files.h"
#include "platform/text.h"
#include "score/file_services.h"
#include "view/drawing_commands.h"
#include "view/tempo_commands.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace tonex {

namespace {

constexpr std::wstring_view kProgramTitle = L"Sound Editor";
constexpr std::wstring_view kExtension = L".SND";
constexpr std::size_t kNameBytes = 8;

void TellHowManyDidNotFit(int entries) {
    // The number stands between the words with nothing around it; kept as it is.
    ShowMessage(L"Cannot input the last" + std::to_wstring(entries) + L"music notes.");
}

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

/// Shows the save dialog until the chosen name has at most 8 bytes. Empty = cancelled.
std::wstring ChooseNameOnPc(sndmain& window) {
    PrepareSaveDialog(window);
    FileDialog& dialog = window.document.ComSave;
    while (ShowSaveDialog(dialog)) {
        if (CheckNameLength(dialog.FileName)) return dialog.FileName;
        dialog.FileName = FileNameOfPath(dialog.FileName);
    }
    return {};
}

/// Saves as a PC file. The location is set first, because setting the title stores it; a disk that refuses
/// gets the old one back.
SndResult SaveOnPc(sndmain& window, const std::wstring& path) {
    const std::int16_t location = std::exchange(window.document.location_flag, kOnPc);
    window.document.upload_requested = false;
    const SndResult result = SaveDocument(window, path, kSuffixPc);
    if (result == kSndWriteError) window.document.location_flag = location;
    if (result == kSndDone || result == kSndFull) SweepAbandonedSaves(FolderOfPath(path));
    return result;
}

/// As SaveOnPc, for the PC commands: any outcome but an unwritten disk clears the changed flag, a tempo that
/// is not in the list too (kept as it is).
void SaveByCommand(sndmain& window, const std::wstring& path) {
    if (SaveOnPc(window, path) == kSndWriteError) return;
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
    const SndResult result = SaveOnPc(window, path);
    if (result == kSndDone) window.score.changed = false;
    return result == kSndDone || result == kSndFull;
}

void ShowLoadedScore(sndmain& window) {
    ScoreGrid& grid = window.grdScore;
    grid.view.Col = std::min(EndColumn(window.score), kLastColumn); // a full score shows no end column
    grid.view.ColSel = grid.view.Col;
    RedrawGrid(window);
    DrawStrip(window, 0);
}

void StartUntitled(sndmain& window) {
    window.document.current_path.clear();
    window.document.location_flag = kOnPc;
    StoreLastDocument(window);
    SetTitle(window, kSuffixUntitled);
}

/// Writes a temporary file and hands it to the device. False when no such file could be made; a device that
/// refuses is told to the user and remembered in the record, and leaves the result as it is.
bool WriteAndUpload(sndmain& window, const std::vector<std::uint8_t>& bytes, std::wstring& path) {
    const std::wstring folder = TemporaryFolder();
    if (folder.empty()) return false;
    const std::wstring temporary = CreateTemporaryFile(folder, L"Snd");
    if (temporary.empty()) return false;
    const std::wstring device_file = std::exchange(path, temporary);
    const bool written = SaveWholeFile(path, bytes);
    window.link.upload_refused = written && !UploadFile(window, path);
    if (window.link.upload_refused) ShowMessage(L"File translate error when upload to Veloxa!");
    DeleteFileIfExists(path);
    path = device_file;
    return written;
}

} // namespace

void SetTitle(sndmain& window, std::wstring_view suffix) {
    window.Caption = kProgramTitle;
    window.Caption += suffix;
    window.Caption += FileNameOfPath(window.document.current_path);
    if (suffix != kSuffixUntitled) StoreLastDocument(window);
}

bool CheckSndExtension(const std::wstring& path) {
    // A text shorter than four characters is compared whole by HasExtension and is never ".SND".
    if (HasExtension(path, kExtension)) return true;
    ShowMessage(L"This is not a sound file.");
    return false;
}

bool CheckNameLength(const std::wstring& path) {
    std::wstring name = FileNameOfPath(path);
    if (UpperCase(name).ends_with(kExtension)) name.resize(name.size() - kExtension.size());
    if (ToAnsi(name).size() <= kNameBytes) return true;
    ShowMessage(L"File name cannot exceed 8 characters.  Change the file name.");
    return false;
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
    ClearAll(window);
    std::int16_t tempo = 0;
    FileList list{};
    const bool failed = FileToSoundData(tempo, list, window.document.current_path) != kSndDone;
    int left_out = 0;
    if (failed) {
        ShowMessage(L"Read error!");
        StartUntitled(window);
    } else {
        left_out = FillFromFileList(window.score, list, window.StaffOffset);
        SelectTempo(window, tempo);
        ShowLoadedScore(window);
        SetTitle(window, suffix);
    }
    RefreshNoteDisplay(window);
    RefreshEnabling(window);
    window.score.changed = false;
    if (left_out > 0) TellHowManyDidNotFit(left_out);
    return failed;
}

SndResult SaveDocument(sndmain& window, const std::wstring& path, std::wstring_view suffix) {
    const FileList list = BuildSaveList(window.score);
    std::wstring target = path;
    std::int16_t entries_written = 0;
    const std::int16_t tempo = TempoForWriting(window);
    const SndResult result = SoundDataToFile(window, tempo, list, target, entries_written);
    if (result == kSndWriteError) {
        ShowMessage(L"Write error!");
        return result;
    }
    if (result == kSndNotFound || result == kSndBadFormat) ShowMessage(L"Read error!");
    if (result == kSndFull) TellHowManyDidNotFit(CountEntries(list) - entries_written);
    window.document.current_path = target;
    SetTitle(window, suffix);
    return result;
}

SndResult SoundDataToFile(sndmain& window, std::int16_t tempo, const FileList& list, std::wstring& path,
                          std::int16_t& entries_written) {
    const SndEncoding encoding = EncodeSnd(window.tables, tempo, list);
    entries_written = encoding.entries_written;
    // The request holds for one save, whatever becomes of it: no later file may be uploaded by mistake.
    const bool upload = std::exchange(window.document.upload_requested, false);
    window.link.upload_refused = false;
    if (encoding.result != kSndDone && encoding.result != kSndFull) return encoding.result;
    const bool written =
        upload ? WriteAndUpload(window, encoding.bytes, path) : SaveWholeFile(path, encoding.bytes);
    return written ? encoding.result : kSndWriteError;
}

SndResult FileToSoundData(std::int16_t& tempo, FileList& list, const std::wstring& path) {
    if (!FileExists(path)) return kSndNotFound;
    std::vector<std::uint8_t> bytes;
    if (!ReadWholeFile(path, bytes, 2 * kSndBlockSize)) return kSndNotFound;
    return DecodeSnd(bytes, tempo, list);
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
