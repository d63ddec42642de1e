#include "stats/row_reliability.h"

#include <cmath>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/random_points.h"

namespace ovik {
namespace {

constexpr std::size_t kRows = 80;

const RowNumbers* column_of(const RowReliability& rows, const std::string& name) {
    for (const RowNumbers& column : rows.columns) {
        if (column.name == name) {
            return &column;
        }
    }
    return nullptr;
}

/// The sum of whole numbers that have been divided.
double whole_sum(const std::vector<double>& values, double divisor) {
    double sum = 0.0;
    for (const double value : values) {
        sum += std::round(value * divisor);
    }
    return sum;
}

TEST(RowReliability, SumsToTheQualityOfTheMap) {
    const std::vector<double> X = test::random_values(kRows * 5, 1);
    const std::vector<double> Y = test::random_values(kRows * 2, 2);
    const MatrixView<const double> input{X.data(), kRows, 5};
    const MatrixView<const double> map{Y.data(), kRows, 2};
    const auto quality = neighbourhood_quality(input, map, {10, 30});
    const std::vector<double> costs = test::random_values(kRows, 3);
    const RowReliability rows =
        row_reliability(row_neighbourhoods(input, map, {10, 30}, kNearRows), costs);
    EXPECT_EQ(column_of(rows, "cost")->values, costs);
    EXPECT_EQ(column_of(rows, "p_cost"), nullptr);
    for (const NeighbourhoodQuality& of_map : quality) {
        const std::string k = std::to_string(of_map.neighbours);
        const auto n = static_cast<double>(of_map.neighbours);
        EXPECT_EQ(whole_sum(column_of(rows, "kept_" + k)->values, n) / (n * kRows),
                  of_map.preservation);
        double trusted = 0.0;
        for (const double one : column_of(rows, "trustworthiness_" + k)->values) {
            EXPECT_GE(one, 0.0);
            EXPECT_LE(one, 1.0);
            trusted += one;
        }
        EXPECT_NEAR(trusted / kRows, of_map.trustworthiness, 1e-14);
    }
    EXPECT_EQ(rows.near, 10U);
    EXPECT_EQ(rows.far, 30U);
    EXPECT_EQ(rows.falsely_near.size(), kRows);
    EXPECT_EQ(rows.torn.size(), kRows);
}

}  // namespace
}  // namespace ovik
