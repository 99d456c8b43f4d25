#include "exchange/chains.h"

#include "exchange/played.h"

#include <algorithm>
#include <cmath>

namespace tonex {

namespace {

constexpr double kSameLength = 1e-4; ///< quarter notes
/// An entry more is worth it when it brings the length nearer by this, quarter notes: half of the shortest.
constexpr double kEntryPrice = 1.0 / 24.0;
constexpr std::size_t kLongestChain = kMaxEntries; ///< more than that no melody holds
constexpr int kLongestCode = kLengthCodes - 1;

struct Search {
    double quarters;
    double best_price = 1e9;
    std::vector<int> best{};
    std::vector<int> tried{};
};

/// Tries all chains of at most `more` codes behind those that are tried, none longer than the one before.
void TryChains(Search& search, double left, int more) {
    const double price = std::abs(left) + kEntryPrice * static_cast<double>(search.tried.size());
    if (!search.tried.empty() && price < search.best_price - kSameLength) {
        search.best_price = price;
        search.best = search.tried;
    }
    if (more == 0 || (left < kSameLength && !search.tried.empty())) return;
    for (int code = kLongestCode; code >= 0; --code) {
        const double length = QuartersOf(code);
        if (!search.tried.empty() && length > QuartersOf(search.tried.back()) + kSameLength) continue;
        search.tried.push_back(code);
        TryChains(search, left - length, more - 1);
        search.tried.pop_back();
    }
}

} // namespace

int CodeOfQuarters(double quarters) {
    for (int code = 0; code < kLengthCodes; ++code) {
        if (std::abs(QuartersOf(code) - quarters) < kSameLength) return code;
    }
    return -1;
}

std::vector<int> ChainOf(double quarters) {
    std::vector<int> chain;
    constexpr int most_codes = 3;
    const double longest = QuartersOf(kLongestCode);
    while (quarters > 2.0 * longest && chain.size() < kLongestChain) {
        chain.push_back(kLongestCode);
        quarters -= longest;
    }
    Search search{quarters};
    TryChains(search, quarters, most_codes);
    chain.insert(chain.end(), search.best.begin(), search.best.end());
    return chain;
}

double QuartersOfChain(const std::vector<int>& chain) {
    double quarters = 0.0;
    for (const int code : chain)
        quarters += QuartersOf(code);
    return quarters;
}

} // namespace tonex
