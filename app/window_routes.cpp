#include "app/window_routes.h"

#include "app/enabling_commands.h"
#include "app/layout_commands.h"
#include "app/sndmain.h"
#include "link/device_commands.h"
#include "link/discovery_commands.h"
#include "link/paths.h"
#include "link/settings_commands.h"
#include "link/single_instance_services.h"
#include "platform/files.h"
#include "platform/main_window.h"
#include "platform/program_folder.h"
#include "platform/temporary_files.h"
#include "platform/window_list.h"
#include "preview/leftover_services.h"
#include "preview/timing_tables.h"
#include "score/document_commands.h"
#include "score/message_services.h"
#include "view/drawing_commands.h"
#include "view/tempo_commands.h"

#include <utility>

namespace tonex {

namespace {

/// The record's own measures: the screen, and a client area in which everything has its place.
void LayOut(sndmain& window) {
    window.screen = MeasureScreen();
    LayoutWindow(window, window.ClientWidth, window.ClientHeight);
}

void SetUpTitleAndHelp(sndmain& window) {
    window.link.HelpFilePath = ProgramFolder() + L"\\Veloxa.hlp";
    SetTitle(window, kSuffixUntitled);
}

void SetUpGridAndStrip(sndmain& window) {
    ComputeStaffOffset(window);
    LoadDoremiSetting(window);
    LayoutKeyLabels(window);
}

void SetUpTempo(sndmain& window) {
    window.tables = BuildTimingTables();
    FillTempoCombo(window);
}

/// Opens what the command line names, else what was open last.
void OpenFirstDocument(sndmain& window, const std::wstring& command_line_path) {
    const std::wstring named = WithoutQuotes(command_line_path);
    if (!named.empty()) {
        OpenDroppedFile(window, FullPathOf(named));
        return;
    }
    if (!ReopenLastFile(window, kSettingsSection)) return;
    // Untitled until the file is accepted: what is refused must not be the target of a later save.
    const std::wstring path = std::exchange(window.document.current_path, {});
    OpenDroppedFile(window, path);
    // What was refused is forgotten, or every later start would tell of it again.
    if (window.document.current_path.empty()) StoreLastDocument(window);
}

/// Deletes the temporary files that killed runs left.
void SweepOldRuns(const sndmain& window) {
    const std::wstring previews = TemporaryFolder(), uploads = UploadFolder(window.link.InstallDir);
    if (!previews.empty()) SweepTemporaryFiles(previews);
    if (!uploads.empty() && uploads != previews) SweepTemporaryFiles(uploads);
}

/// After device work the user is reminded to transfer, unless that is not wanted.
void RemindOfTransfer(const sndmain& window) {
    if (!window.link.device_work || ReadMsgDsp()) return;
    if (ShowTransferReminder()) SaveMsgDsp(1);
}

} // namespace

StartResult StartUp(sndmain& window, const std::wstring& command_line_path) {
    window.second_copy = PreviousInstanceRunning();
    if (window.second_copy) {
        // A file on this copy's command line is not handed over to the first one; kept as it is.
        ActivatePreviousInstance(L"Sound Editor");
        return StartResult::EndSilent;
    }
    LayOut(window);
    RestoreWindowPlacement(window, kSettingsSection);
    if (!DiscoverLinkSoftware(window)) return StartResult::EndSilent;
    SetUpTitleAndHelp(window);
    SetUpGridAndStrip(window);
    RefreshEnabling(window);
    SetUpTempo(window);
    ClearAll(window);
    OpenFirstDocument(window, command_line_path);
    SweepOldRuns(window);
    return StartResult::Run;
}

bool CloseAllowed(sndmain& window) {
    if (window.second_copy) return true;
    if (window.preview_busy) return false;
    if (!AskToSaveChanges(window)) return false;
    if (!Disconnect(window))
        return false; // a link that reports a failure keeps the window open, kept as it is
    RemindOfTransfer(window);
    SaveWindowPlacement(kSettingsSection);
    DeleteLeftovers(window.leftovers);
    return true;
}

bool SessionMayEnd(sndmain& window, bool box_open) {
    if (window.second_copy) return true;
    if (window.preview_busy) return false;
    if (box_open) return !HasUnsavedMelody(window);
    return AskToSaveChanges(window);
}

std::wstring ReasonToStay(const sndmain& window) {
    if (window.second_copy) return {};
    if (window.preview_busy) return L"A melody is being played.";
    if (HasUnsavedMelody(window)) return L"The melody has not been saved.";
    return {};
}

void EndSession(sndmain& window) {
    if (window.second_copy) return;
    Disconnect(window); // a link that reports a failure can not keep the window open any more
    SaveWindowPlacement(kSettingsSection);
    DeleteLeftovers(window.leftovers);
}

void OpenDroppedFile(sndmain& window, const std::wstring& path) {
    if (!window.Enabled) return;
    std::wstring dropped = WithoutQuotes(path);
    if (!AskToSaveChanges(window)) return;
    if (!CheckSndExtension(dropped)) return;
    Document& document = window.document;
    std::wstring scratch;
    RememberFolderOfFile(window, dropped, scratch, document.location_flag);
    document.current_path = dropped;
    const bool on_pc = document.location_flag == kOnPc;
    (on_pc ? window.link.PcSoundDir : window.link.CacheSoundDir) = FolderOfPath(dropped);
    LoadDocument(window, on_pc ? kSuffixPc : kSuffixVeloxa);
}

} // namespace tonex
