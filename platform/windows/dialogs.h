// The small windows beside the main one.
#pragma once

namespace tonex {

struct MainWindow;

/// Shows, moves on or closes the converting window as the record says.
void ShowConvertWindow(MainWindow& main);

/// The suite's About window, modal over the main window; its button Details opens the program's own.
void ShowGlobalVersion(MainWindow& main);
/// The transfer reminder `FormZ730Msg`; true when its check box was ticked.
bool ShowFormZ730Msg(MainWindow& main);

} // namespace tonex
