#include "score/file_services.h"

#include "link/paths.h"
#include "platform/files.h"
#include "platform/refusal.h"
#include "score/number_text.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <vector>

namespace tonex {

namespace {

constexpr std::wstring_view kTemporaryStart = L"~snd";
constexpr std::wstring_view kTemporaryEnd = L".tmp";
constexpr std::uint32_t kGuarding = kAttributeReadOnly | kAttributeHidden | kAttributeSystem;
constexpr int kNameTries = 8;
constexpr int kTries = 5;            ///< of an operation that a scanner may block for moments
constexpr std::uint32_t kPause = 20; ///< milliseconds between them
constexpr std::uint64_t kAbandonedAge = 24 * 60 * 60; ///< seconds; no save takes a day

template <class Operation> bool WithRetries(Operation operation) {
    for (int i = 0; i < kTries; ++i) {
        if (i > 0) PauseBriefly(kPause);
        if (operation()) return true;
    }
    return false;
}

/// The part of a path in front of the file name. A path that starts with a slash is one of a POSIX system,
/// where a backslash is a character like any other.
std::wstring FolderBeside(const std::wstring& path) {
    return path.starts_with(L'/') ? path.substr(0, path.rfind(L'/') + 1) : FolderOfPath(path);
}

/// Creates a new file beside the target; `name` is its path, also when what follows fails.
OutputFilePtr CreateBeside(const std::wstring& target, std::wstring& name) {
    for (int i = 0; i < kNameTries; ++i) {
        name = FolderBeside(target);
        name += kTemporaryStart;
        name += std::to_wstring(UniqueNumber());
        name += kTemporaryEnd;
        if (OutputFilePtr file = CreateOutput(name)) return file;
    }
    return nullptr;
}

bool WriteAndClose(OutputFilePtr file, std::span<const std::uint8_t> bytes) {
    if (!WriteOutput(*file, bytes.data(), bytes.size())) return false;
    if (!FlushOutput(*file)) return false;
    return CloseOutput(std::move(file));
}

/// Keeps the system's reason before anything else is asked of it. False always.
bool Refused(std::string& reason) {
    reason = ReasonOfRefusal();
    return false;
}

/// Whether the disk gives back what it took; one byte more is asked for, so that a longer file shows.
bool HoldsExactly(const std::wstring& path, std::span<const std::uint8_t> bytes) {
    std::vector<std::uint8_t> read;
    if (!ReadWholeFile(path, read, bytes.size() + 1)) return false;
    return std::equal(read.begin(), read.end(), bytes.begin(), bytes.end());
}

/// Fills the new file at the path and looks whether the disk has it.
bool WriteTo(OutputFilePtr file, const std::wstring& path, std::span<const std::uint8_t> bytes,
             std::string& reason) {
    if (!WriteAndClose(std::move(file), bytes)) return Refused(reason);
    if (HoldsExactly(path, bytes)) return true;
    reason = "what was written can not be read back";
    return false;
}

/// Puts a finished file in the place of the target, whose read-only, hidden and system attributes do not
/// protect it. When the target stays, its attributes are as they were.
bool Replace(const std::wstring& from, const std::wstring& target, std::string& reason) {
    const std::optional<std::uint32_t> old = AttributesOf(target);
    const bool guarded = old && (*old & kGuarding) != 0 && (*old & kAttributeDirectory) == 0;
    if (guarded) WithRetries([&] { return SetAttributesOf(target, kAttributeArchive); });
    if (WithRetries([&] { return RenameOver(from, target); })) return true;
    Refused(reason);
    if (guarded) WithRetries([&] { return SetAttributesOf(target, *old); });
    return false;
}

bool IsAbandonedSaveName(std::wstring_view name) {
    if (name.size() <= kTemporaryStart.size() + kTemporaryEnd.size()) return false;
    if (!name.starts_with(kTemporaryStart) || !name.ends_with(kTemporaryEnd)) return false;
    name.remove_prefix(kTemporaryStart.size());
    name.remove_suffix(kTemporaryEnd.size());
    return std::all_of(name.begin(), name.end(), IsDigit<wchar_t>);
}

} // namespace

bool SaveWholeFile(const std::wstring& path, std::span<const std::uint8_t> bytes, std::string* reason) {
    std::string unheard;
    std::string& why = reason == nullptr ? unheard : *reason;
    std::wstring temporary;
    OutputFilePtr file = CreateBeside(path, temporary);
    if (!file) return Refused(why);
    if (WriteTo(std::move(file), temporary, bytes, why) && Replace(temporary, path, why)) return true;
    WithRetries([&] { return RemoveFile(temporary); });
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
    if (!ReadWholeFile(path, bytes, 2 * kSndBlockSize)) return kSndNotFound;
    return DecodeSnd(bytes, tempo, list);
}

void SweepAbandonedSaves(const std::wstring& folder) {
    const std::wstring home = WithoutTrailingBackslash(folder) + L"\\";
    for (const std::wstring& name : ListFiles(folder, L"~snd*.tmp")) {
        if (!IsAbandonedSaveName(name)) continue;
        const std::optional<std::uint64_t> age = AgeOfFile(home + name);
        if (age && *age > kAbandonedAge) RemoveFile(home + name);
    }
}

void DeleteFileIfExists(const std::wstring& path) {
    if (!FileExists(path)) return;
    SetAttributesOf(path, kAttributeArchive);
    WithRetries([&] { return RemoveFile(path); });
}

} // namespace tonex
