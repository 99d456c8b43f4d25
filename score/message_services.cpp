#include "score/message_services.h"

#include "link/paths.h"
#include "platform/message_box.h"
#include "platform/text.h"

#include <string_view>

namespace tonex {

namespace {

constexpr std::wstring_view kExtension = L".SND";
constexpr std::size_t kNameBytes = 8;

} // namespace

void TellReadError() {
    ShowMessage(L"Read error!");
}

void TellWriteError() {
    ShowMessage(L"Write error!");
}

void TellEntryNotSaved(int entry, bool is_note) {
    const std::wstring name = L"ntry " + std::to_wstring(entry);
    ShowMessage(is_note ? L"The pitch of e" + name + L" is out of range and cannot be saved."
                        : L"E" + name + L" is unknown and cannot be saved.");
}

void TellHowManyDidNotFit(int entries) {
    // The number stands between the words with nothing around it; kept as it is.
    ShowMessage(L"Cannot input the last" + std::to_wstring(entries) + L"music notes.");
}

bool CheckSndExtension(const std::wstring& path) {
    // A text shorter than four characters is compared whole by HasExtension and is never ".SND".
    if (HasExtension(path, kExtension)) return true;
    ShowMessage(L"This is not a sound file.");
    return false;
}

bool CheckNameLength(const std::wstring& path) {
    std::wstring name = FileNameOfPath(path);
    if (UpperCase(name).ends_with(kExtension)) name.resize(name.size() - kExtension.size());
    if (ToAnsi(name).size() <= kNameBytes) return true;
    ShowMessage(kNameTooLong);
    return false;
}

} // namespace tonex
