// Which menu items and toolbar buttons can act.
#pragma once

namespace tonex {

struct sndmain;

/// Refreshes the enabling of menu items and toolbar buttons from score and clipboard.
void RefreshEnabling(sndmain& window);

} // namespace tonex
