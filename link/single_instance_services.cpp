#include "link/single_instance_services.h"

#include "link/paths.h"
#include "platform/text.h"
#include "platform/window_list.h"

#include <string_view>

namespace tonex {

namespace {

constexpr std::wstring_view kScheduler = L"Veloxa Scheduler";
constexpr std::wstring_view kSchedulerAlarm = L"Veloxa Scheduler - Matching with Schedule alarm!";

/// The caption, cut before its first NUL; empty when it is too short for the title or can not be read.
/// Lengths in characters are compared with the title's length in bytes; kept as it is.
std::wstring CaptionOf(WindowId window, std::size_t title_bytes) {
    const std::size_t size = static_cast<std::size_t>(CaptionLength(window)) + 1;
    if (size < title_bytes) return {};
    std::wstring caption(size, L' ');
    if (ReadCaption(window, caption) <= 0) return {};
    return caption.substr(0, caption.find(L'\0'));
}

WindowId FindMainWindow(const std::wstring& title) {
    const std::size_t title_bytes = ToAnsi(title).size();
    const bool scheduler = title == kScheduler;
    for (WindowId window = FirstTopLevelWindow(); window != 0; window = NextWindow(window)) {
        const std::wstring caption = CaptionOf(window, title_bytes);
        if (caption.empty() || !caption.starts_with(title)) continue;
        if (scheduler && UpperCase(caption) == UpperCase(kSchedulerAlarm)) continue;
        // The suite's main windows are owned by their hidden application window; another program's window
        // that begins with the same words is not.
        if (OwnerOf(window) != 0) return window;
    }
    return 0;
}

} // namespace

void ActivatePreviousInstance(const std::wstring& title) {
    const WindowId window = FindMainWindow(title);
    if (window == 0) return;
    if (IsMinimised(window)) RestoreWindow(window);
    BringToForeground(window);
}

} // namespace tonex
