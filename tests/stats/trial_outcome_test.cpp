#include "stats/trial_outcome.h"

#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "stats/perplexity_choice.h"

#include "tests/support/random_points.h"

namespace ovik {
namespace {

constexpr std::size_t kRows = 40;

TrialResult of_map(std::vector<double> map, std::vector<double> kept = {}) {
    TrialResult result;
    result.map = std::move(map);
    result.kept = std::move(kept);
    return result;
}

TEST(ShareBetterThanNoise, CountsRowsWithAChanceOfAtMostATwentieth) {
    const std::vector<double> noise(39, 0.5);
    EXPECT_EQ(share_better_than_noise(std::vector{0.6, 0.5, 0.1, 0.7}, noise), 0.5);
    // One of 39 does as well, which is a chance of 2 in 40.
    std::vector<double> one_as_good = noise;
    one_as_good[7] = 0.6;
    EXPECT_EQ(share_better_than_noise(std::vector{0.6}, one_as_good), 1.0);
    one_as_good[9] = 0.6;
    EXPECT_EQ(share_better_than_noise(std::vector{0.6}, one_as_good), 0.0);
    // So few of noise cannot tell.
    EXPECT_EQ(share_better_than_noise(std::vector{1.0}, {0.0}), 0.0);
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
    const RecordedTrials outcome = outcome_of(trials, kRows, 2);
    EXPECT_EQ(outcome.seeds, 2U);
    EXPECT_EQ(outcome.columns, 2U);
    EXPECT_EQ(outcome.noise, 0U);
    EXPECT_EQ(outcome.neighbours, 10U);
    EXPECT_EQ(outcome.shared_by_seeds, 1.0);
    EXPECT_NEAR(outcome.spread_by_seeds, 0.0, 1e-7);
    EXPECT_GT(outcome.shared_by_columns, 0.5);
    EXPECT_LT(outcome.shared_by_columns, 0.8);
    EXPECT_GT(outcome.spread_by_columns, 0.3);
    EXPECT_TRUE(std::isnan(outcome.better_than_noise));
}

TEST(OutcomeOfTrials, ComparesKeptNeighboursWithAllNoise) {
    const std::vector<double> map = test::random_values(kRows * 2, 5);
    PerplexityTrials trials;
    std::vector<double> kept(kRows, 0.2);
    kept[3] = 0.9;
    trials.seeds = {of_map(map, kept)};
    trials.noise = {of_map(map, std::vector<double>(kRows, 0.1)),
                    of_map(map, std::vector<double>(kRows, 0.3))};
    const RecordedTrials outcome = outcome_of(trials, kRows, 2);
    EXPECT_EQ(outcome.noise, 2U);
    EXPECT_EQ(outcome.better_than_noise, 1.0 / kRows);
    EXPECT_EQ(outcome.of_noise, largest_share_of_noise(kRows, 2));
    EXPECT_TRUE(std::isnan(outcome.shared_by_seeds));
    EXPECT_TRUE(std::isnan(outcome.shared_by_columns));
}

}  // namespace
}  // namespace ovik
