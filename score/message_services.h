// What the user is told about melodies and their files, each text once, and the rules of names that are told
// so.
#pragma once

#include <string>

namespace tonex {

/// Told of a name with more than 8 bytes in the ANSI code page.
inline constexpr const wchar_t* kNameTooLong =
    L"File name cannot exceed 8 characters.  Change the file name.";

/// A file that can not be read, or a melody whose tempo is not in the list.
void TellReadError();
/// A melody that could not be written; nothing was changed.
void TellWriteError();
/// A melody that could not be written because no file can hold one of its entries, counted from 1: a note
/// whose pitch is out of range, or an entry that the editor does not know.
void TellEntryNotSaved(int entry, bool is_note);
/// A melody whose last entries, so many, were left out.
void TellHowManyDidNotFit(int entries);

/// True for a path ending in ".SND" in any letter case; otherwise tells the user and gives false.
bool CheckSndExtension(const std::wstring& path);
/// True when the file name without ".SND" has at most 8 bytes in the ANSI code page; otherwise tells the
/// user.
bool CheckNameLength(const std::wstring& path);

} // namespace tonex
