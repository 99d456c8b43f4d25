#include "app/enabling_commands.h"

#include "app/sndmain.h"
#include "platform/sound_devices.h"
#include "view/edit_commands.h"

namespace tonex {

namespace {

// A menu item and the toolbar button that stands for it, together.
void Enable(sndmain& window, MenuItem item, bool enabled) {
    window.item(item).Enabled = enabled;
    const auto buttons = ToolButtonRows();
    for (std::size_t i = 0; i < buttons.size(); ++i) {
        if (buttons[i].item == item) window.toolbar_enabled[i] = enabled;
    }
}

// Why Preview is grey is the one reason that the window itself does not show.
const wchar_t* ReasonOfGreyPreview(const sndmain& window) {
    return window.score.end_count == 1 ? L" (the melody is empty)" : L" (there is no sound device)";
}

} // namespace

void RefreshEnabling(sndmain& window) {
    const int end_count = window.score.end_count;
    const bool holds_entries = end_count != 1;
    Enable(window, MenuItem::mnuInsert, holds_entries && end_count < kInsertLimit);
    Enable(window, MenuItem::mnuCut, holds_entries);
    Enable(window, MenuItem::mnuCopy, holds_entries);
    Enable(window, MenuItem::mnuDelete, holds_entries);
    Enable(window, MenuItem::mnuPreview, holds_entries && CountWaveOutputs() >= 1);
    Enable(window, MenuItem::mnuPaste, window.clipboard.filled && end_count < kMaxEndCount);
}

std::wstring TooltipOf(const sndmain& window, int button) {
    const ToolButtonRow& row = At(ToolButtonRows(), button);
    std::wstring text(row.tooltip);
    if (row.item == MenuItem::mnuPreview && !At(window.toolbar_enabled, button))
        text += ReasonOfGreyPreview(window);
    return text;
}

} // namespace tonex
