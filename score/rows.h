// Rows read by signed numbers. Slots, columns and codes are counted in ints here, because they are subtracted
// and compared with -1; a row wants an unsigned index, and one beyond its end must stop the program.
#pragma once

#include <cassert>
#include <cstddef>
#include <iterator>
#include <span>
#include <type_traits>

namespace tonex {

/// The place `index` of a row of `size` items, as the row wants it. Asserts that there is such a place.
constexpr std::size_t PlaceIn(std::size_t size, int index) {
    assert(index >= 0 && static_cast<std::size_t>(index) < size);
    return static_cast<std::size_t>(index);
}

/// Item `index` of an array, vector or text, counted from 0. Asserts that there is one.
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
