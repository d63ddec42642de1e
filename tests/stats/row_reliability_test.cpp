#include "stats/row_reliability.h"

#include <cmath>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/random_points.h"

namespace ovik {
namespace {

constexpr std::size_t kRows = 80;

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
    const std::vector<double> misfits = test::random_values(kRows, 4);
    const RowReliability rows =
        row_reliability(row_neighbourhoods(input, map, {10, 30}, kNearRows), costs, misfits);
    EXPECT_EQ(*column_of(rows, "cost"), costs);
    EXPECT_EQ(*column_of(rows, "misfit"), misfits);
    EXPECT_EQ(column_of(rows, "p_kept"), nullptr);
    EXPECT_FALSE(noise_summary_of(rows, "kept").has_value());
    for (const NeighbourhoodQuality& of_map : quality) {
        const std::string k = std::to_string(of_map.neighbours);
        const auto n = static_cast<double>(of_map.neighbours);
        EXPECT_EQ(whole_sum(*column_of(rows, "kept_" + k), n) / (n * kRows), of_map.preservation);
        double trusted = 0.0;
        for (const double one : *column_of(rows, "trustworthiness_" + k)) {
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

TEST(RowReliability, TakesWhatAComparisonWithNoiseSays) {
    const std::vector<double> X = {0.0, 1.0, 3.0, 1.0, 0.0, 5.0};
    const RowFits fits =
        row_fits({X.data(), 3, 2}, {10, 0.9, 0.5, {0.1, 0.2, 0.3}}, {1.0, 2.0, 3.0});
    EXPECT_EQ(fits.concentration, (std::vector<double>{0.0, 1.0, 1.0}));
    const RowFits noise{{0.2}, {2.5}, {0.5}};
    const NoiseComparison comparison = compare_with_noise(fits, {&noise, 1});
    RowReliability rows;
    add_chances(rows, fits, comparison);
    EXPECT_EQ(*column_of(rows, "concentration"), fits.concentration);
    EXPECT_EQ(*column_of(rows, "p_kept"), (std::vector<double>{1.0, 0.5, 0.5}));
    EXPECT_EQ(*column_of(rows, "q_kept"), comparison.kept.q);
    EXPECT_EQ(*column_of(rows, "p_misfit"), (std::vector<double>{0.5, 0.5, 1.0}));
    EXPECT_EQ(*column_of(rows, "q_misfit"), comparison.misfit.q);
    EXPECT_EQ(noise_summary_of(rows, "kept")->better, 0.0);
    EXPECT_EQ(noise_summary_of(rows, "misfit")->least_rate, 0.75);
}

}  // namespace
}  // namespace ovik
