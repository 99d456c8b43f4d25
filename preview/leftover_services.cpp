#include "preview/leftover_services.h"

#include "link/paths.h"
#include "platform/files.h"
#include "platform/refusal.h"
#include "preview/wav_file_services.h"
#include "score/file_services.h"
#include "score/temporary_names.h"

#include <cstdint>
#include <optional>

namespace tonex {

namespace {

/// Deletes a file. True when it is gone, whoever deleted it.
bool IsGone(const std::wstring& path) {
    if (RemoveFile(path)) return true;
    return !FileExists(path) && !FileIsBusy();
}

/// The age in seconds at which a temporary file is left behind. The player of a whole sound is given twice
/// the time that the editor waits for it.
std::uint64_t AbandonedAgeOf(const std::wstring& path) {
    const std::optional<int> sound = SecondsOfSound(path);
    return sound ? static_cast<std::uint64_t>(*sound + 2 * kPlayerPatience) : kAbandonedAge;
}

void SweepFile(const std::wstring& path) {
    const std::optional<std::uint64_t> age = AgeOfFile(path);
    if (age && *age > AbandonedAgeOf(path)) RemoveFile(path);
}

} // namespace

void DeleteTemporaryFile(const std::wstring& path, std::vector<std::wstring>& leftovers) {
    DeleteFileIfExists(path);
    if (FileExists(path) || FileIsBusy()) leftovers.push_back(path);
}

void DeleteLeftovers(std::vector<std::wstring>& leftovers) {
    std::erase_if(leftovers, IsGone);
}

void SweepTemporaryFiles(const std::wstring& folder) {
    const std::wstring home = WithoutTrailingBackslash(folder) + L"\\";
    for (const wchar_t* pattern : {L"$$??????.wav", L"$$??????.snd", L"Snd*.tmp"}) {
        for (const std::wstring& name : ListFiles(folder, pattern)) {
            if (IsPreviewFileName(name) || IsUploadName(name)) SweepFile(home + name);
        }
    }
    SweepAbandonedSaves(folder);
}

} // namespace tonex
