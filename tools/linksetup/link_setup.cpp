#include "tools/linksetup/link_setup.h"

#include "link/install_entry.h"
#include "link/paths.h"
#include "platform/link_library.h"
#include "platform/text.h"
#include "platform/windows/device_dialogs.h"

#include <algorithm>
#include <array>

namespace tonex {

namespace {

constexpr const wchar_t* kMadeFolder = L"LinkSetup InstallDir"; ///< the entry's text as it was made
constexpr const wchar_t* kTextBefore = L"LinkSetup before";     ///< the useless text that was there
constexpr const wchar_t* kMadeFolders = L"LinkSetup folders";   ///< outermost first
constexpr const wchar_t* kMadeKeys = L"LinkSetup keys";         ///< outermost first

constexpr std::array<const wchar_t*, 2> kFolders = {L"\\userdata\\sound", L"\\pcferry\\cache\\System\\sound"};
constexpr std::size_t kRoomForAName = 12; ///< characters of a melody's file name: eight, a dot, three

struct Key {
    HKEY handle = nullptr;
    Key(const wchar_t* path, REGSAM access) {
        if (RegOpenKeyExW(HKEY_CURRENT_USER, path, 0, access, &handle)) handle = nullptr;
    }
    ~Key() {
        if (handle) RegCloseKey(handle);
    }
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;
};

bool IsText(DWORD type) {
    return type == REG_SZ || type == REG_EXPAND_SZ;
}

bool HasValue(HKEY key, const wchar_t* name) {
    return RegQueryValueExW(key, name, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS;
}

// The characters of a value, its NULs among them.
std::wstring RawText(HKEY key, const wchar_t* name, bool (*is_wanted)(DWORD type)) {
    DWORD type = 0, bytes = 0;
    if (RegQueryValueExW(key, name, nullptr, &type, nullptr, &bytes) || !is_wanted(type)) return {};
    std::wstring text(bytes / sizeof(wchar_t) + 1, L'\0');
    bytes = static_cast<DWORD>(text.size() * sizeof(wchar_t));
    if (RegQueryValueExW(key, name, nullptr, &type, reinterpret_cast<BYTE*>(text.data()), &bytes)) return {};
    text.resize(bytes / sizeof(wchar_t));
    return text;
}

std::wstring ReadText(HKEY key, const wchar_t* name) {
    const std::wstring text = RawText(key, name, IsText);
    return text.substr(0, text.find(L'\0'));
}

std::vector<std::wstring> ReadList(HKEY key, const wchar_t* name) {
    std::vector<std::wstring> list;
    const std::wstring text = RawText(key, name, [](DWORD type) { return type == REG_MULTI_SZ; });
    for (std::size_t start = 0; start < text.size() && text[start] != L'\0';) {
        const std::size_t end = std::min(text.find(L'\0', start), text.size());
        list.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return list;
}

bool WriteRaw(HKEY key, const wchar_t* name, DWORD type, const std::wstring& text) {
    const DWORD bytes = static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t));
    return RegSetValueExW(key, name, 0, type, reinterpret_cast<const BYTE*>(text.c_str()), bytes) ==
           ERROR_SUCCESS;
}

bool WriteList(HKEY key, const wchar_t* name, const std::vector<std::wstring>& list) {
    std::wstring text;
    for (const std::wstring& part : list)
        text += part + L'\0';
    return WriteRaw(key, name, REG_MULTI_SZ, text);
}

// The entry's key and those above it, outermost first; "Software" itself is the system's.
std::vector<std::wstring> EntryKeys() {
    const std::wstring_view key = kInstallKey;
    std::vector<std::wstring> keys;
    for (std::size_t end = key.find(L'\\'); end != std::wstring_view::npos;) {
        end = key.find(L'\\', end + 1);
        keys.emplace_back(key.substr(0, end));
    }
    return keys;
}

// Makes the keys; the ones that were not there are added to `made`.
bool MakeKeys(std::vector<std::wstring>& made) {
    for (const std::wstring& path : EntryKeys()) {
        HKEY key = nullptr;
        DWORD disposition = 0;
        if (RegCreateKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                            KEY_QUERY_VALUE, nullptr, &key, &disposition))
            return false;
        RegCloseKey(key);
        if (disposition == REG_CREATED_NEW_KEY) made.push_back(path);
    }
    return true;
}

bool IsEmptyKey(const std::wstring& path) {
    const Key key(path.c_str(), KEY_READ);
    DWORD keys = 0, values = 0;
    if (!key.handle || RegQueryInfoKeyW(key.handle, nullptr, nullptr, nullptr, &keys, nullptr, nullptr,
                                        &values, nullptr, nullptr, nullptr, nullptr))
        return false;
    return keys == 0 && values == 0;
}

// Innermost first; what others put in stays.
void RemoveKeys(const std::vector<std::wstring>& keys) {
    for (auto path = keys.rbegin(); path != keys.rend(); ++path)
        if (IsEmptyKey(*path)) RegDeleteKeyW(HKEY_CURRENT_USER, path->c_str());
}

// Innermost first; the ones that hold something stay and are added to `kept`, innermost first.
void RemoveFolders(const std::vector<std::wstring>& folders, std::vector<std::wstring>& kept) {
    for (auto path = folders.rbegin(); path != folders.rend(); ++path) {
        const bool gone = RemoveDirectoryW(path->c_str()) || GetLastError() == ERROR_FILE_NOT_FOUND ||
                          GetLastError() == ERROR_PATH_NOT_FOUND;
        if (!gone) kept.push_back(*path);
    }
}

void RemoveNotes(HKEY key) {
    for (const wchar_t* name : {kMadeFolder, kTextBefore, kMadeFolders, kMadeKeys})
        RegDeleteValueW(key, name);
}

// The entry comes last: with it the editor starts.
bool WriteEntry(const std::wstring& install_dir, const std::vector<std::wstring>& folders,
                const std::vector<std::wstring>& keys) {
    const Key key(kInstallKey, KEY_READ | KEY_WRITE);
    if (!key.handle) return false;
    const std::wstring before = ReadText(key.handle, kInstallValue);
    if ((before.empty() || WriteRaw(key.handle, kTextBefore, REG_SZ, before)) &&
        WriteRaw(key.handle, kMadeFolder, REG_SZ, install_dir) &&
        WriteList(key.handle, kMadeFolders, folders) && WriteList(key.handle, kMadeKeys, keys) &&
        WriteRaw(key.handle, kInstallValue, REG_SZ, install_dir))
        return true;
    RemoveNotes(key.handle);
    return false;
}

bool IsThere(const std::wstring& path) {
    return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

// Whether link software may stand behind an entry's text: in a folder that is there, or on a drive or a
// server that is away just now.
bool MayBeInstalled(const std::wstring& folder) {
    if (folder.starts_with(L"\\\\")) return folder.size() > 2;
    if (folder.size() < 3 || folder[1] != L':' || folder[2] != L'\\') return false;
    return IsThere(folder) || !IsThere(folder.substr(0, 3));
}

// Takes the entry away, or puts back what was there.
bool TakeBackEntry(HKEY key) {
    const std::wstring before = ReadText(key, kTextBefore);
    if (!before.empty()) return WriteRaw(key, kInstallValue, REG_SZ, before);
    return RegDeleteValueW(key, kInstallValue) == ERROR_SUCCESS;
}

} // namespace

SetupResult SetUpLink(const std::wstring& install_dir) {
    if (!InstalledFolder().empty()) return SetupResult::AlreadyThere;
    if (!IsUsableFolder(install_dir)) return SetupResult::Failed;
    const std::wstring folder = WithoutTrailingBackslash(install_dir);
    std::vector<std::wstring> folders, keys, kept;
    RemoveLink(kept); // what an earlier run made of an entry that is useless by now
    const bool made = std::all_of(kFolders.begin(), kFolders.end(),
                                  [&](const wchar_t* part) { return MakeFolders(folder + part, folders); });
    if (made && MakeKeys(keys) && WriteEntry(folder, folders, keys)) return SetupResult::Done;
    RemoveKeys(keys);
    RemoveFolders(folders, kept);
    return SetupResult::Failed;
}

SetupResult RemoveLink(std::vector<std::wstring>& kept) {
    std::vector<std::wstring> folders, keys;
    {
        const Key key(kInstallKey, KEY_READ | KEY_WRITE);
        if (!key.handle || !HasValue(key.handle, kMadeFolder)) return SetupResult::NothingToRemove;
        folders = ReadList(key.handle, kMadeFolders);
        keys = ReadList(key.handle, kMadeKeys);
        // Link software that was installed since then has made the entry its own.
        if (ReadText(key.handle, kInstallValue) == ReadText(key.handle, kMadeFolder) &&
            !TakeBackEntry(key.handle))
            return SetupResult::Failed;
        RemoveNotes(key.handle);
    }
    RemoveKeys(keys);
    RemoveFolders(folders, kept);
    return SetupResult::Done;
}

std::wstring InstalledFolder() {
    const Key key(kInstallKey, KEY_QUERY_VALUE);
    const std::wstring folder = key.handle ? ReadText(key.handle, kInstallValue) : std::wstring();
    return MayBeInstalled(folder) ? folder : std::wstring();
}

bool IsUsableFolder(const std::wstring& install_dir) {
    const bool drive = install_dir.size() > 3 && install_dir[1] == L':' && install_dir[2] == L'\\';
    const bool network = install_dir.size() > 4 && install_dir.starts_with(L"\\\\");
    if (!drive && !network) return false;
    if (install_dir.find_first_of(L"*?\"<>|/:", 2) != std::wstring::npos || !FitsAnsi(install_dir))
        return false;
    const std::string cache = ToAnsi(WithoutTrailingBackslash(install_dir) + kFolders.back() + L"\\");
    return cache.size() + kRoomForAName < static_cast<std::size_t>(kLinkBufferSize);
}

std::optional<SetupOptions> ParseSetupOptions(const std::vector<std::wstring>& words) {
    SetupOptions options;
    for (std::size_t i = 0; i < words.size(); ++i) {
        std::wstring word = UpperCase(words[i]);
        if (word.starts_with(L'-')) word[0] = L'/';
        if (word == L"/QUIET") {
            options.quiet = true;
        } else if (word == L"/REMOVE") {
            options.remove = true;
        } else if (word == L"/FOLDER" && i + 1 < words.size() && !words[i + 1].empty()) {
            options.folder = words[++i];
        } else {
            return std::nullopt;
        }
    }
    return options;
}

} // namespace tonex
