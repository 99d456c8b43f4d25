// Reading the tunes that files of other formats hold.
#pragma once

#include "exchange/tune.h"
#include "tools/sndtool/exchange.h"
#include "tools/sndtool/reports.h"

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace tonex {

/// One tune on its way from a file to a melody.
struct Import {
    std::string input;
    Tune tune;
    std::string source; ///< "tune 2 \"Name\"", "track 3 \"Lead\", channel 1"
    std::string chosen; ///< why this one; empty when it was asked for or there is no other
    nlohmann::ordered_json json = nlohmann::ordered_json::object(); ///< what the report has of it
};

/// What was asked for in one file.
struct Gathering {
    std::string input; ///< the argument
    std::vector<Import> imports;
    std::string
        reason; ///< why the file or a part of it was refused, which the user was told; empty = it was not
};

/// Reads the file and tells its kind by its content. False when something was refused.
bool Gather(Gathering& gathering, const ImportWish& wish);

/// Tells of each tune, or of each track and channel, what is in it. False when the file was refused.
bool ListTunes(Gathering& gathering, const ImportWish& wish, std::vector<Report>& reports);

} // namespace tonex
