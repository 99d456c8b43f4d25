#include "tools/sndtool/reports.h"

#include "score/melody_text.h"
#include "tools/sndtool/console.h"
#include "tools/sndtool/inputs.h"
#include "tools/sndtool/sndtool.h"

#include <cmath>
#include <cstdio>

namespace tonex {

namespace {

constexpr std::size_t kLabelWidth = 13;

std::string PercentOf(double part) {
    return Decimal(100.0 * part, 1) + " %";
}

std::string SpeedText(double duration) {
    const double part = duration - 1.0;
    if (std::abs(part) < 0.0005) return "as meant";
    return PercentOf(std::abs(part)) + (part > 0.0 ? " slower" : " faster");
}

} // namespace

std::string Decimal(double value, int digits) {
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", digits, value);
    return text;
}

double Rounded(double value, int digits) {
    const double power = std::pow(10.0, digits);
    return std::round(value * power) / power;
}

std::string EntryText(const FileList& list, int entry) {
    const FileEntry& shown = At(list, entry);
    std::string text = "entry " + std::to_string(entry + 1);
    const EntryKind kind = KindOfFileCode(shown.code);
    if (kind != EntryKind::Note && kind != EntryKind::Rest) return text;
    const std::string name = kind == EntryKind::Note ? PitchTextOf(shown.pitch + 1) : "r";
    return text + " (" + name + " " + LengthTextOf(LengthCodeOfFileCode(shown.code)) + ")";
}

void Tell(Report& report, const std::string& label, const std::string& text) {
    report.lines.emplace_back(label, text);
}

void TellDeviation(Report& report, const Deviation& deviation, const FileList& list, int worst_entry) {
    std::string text = "J " + Decimal(deviation.j, 2);
    text += deviation.j <= 1.0 ? " (hardly heard)" : " (heard)";
    report.json["j"] = Rounded(deviation.j, 3);
    report.json["slower_percent"] = Rounded(100.0 * (deviation.duration - 1.0), 2);
    report.json["worst"] = nullptr;
    report.json["mean"] = {{"milliseconds", Rounded(1000.0 * deviation.mean_seconds, 2)},
                           {"percent", Rounded(100.0 * deviation.mean_part, 2)}};
    if (worst_entry >= 0) {
        text += "; worst " + Decimal(1000.0 * deviation.worst_seconds, 1) + " ms (" +
                PercentOf(deviation.worst_part) + ") at " + EntryText(list, worst_entry) + ", mean " +
                Decimal(1000.0 * deviation.mean_seconds, 1) + " ms (" + PercentOf(deviation.mean_part) + ")";
        report.json["worst"] = {{"entry", worst_entry + 1},
                                {"name", EntryText(list, worst_entry)},
                                {"milliseconds", Rounded(1000.0 * deviation.worst_seconds, 2)},
                                {"percent", Rounded(100.0 * deviation.worst_part, 2)}};
    }
    Tell(report, "speed", SpeedText(deviation.duration));
    Tell(report, "rounding", text);
}

void TellRemarks(Report& report, const Remarks& remarks) {
    report.json["remarks"] = nlohmann::ordered_json::array();
    for (const auto& [what, times] : remarks) {
        const std::string text = times == 1 ? what : what + " (" + std::to_string(times) + " times)";
        Tell(report, "remark", text);
        report.json["remarks"].push_back({{"what", what}, {"times", times}});
    }
}

std::string TextOf(const Report& report) {
    return report.head + "\n" + LinesOf(report);
}

std::string LinesOf(const Report& report) {
    std::string text;
    for (const auto& [label, line] : report.lines) {
        const std::size_t pad = label.size() < kLabelWidth ? kLabelWidth - label.size() : 1;
        text.append("  ").append(label).append(pad, ' ').append(line).append("\n");
    }
    return text;
}

int EndReports(const std::vector<Report>& reports, bool as_json, int status) {
    if (!as_json) {
        for (const Report& report : reports)
            WriteErrorText(TextOf(report));
        return status;
    }
    auto array = nlohmann::ordered_json::array();
    for (const Report& report : reports)
        array.push_back(report.json);
    // JSON is UTF-8; a byte of a name that is not becomes the replacement character.
    if (WriteText(array.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n"))
        return status;
    ComplainOfStandardOutput();
    return kExitBadInput;
}

} // namespace tonex
