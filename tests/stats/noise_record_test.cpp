#include "stats/noise_record.h"

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
    EXPECT_EQ(noise.needed, noise_fits_needed(comparison, summary_of(comparison.misfit), 4));
}

}  // namespace
}  // namespace ovik
