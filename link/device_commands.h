// The device's side of the File menu, the last document at start-up, disconnection.
#pragma once

#include <string>

namespace tonex {

struct sndmain;

/// Save to Veloxa. True when the device took the score. Otherwise the melody is in the editor only and counts
/// as changed: the copy in the cache is deleted first.
bool SaveToDevice(sndmain& window);

/// The folder for the files that the link library uploads: the temporary one, spelled so that the code page
/// can name it to the library. Where that can not be, the installation's, which the library must be able to
/// name. Empty when the system has no folder for temporary files.
std::wstring UploadFolder(const std::wstring& install_dir);

/// Open on Veloxa.
void mnuFileOpenZ730_Click(sndmain& window);
/// Save to Veloxa.
void mnuFileOverWriteZ730_Click(sndmain& window);
/// Save to Veloxa as.
void mnuFileSaveWithNameZ730_Click(sndmain& window);
/// Disconnection Setup: shows the link library's own dialog.
void Disconnection_Click(sndmain& window);
/// Reads the last document of a settings section into the record. True when a file is to be opened.
bool ReopenLastFile(sndmain& window, const std::wstring& section);
/// Calls the library's disconnect; true when the window may close.
bool Disconnect(sndmain& window);

} // namespace tonex
