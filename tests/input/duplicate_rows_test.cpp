#include "input/duplicate_rows.h"

#include <cmath>
#include <set>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

namespace ovik {
namespace {

TEST(DuplicateRows, AreThoseThatHoldTheValuesOfAnEarlierOne) {
    const std::vector<double> values = {1, 2, 3, 4, 1, 2, 2, 1, 1, 2};
    EXPECT_EQ(count_duplicate_rows(values.data(), 5, 2), 2U);
    EXPECT_EQ(count_duplicate_rows(values.data(), 3, 2), 1U);
    EXPECT_EQ(count_duplicate_rows(values.data(), 2, 2), 0U);
    EXPECT_EQ(count_duplicate_rows(values.data(), 0, 2), 0U);
}

TEST(DuplicateRows, AreEqualWhateverTheSignOfTheirZeros) {
    const std::vector<double> values = {0.0, 1.0, -0.0, 1.0};
    EXPECT_EQ(count_duplicate_rows(values.data(), 2, 2), 1U);
}

RC_GTEST_PROP(DuplicateRows, AreAsManyAsASetLeavesOut, ()) {
    const auto columns = *rc::gen::inRange<std::size_t>(1, 4);
    const auto rows = *rc::gen::inRange<std::size_t>(0, 60);
    const auto values =
        *rc::gen::container<std::vector<double>>(rows * columns, rc::gen::element(0.0, 1.0, -1.5));
    std::set<std::vector<double>> distinct;
    for (std::size_t n = 0; n < rows; ++n) {
        const auto row = values.begin() + static_cast<std::ptrdiff_t>(n * columns);
        distinct.emplace(row, row + static_cast<std::ptrdiff_t>(columns));
    }
    RC_ASSERT(count_duplicate_rows(values.data(), rows, columns) == rows - distinct.size());
}

}  // namespace
}  // namespace ovik
