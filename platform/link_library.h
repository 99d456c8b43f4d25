// The maker's link libraries CorCalen.dll and Corfldlg.dll as one table of typed functions, filled once.
// All text is 8-bit ANSI. A function that is missing is null; callers ask before they call.
#pragma once

#include <cstdint>
#include <string>

#if defined(_WIN32)
#define TONEX_STDCALL __stdcall
#else
#define TONEX_STDCALL
#endif

namespace tonex {

inline constexpr int kLinkBufferSize = 200; ///< characters of a path buffer that passes the border

struct LinkLibrary {
    /// Path of a file; non-zero: an ordinary PC file, zero: inside the device cache.
    std::int32_t(TONEX_STDCALL* Cor_IsOnPcFile)(const char* path);
    /// Device path; non-zero when the link software knows the file.
    std::int32_t(TONEX_STDCALL* Cor_IsExist)(const char* device_path);
    /// Output buffer, its size, cache path; the count of characters written, 0 = not convertible.
    std::int16_t(TONEX_STDCALL* Cor_ConvPathCacheToCorvane)(char* device_path, std::int32_t size,
                                                            const char* cache_path);
    /// Output buffer, its size, device path; the count of characters written.
    std::int16_t(TONEX_STDCALL* Cor_ConvPathCorvaneToCache)(char* cache_path, std::int32_t size,
                                                            const char* device_path);
    /// Start folder (device path), extension, output buffer, its size; non-zero when a file was chosen.
    std::int32_t(TONEX_STDCALL* Cor_PIMOpenFileDialog)(const char* start, const char* extension,
                                                       char* device_path, std::int32_t size);
    /// As the open dialog; the start text is the folder with the proposed name behind it.
    std::int32_t(TONEX_STDCALL* Cor_PIMSaveFileDialog)(const char* start, const char* extension,
                                                       char* device_path, std::int32_t size);
    /// Output buffer of 200 characters (first one NUL on entry), device path, -1; 0 on success.
    std::int32_t(TONEX_STDCALL* Cor_GetFile)(char* cache_path, const char* device_path, std::int32_t mode);
    /// Device target name, path of the file to hand over, 0; 0 on success.
    std::int32_t(TONEX_STDCALL* Cor_PutFile)(const char* device_path, const char* path, std::int32_t mode);
    /// Device folder, extension, output buffer for names ended by NUL each and one more at the end, its size;
    /// the number of files.
    std::int32_t(TONEX_STDCALL* Cor_DirByExt)(const char* device_folder, const char* extension, char* names,
                                              std::int32_t size);
    /// Shows the link software's disconnection setup.
    void(TONEX_STDCALL* Cor_SetupDisconnection)();
    /// Ends the connection; 0 lets the editor close.
    std::int16_t(TONEX_STDCALL* Cor_DoDisconnect)();
};

/// Fills the table from the maker's libraries in the installation folder or where the system finds libraries;
/// what they lack is filled from the folder-backed device below that folder, so that every entry is set.
LinkLibrary LoadLinkLibrary(const std::wstring& install_dir);

} // namespace tonex
