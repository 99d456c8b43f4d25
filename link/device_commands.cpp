#include "link/device_commands.h"

#include "app/enabling_commands.h"
#include "app/sndmain.h"
#include "link/discovery_commands.h"
#include "link/folder_device_services.h"
#include "link/paths.h"
#include "link/settings_commands.h"
#include "platform/files.h"
#include "platform/message_box.h"
#include "platform/temporary_files.h"
#include "platform/text.h"
#include "preview/leftover_services.h"
#include "score/document_commands.h"
#include "score/file_services.h"
#include "score/message_services.h"
#include "score/temporary_names.h"
#include "view/tempo_commands.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

namespace tonex {

namespace {

constexpr const char* kDeviceExtension = "snd";

/// What the library writes text into. It is told of 200 characters and no more are read; the rest is a margin
/// for a library that puts its ending NUL behind them.
struct LinkBuffer {
    std::array<char, 256> characters{};

    char* Begin() { return characters.data(); }
    /// The text up to its first NUL, at most `limit` characters.
    std::string Text(std::size_t limit = kLinkBufferSize) const {
        const char* begin = characters.data();
        const char* end = begin + std::min<std::size_t>(limit, kLinkBufferSize);
        return {begin, std::find(begin, end, '\0')};
    }
};

using Conversion = std::int16_t(TONEX_STDCALL*)(char*, std::int32_t, const char*);

/// The path as the other side names it; empty when it is not convertible, or no library can say.
std::string Convert(Conversion conversion, const std::string& path) {
    if (!conversion) return {};
    LinkBuffer buffer;
    const std::int16_t count = conversion(buffer.Begin(), kLinkBufferSize, path.c_str());
    if (count <= 0) return {};
    return buffer.Text(static_cast<std::size_t>(count));
}

std::string CacheToDevice(const sndmain& window, const std::wstring& cache_path) {
    // Spelled in another way than it is, the path would be that of another file.
    if (!FitsAnsi(cache_path)) return {};
    return Convert(window.link_library.Cor_ConvPathCacheToCorvane, ToAnsi(cache_path));
}

std::wstring DeviceToCache(const sndmain& window, const std::string& device_path) {
    return FromAnsi(Convert(window.link_library.Cor_ConvPathCorvaneToCache, device_path));
}

using DeviceDialog = std::int32_t(TONEX_STDCALL*)(const char*, const char*, char*, std::int32_t);

/// The device path of the choice; empty on cancel.
std::string ChooseOnDevice(DeviceDialog dialog, const std::string& start) {
    if (!dialog) return {};
    LinkBuffer buffer;
    if (dialog(start.c_str(), kDeviceExtension, buffer.Begin(), kLinkBufferSize) == 0) return {};
    return buffer.Text();
}

/// What became of a melody on its way to the device.
struct Delivery {
    SndResult result = kSndDone; ///< the encoding's own; kSndWriteError: no temporary file could be written
    bool taken = false;          ///< the device has it
};

/// Hands a file to the device. False when the library refuses.
bool UploadFile(const LinkLibrary& library, const std::wstring& device_path, const std::wstring& file) {
    return library.Cor_PutFile(ToAnsi(device_path).c_str(), ToAnsi(file).c_str(), 0) == 0;
}

/// Writes an encoded melody to a temporary file and has the library upload it. A refusal is told to the user.
Delivery Deliver(sndmain& window, const SndEncoding& melody, const std::wstring& device_path) {
    if (!IsWritten(melody.result)) return {melody.result};
    const std::wstring folder = UploadFolder(window.link.InstallDir);
    const std::wstring temporary =
        folder.empty() ? folder : CreateTemporaryFile(folder, std::wstring(kUploadPrefix));
    if (temporary.empty()) return {kSndWriteError};
    Delivery delivery = {SaveSndFile(melody, temporary)};
    if (IsWritten(delivery.result)) {
        delivery.taken = UploadFile(window.link_library, device_path, temporary);
        if (!delivery.taken) ShowMessage(L"File translate error when upload to Veloxa!");
    }
    DeleteTemporaryFile(temporary, window.leftovers);
    return delivery;
}

/// Deletes the cache's copy of a melody that is about to be saved. From here on the editor alone has it, so
/// that New, Open and Close ask again until the device has taken it.
void DeleteCacheCopy(sndmain& window, const std::wstring& cache_path) {
    DeleteFileIfExists(cache_path);
    window.score.changed = true;
}

/// The score as a file for the device. Nothing when no file can hold it: the user was told, before anything
/// is deleted.
std::optional<SndEncoding> EncodeForDevice(sndmain& window) {
    SndEncoding melody = EncodeSnd(window.tables, TempoForWriting(window), BuildSaveList(window.score));
    if (melody.result != kSndWriteError) return melody;
    EndSave(window, melody, melody.result, {}, kOnDevice);
    return std::nullopt;
}

/// Writes the melody and hands it over to `device_path`. True when the device took it. What a disk refused is
/// as it was.
bool SaveAndHandOver(sndmain& window, const SndEncoding& melody, const std::wstring& cache_path,
                     const std::string& device_path) {
    const std::wstring target = FromAnsi(device_path);
    const Delivery delivery = Deliver(window, melody, target);
    if (delivery.result != kSndWriteError) window.document.device_path = target;
    EndSave(window, melody, delivery.result, cache_path, kOnDevice);
    if (delivery.taken) {
        window.score.changed = false;
        window.link.device_work = true;
    }
    RefreshEnabling(window);
    return delivery.taken;
}

bool CanSaveToDevice(const LinkLibrary& library) {
    return library.Cor_ConvPathCacheToCorvane && library.Cor_PutFile;
}

/// The start text of the save dialog: the device folder with the proposed name behind it.
std::string StartTextFor(const sndmain& window, std::string folder) {
    if (!folder.ends_with('\\')) folder += '\\';
    const std::wstring name = FileNameOfPath(window.document.current_path);
    return folder + ToAnsi(name.empty() || !FitsAnsi(name) ? L"Untitled" : name);
}

bool SaveToDeviceAs(sndmain& window) {
    if (!CanSaveToDevice(window.link_library)) return false;
    const std::string folder = CacheToDevice(window, window.link.CacheSoundDir);
    if (folder.empty()) return false;
    const std::string chosen =
        ChooseOnDevice(window.link_library.Cor_PIMSaveFileDialog, StartTextFor(window, folder));
    if (chosen.empty()) return false;
    const std::wstring cache_path = DeviceToCache(window, chosen);
    if (cache_path.empty()) return false;
    window.link.CacheSoundDir = FolderOfPath(cache_path);
    const std::optional<SndEncoding> melody = EncodeForDevice(window);
    if (!melody) return false;
    DeleteCacheCopy(window, cache_path);
    return SaveAndHandOver(window, *melody, cache_path, chosen);
}

/// Lists the device's sounds. A count or a list that runs over the buffer is cut at its end.
std::vector<std::wstring> ListDeviceSounds(const sndmain& window) {
    std::vector<std::wstring> sounds;
    if (!window.link_library.Cor_DirByExt) return sounds;
    std::array<char, 8192> names{};
    const auto size = static_cast<std::int32_t>(names.size());
    std::int32_t count =
        window.link_library.Cor_DirByExt("\\system\\sound", kDeviceExtension, names.data(), size);
    const char* name = names.data();
    const char* const end = name + names.size();
    while (count-- > 0 && name < end && *name != '\0') {
        const char* const stop = std::find(name, end, '\0');
        sounds.push_back(L"\\system\\sound\\" + FromAnsi({name, static_cast<std::size_t>(stop - name)}));
        name = stop == end ? end : stop + 1;
    }
    return sounds;
}

/// Has the link software bring a device file into the cache; empty when it does not know it or can not.
std::wstring FetchDeviceFile(const sndmain& window, const std::wstring& cache_path) {
    const std::string device_path = CacheToDevice(window, cache_path);
    const LinkLibrary& library = window.link_library;
    if (device_path.empty() || !library.Cor_IsExist || !library.Cor_GetFile) return {};
    if (library.Cor_IsExist(device_path.c_str()) == 0) return {};
    LinkBuffer buffer;
    if (library.Cor_GetFile(buffer.Begin(), device_path.c_str(), -1) != 0) return {};
    return FromAnsi(buffer.Text());
}

} // namespace

std::wstring UploadFolder(const std::wstring& install_dir) {
    std::wstring folder = TemporaryFolder();
    if (!FitsAnsi(folder)) folder = ShortNameOf(folder);
    return FitsAnsi(folder) ? folder : install_dir + L"\\";
}

bool SaveToDevice(sndmain& window) {
    const Document& document = window.document;
    const bool name_fits = CheckNameLength(document.current_path);
    if (document.current_path.empty() || !name_fits || document.location_flag == kOnPc) {
        return SaveToDeviceAs(window);
    }
    if (!CanSaveToDevice(window.link_library)) return false;
    const std::wstring cache_path = document.current_path;
    if (!FitsAnsi(cache_path)) return SaveToDeviceAs(window); // the library could not be told of it
    const std::optional<SndEncoding> melody = EncodeForDevice(window);
    if (!melody) return false;
    // The cache copy goes before anyone knows whether its path can be converted; kept as it is.
    DeleteCacheCopy(window, cache_path);
    const std::string device_path = CacheToDevice(window, cache_path);
    if (device_path.empty()) return false;
    return SaveAndHandOver(window, *melody, cache_path, device_path);
}

void mnuFileOverWriteZ730_Click(sndmain& window) {
    SaveToDevice(window);
}

// The library's own dialog sees to the length of a new name, so the rule for PC names is not applied here.
void mnuFileSaveWithNameZ730_Click(sndmain& window) {
    SaveToDeviceAs(window);
}

void mnuFileOpenZ730_Click(sndmain& window) {
    if (!AskToSaveChanges(window)) return;
    const std::string folder = CacheToDevice(window, window.link.CacheSoundDir);
    if (folder.empty()) return;
    const std::string chosen = ChooseOnDevice(window.link_library.Cor_PIMOpenFileDialog, folder);
    if (chosen.empty()) return;
    const std::wstring cache_path = DeviceToCache(window, chosen);
    if (cache_path.empty()) return;
    window.link.CacheSoundDir = FolderOfPath(cache_path);
    // Marked before loading: the title stores the location, and a load that fails makes it a PC's again.
    window.document.current_path = cache_path;
    window.document.location_flag = kOnDevice;
    LoadDocument(window, kSuffixVeloxa);
}

void Disconnection_Click(sndmain& window) {
    if (window.link_library.Cor_SetupDisconnection) window.link_library.Cor_SetupDisconnection();
}

bool Disconnect(sndmain& window) {
    if (!window.link_library.Cor_DoDisconnect) return true;
    return window.link_library.Cor_DoDisconnect() == 0;
}

bool ReopenLastFile(sndmain& window, const std::wstring& section) {
    // The suite's viewer reopens its last sound by this routine too and lists the device first. With the
    // editor's own section that never happens; kept as it is, so that the routine serves both.
    if (section == L"Sclview") window.link.device_sounds = ListDeviceSounds(window);
    Document& document = window.document;
    document.current_path.clear();
    LastDocument last = ReadLastDocument(section);
    if (last.path.empty()) return false;
    // What the library says of the path counts for more than the number stored.
    RememberFolderOfFile(window, last.path, window.link.CacheSoundDir, last.location_flag);
    if (last.location_flag == kOnDevice) last.path = FetchDeviceFile(window, last.path);
    if (last.path.empty() || !FileExists(last.path)) return false;
    document.current_path = last.path;
    document.location_flag = last.location_flag;
    return true;
}

} // namespace tonex
