#include "score/file_services.h"

#include "link/paths.h"
#include "platform/files.h"
#include "platform/refusal.h"
#include "score/temporary_names.h"

#include <algorithm>
#include <array>
#include <optional>
#include <vector>

namespace tonex {

namespace {

constexpr std::uint32_t kGuarding = kAttributeReadOnly | kAttributeHidden | kAttributeSystem;
constexpr int kNameTries = 8;

/// Milliseconds between the tries of an errand that a scanner or a synchroniser blocks; 1.5 seconds in all.
constexpr std::array<std::uint32_t, 8> kPauses = {10, 20, 40, 80, 150, 250, 400, 550};

/// The pauses that an errand has made for files that other programs hold.
struct Patience {
    std::size_t pauses = 0;
};

/// Tries an operation until it succeeds, fails for good, or the errand's patience is at its end.
template <class Operation> bool Try(Patience& patience, Operation operation) {
    while (!operation()) {
        if (!FileIsBusy() || patience.pauses == kPauses.size()) return false;
        PauseBriefly(kPauses[patience.pauses++]);
    }
    return true;
}

/// The part of a path in front of the file name. A path that starts with a slash is one of a POSIX system,
/// where a backslash is a character like any other.
std::wstring FolderBeside(const std::wstring& path) {
    return path.starts_with(L'/') ? path.substr(0, path.rfind(L'/') + 1) : FolderOfPath(path);
}

/// Creates a new file beside the target; `name` is its path, also when what follows fails.
OutputFilePtr CreateBeside(Patience& patience, const std::wstring& target, std::wstring& name) {
    const std::wstring folder = FolderBeside(target);
    OutputFilePtr file;
    for (int i = 0; i < kNameTries && !file; ++i) {
        name = folder + SaveName(UniqueNumber());
        Try(patience, [&] { return (file = CreateOutput(name)) != nullptr; });
    }
    return file;
}

bool WriteAndClose(Patience& patience, OutputFilePtr file, std::span<const std::uint8_t> bytes) {
    // A file that is busy has taken nothing, so the same bytes may be offered again.
    if (!Try(patience, [&] { return WriteOutput(*file, bytes.data(), bytes.size()); })) return false;
    if (!Try(patience, [&] { return FlushOutput(*file); })) return false;
    return CloseOutput(std::move(file));
}

/// Keeps the system's reason before anything else is asked of it. False always.
bool Refused(std::string& reason) {
    reason = ReasonOfRefusal();
    return false;
}

/// Whether the disk gives back what it took; one byte more is asked for, so that a longer file shows.
bool HoldsExactly(Patience& patience, const std::wstring& path, std::span<const std::uint8_t> bytes) {
    std::vector<std::uint8_t> read;
    if (!Try(patience, [&] { return ReadWholeFile(path, read, bytes.size() + 1); })) return false;
    return std::equal(read.begin(), read.end(), bytes.begin(), bytes.end());
}

/// Fills the new file at the path and looks whether the disk has it.
bool WriteTo(Patience& patience, OutputFilePtr file, const std::wstring& path,
             std::span<const std::uint8_t> bytes, std::string& reason) {
    if (!WriteAndClose(patience, std::move(file), bytes)) return Refused(reason);
    if (HoldsExactly(patience, path, bytes)) return true;
    reason = "what was written can not be read back";
    return false;
}

bool TrySetAttributes(Patience& patience, const std::wstring& path, std::uint32_t attributes) {
    return Try(patience, [&] { return SetAttributesOf(path, attributes); });
}

/// Puts a finished file in the place of the target, whose read-only, hidden and system attributes do not
/// protect it. When the target stays, its attributes are as they were.
bool Replace(Patience& patience, const std::wstring& from, const std::wstring& target, std::string& reason) {
    std::optional<std::uint32_t> old;
    Try(patience, [&] { return (old = AttributesOf(target)).has_value(); });
    const bool folder = old && (*old & kAttributeDirectory) != 0;
    if (folder) patience.pauses = kPauses.size(); // no waiting makes it a file
    const bool guarded = old && (*old & kGuarding) != 0 && !folder;
    if (guarded) TrySetAttributes(patience, target, kAttributeArchive);
    if (Try(patience, [&] { return RenameOver(from, target); })) return true;
    Refused(reason);
    Patience afterwards;
    if (guarded) TrySetAttributes(afterwards, target, *old);
    return false;
}

} // namespace

bool SaveWholeFile(const std::wstring& path, std::span<const std::uint8_t> bytes, std::string* reason) {
    std::string unheard;
    std::string& why = reason == nullptr ? unheard : *reason;
    Patience patience;
    std::wstring temporary;
    OutputFilePtr file = CreateBeside(patience, path, temporary);
    if (!file) return Refused(why);
    if (WriteTo(patience, std::move(file), temporary, bytes, why) && Replace(patience, temporary, path, why))
        return true;
    Patience afterwards;
    Try(afterwards, [&] { return RemoveFile(temporary); });
    return false;
}

SndResult SaveSndFile(const SndEncoding& melody, const std::wstring& path) {
    if (!IsWritten(melody.result)) return melody.result;
    return SaveWholeFile(path, melody.bytes) ? melody.result : kSndWriteError;
}

SndResult SoundDataToFile(const TimingTables& tables, std::int16_t tempo, const FileList& list,
                          const std::wstring& path, std::int16_t& entries_written) {
    const SndEncoding melody = EncodeSnd(tables, tempo, list);
    entries_written = melody.entries_written;
    return SaveSndFile(melody, path);
}

SndResult FileToSoundData(std::int16_t& tempo, FileList& list, const std::wstring& path) {
    if (!FileExists(path)) return kSndNotFound;
    std::vector<std::uint8_t> bytes;
    if (!ReadWholeFile(path, bytes, std::size_t{2} * kSndBlockSize)) return kSndNotFound;
    return DecodeSnd(bytes, tempo, list);
}

void SweepAbandonedSaves(const std::wstring& folder) {
    const std::wstring home = WithoutTrailingBackslash(folder) + L"\\";
    for (const std::wstring& name : ListFiles(folder, L"~snd*.tmp")) {
        if (!IsSaveName(name)) continue;
        const std::optional<std::uint64_t> age = AgeOfFile(home + name);
        if (age && *age > kAbandonedAge) RemoveFile(home + name);
    }
}

void DeleteFileIfExists(const std::wstring& path) {
    Patience patience;
    if (!Try(patience, [&] { return FileExists(path); })) return;
    TrySetAttributes(patience, path, kAttributeArchive);
    Try(patience, [&] { return RemoveFile(path); });
}

} // namespace tonex
