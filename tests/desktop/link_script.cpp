// The scripted link library: plain functions of the maker's shape that answer from the scripted desktop.
#include "tests/desktop/desktop.h"

#include "platform/link_library.h"
#include "platform/text.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace tonex {

namespace {

using desktop::Current;
using desktop::LinkScript;
using desktop::Log;

LinkScript& Script() {
    return Current().link;
}
std::string Shown(const char* ansi) {
    return desktop::Utf8(FromAnsi(ansi));
}

bool BeginsWith(const std::string& text, const std::string& start) {
    if (text.size() < start.size()) return false;
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
    return std::equal(start.begin(), start.end(), text.begin(),
                      [&](char a, char b) { return lower(a) == lower(b); });
}

/// Writes text and its NUL as far as the buffer holds them.
void Put(char* buffer, std::int32_t size, const std::string& text) {
    const auto room = static_cast<std::size_t>(size);
    std::memcpy(buffer, text.c_str(), std::min(room, text.size() + 1));
}

/// Writes bytes with nothing behind them.
void PutRaw(char* buffer, std::int32_t size, const std::string& bytes) {
    std::memcpy(buffer, bytes.data(), std::min(static_cast<std::size_t>(size), bytes.size()));
}

std::int16_t Converted(char* buffer, std::int32_t size, const std::string& text) {
    const LinkScript& script = Script();
    if (script.conversion_bytes) {
        PutRaw(buffer, size, *script.conversion_bytes);
    } else {
        Put(buffer, size, text);
    }
    const std::size_t written = script.conversion_bytes ? script.conversion_bytes->size() : text.size();
    return script.conversion_count.value_or(static_cast<std::int16_t>(written));
}

std::int32_t TONEX_STDCALL IsOnPcFile(const char* path) {
    Log("Cor_IsOnPcFile " + Shown(path));
    return BeginsWith(path, Script().cache_root + "\\") ? 0 : 1;
}

std::int32_t TONEX_STDCALL IsExist(const char* device_path) {
    Log("Cor_IsExist " + Shown(device_path));
    if (Script().exists) return *Script().exists;
    return Current().files.contains(FromAnsi(Script().cache_root + device_path)) ? 1 : 0;
}

std::int16_t TONEX_STDCALL ConvPathCacheToCorvane(char* device_path, std::int32_t size,
                                                  const char* cache_path) {
    Log("Cor_ConvPathCacheToCorvane " + Shown(cache_path) + " " + std::to_string(size));
    const std::string path = cache_path;
    if (!BeginsWith(path, Script().cache_root)) return Script().conversion_count.value_or(0);
    return Converted(device_path, size, path.substr(Script().cache_root.size()));
}

std::int16_t TONEX_STDCALL ConvPathCorvaneToCache(char* cache_path, std::int32_t size,
                                                  const char* device_path) {
    Log("Cor_ConvPathCorvaneToCache " + Shown(device_path) + " " + std::to_string(size));
    return Converted(cache_path, size, Script().cache_root + device_path);
}

std::int32_t Choose(std::deque<std::optional<std::string>>& choices, char* device_path, std::int32_t size) {
    if (choices.empty()) throw std::logic_error("the test has queued no answer to a device dialog");
    const std::optional<std::string> choice = choices.front();
    choices.pop_front();
    if (!choice) return 0;
    if (Script().dialogs_omit_nul) std::memset(device_path, '#', static_cast<std::size_t>(size));
    if (Script().dialogs_omit_nul) {
        PutRaw(device_path, size, *choice);
    } else {
        Put(device_path, size, *choice);
    }
    return Script().dialog_result;
}

std::int32_t TONEX_STDCALL PIMOpenFileDialog(const char* start, const char* extension, char* device_path,
                                             std::int32_t size) {
    Log("Cor_PIMOpenFileDialog " + Shown(start) + " " + extension + " " + std::to_string(size));
    return Choose(Script().open_choices, device_path, size);
}

std::int32_t TONEX_STDCALL PIMSaveFileDialog(const char* start, const char* extension, char* device_path,
                                             std::int32_t size) {
    Log("Cor_PIMSaveFileDialog " + Shown(start) + " " + extension + " " + std::to_string(size));
    return Choose(Script().save_choices, device_path, size);
}

std::int32_t TONEX_STDCALL GetFile(char* cache_path, const char* device_path, std::int32_t mode) {
    Log("Cor_GetFile " + Shown(device_path) + " " + std::to_string(mode));
    if (cache_path[0] != 0) throw std::logic_error("Cor_GetFile's buffer must begin with NUL");
    if (Script().get_result != 0) return Script().get_result;
    if (Script().get_bytes) {
        PutRaw(cache_path, kLinkBufferSize, *Script().get_bytes);
    } else {
        Put(cache_path, kLinkBufferSize, Script().cache_root + device_path);
    }
    return 0;
}

std::int32_t TONEX_STDCALL PutFile(const char* device_path, const char* path, std::int32_t mode) {
    Log("Cor_PutFile " + Shown(device_path) + " " + Shown(path) + " " + std::to_string(mode));
    if (Script().put_result != 0) return Script().put_result;
    const auto found = Current().files.find(FromAnsi(path));
    if (found == Current().files.end()) return 1;
    Script().uploads[device_path] = found->second.bytes;
    Current().files[FromAnsi(Script().cache_root + device_path)] = {found->second.bytes};
    return 0;
}

std::int32_t TONEX_STDCALL DirByExt(const char* device_folder, const char* extension, char* names,
                                    std::int32_t size) {
    Log("Cor_DirByExt " + Shown(device_folder) + " " + extension + " " + std::to_string(size));
    std::string list;
    for (const std::string& name : Script().listing)
        list += name + '\0';
    if (Script().listing_bytes) {
        PutRaw(names, size, *Script().listing_bytes);
    } else {
        Put(names, size, list);
    }
    return Script().listing_count.value_or(static_cast<std::int32_t>(Script().listing.size()));
}

void TONEX_STDCALL SetupDisconnection() {
    Log("Cor_SetupDisconnection");
}

std::int16_t TONEX_STDCALL DoDisconnect() {
    Log("Cor_DoDisconnect");
    return Script().disconnect_result;
}

} // namespace

LinkLibrary LoadLinkLibrary(const std::wstring& install_dir) {
    Log("LoadLinkLibrary " + desktop::Utf8(install_dir));
    if (!Script().loads) return {};
    LinkLibrary table{&IsOnPcFile,
                      &IsExist,
                      &ConvPathCacheToCorvane,
                      &ConvPathCorvaneToCache,
                      &PIMOpenFileDialog,
                      &PIMSaveFileDialog,
                      &GetFile,
                      &PutFile,
                      &DirByExt,
                      &SetupDisconnection,
                      &DoDisconnect};
    const auto lacks = [](const char* name) { return Script().missing.contains(name); };
    if (lacks("Cor_IsOnPcFile")) table.Cor_IsOnPcFile = nullptr;
    if (lacks("Cor_IsExist")) table.Cor_IsExist = nullptr;
    if (lacks("Cor_ConvPathCacheToCorvane")) table.Cor_ConvPathCacheToCorvane = nullptr;
    if (lacks("Cor_ConvPathCorvaneToCache")) table.Cor_ConvPathCorvaneToCache = nullptr;
    if (lacks("Cor_PIMOpenFileDialog")) table.Cor_PIMOpenFileDialog = nullptr;
    if (lacks("Cor_PIMSaveFileDialog")) table.Cor_PIMSaveFileDialog = nullptr;
    if (lacks("Cor_GetFile")) table.Cor_GetFile = nullptr;
    if (lacks("Cor_PutFile")) table.Cor_PutFile = nullptr;
    if (lacks("Cor_DirByExt")) table.Cor_DirByExt = nullptr;
    if (lacks("Cor_SetupDisconnection")) table.Cor_SetupDisconnection = nullptr;
    if (lacks("Cor_DoDisconnect")) table.Cor_DoDisconnect = nullptr;
    return table;
}

} // namespace tonex
