// The system's open and save dialogs.
#pragma once

#include <string>

namespace tonex {

/// What a common file dialog shows first, and what it was left with.
struct FileDialog {
    std::wstring Title;
    std::wstring Filter;     ///< "Sound Files(*.snd)|*.snd": description and pattern joined by a bar
    std::wstring DefaultExt; ///< without a dot
    std::wstring InitDir;    ///< folder offered first; may be missing on the disk
    std::wstring FileName;   ///< in: name offered; out: full path of the choice
};

/// Shows the dialog. True with FileName set when a file was chosen; false, FileName untouched, on cancel.
bool ShowOpenDialog(FileDialog& dialog);

/// As ShowOpenDialog; asks before an existing file is chosen.
bool ShowSaveDialog(FileDialog& dialog);

} // namespace tonex
