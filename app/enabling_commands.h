// Which menu items and toolbar buttons can act.
#pragma once

#include <string>

namespace tonex {

struct sndmain;

/// Refreshes the enabling of menu items and toolbar buttons from score and clipboard.
void RefreshEnabling(sndmain& window);

/// The tooltip of a toolbar button (0 to 10): the words of its row; those of a grey Preview say why it is
/// grey.
std::wstring TooltipOf(const sndmain& window, int button);

} // namespace tonex
