#include "view/tempo_commands.h"

#include "app/sndmain.h"
#include "score/number_text.h"

namespace tonex {

namespace {

void SelectItem(sndmain& window, int index) {
    TempoBox& box = window.TempoCombo;
    box.ListIndex = index;
    box.Text = At(box.List, index);
}

} // namespace

void FillTempoCombo(sndmain& window) {
    TempoBox& box = window.TempoCombo;
    box.List.clear();
    for (const std::int16_t tempo : window.tables.tempo_list) {
        if (tempo == 0) break;
        box.List.push_back(NumberToText(tempo));
    }
    SelectItem(window, window.tables.default_tempo_index);
    UpdateTempoLabel(window);
}

void SelectTempo(sndmain& window, int tempo) {
    TempoBox& box = window.TempoCombo;
    box.ListIndex = -1;
    box.Text = NumberToText(static_cast<std::int16_t>(tempo));
    for (std::size_t i = 0; i < box.List.size(); ++i) {
        if (WholeNumberOf(box.List[i]) != tempo) continue;
        SelectItem(window, static_cast<int>(i));
        break;
    }
    UpdateTempoLabel(window);
}

void UpdateTempoLabel(sndmain& window) {
    window.lblTempo.Caption = TempoNameOf(NumericValueOf(window.TempoCombo.Text));
}

std::int16_t TempoForWriting(const sndmain& window) {
    return WholeNumberOf(window.TempoCombo.Text);
}

void TempoComboChange(sndmain& window, const std::wstring& text) {
    window.TempoCombo.ListIndex = -1;
    window.TempoCombo.Text = text;
    UpdateTempoLabel(window);
    window.score.changed = true;
}

void TempoComboClick(sndmain& window, int list_index) {
    const auto items = static_cast<int>(window.TempoCombo.List.size());
    if (list_index < 0 || list_index >= items) return;
    SelectItem(window, list_index);
    UpdateTempoLabel(window);
    // Choosing the tempo that is already chosen counts as a change too; kept as it is.
    window.score.changed = true;
}

} // namespace tonex
