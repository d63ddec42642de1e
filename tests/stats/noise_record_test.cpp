#include "stats/noise_record.h"

#include <algorithm>
#include <vector>

#include <gtest/gtest.h>

namespace ovik {
namespace {

TEST(RecordedNoise, HasWhatTheComparisonSays) {
    NoiseComparison comparison;
    comparison.groups = 3;
    comparison.least_chance = 0.01;
    comparison.kept = {{0.01, 0.04, 0.5, 0.9}, {0.04, 0.08, 0.6, 0.9}};
    comparison.misfit = {{0.02, 0.6, 0.7, 0.9}, {0.08, 0.8, 0.8, 0.9}};
    const RecordedNoise noise = recorded_noise(comparison, 5, 30, 4);
    EXPECT_EQ(noise.matrices, 5U);
    EXPECT_EQ(noise.neighbours, 30U);
    EXPECT_EQ(noise.groups, 3U);
    EXPECT_EQ(noise.least_chance, 0.01);
    EXPECT_EQ(noise.kept.better, 0.5);
    EXPECT_EQ(noise.kept.told, 0.25);
    EXPECT_EQ(noise.kept.least_rate, 0.04);
    EXPECT_EQ(noise.misfit.better, 0.25);
    EXPECT_EQ(noise.misfit.told, 0.0);
    EXPECT_EQ(noise.misfit.least_rate, 0.08);
}

/// Chances of 1000 rows, of which some are as low as they can be in a comparison with too few.
NoiseChances chances_with(std::size_t low, double rate) {
    NoiseChances chances{std::vector<double>(1000, 0.9), std::vector<double>(1000, 0.9)};
    std::fill_n(chances.p.begin(), low, 0.04);
    std::fill_n(chances.q.begin(), low, rate);
    return chances;
}

TEST(RecordedNoise, NeedsMoreMatricesOnlyWhereRowsAreBetterThanNoiseAndNoneIsTold) {
    NoiseComparison comparison;
    comparison.groups = 5;
    comparison.least_chance = 0.04;
    comparison.kept = chances_with(300, 0.1);
    comparison.misfit = chances_with(60, 0.1);
    const RecordedNoise noise = recorded_noise(comparison, 1, 30, 1000);
    EXPECT_EQ(noise.kept.needed, noise_fits_needed(comparison, summary_of(comparison.kept), 1000));
    EXPECT_GT(noise.kept.needed, 0U);
    // Noise reaches 6 % by chance, and more of it would lead nowhere.
    EXPECT_GT(noise_fits_needed(comparison, summary_of(comparison.misfit), 1000), 0U);
    EXPECT_EQ(noise.misfit.needed, 0U);
    comparison.misfit = chances_with(300, 0.05);
    EXPECT_EQ(recorded_noise(comparison, 1, 30, 1000).misfit.needed, 0U);
}

}  // namespace
}  // namespace ovik
