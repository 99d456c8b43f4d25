// What the controls of the main window show, and how it follows the record.
#pragma once

#include "app/sndmain.h"
#include "platform/windows/panel.h"

#include "platform/windows/desktop_windows.h"

#include <array>
#include <string>
#include <vector>

namespace tonex {

struct MainWindow;

inline constexpr Rect kNowhere = {-1, -1, -1, -1}; ///< a place that no control has

/// The controls beside the panels, as their places are remembered behind the panels'.
enum class PlacedControl { TempoCaption = kPanels, Tempo, TempoLabel, LengthCaption, Count };
inline constexpr int kPlaces = static_cast<int>(PlacedControl::Count);

/// What the controls show now. Only what differs from the record is shown again. A new one has values that no
/// record has, so that the first showing shows everything.
struct Shown {
    std::wstring Caption, tempo_text, tempo_label, tempo_caption, length_caption;
    std::vector<std::wstring> tempo_list;
    int tempo_index = -2;
    bool enabled = true;
    std::array<NoteImage, kStripPictures> imgNote{};
    std::array<CellText, kSlots> cells{};
    int Cols = -1, first_shown = 0;
    GridView view;
    std::array<std::int16_t, kLengthButtons> buttons{};
    std::int16_t current_picture = 0;
    std::array<std::uint32_t, kPianoKeys> key_colours{};
    std::array<CellText, kPianoKeys> key_captions{};
    std::array<MenuState, kMenuItems> menu{};
    std::array<bool, kToolButtons> toolbar{};
    std::array<Rect, kPlaces> places{}; ///< of the panels by PanelId, then by PlacedControl
    ConvertWindow convert;
    DWORD convert_at = 0; ///< tick count when the converting window was drawn last

    Shown() {
        buttons.fill(-1);
        key_colours.fill(0x01000000);
        toolbar.fill(true);
        places.fill(kNowhere);
    }
};

/// Shows what differs between record and controls, nothing else.
void ShowDifferences(MainWindow& main);

} // namespace tonex
