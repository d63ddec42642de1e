#include "stats/trial_outcome.h"

#include <cmath>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/random_points.h"

namespace ovik {
namespace {

constexpr std::size_t kRows = 40;

TrialResult of_map(std::vector<double> map, RowFits rows = {}) {
    TrialResult result;
    result.map = std::move(map);
    result.rows = std::move(rows);
    return result;
}

TEST(OutcomeOfTrials, IsStableWhereMapsAreOneButForTheirPlace) {
    const std::vector<double> map = test::random_values(kRows * 2, 5);
    std::vector<double> moved;
    for (const double value : map) {
        moved.push_back(3.0 - 2.0 * value);
    }
    PerplexityTrials trials;
    trials.seeds = {of_map(map), of_map(moved)};
    trials.columns = {of_map(test::random_values(kRows * 2, 6)), of_map(map)};
    const TrialOutcome both = outcome_of(trials, kRows, 2);
    EXPECT_FALSE(both.noise.has_value());
    const RecordedTrials& outcome = both.trials;
    EXPECT_EQ(outcome.seeds, 2U);
    EXPECT_EQ(outcome.columns, 2U);
    EXPECT_EQ(outcome.neighbours, 10U);
    EXPECT_EQ(outcome.shared_by_seeds, 1.0);
    EXPECT_NEAR(outcome.spread_by_seeds, 0.0, 1e-7);
    EXPECT_GT(outcome.shared_by_columns, 0.5);
    EXPECT_LT(outcome.shared_by_columns, 0.8);
    EXPECT_GT(outcome.spread_by_columns, 0.3);
}

TEST(OutcomeOfTrials, ComparesTheRowsWithNoise) {
    const std::vector<double> map = test::random_values(kRows * 2, 5);
    const auto rows_keeping = [](double kept) {
        return RowFits{std::vector<double>(kRows, kept),
                       std::vector<double>(kRows, 1.0),
                       std::vector<double>(kRows, 0.5)};
    };
    PerplexityTrials trials;
    trials.seeds = {of_map(map, rows_keeping(0.2))};
    trials.seeds[0].rows.kept[3] = 0.9;
    trials.seeds[0].sizes = {10.0};
    trials.noise = {of_map(map, rows_keeping(0.1)), of_map(map, rows_keeping(0.3))};
    const TrialOutcome outcome = outcome_of(trials, kRows, 2);
    ASSERT_TRUE(outcome.noise.has_value());
    EXPECT_EQ(outcome.noise->matrices, 2U);
    EXPECT_EQ(outcome.noise->neighbours, 10U);
    EXPECT_EQ(outcome.noise->kept.better, 1.0 / kRows);
    EXPECT_EQ(outcome.noise->misfit.better, 0.0);
    EXPECT_TRUE(std::isnan(outcome.trials.shared_by_seeds));
    EXPECT_TRUE(std::isnan(outcome.trials.shared_by_columns));
}

}  // namespace
}  // namespace ovik
