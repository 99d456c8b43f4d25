// The system's two kinds of open and save dialogs. The common dialogs are in every Windows, but since Windows
// 7 they may show the folder that was visited last instead of the one they are given. The item dialogs, which
// came with Windows Vista, show what they are given.
#pragma once

#include "platform/file_dialogs.h"

namespace tonex {

enum class DialogTask {
    Open, ///< a file that is there
    Save, ///< asks before an existing file is chosen
};

enum class DialogAnswer {
    Chosen,    ///< FileName is the full path of the choice
    Cancelled, ///< FileName is untouched
    Missing,   ///< this system has no dialogs of the kind; nothing was shown
};

DialogAnswer ShowItemDialog(FileDialog& dialog, DialogTask task);
DialogAnswer ShowCommonDialog(FileDialog& dialog, DialogTask task);

} // namespace tonex
