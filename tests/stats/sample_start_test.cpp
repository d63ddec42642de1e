#include "stats/sample_start.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/plain/plain_start.h"
#include "tests/support/nearest_rows.h"
#include "tests/support/random_points.h"
#include "tests/support/refusal.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;

TEST(SampleSize, IsATenthWithinBounds) {
    EXPECT_EQ(sample_size(2000), 1000U);
    EXPECT_EQ(sample_size(10'000), 1000U);
    EXPECT_EQ(sample_size(54'321), 5432U);
    EXPECT_EQ(sample_size(1'000'000), 100'000U);
    EXPECT_EQ(sample_size(20'000'000), 100'000U);
}

TEST(SampledRows, AreAsManyAsWantedAndOfTheSeed) {
    for (const std::size_t rows : {2000U, 12'345U, 70'000U}) {
        const std::vector<std::uint32_t> sample = sampled_rows(rows, 11);
        EXPECT_EQ(sample.size(), sample_size(rows));
        EXPECT_TRUE(std::is_sorted(sample.begin(), sample.end(), std::less_equal<>()));
        EXPECT_LT(sample.back(), rows);
        EXPECT_EQ(sampled_rows(rows, 11), sample);
        EXPECT_NE(sampled_rows(rows, 12), sample);
        const std::vector<std::size_t> plain = plain::sampled_rows(rows, 11);
        EXPECT_TRUE(std::equal(sample.begin(), sample.end(), plain.begin(), plain.end()));
    }
}

TEST(SampledRows, LieAllOverTheMatrix) {
    std::size_t in_first_half = 0;
    for (const std::uint32_t row : sampled_rows(50'000, 3)) {
        in_first_half += row < 25'000 ? 1 : 0;
    }
    EXPECT_NEAR(static_cast<double>(in_first_half), 2500.0, 180.0);
}

TEST(OptionsOfSample, HaveNoMoreNeighboursThanTheSampleBears) {
    const FitOptions options{.perplexity = 900.0,
                             .metric = MetricKind::Pearson,
                             .pca = 20,
                             .neighbours = 1500,
                             .multiscale = {10.0, 600.0},
                             .start = StartKind::Sample};
    const FitOptions sampled = options_of_sample(options, 1000);
    EXPECT_EQ(sampled.perplexity, 333.0);
    EXPECT_EQ(sampled.neighbours, 998);
    EXPECT_THAT(std::vector<double>(sampled.multiscale.begin(), sampled.multiscale.end()),
                ElementsAre(10.0, 333.0));
    EXPECT_EQ(sampled.metric, MetricKind::Euclidean);
    EXPECT_EQ(sampled.pca, 0);
    EXPECT_EQ(sampled.start, StartKind::Pca);
    EXPECT_EQ(options_of_sample({.perplexity = 30.0, .learning_rate = 7.0}, 1000).perplexity, 30.0);
    EXPECT_EQ(options_of_sample({.perplexity = 30.0, .learning_rate = 7.0}, 1000).learning_rate,
              7.0);
}

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

TEST(PlaceAmongNeighbours, GoesOnRoundAfterRound) {
    // 0 and 1 have places; 2 is near both, 3 near 2, 4 near 3 and 2; 5 and 6 near one another.
    const NeighbourGraph graph{7, 2, {1, 2, 0, 2, 0, 1, 4, 2, 3, 2, 6, 6, 5, 5}, {}};
    std::vector<double> Y{1.0, 10.0, 3.0, 20.0};
    Y.resize(14, kNone);
    place_among_neighbours({Y.data(), 7, 2}, {1, 1, 0, 0, 0, 0, 0}, graph);
    EXPECT_THAT(Y, ElementsAre(1, 10, 3, 20, 2, 15, 2, 15, 2, 15, 2, 15, 2, 15));
}

TEST(PlaceAmongNeighbours, TakesTheNearestThatHaveAPlace) {
    constexpr std::size_t kRows = 60;
    NeighbourGraph graph{kRows, kRows - 1, {}, {}};
    std::vector<double> Y(kRows, 0.0);
    for (std::uint32_t n = 0; n < kRows; ++n) {
        Y[n] = n;
        for (std::uint32_t m = 1; m < kRows; ++m) {
            graph.neighbours.push_back((n + m) % kRows);
        }
    }
    std::vector<char> has_place(kRows, 1);
    has_place[0] = has_place[1] = has_place[5] = 0;
    place_among_neighbours({Y.data(), kRows, 1}, has_place, graph);
    // The first 25 of 2, 3, 4, 6, 7, ...
    EXPECT_EQ(Y[0], 15.0);
    EXPECT_EQ(Y[5], 18.0);
}

TEST(PlaceAmongNeighbours, EqualsThePlainProgramForAnyNumberOfThreads) {
    constexpr std::size_t kRows = 600;
    constexpr std::size_t kNeighbours = 4;
    const std::vector<double> X = test::random_values(kRows * 3, 7);
    std::vector<double> places = test::random_values(kRows * 2, 8);
    std::vector<char> has_place(kRows, 1);
    for (std::size_t n = 0; n < kRows; ++n) {
        if (n % 10 != 0) {
            has_place[n] = 0;
            places[2 * n] = places[2 * n + 1] = kNone;
        }
    }
    NeighbourGraph graph{kRows, kNeighbours, {}, {}};
    for (std::size_t n = 0; n < kRows; ++n) {
        for (const NearRow& one : test::nearest_of(X, 3, n, kNeighbours)) {
            graph.neighbours.push_back(one.row);
        }
    }
    const std::vector<double> expected =
        plain::placed_among_neighbours(X, kRows, 3, places, 2, kNeighbours);
    for (const int threads : test::kThreadCounts) {
        const test::ThreadCount scope(threads);
        std::vector<double> Y = places;
        place_among_neighbours({Y.data(), kRows, 2}, has_place, graph);
        EXPECT_EQ(Y, expected);
    }
}

TEST(StartFromSample, RefusesFewRowsAndMapsWithoutExtent) {
    std::vector<double> Y(4000);
    std::vector<double> X = test::random_values(2000 * 3, 9);
    FitOptions options{.perplexity = 5.0, .max_iter = 3, .start = StartKind::Sample};
    const NeighbourGraph graph = graph_without_neighbours(2000, 1);
    const auto start = [&](std::size_t rows) {
        return test::refusal_of([&] {
            start_from_sample({Y.data(), rows, 2}, {X.data(), rows, 3}, options, graph);
        });
    };
    EXPECT_THAT(start(1999),
                HasSubstr("a start by a sample is for 2000 rows or more, and there are 1999"));
    EXPECT_EQ(start(2000), "");
    options.learning_rate = 1e300;
    EXPECT_THAT(start(2000), HasSubstr("the map of the sample of 1000 rows has no extent"));
    // Along one column alone.
    for (std::size_t n = 0; n < 2000; ++n) {
        X[3 * n + 1] = X[3 * n + 2] = 0.0;
    }
    EXPECT_THAT(start(2000),
                AllOf(HasSubstr("the sample of 1000 rows at whose map all would start"),
                      HasSubstr("vary along 1 alone")));
}

TEST(StartFromSample, TellsHowFarItsFitIsAndWhatItFound) {
    std::vector<double> Y(4000);
    const std::vector<double> X = test::random_values(2000 * 3, 9);
    FitOptions options{.perplexity = 5.0,
                       .max_iter = 3,
                       .neighbour_search = NeighbourSearchKind::Approximate,
                       .start = StartKind::Sample};
    const NeighbourGraph graph = graph_without_neighbours(2000, 1);
    std::uint64_t last = 0;
    int iterations = 0;
    SampleHooks hooks;
    hooks.on_stage = [&](Stage stage, std::uint64_t done, std::uint64_t total) {
        EXPECT_EQ(stage, Stage::Sample);
        EXPECT_EQ(total, 4U);
        last = done;
    };
    hooks.on_iteration = [&](const FitState& state) {
        EXPECT_EQ(state.embedding.size(), 2000U);
        return ++iterations < 3;
    };
    const auto start = [&] {
        return start_from_sample({Y.data(), 2000, 2}, {X.data(), 2000, 3}, options, graph, hooks);
    };
    const SampleReport report = start();
    EXPECT_EQ(report.rows, 1000U);
    ASSERT_TRUE(report.recall);
    EXPECT_EQ(report.recall->rows, 1000U);
    EXPECT_GT(report.recall->share, 0.9);
    EXPECT_EQ(iterations, 3);
    EXPECT_EQ(last, 3U);
    options.neighbour_search = NeighbourSearchKind::Exact;
    EXPECT_FALSE(start().recall);
    // The first word of it is of its neighbours.
    hooks.on_iteration = {};
    hooks.on_stage = [](Stage, std::uint64_t, std::uint64_t) {
        throw std::runtime_error("enough");
    };
    EXPECT_THROW(start(), std::runtime_error);
}

}  // namespace
}  // namespace ovik
