// Stands in for the link software's set-up: the registry entry and the folders without which the editor ends
// at once. What was made is noted beside the entry, so that it can be taken away again, and only that.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tonex {

enum class SetupResult {
    Done,
    AlreadyThere,    ///< an entry names a folder, whoever made it; nothing was touched
    NothingToRemove, ///< no entry, or one that another program made; nothing was touched
    Failed,          ///< nothing was left behind
};

/// Makes the entry and the folders below a full path. An entry with a useless text counts as missing;
/// RemoveLink puts the text back.
SetupResult SetUpLink(const std::wstring& install_dir);

/// Takes away what SetUpLink made. Folders that hold something stay; `kept` gets them.
SetupResult RemoveLink(std::vector<std::wstring>& kept);

/// The folder of the entry that is there. Empty without one, and where it is useless: where its text is empty
/// or no full path, or names a folder that is not there though its drive is.
std::wstring InstalledFolder();

/// Whether SetUpLink can use a folder: a full path whose melodies' paths the link functions' buffers take.
bool IsUsableFolder(const std::wstring& install_dir);

struct SetupOptions {
    bool quiet = false;
    bool remove = false;
    std::wstring folder; ///< empty: the usual one
};

/// Nothing for words that are no options. Letter case does not matter, "-" is as good as "/".
std::optional<SetupOptions> ParseSetupOptions(const std::vector<std::wstring>& words);

} // namespace tonex
