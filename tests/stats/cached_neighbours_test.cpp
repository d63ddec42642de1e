#include "stats/cached_neighbours.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "neighbours/neighbour_graph.h"
#include "stats/sparse_affinities.h"

#include "tests/support/random_points.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

/// Similarities, and what `rand` gives next.
struct Outcome {
    std::vector<unsigned int> columns;
    std::vector<double> similarities;
    int next_draw = 0;

    bool operator==(const Outcome&) const = default;
};

struct Matrix {
    std::vector<double> values;
    std::size_t columns;

    [[nodiscard]] std::size_t rows() const { return values.size() / columns; }
};

Outcome affinities(const Matrix& matrix,
                   int K,
                   CachedNeighbours* cached,
                   unsigned int seed = 11,
                   const NeighbourSearchManner& manner = {}) {
    std::srand(seed);
    const SparseMatrix P = neighbour_affinities(matrix.values.data(),
                                                matrix.rows(),
                                                matrix.columns,
                                                K / 3.0,
                                                K,
                                                {{}, cached, nullptr, nullptr, manner});
    const std::size_t entries = P.row_P[matrix.rows()];
    return {{P.col_P.get(), P.col_P.get() + entries},
            {P.val_P.get(), P.val_P.get() + entries},
            std::rand()};
}

/// Holds runs that share neighbours to runs of their own.
void expect_no_difference(const Matrix& matrix, std::vector<int> sizes) {
    std::vector<Outcome> expected;
    expected.reserve(sizes.size());
    for (const int K : sizes) {
        expected.push_back(affinities(matrix, K, nullptr));
    }
    for (const int threads : test::kThreadCounts) {
        const test::ThreadCount scope(threads);
        CachedNeighbours cached(
            static_cast<std::size_t>(*std::max_element(sizes.begin(), sizes.end())));
        for (std::size_t i = 0; i < sizes.size(); ++i) {
            EXPECT_EQ(affinities(matrix, sizes[i], &cached), expected[i]) << sizes[i];
        }
    }
}

TEST(CachedNeighbours, GiveWhatASearchOfItsOwnGives) {
    expect_no_difference({test::random_values(700 * 5, 3), 5}, {30, 3, 90, 1, 89, 90, 0});
}

TEST(CachedNeighbours, SearchAgainWhereDistancesAreEqual) {
    // Points of a lattice, some of them twice.
    std::vector<double> values;
    for (int n = 0; n < 600; ++n) {
        values.push_back(n % 23);
        values.push_back(n * 7 % 17);
    }
    expect_no_difference({values, 2}, {60, 8, 24, 59, 4});
    expect_no_difference({std::vector<double>(200, 1.5), 2}, {30, 5});
}

TEST(CachedNeighbours, SearchAgainWhereDistancesAreNearlyEqual) {
    // On a circle around the first point, as far as rounding lets them.
    std::vector<double> values = {0.0, 0.0};
    for (int n = 0; n < 300; ++n) {
        values.push_back(std::cos(0.02 * n));
        values.push_back(std::sin(0.02 * n));
    }
    expect_no_difference({values, 2}, {50, 5, 20, 49});
}

TEST(CachedNeighbours, TakeFewPointsAndSuchThatAreNotFinite) {
    expect_no_difference({test::random_values(12, 5), 2}, {5, 2, 4});
    expect_no_difference({{1.0, 2.0}, 2}, {0});
    std::vector<double> values = test::random_values(200, 8);
    for (std::size_t i = 0; i < values.size(); i += 9) {
        values[i] = std::nan("");
    }
    expect_no_difference({values, 2}, {20, 6, 12});
}

TEST(CachedNeighbours, GiveRunsOfOtherSeedsWhatASearchOfTheirOwnGives) {
    // A lattice, where the tree decides which of the rows equally far are found.
    std::vector<double> values;
    for (int n = 0; n < 600; ++n) {
        values.push_back(n % 23);
        values.push_back(n * 7 % 17);
    }
    const Matrix lattice{values, 2};
    EXPECT_NE(affinities(lattice, 20, nullptr, 12).columns,
              affinities(lattice, 20, nullptr, 13).columns);
    for (const int threads : test::kThreadCounts) {
        const test::ThreadCount scope(threads);
        CachedNeighbours cached(20);
        for (const unsigned int seed : {12U, 13U, 12U, 14U}) {
            EXPECT_EQ(affinities(lattice, 20, &cached, seed),
                      affinities(lattice, 20, nullptr, seed));
        }
    }
}

TEST(CachedNeighbours, HaveTiesByRowAsASearchOfTheirOwn) {
    Matrix lattice{{}, 2};
    for (int n = 0; n < 600; ++n) {
        lattice.values.insert(lattice.values.end(), {n % 23 * 1.0, n * 7 % 17 * 1.0});
    }
    const NeighbourSearchManner manner{.ties = NeighbourTies::ByRow};
    for (const int threads : test::kThreadCounts) {
        const test::ThreadCount scope(threads);
        CachedNeighbours cached(60);
        for (const int K : {60, 8, 24}) {
            const Outcome expected = affinities(lattice, K, nullptr, 11, manner);
            EXPECT_EQ(affinities(lattice, K, &cached, 11, manner), expected) << K;
            EXPECT_NE(affinities(lattice, K, nullptr), expected) << K;
        }
    }
}

TEST(CachedNeighbours, GiveWhatAnApproximateSearchOfItsOwnGives) {
    // A lattice: of equally near rows the lower ones are taken, which the exact search does not do.
    Matrix matrix{{}, 3};
    for (int n = 0; n < 700; ++n) {
        matrix.values.insert(matrix.values.end(), {n % 9 * 1.0, n / 9 % 9 * 1.0, n / 81 * 1.0});
    }
    const NeighbourSearchManner manner{.is_approximate = true};
    const Outcome expected = affinities(matrix, 9, nullptr, 11, manner);
    EXPECT_NE(expected, affinities(matrix, 9, nullptr));
    CachedNeighbours same(9);
    EXPECT_EQ(affinities(matrix, 9, &same, 11, manner), expected);
    EXPECT_EQ(affinities(matrix, 9, &same, 12, manner), affinities(matrix, 9, nullptr, 12, manner));
    CachedNeighbours more(60);
    EXPECT_EQ(affinities(matrix, 9, &more, 11, manner), expected);
    EXPECT_EQ(affinities(matrix, 9, &more, 11, manner), expected);
}

TEST(CachedNeighbours, AreExactAndSharedWhereAnApproximateSearchCannotBeMade) {
    // Far too long for single precision.
    Matrix matrix{test::random_values(600 * 5, 9), 5};
    for (double& value : matrix.values) {
        value *= 1e151;
    }
    const NeighbourSearchManner manner{.is_approximate = true};
    CachedNeighbours cached(9);
    for (const int K : {9, 4}) {
        EXPECT_EQ(affinities(matrix, K, &cached, 11, manner), affinities(matrix, K, nullptr));
    }
    OwnRandomStream random;
    random.seed(1);
    CachedNeighbours shared(9);
    EXPECT_EQ(shared.begin(matrix.values.data(), 600, 5, random, manner), nullptr);
    random.seed(1);
    EXPECT_EQ(shared.begin(matrix.values.data(), 600, 5, random, manner), nullptr);
    random.seed(2);
    EXPECT_NE(shared.begin(matrix.values.data(), 600, 5, random, manner), nullptr);
}

TEST(CachedNeighbours, TellHowFarTheyAreAndAreStopped) {
    const Matrix matrix{test::random_values(600 * 4, 8), 4};
    for (const bool is_approximate : {false, true}) {
        std::vector<std::uint64_t> told;
        NeighbourSearchManner manner{is_approximate, [&](Stage stage, auto done, auto total) {
                                         EXPECT_EQ(stage, Stage::Neighbours);
                                         EXPECT_EQ(total, 600U);
                                         told.push_back(done);
                                     }};
        CachedNeighbours cached(9);
        for (int run = 0; run < 2; ++run) {
            told.clear();
            affinities(matrix, 9, &cached, 11, manner);
            ASSERT_GT(told.size(), 1U);
            EXPECT_EQ(told.front(), 0U);
            EXPECT_EQ(told.back(), 600U);
        }
        // A run that is ended leaves nothing that is half found to the next.
        CachedNeighbours stopped(9);
        const Outcome expected = affinities(matrix, 9, nullptr, 11, {is_approximate, {}});
        manner.on_stage = [](Stage, std::uint64_t done, std::uint64_t) {
            if (done > 0) {
                throw std::runtime_error("enough");
            }
        };
        EXPECT_THROW(affinities(matrix, 9, &stopped, 11, manner), std::runtime_error);
        EXPECT_EQ(affinities(matrix, 9, &stopped, 11, {is_approximate, {}}), expected);
    }
}

TEST(CachedNeighbours, SearchForMoreThanIsKept) {
    const Matrix matrix{test::random_values(300 * 3, 4), 3};
    const Outcome expected = affinities(matrix, 60, nullptr);
    CachedNeighbours cached(10);
    EXPECT_EQ(affinities(matrix, 60, &cached), expected);
    EXPECT_EQ(affinities(matrix, 60, &cached), expected);
}

TEST(CachedNeighbours, AreThoseThatAreGiven) {
    // As they are found, to the bit: the largest distance is between 0.5 and 1.
    Matrix matrix{test::random_values(120 * 3, 4), 3};
    NeighbourGraph graph;
    neighbour_affinities(matrix.values.data(), 120, 3, 10.0, 119, {.graph = &graph});
    const double largest = *std::max_element(graph.distances.begin(), graph.distances.end());
    for (double& value : matrix.values) {
        value *= 0.75 / largest;
    }
    neighbour_affinities(matrix.values.data(), 120, 3, 10.0, 119, {.graph = &graph});
    std::vector<GivenNeighbour> given;
    for (std::size_t i = 0; i < graph.neighbours.size(); ++i) {
        given.push_back({i / 119, graph.neighbours[i], graph.distances[i]});
    }
    const Outcome expected = affinities(matrix, 30, nullptr);
    for (const int threads : test::kThreadCounts) {
        const test::ThreadCount scope(threads);
        CachedNeighbours cached(neighbour_lists(given, 120, "g"));
        EXPECT_EQ(affinities(matrix, 30, &cached), expected);
        EXPECT_EQ(affinities(matrix, 30, &cached), expected);
        EXPECT_THROW(cached.begin(matrix.values.data(), 119, 3), std::invalid_argument);
    }
}

TEST(CachedNeighbours, AreToldFromOthersThatAreGiven) {
    const auto identity = [](const std::vector<GivenNeighbour>& given) {
        return CachedNeighbours(neighbour_lists(given, 3, "g")).identity();
    };
    const std::string one = identity({{0, 1, 1}, {1, 0, 1}, {2, 1, 0.5}});
    EXPECT_NE(one, "");
    EXPECT_EQ(identity({{2, 1, 0.5}, {1, 0, 1}, {0, 1, 1}}), one);
    EXPECT_NE(identity({{0, 1, 1}, {1, 0, 1}, {2, 1, 0.25}}), one);
    EXPECT_NE(identity({{0, 1, 1}, {1, 0, 1}, {2, 0, 0.5}}), one);
    EXPECT_NE(identity({{0, 1, 1}, {1, 0, 1}, {2, 1, 0.5}, {2, 0, 1}}), one);
    EXPECT_EQ(CachedNeighbours(10).identity(), "");
}

TEST(CachedNeighbours, RefuseAnotherMatrix) {
    Matrix matrix{test::random_values(60, 4), 3};
    CachedNeighbours cached(6);
    affinities(matrix, 6, &cached);
    matrix.values[7] += 1.0;
    EXPECT_THROW(cached.begin(matrix.values.data(), matrix.rows(), 3), std::invalid_argument);
    EXPECT_THROW(cached.begin(matrix.values.data(), 5, 3), std::invalid_argument);
}

}  // namespace
}  // namespace ovik
