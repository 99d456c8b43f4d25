// platform/file_dialogs.h on Win32, by the better kind of dialogs that the system has.
#include "platform/file_dialogs.h"

#include "platform/windows/desktop_windows.h"
#include "platform/windows/file_dialog_kinds.h"

namespace tonex {

namespace {

// The dialogs can leave the chosen folder as the current one whatever they are asked for. That would keep the
// folder from being removed as long as the program runs.
struct KeepCurrentFolder {
    KeepCurrentFolder() : folder(GetCurrentDirectoryW(0, nullptr), L'\0') {
        folder.resize(GetCurrentDirectoryW(static_cast<DWORD>(folder.size()), folder.data()));
    }
    ~KeepCurrentFolder() {
        if (!folder.empty()) SetCurrentDirectoryW(folder.c_str());
    }
    std::wstring folder;
};

bool ShowDialog(FileDialog& dialog, DialogTask task) {
    ShowDifferencesNow();
    const KeepCurrentFolder keep;
    DialogAnswer answer = DialogAnswer::Missing;
    // Wine's common dialogs show the folder that they are given. Its item dialogs take ".SND" and ".snd" for
    // two extensions and add the other one.
    if (!UnderWine()) answer = ShowItemDialog(dialog, task);
    if (answer == DialogAnswer::Missing) answer = ShowCommonDialog(dialog, task);
    return answer == DialogAnswer::Chosen;
}

} // namespace

bool ShowOpenDialog(FileDialog& dialog) {
    return ShowDialog(dialog, DialogTask::Open);
}

bool ShowSaveDialog(FileDialog& dialog) {
    const bool chosen = ShowDialog(dialog, DialogTask::Save);
    const bool asked = chosen && GetFileAttributesW(dialog.FileName.c_str()) != INVALID_FILE_ATTRIBUTES;
    if (asked && Hooks().take_keyboard_back) Hooks().take_keyboard_back();
    return chosen;
}

} // namespace tonex
