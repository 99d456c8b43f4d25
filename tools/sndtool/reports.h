// What a command tells of one melody, for people and as JSON.
#pragma once

#include "exchange/deviation.h"
#include "exchange/tune.h"
#include "score/score.h"

#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

namespace tonex {

struct Report { // NOLINT(bugprone-exception-escape): what moves a JSON value may throw, by its own account
    std::string head; ///< "IN.txt: tune 1 -> OUT.snd"
    std::vector<std::pair<std::string, std::string>> lines;
    nlohmann::ordered_json json;
};

/// "12.3" with so many digits behind the point.
std::string Decimal(double value, int digits);

/// A number for JSON, without the noise of binary fractions.
double Rounded(double value, int digits);

/// "entry 12 (c5# 1/16)"; `entry` counts from 0.
std::string EntryText(const FileList& list, int entry);

/// Adds a line for people.
void Tell(Report& report, const std::string& label, const std::string& text);

/// How far what is played is from what was meant. `worst_entry` counts from 0, -1 = none.
void TellDeviation(Report& report, const Deviation& deviation, const FileList& list, int worst_entry);

/// The remarks, each a line, with a common label.
void TellRemarks(Report& report, const Remarks& remarks);

/// The lines of a report without its head.
std::string LinesOf(const Report& report);

/// The report as text.
std::string TextOf(const Report& report);

/// Ends a command: texts to standard error, or all reports as one JSON array to standard output. The exit
/// status, kExitBadInput when standard output could not be written.
int EndReports(const std::vector<Report>& reports, bool as_json, int status);

} // namespace tonex
