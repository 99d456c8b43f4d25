#include "score/rows.h"

#include <gtest/gtest.h>

#include <array>
#include <span>
#include <string>
#include <vector>

namespace tonex::rows_test {
namespace {

TEST(Rows, AtGivesTheItemItself) {
    std::array<int, 3> row{4, 5, 6};
    At(row, 2) = 7;
    EXPECT_EQ(row[2], 7);
    int plain[2] = {1, 2};
    At(plain, 0) = 3;
    EXPECT_EQ(plain[0], 3);
    const std::vector<std::wstring> texts{L"a", L"b"};
    EXPECT_EQ(&At(texts, 1), &texts[1]);
    EXPECT_EQ(&At(std::span(row).subspan(1), 1), &row[2]);
}

TEST(Rows, AnEnumerationNamesItsItem) {
    enum class Colour { Black, White };
    const std::array<int, 2> row{4, 5};
    EXPECT_EQ(At(row, Colour::White), 5);
}

#if GTEST_HAS_DEATH_TEST
TEST(RowsDeathTest, APlaceOutsideTheRowStopsTheProgram) {
    std::array<int, 3> row{};
    const std::span<int> part = std::span(row).first(2);
    EXPECT_DEATH(At(row, 3), "index");
    EXPECT_DEATH(At(row, -1), "index");
    EXPECT_DEATH(At(part, 2), "index");
}
#endif

} // namespace
} // namespace tonex::rows_test
