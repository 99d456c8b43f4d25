// Rows read by signed numbers. Slots, columns and codes are counted in ints here, because they are subtracted
// and compared with -1; a row wants an unsigned index, and one beyond its end must stop the program.
#pragma once

#include <cassert>
#include <cstddef>
#include <cstdlib>
#include <iterator>
#include <span>
#include <type_traits>

namespace tonex {

/// Where every index beyond a row ends: out of line and once, so that a checked read costs no more than its
/// comparison.
[[noreturn, gnu::noinline, gnu::cold]] inline void StopBeyondRow() {
    assert(false && "an index beyond its row");
    std::abort();
}

/// The place `index` of a row of `size` items, as the row wants it. Stops the program when there is no such
/// place.
constexpr std::size_t PlaceIn(std::size_t size, int index) {
    const auto place = static_cast<std::size_t>(index);
    if (place >= size) StopBeyondRow(); // a negative index is a very large place
    return place;
}

/// Item `index` of an array, vector or text, counted from 0. Stops the program when there is none.
template <class Row> constexpr auto& At(Row& row, int index) {
    return row[PlaceIn(std::size(row), index)];
}

/// As above, for a span that a procedure gives back.
template <class Item, std::size_t Size> constexpr Item& At(std::span<Item, Size> row, int index) {
    return row[PlaceIn(row.size(), index)];
}

/// The item of a row that has one for each value of an enumeration.
template <class Row, class Name>
requires std::is_enum_v<Name>
constexpr auto& At(Row& row, Name name) {
    return At(row, static_cast<int>(name));
}

} // namespace tonex
