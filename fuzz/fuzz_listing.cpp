// Any bytes as what a link library writes: the list of the organiser's sounds, paths and their counts.
#include "fuzz/share.h"
#include "link/device_commands.h"
#include "link/discovery_commands.h"
#include "tests/set_up_window.h"

#include <cstdlib>

namespace {

using namespace tonex;

void Require(bool condition) {
    if (!condition) std::abort();
}

/// Opening a melody fills the whole score: one of so many tries does.
constexpr std::uint32_t kOpenShare = 64;
constexpr std::size_t kListSize = 8192, kCacheRoom = 200;

std::int16_t Count(const std::uint8_t* bytes) {
    return static_cast<std::int16_t>(bytes[0] | bytes[1] << 8);
}

void TryListing(sndmain& window, const std::string& text, std::int32_t count) {
    desktop::LinkScript& script = desktop::Current().link;
    script.listing_bytes = text.substr(0, kListSize);
    script.listing_count = count;
    ReopenLastFile(window, L"Sclview");
    Require(window.link.device_sounds.size() <= kListSize);
    for (const std::wstring& sound : window.link.device_sounds)
        Require(sound.starts_with(L"\\system\\sound\\") && sound.find(L'\0') == std::wstring::npos);
}

void TryPaths(sndmain& window, const std::string& text, std::int16_t count) {
    desktop::Desktop& desk = desktop::Current();
    desk.link.conversion_bytes = text.substr(0, kCacheRoom);
    desk.link.conversion_count = count;
    desk.link.get_bytes = desk.link.conversion_bytes;
    desk.link.exists = 1;
    desk.link.open_choices = {text.substr(0, kCacheRoom)};
    desk.settings[L"Corvane\\Tonex\\File1"] =
        L"0,Veloxa:A.SND,C:\\Link\\pcferry\\cache\\System\\sound\\A.SND";
    ReopenLastFile(window, L"Tonex");
    mnuFileOpenZ730_Click(window);
    Require(window.document.current_path.size() <= kCacheRoom);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    static const auto window = testing::SetUpWindow();
    static const bool installed = (desktop::InstallLinkSoftware(), DiscoverLinkSoftware(*window), true);
    Require(installed);
    if (size < 2) return 0;
    desktop::Current().log.clear();
    desktop::Current().operation_names.clear();
    desktop::Current().messages.clear();
    const std::string text(bytes + 2, bytes + size);
    TryListing(*window, text, Count(bytes));
    if (IsOneOf(kOpenShare, {bytes, size})) TryPaths(*window, text, Count(bytes));
    return 0;
}
