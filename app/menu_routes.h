// What menu items, toolbar buttons and keys run.
#pragma once

#include "app/menus.h"

#include <string_view>

namespace tonex {

struct sndmain;

using Command = void (*)(sndmain&);

/// The command of a menu item; null for separator lines.
Command CommandOf(MenuItem item);

/// Runs a menu item's command if the item is enabled.
void RunMenuItem(sndmain& window, MenuItem item);
/// Runs the command of the toolbar button with this key if the button is enabled; a key that matches none
/// does nothing.
void RunToolButton(sndmain& window, std::wstring_view key);
/// What happens each time a top-level menu is about to open (the Setting menu refreshes its check mark).
void OpenMenu(sndmain& window, Menu menu);

} // namespace tonex
