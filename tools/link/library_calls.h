// What the two link libraries share: the device they work on, a record of their calls, and faults.
//
// TONEX_LINK_FAULT, a list of words joined by commas, makes functions fail in the ways in which a library of
// another maker might. It is read at every call.
//   pcfile, cachefile   Cor_IsOnPcFile answers always yes, always no
//   unknown             Cor_IsExist knows no file
//   conv0               conversions give 0
//   convnegative        conversions write the path and give -1
//   convbig             conversions write the path and give 32767
//   full                every output buffer is filled to its last character, without a NUL, and counted so
//   nonul               output text is followed by other characters to the end of the buffer, without a NUL
//   dbcs                names that come out are double-byte, one with a backslash as its second byte
//   open, save          the dialogs answer at once with \System\sound\LINK.SND
//   opencancel, savecancel  the dialogs answer at once that nothing was chosen
//   getfile, putfile    the transfer is refused
//   dir                 Cor_DirByExt lists nothing
//   setup               Cor_SetupDisconnection shows nothing
//   disconnect          Cor_DoDisconnect gives 5
// TONEX_LINK_LOG names a file that gets one line a call: the function, its text arguments, its result.
#pragma once

#include "platform/windows/device_dialogs.h"

#include <initializer_list>

namespace tonex {

/// Whether a fault is asked for.
bool Fault(const wchar_t* word);

/// The device of the installation folder that the current user's registry names.
FolderDevice InstalledDevice();

/// Adds a line to the record.
void RecordCall(const char* function, std::initializer_list<const char*> arguments, int result);

/// Spoils a buffer that holds text and its NUL as "full" and "nonul" ask; gives the count to report.
int Spoiled(char* buffer, std::int32_t size, int count);

/// Writes the path that the dialogs choose under "open" and "save".
int WriteFixedChoice(char* device_path, std::int32_t size);

} // namespace tonex
