#include "stats/noise_comparison.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "tests/plain/plain_noise.h"
#include "tests/support/random_points.h"

namespace ovik {
namespace {

/// Rows with few different shares of kept neighbours, so that there are ties.
RowFits made_up_fits(std::size_t rows, unsigned int seed) {
    const std::vector<double> drawn = test::random_values(3 * rows, seed);
    RowFits fits;
    for (std::size_t n = 0; n < rows; ++n) {
        fits.kept.push_back(std::fabs(std::round(3.0 * drawn[3 * n])) / 10.0);
        fits.misfit.push_back(std::round(20.0 * drawn[3 * n + 1]) / 20.0);
        fits.concentration.push_back(std::exp(-std::fabs(drawn[3 * n + 2])));
    }
    return fits;
}

std::vector<plain::ComparedRow> plain_rows(const std::vector<RowFits>& maps) {
    std::vector<plain::ComparedRow> rows;
    for (const RowFits& fits : maps) {
        for (std::size_t n = 0; n < fits.kept.size(); ++n) {
            rows.push_back({fits.kept[n], fits.misfit[n], fits.concentration[n]});
        }
    }
    return rows;
}

TEST(NoiseComparison, IsThatOfThePlainProgram) {
    for (const std::size_t rows : {1U, 70U, 200U, 450U}) {
        const RowFits map = made_up_fits(rows, 1);
        const std::vector<RowFits> noise = {made_up_fits(rows, 2), made_up_fits(rows, 3)};
        const NoiseComparison comparison = compare_with_noise(map, noise);
        const auto own = plain_rows({map});
        const auto others = plain_rows(noise);
        EXPECT_EQ(comparison.misfit.p, plain::noise_chances(own, others, false)) << rows;
        EXPECT_EQ(comparison.kept.p, plain::noise_chances(own, others, true)) << rows;
        EXPECT_EQ(comparison.misfit.q, plain::discovery_rates(comparison.misfit.p)) << rows;
        EXPECT_EQ(comparison.kept.q, plain::discovery_rates(comparison.kept.p)) << rows;
        const std::vector<double>& p = comparison.misfit.p;
        EXPECT_GE(*std::min_element(p.begin(), p.end()), comparison.least_chance);
    }
}

TEST(NoiseComparison, CountsNoiseThatDoesAsWell) {
    const RowFits map{{0.5, 0.2, 0.2, 0.0}, {0.5, 2.0, 1.0, 9.0}, {0.3, 0.4, 0.5, 0.6}};
    const std::vector<RowFits> noise = {{{0.1, 0.2}, {1.0, 2.0}, {0.3, 0.3}},
                                        {{0.2, 0.4}, {3.0, 4.0}, {0.9, 0.9}}};
    const NoiseComparison comparison = compare_with_noise(map, noise);
    EXPECT_EQ(comparison.groups, 1U);
    EXPECT_EQ(comparison.misfit.p, (std::vector<double>{0.2, 0.6, 0.4, 1.0}));
    // Of the two of noise that keep as many, one has no lower misfit than 2.0, and none than 1.0.
    EXPECT_EQ(comparison.kept.p, (std::vector<double>{0.2, 0.6, 0.4, 1.0}));
    EXPECT_DOUBLE_EQ(comparison.misfit.q[0], 0.8);
    EXPECT_DOUBLE_EQ(comparison.misfit.q[1], 0.8);
    EXPECT_DOUBLE_EQ(comparison.misfit.q[3], 1.0);
    EXPECT_EQ(comparison.least_chance, 0.2);
}

TEST(NoiseComparison, HasAsManyGroupsAsThereIsNoiseFor) {
    const RowFits map = made_up_fits(30, 1);
    const auto groups_of = [&map](std::size_t rows, std::size_t maps) {
        return compare_with_noise(map, std::vector<RowFits>(maps, made_up_fits(rows, 2))).groups;
    };
    EXPECT_EQ(groups_of(30, 1), 1U);
    EXPECT_EQ(groups_of(399, 1), 1U);
    EXPECT_EQ(groups_of(400, 1), 2U);
    EXPECT_EQ(groups_of(200, 3), 3U);
    EXPECT_EQ(groups_of(200, 5), 5U);
    EXPECT_EQ(groups_of(2000, 3), 5U);
    EXPECT_EQ(groups_of(30, 0), 1U);
}

TEST(NoiseComparison, ComparesWithRowsOfLikeConcentration) {
    // Concentrated rows of noise do better than any row of the map, and the others do worse.
    RowFits noise;
    for (std::size_t n = 0; n < 1000; ++n) {
        const bool is_concentrated = n >= 800;
        noise.kept.push_back(is_concentrated ? 0.9 : 0.1);
        noise.misfit.push_back((is_concentrated ? 0.5 : 3.0) + 1e-4 * static_cast<double>(n));
        noise.concentration.push_back(0.2 + 7e-4 * static_cast<double>(n));
    }
    RowFits map{std::vector<double>(100, 0.4),
                std::vector<double>(100, 2.0),
                std::vector<double>(100, 0.3)};
    map.concentration.back() = 0.85;
    const NoiseComparison grouped = compare_with_noise(map, {&noise, 1});
    EXPECT_EQ(grouped.groups, 5U);
    EXPECT_EQ(grouped.misfit.p.front(), 1.0 / 201.0);
    EXPECT_EQ(grouped.misfit.p.back(), 1.0);
    EXPECT_DOUBLE_EQ(summary_of(grouped.kept).told, 0.99);
    // Rows of one concentration are one group.
    std::fill(noise.concentration.begin(), noise.concentration.end(), 0.5);
    std::fill(map.concentration.begin(), map.concentration.end(), 0.5);
    EXPECT_EQ(summary_of(compare_with_noise(map, {&noise, 1}).kept).told, 0.0);
}

TEST(NoiseComparison, TrustsNoRowWithoutNoiseOfItsGroup) {
    const RowFits noise{std::vector<double>(400, 0.1),
                        std::vector<double>(400, 3.0),
                        std::vector<double>(400, 0.5)};
    const RowFits map{{1.0, 1.0}, {0.1, 0.1}, {0.4, 0.6}};
    const NoiseComparison comparison = compare_with_noise(map, {&noise, 1});
    EXPECT_EQ(comparison.misfit.p, (std::vector<double>{1.0, 1.0 / 401.0}));
    EXPECT_EQ(compare_with_noise(map, {}).kept.p, (std::vector<double>{1.0, 1.0}));
}

TEST(NoiseSummary, TellsOfAllRows) {
    const NoiseSummary summary = summary_of({{0.01, 0.05, 0.2, 0.9}, {0.04, 0.06, 0.27, 0.9}});
    EXPECT_EQ(summary.better, 0.5);
    EXPECT_EQ(summary.told, 0.25);
    EXPECT_EQ(summary.least_rate, 0.04);
    EXPECT_EQ(summary.signal, 0.5);
    EXPECT_EQ(summary_of({{0.9, 0.8}, {0.9, 0.9}}).signal, 0.0);
    const NoiseSummary none = summary_of({});
    EXPECT_EQ(none.better, 0.0);
    EXPECT_EQ(none.least_rate, 1.0);
}

TEST(NoiseFitsNeeded, IsWhatNamesAsManyRowsAsAreBetterThanNoise) {
    // Of 100 rows the best ten do better than all noise: that has to be rarer than 0.05 times 0.1.
    const RowFits noise{std::vector<double>(100, 0.5),
                        std::vector<double>(100, 2.0),
                        std::vector<double>(100, 0.5)};
    RowFits map{std::vector<double>(100, 0.1),
                std::vector<double>(100, 3.0),
                std::vector<double>(100, 0.5)};
    std::fill_n(map.kept.begin(), 10, 0.9);
    const NoiseComparison few = compare_with_noise(map, {&noise, 1});
    EXPECT_EQ(summary_of(few.kept).told, 0.0);
    EXPECT_EQ(noise_fits_needed(few, summary_of(few.kept), 100), 2U);
    const NoiseComparison enough = compare_with_noise(map, std::vector<RowFits>(2, noise));
    EXPECT_DOUBLE_EQ(summary_of(enough.kept).told, 0.1);
    EXPECT_EQ(noise_fits_needed(enough, summary_of(enough.kept), 100), 0U);
    EXPECT_EQ(noise_fits_needed(few, summary_of(few.misfit), 100), 0U);
}

}  // namespace
}  // namespace ovik
