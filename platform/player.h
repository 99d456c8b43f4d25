// Starting a sound player and waiting for it.
#pragma once

#include <cstdint>
#include <string>

namespace tonex {

inline constexpr std::uint32_t kStillActive = 259; ///< exit code of a process that has not ended

/// A process handle as the system counts them; 0 = none.
using ProcessHandle = std::uintptr_t;

/// The environment variable by which our own player learns what to call the sound. Other players do not know
/// it.
inline constexpr const wchar_t* kSoundNameVariable = L"SOUND_PLAYER_NAME";

/// Starts a command line in a normal, focused window and gives the process identifier, 0 when it can not.
/// `sound_name` is what a player may call the sound instead of its file's name; empty: nothing.
std::uint32_t StartCommandLine(const std::wstring& command_line, const std::wstring& sound_name = {});

/// Opens a process for query-information access; 0 when it can not.
ProcessHandle OpenProcessForQuery(std::uint32_t process_id);

/// Starts a document with a verb, the main window as parent, asking for the process handle.
/// True when the system took the document; `process` may still be 0 when no new process was made.
bool StartDocument(const std::wstring& path, const std::wstring& verb, ProcessHandle& process);

/// The exit code, kStillActive while the process runs.
std::uint32_t ExitCodeOf(ProcessHandle process);

/// Gives the handle back.
void CloseProcess(ProcessHandle process);

} // namespace tonex
