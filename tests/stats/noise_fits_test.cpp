#include "stats/noise_fits.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdint>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "stats/fit.h"
#include "stats/neighbourhood_quality.h"
#include "stats/resampling.h"
#include "stats/row_concentration.h"
#include "util/input_error.h"

#include "tests/support/random_points.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

constexpr std::size_t kColumns = 8;

NoiseManner plain_manner() {
    return {.neighbours = 30};
}

FitOptions options_of(double perplexity, int iterations) {
    return {.perplexity = perplexity,
            .max_iter = iterations,
            .stop_lying_iter = 80,
            .mom_switch_iter = 80};
}

/// What is compared of the map of a matrix itself.
RowFits fits_of(const std::vector<double>& X, std::size_t columns, const FitOptions& options) {
    const std::size_t rows = X.size() / columns;
    std::vector<double> values = X;
    const MatrixView<double> points{values.data(), rows, columns};
    RowFits fits;
    fits.concentration = row_concentrations(points);
    FitHooks hooks;
    hooks.wants_row_costs = true;
    const Fit made = fit(points, options, hooks);
    fits.misfit = made.report.row_misfits;
    fits.kept = neighbourhood_quality(points, {made.embedding.data(), rows, 2}, {30}).front().kept;
    return fits;
}

NoiseComparison comparison_of(const std::vector<double>& X,
                              const FitOptions& options,
                              std::size_t count) {
    const MatrixView<const double> view{X.data(), X.size() / kColumns, kColumns};
    return compare_with_noise(fits_of(X, kColumns, options),
                              noise_fits(view, options, count, plain_manner()));
}

void expect_same(const RowFits& one, const RowFits& other) {
    EXPECT_EQ(one.kept, other.kept);
    EXPECT_EQ(one.misfit, other.misfit);
    EXPECT_EQ(one.concentration, other.concentration);
}

TEST(NoiseFits, AreTheSameForAnyNumberOfThreadsAndOfFitsAtOnce) {
    const std::vector<double> X = test::random_values(90 * kColumns, 7);
    const MatrixView<const double> view{X.data(), 90, kColumns};
    const FitOptions options = options_of(8.0, 30);
    std::vector<RowFits> alone;
    for (std::size_t number = 0; number < 3; ++number) {
        alone.push_back(noise_fit(view, options, number, plain_manner()).value());
    }
    EXPECT_NE(alone[0].misfit, alone[1].misfit);
    for (const int threads : {1, 2, 5}) {
        const test::ThreadCount scope(threads);
        for (const std::size_t at_once : {0U, 1U, 2U}) {
            NoiseManner manner = plain_manner();
            manner.at_once = at_once;
            const std::vector<RowFits> fits = noise_fits(view, options, 3, manner);
            ASSERT_EQ(fits.size(), 3U);
            for (std::size_t i = 0; i < 3; ++i) {
                expect_same(fits[i], alone[i]);
            }
        }
    }
    EXPECT_EQ(X, test::random_values(90 * kColumns, 7));
}

TEST(NoiseFits, AreThoseOfTheShuffledMatrix) {
    const std::vector<double> X = test::random_values(70 * 3, 8);
    const FitOptions options = options_of(8.0, 20);
    for (const std::size_t number : {0U, 4U}) {
        std::vector<double> shuffled = X;
        shuffle_columns({shuffled.data(), 70, 3}, options.seed, number);
        expect_same(noise_fit({X.data(), 70, 3}, options, number, plain_manner()).value(),
                    fits_of(shuffled, 3, options));
    }
}

TEST(NoiseFits, TellHowFarTheyAre) {
    const std::vector<double> X = test::random_values(70 * 3, 8);
    FitOptions options = options_of(8.0, 20);
    std::atomic<std::uint64_t> last = 0;
    NoiseManner manner = plain_manner();
    manner.on_stage = [&last](Stage stage, std::uint64_t done, std::uint64_t total) {
        EXPECT_EQ(stage, Stage::Noise);
        EXPECT_EQ(total, 63U);
        EXPECT_GE(done, last.load());
        last = done;
    };
    EXPECT_EQ(noise_fits({X.data(), 70, 3}, options, 3, manner).size(), 3U);
    EXPECT_EQ(last, 63U);
}

TEST(NoiseFits, EndWhereTheyAreToldTo) {
    const std::vector<double> X = test::random_values(70 * 4, 7);
    const MatrixView<const double> view{X.data(), 70, 4};
    const FitOptions options = options_of(8.0, 2000);
    std::atomic<int> asked = 0;
    NoiseManner manner = plain_manner();
    manner.goes_on = [&asked] { return ++asked < 300; };
    EXPECT_TRUE(noise_fits(view, options, 3, manner).empty());
    EXPECT_LT(asked, 400);
    asked = 0;
    EXPECT_FALSE(noise_fit(view, options, 0, manner).has_value());
    manner.goes_on = [] { return throw std::runtime_error("no"), true; };
    EXPECT_THROW(noise_fits(view, options, 3, manner), std::runtime_error);
}

TEST(NoiseFits, OfRowsThatAMetricCannotCompareAreRefused) {
    // Shuffled, some rows are the same in all columns.
    std::vector<double> X(60 * 2);
    for (std::size_t n = 0; n < 60; ++n) {
        X[2 * n] = static_cast<double>(n % 2);
        X[2 * n + 1] = static_cast<double>(1 - n % 2);
    }
    FitOptions options = options_of(5.0, 20);
    options.metric = MetricKind::Pearson;
    EXPECT_THROW(check_shuffles({X.data(), 60, 2}, options, 1), InputError);
    EXPECT_NO_THROW(check_shuffles({X.data(), 60, 2}, options, 0));
    EXPECT_THROW(noise_fits({X.data(), 60, 2}, options, 2, {.neighbours = 10}), InputError);
    options.metric = MetricKind::Euclidean;
    EXPECT_NO_THROW(check_shuffles({X.data(), 60, 2}, options, 1));
}

TEST(NoiseFits, OfMapsThatAreNotFiniteAreRefused) {
    const std::vector<double> X = test::random_values(60 * 3, 9);
    FitOptions options = options_of(5.0, 20);
    options.learning_rate = 1e308;
    const MatrixView<const double> view{X.data(), 60, 3};
    try {
        noise_fit(view, options, 0, {.neighbours = 10});
        FAIL();
    } catch (const InputError& error) {
        EXPECT_EQ(std::string(error.what()).find("a map of shuffled values got out of range"), 0U);
    }
}

double share_at_most(const std::vector<double>& values, double bound) {
    const auto count = std::count_if(
        values.begin(), values.end(), [bound](double value) { return value <= bound; });
    return static_cast<double>(count) / static_cast<double>(values.size());
}

/// The Kolmogorov-Smirnov distance of some chances from evenly spread ones.
double distance_from_even(std::vector<double> chances) {
    std::sort(chances.begin(), chances.end());
    const auto count = static_cast<double>(chances.size());
    double distance = 0.0;
    for (std::size_t i = 0; i < chances.size(); ++i) {
        const auto before = static_cast<double>(i);
        distance = std::max({distance,
                             std::fabs(chances[i] - before / count),
                             std::fabs(chances[i] - (before + 1.0) / count)});
    }
    return distance;
}

/// @param freedom  degrees of it: the fewer, the heavier the tails
std::vector<double> heavy_tailed_values(std::size_t count, unsigned int seed, double freedom) {
    std::mt19937 generator(seed);
    std::student_t_distribution<double> student(freedom);
    std::vector<double> values(count);
    std::generate(values.begin(), values.end(), [&] { return student(generator); });
    return values;
}

/// What twenty matrices of noise come to, each beside three more that are shuffled from it: 5 % of
/// the chances are 5 % or less, and all of them are evenly spread.
///
/// @param design_effect  by how much the variance of a share exceeds that of as many independent
/// trials: rows of a map depend on one another, and noise is thrice as large as the data, no more
template <typename Draw>
void expect_even_chances(const Draw& draw, double design_effect) {
    constexpr std::size_t kRows = 200;
    std::vector<double> by_misfit;
    std::vector<double> by_kept;
    for (unsigned int i = 0; i < 20; ++i) {
        const NoiseComparison comparison =
            comparison_of(draw(kRows * kColumns, 100 + i), options_of(10.0, 250), 3);
        by_misfit.insert(by_misfit.end(), comparison.misfit.p.begin(), comparison.misfit.p.end());
        by_kept.insert(by_kept.end(), comparison.kept.p.begin(), comparison.kept.p.end());
        EXPECT_LT(summary_of(comparison.misfit).told, 0.02) << i;
        EXPECT_LT(summary_of(comparison.kept).told, 0.02) << i;
    }
    for (const std::vector<double>& chances : {by_misfit, by_kept}) {
        const double trials = static_cast<double>(chances.size()) / design_effect;
        // Three standard deviations, and what a thousandth of all trials exceeds.
        EXPECT_NEAR(share_at_most(chances, 0.05), 0.05, 3.0 * std::sqrt(0.05 * 0.95 / trials));
        EXPECT_LT(distance_from_even(chances), 1.95 / std::sqrt(trials));
    }
}

TEST(NoiseChances, OfNoiseAreEvenlySpread) {
    expect_even_chances(
        [](std::size_t count, unsigned int seed) { return test::random_values(count, seed); }, 1.8);
}

TEST(NoiseChances, OfNoiseWithHeavyTailsAreEvenlySpread) {
    // Far rows are alike on a map, or are not, together: so much was seen over 160 matrices, whose
    // chances were within 0.013 of an even spread.
    expect_even_chances(
        [](std::size_t count, unsigned int seed) { return heavy_tailed_values(count, seed, 2.5); },
        5.2);
}

/// Puts two clusters of 30 rows, far from one another and tight, in the place of the first rows.
///
/// @param distance  of their middles from 0 in each column
std::vector<double> with_planted_clusters(std::vector<double> X, double distance) {
    const std::vector<double> within = test::random_values(60 * kColumns, 6, 0.2);
    for (std::size_t n = 0; n < 60; ++n) {
        for (std::size_t d = 0; d < kColumns; ++d) {
            X[n * kColumns + d] =
                ((n < 30) == (d % 2 == 0) ? distance : -distance) + within[n * kColumns + d];
        }
    }
    return X;
}

double largest_of_planted(const std::vector<double>& chances) {
    return *std::max_element(chances.begin(), chances.begin() + 60);
}

TEST(NoiseChances, OfPlantedClustersAreSmall) {
    const std::vector<double> X =
        with_planted_clusters(test::random_values(300 * kColumns, 5), 2.5);
    for (const double perplexity : {10.0, 30.0}) {
        const NoiseComparison comparison = comparison_of(X, options_of(perplexity, 250), 3);
        EXPECT_EQ(comparison.groups, 4U);
        const std::vector<double>& kept = comparison.kept.p;
        EXPECT_LT(largest_of_planted(kept), 0.01) << perplexity;
        // At a perplexity far below the size of a cluster, what is within it is noise.
        if (perplexity == 30.0) {
            EXPECT_LT(largest_of_planted(comparison.misfit.p), 0.01);
        }
        EXPECT_LT(share_at_most({kept.begin() + 60, kept.end()}, 0.05), 0.2) << perplexity;
    }
}

/// The same rows with one concentration, which are one group.
RowFits of_one_concentration(RowFits fits) {
    std::fill(fits.concentration.begin(), fits.concentration.end(), 0.5);
    return fits;
}

TEST(NoiseChances, OfClustersPlantedAmongHeavyTailsAreSmallAmongRowsOfLikeConcentration) {
    const std::vector<double> X =
        with_planted_clusters(heavy_tailed_values(800 * kColumns, 5, 1.5), 1.5);
    const FitOptions options = options_of(20.0, 250);
    const RowFits fits = fits_of(X, kColumns, options);
    std::vector<RowFits> noise = noise_fits({X.data(), 800, kColumns}, options, 3, plain_manner());
    const NoiseComparison comparison = compare_with_noise(fits, noise);
    EXPECT_EQ(comparison.groups, 5U);
    for (const NoiseChances& chances : {comparison.kept, comparison.misfit}) {
        EXPECT_LT(largest_of_planted(chances.p), 0.01);
        EXPECT_LT(share_at_most({chances.q.begin() + 60, chances.q.end()}, kNoiseLevel), 0.02);
    }
    EXPECT_LE(largest_of_planted(comparison.kept.q), kNoiseLevel);
    // Far rows of noise lie together on the map, and fit better than the planted ones.
    std::transform(noise.begin(), noise.end(), noise.begin(), of_one_concentration);
    const NoiseComparison pooled = compare_with_noise(of_one_concentration(fits), noise);
    EXPECT_GT(largest_of_planted(pooled.misfit.p), 0.05);
    EXPECT_LT(summary_of(pooled.misfit).told, summary_of(comparison.misfit).told);
}

}  // namespace
}  // namespace ovik
