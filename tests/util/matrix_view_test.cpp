#include "util/matrix_view.h"

#include <algorithm>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ovik {
namespace {

TEST(MatrixView, HasTheValuesOfARowBesideOneAnother) {
    std::vector<double> values = {1.0, 2.0, 3.0, 4.0, 5.0, 6.0};
    const MatrixView<double> matrix{values.data(), 2, 3};
    EXPECT_EQ(matrix.size(), 6U);
    EXPECT_THAT(matrix.row(0), testing::ElementsAre(1.0, 2.0, 3.0));
    EXPECT_THAT(matrix.row(1), testing::ElementsAre(4.0, 5.0, 6.0));
}

TEST(MatrixView, WritesToTheValuesThatItShows) {
    std::vector<double> values(6, 0.0);
    const MatrixView<double> matrix{values.data(), 3, 2};
    std::ranges::fill(matrix.row(1), 7.0);
    EXPECT_EQ(values, (std::vector<double>{0.0, 0.0, 7.0, 7.0, 0.0, 0.0}));
}

TEST(MatrixView, MayShowValuesThatAreOnlyRead) {
    static constexpr double kValues[] = {1.0, 2.0};
    constexpr MatrixView<const double> kMatrix{kValues, 2, 1};
    static_assert(kMatrix.size() == 2);
    EXPECT_EQ(kMatrix.row(1).front(), 2.0);
}

TEST(MatrixView, MayBeEmpty) {
    const MatrixView<float> nothing;
    EXPECT_EQ(nothing.size(), 0U);
    EXPECT_EQ(nothing.rows, 0U);
    std::vector<double> values;
    const MatrixView<double> no_columns{values.data(), 4, 0};
    EXPECT_EQ(no_columns.size(), 0U);
    EXPECT_TRUE(no_columns.row(3).empty());
}

}  // namespace
}  // namespace ovik
