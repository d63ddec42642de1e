#include "stats/seed_fits.h"

#include <limits>
#include <mutex>
#include <set>
#include <stdexcept>
#include <vector>

#include <gtest/gtest.h>

#include "stats/fit.h"

#include "tests/support/random_points.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

constexpr std::size_t kRows = 120;
constexpr std::size_t kColumns = 5;

constexpr FitOptions kOptions{
    .perplexity = 8.0, .max_iter = 40, .stop_lying_iter = 12, .mom_switch_iter = 20, .seed = 3};

std::vector<double> input() {
    return test::random_values(kRows * kColumns, 31);
}

Fit fitted(FitOptions options) {
    std::vector<double> X = input();
    return fit({X.data(), kRows, kColumns}, options);
}

struct Repeated {
    std::vector<double> map = std::vector<double>(kRows * 2);
    std::vector<double> X;
    FitReport report;
};

Repeated repeated(const FitOptions& options,
                  const SeedManner& manner,
                  const FitHooks& hooks = {},
                  std::vector<double> X = input()) {
    Repeated result;
    result.X = std::move(X);
    const std::size_t rows = result.X.size() / kColumns;
    result.map.resize(rows * 2);
    result.report = fit_seeds_into(
        {result.map.data(), rows, 2}, {result.X.data(), rows, kColumns}, options, manner, hooks);
    return result;
}

TEST(SeedFits, KeepTheMapOfLowestCostOfFitsByThemselves) {
    for (const double theta : {0.5, 0.0}) {
        FitOptions options = kOptions;
        options.theta = theta;
        std::vector<Fit> alone;
        std::size_t best = 0;
        for (int seed = 3; seed < 8; ++seed) {
            options.seed = seed;
            alone.push_back(fitted(options));
            if (alone.back().report.final_cost < alone[best].report.final_cost) {
                best = alone.size() - 1;
            }
        }
        options.seed = 3;
        for (const int threads : {1, 2, 5}) {
            const test::ThreadCount scope(threads);
            const Repeated found = repeated(options, {.count = 5});
            EXPECT_EQ(found.map, alone[best].embedding) << threads << " threads, " << theta;
            EXPECT_EQ(found.report.costs, alone[best].report.costs);
            EXPECT_EQ(found.report.final_cost, alone[best].report.final_cost);
            ASSERT_TRUE(found.report.seeds);
            EXPECT_EQ(found.report.seeds->kept, best);
            ASSERT_EQ(found.report.seeds->runs.size(), 5U);
            for (std::size_t i = 0; i < 5; ++i) {
                const SeedRun& run = found.report.seeds->runs[i];
                EXPECT_EQ(run.seed, 3 + static_cast<int>(i));
                EXPECT_EQ(run.iteration, 40);
                EXPECT_EQ(run.final_cost, alone[i].report.final_cost);
                EXPECT_TRUE(run.is_complete);
            }
        }
    }
}

TEST(SeedFits, TellHowFarTheMapsAgree) {
    std::vector<Fit> alone;
    std::vector<MatrixView<const double>> maps;
    FitOptions options = kOptions;
    for (options.seed = 3; options.seed < 6; ++options.seed) {
        alone.push_back(fitted(options));
    }
    for (const Fit& one : alone) {
        maps.push_back({one.embedding.data(), kRows, 2});
    }
    const MapAgreement expected = mean_agreement(maps);
    for (const int threads : {1, 2, 5}) {
        const test::ThreadCount scope(threads);
        const FitReport report = repeated(kOptions, {.count = 3}).report;
        ASSERT_TRUE(report.seeds->agreement);
        EXPECT_EQ(report.seeds->agreement->disparity, expected.disparity);
        EXPECT_EQ(report.seeds->agreement->shared_neighbours, expected.shared_neighbours);
        EXPECT_EQ(report.seeds->agreement->neighbours, 10U);
    }
}

TEST(SeedFits, LeaveTheInputAsOneFitDoes) {
    std::vector<double> X = input();
    const Fit alone = fit({X.data(), kRows, kColumns}, kOptions);
    const Repeated found = repeated(kOptions, {.count = 4});
    EXPECT_EQ(found.X, X);
    EXPECT_EQ(found.report.scale.means, alone.report.scale.means);
}

TEST(SeedFits, OfOneSeedAreThatFit) {
    const Repeated found = repeated(kOptions, {.count = 1});
    EXPECT_EQ(found.map, fitted(kOptions).embedding);
    EXPECT_EQ(found.report.seeds->runs.size(), 1U);
    EXPECT_FALSE(found.report.seeds->agreement);
}

TEST(SeedFits, OfRowsEquallyFarAreThoseByThemselves) {
    // Points of a lattice, whose neighbours depend on the tree of the search.
    std::vector<double> X;
    for (int n = 0; n < 200; ++n) {
        for (const int value : {n % 5, n / 5 % 5, n / 25, 0, n % 2}) {
            X.push_back(value);
        }
    }
    std::vector<double> costs;
    FitOptions options = kOptions;
    for (options.seed = 3; options.seed < 9; ++options.seed) {
        std::vector<double> values = X;
        costs.push_back(fit({values.data(), 200, kColumns}, options).report.final_cost);
    }
    for (const int threads : {1, 2, 5}) {
        for (const std::size_t at_once : {0U, 1U, 3U}) {
            const test::ThreadCount scope(threads);
            const Repeated found = repeated(kOptions, {.count = 6, .at_once = at_once}, {}, X);
            for (std::size_t i = 0; i < 6; ++i) {
                EXPECT_EQ(found.report.seeds->runs[i].final_cost, costs[i])
                    << threads << " threads, " << at_once << " at once";
            }
        }
    }
}

TEST(SeedFits, EndedByTheHookKeepTheBestOfThoseThatAreComplete) {
    for (const int threads : {1, 2, 5}) {
        const test::ThreadCount scope(threads);
        int calls = 0;
        FitHooks hooks;
        // Within the second fit, or in the second and third.
        hooks.on_iteration = [&](const FitState& /*state*/) { return ++calls < 60; };
        const FitReport report = repeated(kOptions, {.count = 5}, hooks).report;
        EXPECT_EQ(report.seeds->kept, 0U);
        EXPECT_EQ(report.reached.iteration, 40);
        EXPECT_FALSE(report.seeds->agreement);
        ASSERT_GE(report.seeds->runs.size(), 2U);
        EXPECT_TRUE(report.seeds->runs[0].is_complete);
        for (std::size_t i = 1; i < report.seeds->runs.size(); ++i) {
            EXPECT_FALSE(report.seeds->runs[i].is_complete);
        }
    }
}

TEST(SeedFits, EndedByTheHookInTheFirstFitKeepThat) {
    FitHooks hooks;
    hooks.on_iteration = [](const FitState& state) { return state.reached.iteration < 7; };
    const FitReport report = repeated(kOptions, {.count = 5}, hooks).report;
    EXPECT_EQ(report.reached.iteration, 7);
    ASSERT_EQ(report.seeds->runs.size(), 1U);
    EXPECT_FALSE(report.seeds->runs[0].is_complete);
}

TEST(SeedFits, AreAllEndedByAnException) {
    for (const int threads : {1, 2, 5}) {
        const test::ThreadCount scope(threads);
        int calls = 0;
        FitHooks hooks;
        hooks.on_iteration = [&](const FitState& /*state*/) -> bool {
            if (++calls == 50) {
                throw std::runtime_error("enough");
            }
            return true;
        };
        EXPECT_THROW(repeated(kOptions, {.count = 5}, hooks), std::runtime_error);
        EXPECT_EQ(calls, 50);
    }
}

TEST(SeedFits, RefuseCountsWithoutSeeds) {
    EXPECT_THROW(repeated(kOptions, {.count = 0}), std::invalid_argument);
    FitOptions options = kOptions;
    options.seed = std::numeric_limits<int>::max() - 1;
    EXPECT_THROW(repeated(options, {.count = 3}), std::invalid_argument);
    EXPECT_EQ(repeated(options, {.count = 2}).report.seeds->runs[1].seed,
              std::numeric_limits<int>::max());
}

}  // namespace
}  // namespace ovik
