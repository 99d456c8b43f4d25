#include "view/tempo_commands.h"

#include "app/sndmain.h"
#include "score/number_text.h"

#include <algorithm>

namespace tonex {

namespace {

void SelectItem(sndmain& window, int index) {
    TempoBox& box = window.TempoCombo;
    box.ListIndex = index;
    box.Text = At(box.List, index);
}

int ItemWithNumber(const TempoBox& box, int number) {
    const auto found = std::find_if(box.List.begin(), box.List.end(),
                                    [=](const std::wstring& item) { return WholeNumberOf(item) == number; });
    return found == box.List.end() ? -1 : static_cast<int>(found - box.List.begin());
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
    const int item = ItemWithNumber(box, tempo);
    if (item >= 0) SelectItem(window, item);
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

int TempoItemOf(const sndmain& window, const std::wstring& text) {
    return ItemWithNumber(window.TempoCombo, WholeNumberOf(text));
}

int TempoNeighbour(const sndmain& window, int step) {
    const std::vector<std::wstring>& list = window.TempoCombo.List;
    const auto number = NumericValueOf(window.TempoCombo.Text);
    const auto count_of = [&](auto wanted) {
        return static_cast<int>(std::count_if(list.begin(), list.end(), [&](const std::wstring& item) {
            return wanted(NumericValueOf(item));
        }));
    };
    // The list falls: in front of the next slower tempo stand all that are not slower.
    if (step < 0) return count_of([=](auto tempo) { return tempo > number; }) - 1;
    const int slower = count_of([=](auto tempo) { return tempo >= number; });
    return slower < static_cast<int>(list.size()) ? slower : -1;
}

TempoChoice CurrentTempo(const sndmain& window) {
    return {window.TempoCombo.Text, window.TempoCombo.ListIndex, window.score.changed};
}

void RestoreTempo(sndmain& window, const TempoChoice& before) {
    window.TempoCombo.Text = before.text;
    window.TempoCombo.ListIndex = before.list_index;
    window.score.changed = before.changed;
    UpdateTempoLabel(window);
}

} // namespace tonex
