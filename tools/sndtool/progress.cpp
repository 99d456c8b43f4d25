#include "tools/sndtool/progress.h"

#include "tools/sndtool/console.h"

#include <string>

namespace tonex {

namespace {

constexpr auto kPatience = std::chrono::seconds(1);
constexpr auto kRedraw = std::chrono::milliseconds(100);
constexpr std::size_t kBarWidth = 40;

void Draw(Progress& progress, int notes_done) {
    const double part = progress.notes > 0 ? static_cast<double>(notes_done) / progress.notes : 1.0;
    const double all =
        (static_cast<double>(progress.files_done) + part) / static_cast<double>(progress.files);
    const auto filled = static_cast<std::size_t>(all * static_cast<double>(kBarWidth));
    std::string percent = std::to_string(static_cast<int>(all * 100.0));
    percent.insert(0, 3 - (percent.size() < 3 ? percent.size() : 3), ' ');
    WriteErrorText("\r[" + std::string(filled, '#') + std::string(kBarWidth - filled, ' ') + "] " + percent +
                   " %");
    progress.visible = true;
}

} // namespace

Progress StartProgress(std::size_t files) {
    Progress progress;
    progress.started = std::chrono::steady_clock::now();
    progress.files = files;
    progress.on_terminal = StandardErrorIsTerminal();
    return progress;
}

void BeginFile(Progress& progress, int notes) {
    progress.notes = notes;
}

void AdvanceFile(Progress& progress, int notes_done) {
    if (!progress.on_terminal) return;
    const auto now = std::chrono::steady_clock::now();
    if (now - progress.started < kPatience) return;
    if (progress.visible && now - progress.shown < kRedraw) return;
    progress.shown = now;
    Draw(progress, notes_done);
}

void EndFile(Progress& progress) {
    ++progress.files_done;
}

void HideProgress(Progress& progress) {
    if (!progress.visible) return;
    constexpr std::size_t line_width = kBarWidth + 8;
    WriteErrorText("\r" + std::string(line_width, ' ') + "\r");
    progress.visible = false;
}

} // namespace tonex
