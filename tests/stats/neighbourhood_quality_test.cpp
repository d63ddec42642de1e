#include "stats/neighbourhood_quality.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <random>
#include <stdexcept>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "util/input_error.h"

#include "tests/support/instruction_sets.h"
#include "tests/support/nearest_rows.h"
#include "tests/support/random_points.h"
#include "tests/support/threads.h"
#include "tests/support/toy_metrics.h"

namespace ovik {
namespace {

NeighbourhoodQuality plain_quality(const std::vector<double>& X,
                                   std::size_t D,
                                   const std::vector<double>& Y,
                                   std::size_t dims,
                                   std::size_t k) {
    const std::size_t N = X.size() / D;
    double excess = 0.0;
    double shared = 0.0;
    for (std::size_t n = 0; n < N; ++n) {
        const auto input = test::order_of_others(X, D, n);
        const auto embedding = test::order_of_others(Y, dims, n);
        for (std::size_t place = 0; place < k; ++place) {
            const auto rank =
                std::find(input.begin(), input.end(), embedding[place]) - input.begin() + 1;
            const auto beyond = rank - static_cast<std::ptrdiff_t>(k);
            shared += beyond <= 0 ? 1.0 : 0.0;
            excess += beyond > 0 ? static_cast<double>(beyond) : 0.0;
        }
    }
    const auto rows = static_cast<double>(N);
    const auto size = static_cast<double>(k);
    return {k,
            1.0 - 2.0 / (rows * size * (2.0 * rows - 3.0 * size - 1.0)) * excess,
            shared / (rows * size)};
}

MisplacedNeighbours plain_misplaced(const std::vector<double>& X,
                                    std::size_t D,
                                    const std::vector<double>& Y,
                                    std::size_t dims,
                                    std::size_t near) {
    const std::size_t N = X.size() / D;
    const std::size_t far = std::max(near, std::min(3 * near, (N - 1) / 2));
    MisplacedNeighbours result{near, far};
    const auto is_beyond = [far](const std::vector<std::uint32_t>& order, std::uint32_t row) {
        const auto place = std::find(order.begin(), order.end(), row) - order.begin();
        return place >= static_cast<std::ptrdiff_t>(far);
    };
    for (std::size_t n = 0; n < N; ++n) {
        const auto input = test::order_of_others(X, D, n);
        const auto embedding = test::order_of_others(Y, dims, n);
        result.falsely_near.emplace_back();
        result.torn.emplace_back();
        for (std::size_t i = 0; i < near; ++i) {
            if (is_beyond(input, embedding[i])) {
                result.falsely_near[n].push_back(embedding[i]);
            }
            if (is_beyond(embedding, input[i])) {
                result.torn[n].push_back(input[i]);
            }
        }
    }
    return result;
}

std::vector<double> random_points(std::size_t count, unsigned int seed) {
    std::mt19937 generator(seed);
    std::normal_distribution<double> normal;
    std::vector<double> points(count);
    std::generate(points.begin(), points.end(), [&] { return normal(generator); });
    return points;
}

TEST(NeighbourhoodQuality, IsOneForTheInputItself) {
    const std::vector<double> X = random_points(3 * 60, 1);
    for (const NeighbourhoodQuality& quality :
         neighbourhood_quality(X.data(), 60, 3, X.data(), 3, {1, 5, 29})) {
        EXPECT_EQ(quality.trustworthiness, 1.0);
        EXPECT_EQ(quality.preservation, 1.0);
    }
}

TEST(NeighbourhoodQuality, IsLowForAnEmbeddingOfSomethingElse) {
    const std::vector<double> X = random_points(5 * 1000, 1);
    const std::vector<double> Y = random_points(2 * 1000, 2);
    const auto quality = neighbourhood_quality(X.data(), 1000, 5, Y.data(), 2, {10});
    ASSERT_EQ(quality.size(), 1U);
    EXPECT_NEAR(quality[0].trustworthiness, 0.5, 0.02);
    EXPECT_NEAR(quality[0].preservation, 10.0 / 999.0, 0.005);
}

TEST(NeighbourhoodQuality, IsZeroForTheWorstEmbedding) {
    // Six rows on a line; in the embedding each lies nearest to the farthest of them.
    const std::vector<double> X = {0, 1, 2, 100, 101, 102};
    const std::vector<double> Y = {0, 10, 20, 20.25, 10.5, 0.125};
    const auto quality = neighbourhood_quality(X.data(), 6, 1, Y.data(), 1, {1});
    EXPECT_EQ(quality[0].preservation, 0.0);
    EXPECT_LT(quality[0].trustworthiness, 0.3);
}

TEST(NeighbourhoodQuality, IsTheMeanOfWhatEachRowKeeps) {
    // Rows 0 and 1 stay each other's nearest, row 2 loses its own.
    const std::vector<double> X = {0, 1, 3, 100, 101};
    const std::vector<double> Y = {0, 1, 50, 49, 48.5};
    const auto quality = neighbourhood_quality(X.data(), 5, 1, Y.data(), 1, {1, 2});
    EXPECT_EQ(quality[0].kept, (std::vector<double>{1.0, 1.0, 0.0, 1.0, 1.0}));
    EXPECT_EQ(quality[0].preservation, 0.8);
    double sum = 0.0;
    for (const double share : quality[1].kept) {
        sum += share;
    }
    EXPECT_DOUBLE_EQ(sum / 5.0, quality[1].preservation);
}

TEST(NeighbourhoodQuality, TakesTheNeighboursInTheInputByTheMetric) {
    // Rows 0 and 1 are nearest to one another by the maximum norm, as in the map; for Euclid row 2
    // is nearest to both.
    const std::vector<double> X = {0, 0, 3, 3, 4, 0, 50, 0, 60, 0};
    const std::vector<double> near_one = {0, 1, 4, 50, 60};
    const auto recall = [&](const Metric& metric) {
        return neighbourhood_quality(X.data(), 5, 2, near_one.data(), 1, {1}, metric)[0]
            .preservation;
    };
    EXPECT_EQ(recall(test::kMaximumMetric), 1.0);
    EXPECT_EQ(recall(euclidean_metric()), 0.6);
}

TEST(NeighbourhoodQuality, TakesNoInputThatTheMetricComplainsOf) {
    const std::vector<double> X = {1, 2, 3, -4, 5};
    EXPECT_THROW(neighbourhood_quality(X.data(), 5, 1, X.data(), 1, {1}, test::kComplainingMetric),
                 InputError);
    const std::vector<double> map = {-1, -2, -3, -4, -5};
    const std::vector<double> fine = {1, 2, 3, 4, 5};
    EXPECT_EQ(
        neighbourhood_quality(fine.data(), 5, 1, map.data(), 1, {1}, test::kComplainingMetric)[0]
            .trustworthiness,
        1.0);
}

TEST(NeighbourhoodQuality, OfDistancesIsThatOfTheRowsTheyAreBetween) {
    constexpr std::size_t kRows = 70;
    const std::vector<double> X = test::random_values(kRows * 4, 31);
    const std::vector<double> Y = test::random_values(kRows * 2, 32);
    std::vector<double> distances(kRows * kRows);
    for (std::size_t n = 0; n < kRows; ++n) {
        for (std::size_t m = 0; m < kRows; ++m) {
            double squares = 0.0;
            for (std::size_t d = 0; d < 4; ++d) {
                squares += (X[n * 4 + d] - X[m * 4 + d]) * (X[n * 4 + d] - X[m * 4 + d]);
            }
            distances[n * kRows + m] = std::sqrt(squares);
        }
    }
    const auto expected = neighbourhood_quality({X.data(), kRows, 4}, {Y.data(), kRows, 2}, {3, 9});
    for (const int threads : {1, 2, 5}) {
        const test::ThreadCount scope(threads);
        const auto quality = neighbourhood_quality_of_distances(
            {distances.data(), kRows, kRows}, {Y.data(), kRows, 2}, {3, 9});
        ASSERT_EQ(quality.size(), 2U);
        for (std::size_t i = 0; i < 2; ++i) {
            EXPECT_EQ(quality[i].trustworthiness, expected[i].trustworthiness);
            EXPECT_EQ(quality[i].preservation, expected[i].preservation);
        }
    }
    EXPECT_TRUE(neighbourhood_quality_of_distances({}, {}, {10}).empty());
}

TEST(NeighbourhoodQuality, OfNothingIsNothing) {
    EXPECT_TRUE(neighbourhood_quality(nullptr, 0, 3, nullptr, 2, {10}).empty());
    const double row = 1.0;
    EXPECT_TRUE(neighbourhood_quality(&row, 1, 1, &row, 1, {}).empty());
}

RC_GTEST_PROP(NeighbourhoodQuality, EqualsThePlainOne, ()) {
    const auto N = *rc::gen::inRange<std::size_t>(5, 90);
    const auto D = *rc::gen::inRange<std::size_t>(1, 12);
    const auto dims = *rc::gen::inRange<std::size_t>(1, 4);
    const auto k = *rc::gen::inRange<std::size_t>(1, (N - 1) / 2 + 1);
    // Few different values: ties.
    const auto value = rc::gen::map(rc::gen::inRange(-4, 5), [](int v) { return 0.5 * v; });
    const auto X = *rc::gen::container<std::vector<double>>(N * D, value);
    const auto Y = *rc::gen::container<std::vector<double>>(N * dims, value);
    const NeighbourhoodQuality expected = plain_quality(X, D, Y, dims, k);
    for (const InstructionSet instructions : test::available_instruction_sets()) {
        const test::InstructionLimit limit(instructions);
        for (const int threads : {1, 2, 3, 8}) {
            const test::ThreadCount scope(threads);
            const auto quality = neighbourhood_quality(X.data(), N, D, Y.data(), dims, {1, k});
            RC_ASSERT(std::fabs(quality[1].trustworthiness - expected.trustworthiness) < 1e-12);
            RC_ASSERT(std::fabs(quality[1].preservation - expected.preservation) < 1e-12);
        }
    }
}

RC_GTEST_PROP(RowNeighbourhoods, EqualThePlainOnes, ()) {
    const auto N = *rc::gen::inRange<std::size_t>(8, 70);
    const auto near = *rc::gen::inRange<std::size_t>(1, (N - 1) / 2 + 1);
    // Few different values: ties and duplicates.
    const auto value = rc::gen::map(rc::gen::inRange(-3, 4), [](int v) { return 0.5 * v; });
    const auto X = *rc::gen::container<std::vector<double>>(N * 3, value);
    const auto Y = *rc::gen::container<std::vector<double>>(N * 2, value);
    const MisplacedNeighbours expected = plain_misplaced(X, 3, Y, 2, near);
    const auto quality = neighbourhood_quality({X.data(), N, 3}, {Y.data(), N, 2}, {near});
    for (const int threads : {1, 2, 5}) {
        const test::ThreadCount scope(threads);
        const RowNeighbourhoods found =
            row_neighbourhoods({X.data(), N, 3}, {Y.data(), N, 2}, {near}, near);
        RC_ASSERT(found.misplaced.far == expected.far);
        RC_ASSERT(found.misplaced.falsely_near == expected.falsely_near);
        RC_ASSERT(found.misplaced.torn == expected.torn);
        RC_ASSERT(found.quality[0].trustworthiness == quality[0].trustworthiness);
        RC_ASSERT(found.quality[0].kept == quality[0].kept);
        RC_ASSERT(found.quality[0].trusted == quality[0].trusted);
    }
}

/// Rows of which single precision tells some apart, and others not: they lie close together, or
/// are the same.
TEST(RowNeighbourhoods, EqualThePlainOnesWhereManyRowsAreAlike) {
    constexpr std::size_t kRows = 301;
    std::vector<double> X = random_points(4 * kRows, 8);
    for (std::size_t n = 0; n < kRows; ++n) {
        for (std::size_t d = 0; d < 4 && n % 3 != 0; ++d) {
            X[4 * n + d] = n % 3 == 1 ? 2.0 : X[4 * n + d] * 1e-10 - 3.0;
        }
    }
    const std::vector<double> Y = random_points(2 * kRows, 9);
    const MisplacedNeighbours expected = plain_misplaced(X, 4, Y, 2, 10);
    const NeighbourhoodQuality plain = plain_quality(X, 4, Y, 2, 30);
    for (const InstructionSet instructions : test::available_instruction_sets()) {
        const test::InstructionLimit limit(instructions);
        for (const int threads : {1, 2, 5}) {
            const test::ThreadCount scope(threads);
            const RowNeighbourhoods found =
                row_neighbourhoods({X.data(), kRows, 4}, {Y.data(), kRows, 2}, {30}, 10);
            EXPECT_EQ(found.misplaced.falsely_near, expected.falsely_near);
            EXPECT_EQ(found.misplaced.torn, expected.torn);
            EXPECT_NEAR(found.quality[0].trustworthiness, plain.trustworthiness, 1e-12);
            EXPECT_NEAR(found.quality[0].preservation, plain.preservation, 1e-12);
        }
    }
}

TEST(RowNeighbourhoods, AreThoseOfGivenDistances) {
    const std::vector<double> X = random_points(50, 5);
    const std::vector<double> Y = random_points(50, 6);
    std::vector<double> distances;
    for (const double from : X) {
        for (const double to : X) {
            distances.push_back(std::fabs(from - to));
        }
    }
    const auto of_rows = row_neighbourhoods({X.data(), 50, 1}, {Y.data(), 50, 1}, {4}, 4);
    const auto of_distances =
        row_neighbourhoods({distances.data(), 50, 50}, {Y.data(), 50, 1}, {4}, 4, true);
    EXPECT_EQ(of_distances.misplaced.falsely_near, of_rows.misplaced.falsely_near);
    EXPECT_EQ(of_distances.misplaced.torn, of_rows.misplaced.torn);
    EXPECT_EQ(of_distances.quality[0].trusted, of_rows.quality[0].trusted);
    EXPECT_TRUE(row_neighbourhoods({}, {}, {}, 1).quality.empty());
}

TEST(NeighbourhoodQuality, TakesMatricesWithTheirShapes) {
    const std::vector<double> X = test::random_values(60, 55);
    const std::vector<double> Y = test::random_values(40, 56);
    const auto expected = neighbourhood_quality(X.data(), 20, 3, Y.data(), 2, {4});
    const auto quality = neighbourhood_quality({X.data(), 20, 3}, {Y.data(), 20, 2}, {4});
    ASSERT_EQ(quality.size(), 1U);
    EXPECT_EQ(quality[0].trustworthiness, expected[0].trustworthiness);
    EXPECT_EQ(quality[0].preservation, expected[0].preservation);
}

TEST(NeighbourhoodQuality, TellsHowFarItIsAndIsStopped) {
    const std::vector<double> X = test::random_values(300 * 3, 5);
    const MatrixView<const double> rows{X.data(), 300, 3};
    std::uint64_t last = 0;
    OnStage on_stage = [&last](Stage stage, std::uint64_t done, std::uint64_t total) {
        EXPECT_EQ(stage, Stage::Quality);
        EXPECT_EQ(total, 300U);
        EXPECT_GE(done, last);
        last = done;
    };
    EXPECT_EQ(neighbourhood_quality(rows, rows, {7}, on_stage).front().preservation, 1.0);
    EXPECT_EQ(last, 300U);
    on_stage = [](Stage, std::uint64_t done, std::uint64_t) {
        if (done > 0) {
            throw std::runtime_error("enough");
        }
    };
    EXPECT_THROW(neighbourhood_quality(rows, rows, {7}, on_stage), std::runtime_error);
    const std::vector<double> distances = test::random_values(300 * 300, 6);
    EXPECT_THROW(
        neighbourhood_quality_of_distances({distances.data(), 300, 300}, rows, {7}, on_stage),
        std::runtime_error);
}

}  // namespace
}  // namespace ovik
