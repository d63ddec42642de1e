#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "stats/cached_neighbours.h"
#include "stats/engine.h"
#include "stats/fit.h"

#include "tests/plain/plain_metrics.h"
#include "tests/plain/plain_sptree.h"
#include "tests/plain/plain_tsne.h"
#include "tests/support/random_points.h"
#include "tests/support/refusal.h"
#include "tests/support/threads.h"

/// Fits under other metrics than Euclid, on distances, and on neighbours that are given, against
/// the plain program.

namespace ovik {
namespace {

using testing::HasSubstr;

constexpr std::size_t kRows = 100;
constexpr double kPerplexity = 10.0;
constexpr int kThreads[] = {1, 2, 5};

constexpr plain::Schedule kSchedule{60, 20, 30};

FitOptions options_of(MetricKind metric, double theta) {
    FitOptions options;
    options.perplexity = kPerplexity;
    options.theta = theta;
    options.max_iter = kSchedule.max_iter;
    options.stop_lying_iter = kSchedule.stop_lying_iter;
    options.mom_switch_iter = kSchedule.mom_switch_iter;
    options.metric = metric;
    return options;
}

plain::Matrix brauer_rows() {
    return plain::read_tab_separated(OVIK_DATA_DIR "/brauer2008_chemostat.tsv", kRows);
}

std::vector<double> embedding_of(std::vector<double> X,
                                 std::size_t columns,
                                 const FitOptions& options,
                                 const FitHooks& hooks = {}) {
    return fit({X.data(), X.size() / columns, columns}, options, hooks).embedding;
}

/// The distances of all pairs, of any metric: the sum of absolute differences.
std::vector<double> city_block_distances(const plain::Matrix& input) {
    std::vector<double> distances(input.rows * input.rows, 0.0);
    for (std::size_t n = 0; n < input.rows; ++n) {
        for (std::size_t m = 0; m < n; ++m) {
            double sum = 0.0;
            for (std::size_t d = 0; d < input.columns; ++d) {
                sum += std::fabs(input.values[n * input.columns + d] -
                                 input.values[m * input.columns + d]);
            }
            distances[n * input.rows + m] = distances[m * input.rows + n] = sum;
        }
    }
    return distances;
}

/// Times the power of two that brings the largest into [0.5, 1).
std::vector<double> scaled(std::vector<double> distances) {
    const double largest = *std::max_element(distances.begin(), distances.end());
    double factor = 1.0;
    while (largest * factor >= 1.0) {
        factor *= 0.5;
    }
    while (largest * factor < 0.5) {
        factor *= 2.0;
    }
    for (double& distance : distances) {
        distance *= factor;
    }
    return distances;
}

std::vector<double> plain_exact_map(const std::vector<double>& distances) {
    std::vector<double> squares = scaled(distances);
    for (double& distance : squares) {
        distance *= distance;
    }
    std::vector<double> P = plain::conditional_similarities_by(squares, kRows, kPerplexity);
    plain::symmetrise_and_normalise(P, kRows);
    return plain::descend_exactly(std::move(P), kRows, 2, kSchedule, nullptr);
}

std::vector<double> plain_tree_map(const std::vector<double>& distances) {
    std::srand(kSchedule.seed);
    for (std::size_t draw = 0; draw < plain::tree_draws(kRows); ++draw) {
        std::rand();
    }
    return plain::descend_with_tree(
        plain::joined(plain::neighbour_similarities_by(
            scaled(distances), kRows, kPerplexity, static_cast<std::size_t>(3.0 * kPerplexity))),
        2,
        0.5,
        kSchedule,
        nullptr);
}

std::vector<double> plain_map(const std::vector<double>& distances, double theta) {
    return theta == 0.0 ? plain_exact_map(distances) : plain_tree_map(distances);
}

struct Correlation {
    const char* name;
    MetricKind metric;
    void (*prepare)(std::vector<double>& values, std::size_t columns);
};

constexpr Correlation kCorrelations[] = {
    {"Pearson", MetricKind::Pearson, &plain::pearson_rows},
    {"Cosine", MetricKind::Cosine, &plain::cosine_rows},
    {"Spearman", MetricKind::Spearman, &plain::spearman_rows},
};

class CorrelationRun : public testing::TestWithParam<Correlation> {};

TEST_P(CorrelationRun, EqualsThePlainProgramOnPreparedRowsForAnyThreads) {
    const plain::Matrix input = brauer_rows();
    plain::Matrix prepared = input;
    GetParam().prepare(prepared.values, prepared.columns);
    for (const double theta : {0.0, 0.5}) {
        const std::vector<double> expected =
            theta == 0.0
                ? plain::embed_exactly(prepared, 2, kPerplexity, kSchedule, nullptr)
                : plain::embed_with_tree(prepared, 2, kPerplexity, theta, kSchedule, nullptr);
        const FitOptions options = options_of(GetParam().metric, theta);
        for (const int threads : kThreads) {
            const test::ThreadCount scope(threads);
            EXPECT_EQ(embedding_of(input.values, input.columns, options), expected) << theta;
        }
        EXPECT_NE(
            embedding_of(input.values, input.columns, options_of(MetricKind::Euclidean, theta)),
            expected);
    }
}

TEST_P(CorrelationRun, GivesTheSameBytesWhateverPowerOfTwoARowIsScaledBy) {
    const plain::Matrix input = brauer_rows();
    std::vector<double> values = input.values;
    for (std::size_t n = 0; n < kRows; ++n) {
        // Up to 2^990 times numbers below 16: nearly 1e300.
        const int power = n == 7 ? 990 : static_cast<int>(n * 37 % 1500) - 750;
        for (std::size_t d = 0; d < input.columns; ++d) {
            values[n * input.columns + d] = std::ldexp(values[n * input.columns + d], power);
        }
    }
    for (const double theta : {0.0, 0.5}) {
        const FitOptions options = options_of(GetParam().metric, theta);
        EXPECT_EQ(embedding_of(values, input.columns, options),
                  embedding_of(input.values, input.columns, options));
    }
}

TEST_P(CorrelationRun, RefusesRowsWithoutOne) {
    std::vector<double> values = brauer_rows().values;
    const std::size_t columns = values.size() / kRows;
    std::fill_n(values.begin() + static_cast<std::ptrdiff_t>(3 * columns), columns, 0.0);
    const FitOptions options = options_of(GetParam().metric, 0.5);
    EXPECT_THAT(test::refusal_of([&] { embedding_of(values, columns, options); }),
                HasSubstr("row 3 (counted from 0)"));
    Engine engine(options);
    std::vector<std::string> names(kRows, "x");
    names[3] = "YAL001C";
    engine.setInput(values, columns, names);
    EXPECT_THAT(test::refusal_of([&] { (void)engine.run(); }), HasSubstr("\"YAL001C\""));
}

INSTANTIATE_TEST_SUITE_P(Each,
                         CorrelationRun,
                         testing::ValuesIn(kCorrelations),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(PrecomputedRun, EqualsThePlainProgramForAnyThreads) {
    const std::vector<double> distances = city_block_distances(brauer_rows());
    for (const double theta : {0.0, 0.5}) {
        const std::vector<double> expected = plain_map(distances, theta);
        const FitOptions options = options_of(MetricKind::Precomputed, theta);
        for (const int threads : kThreads) {
            const test::ThreadCount scope(threads);
            EXPECT_EQ(embedding_of(distances, kRows, options), expected) << theta;
        }
    }
}

TEST(PrecomputedRun, LeavesTheDistancesAsTheyAre) {
    const std::vector<double> distances = city_block_distances(brauer_rows());
    for (const double theta : {0.0, 0.5}) {
        std::vector<double> X = distances;
        const Fit map =
            fit({X.data(), kRows, kRows}, options_of(MetricKind::Precomputed, theta), {});
        EXPECT_EQ(X, distances);
        EXPECT_TRUE(map.report.scale.means.empty());
        EXPECT_EQ(map.report.scale.factor, 1.0);
    }
}

TEST(PrecomputedRun, GivesTheSameBytesInUnitsThatDifferByAPowerOfTwo) {
    const std::vector<double> distances = city_block_distances(brauer_rows());
    for (const int power : {-950, -7, 980}) {
        std::vector<double> others = distances;
        for (double& distance : others) {
            distance = std::ldexp(distance, power);
        }
        for (const double theta : {0.0, 0.5}) {
            const FitOptions options = options_of(MetricKind::Precomputed, theta);
            EXPECT_EQ(embedding_of(others, kRows, options),
                      embedding_of(distances, kRows, options));
        }
    }
}

TEST(PrecomputedRun, TakesRowsAtNoDistance) {
    plain::Matrix input = brauer_rows();
    for (std::size_t n = 0; n < 60; ++n) {
        std::copy_n(input.values.begin(),
                    input.columns,
                    input.values.begin() + static_cast<std::ptrdiff_t>(n * input.columns));
    }
    const std::vector<double> distances = city_block_distances(input);
    for (const double theta : {0.0, 0.5}) {
        const std::vector<double> map =
            embedding_of(distances, kRows, options_of(MetricKind::Precomputed, theta));
        EXPECT_EQ(map, plain_map(distances, theta));
        EXPECT_TRUE(std::all_of(map.begin(), map.end(), [](double y) { return std::isfinite(y); }));
    }
}

TEST(PrecomputedRun, RefusesWhatIsNoMatrixOfDistances) {
    std::vector<double> distances = city_block_distances(brauer_rows());
    distances[5 * kRows + 2] += 1.0;
    for (const double theta : {0.0, 0.5}) {
        const FitOptions options = options_of(MetricKind::Precomputed, theta);
        EXPECT_THAT(test::refusal_of([&] { embedding_of(distances, kRows, options); }),
                    HasSubstr("row 5, column 2, both counted from 0"));
    }
    const std::vector<double> values = brauer_rows().values;
    EXPECT_THAT(test::refusal_of([&] {
                    embedding_of(
                        values, values.size() / kRows, options_of(MetricKind::Precomputed, 0.5));
                }),
                HasSubstr("100 rows and 36 columns: a matrix of distances is square"));
}

/// How many neighbours of each row are given: fewer than a run takes, and more. The farthest of all
/// pairs is among them, so that they are scaled as all distances are.
std::vector<std::size_t> given_counts(const std::vector<double>& distances) {
    const auto farthest = std::max_element(distances.begin(), distances.end()) - distances.begin();
    std::vector<std::size_t> counts(kRows);
    for (std::size_t n = 0; n < kRows; ++n) {
        counts[n] = 12 + n * 7 % 30;
    }
    counts[static_cast<std::size_t>(farthest) / kRows] = kRows - 1;
    return counts;
}

/// The nearest of each row, the farthest first.
NeighbourLists given_lists(const std::vector<double>& distances,
                           const std::vector<std::size_t>& counts) {
    std::vector<GivenNeighbour> given;
    for (std::size_t n = 0; n < kRows; ++n) {
        std::vector<std::pair<double, std::size_t>> others;
        for (std::size_t m = 0; m < kRows; ++m) {
            if (m != n) {
                others.emplace_back(distances[n * kRows + m], m);
            }
        }
        std::sort(others.begin(), others.end());
        for (std::size_t k = counts[n]; k-- > 0;) {
            given.push_back({n, others[k].second, others[k].first});
        }
    }
    return neighbour_lists(std::move(given), kRows, "graph");
}

/// The map by the nearest of each row, 3 * perplexity at most.
std::vector<double> plain_map_of_nearest(const std::vector<double>& distances,
                                         const std::vector<std::size_t>& counts) {
    const std::vector<double> near = scaled(distances);
    const auto most = static_cast<std::size_t>(3.0 * kPerplexity);
    plain::SparseRows conditional(kRows);
    for (std::size_t count = 1; count <= most; ++count) {
        const plain::SparseRows of_all =
            plain::neighbour_similarities_by(near, kRows, kPerplexity, count);
        for (std::size_t n = 0; n < kRows; ++n) {
            if (std::min(counts[n], most) == count) {
                conditional[n] = of_all[n];
            }
        }
    }
    std::srand(kSchedule.seed);
    for (std::size_t draw = 0; draw < plain::tree_draws(kRows); ++draw) {
        std::rand();
    }
    return plain::descend_with_tree(plain::joined(conditional), 2, 0.5, kSchedule, nullptr);
}

TEST(GivenNeighboursRun, EqualsThePlainProgramForAnyThreads) {
    const plain::Matrix input = brauer_rows();
    const std::vector<double> distances = city_block_distances(input);
    const FitOptions options = options_of(MetricKind::Euclidean, 0.5);
    for (const std::vector<std::size_t>& counts :
         {given_counts(distances), std::vector<std::size_t>(kRows, kRows - 1)}) {
        const std::vector<double> expected = plain_map_of_nearest(distances, counts);
        for (const int threads : kThreads) {
            const test::ThreadCount scope(threads);
            CachedNeighbours neighbours(given_lists(distances, counts));
            FitHooks hooks;
            hooks.cached_neighbours = &neighbours;
            EXPECT_EQ(embedding_of(input.values, input.columns, options, hooks), expected);
            EXPECT_EQ(embedding_of(input.values, input.columns, options, hooks), expected);
        }
    }
}

TEST(GivenNeighboursRun, HandsOutWhatItUsed) {
    const plain::Matrix input = brauer_rows();
    const std::vector<double> distances = city_block_distances(input);
    const std::vector<std::size_t> counts = given_counts(distances);
    const NeighbourLists lists = given_lists(distances, counts);
    CachedNeighbours neighbours(lists);
    FitHooks hooks;
    hooks.cached_neighbours = &neighbours;
    hooks.wants_neighbours = true;
    std::vector<double> X = input.values;
    const NeighbourGraph graph =
        fit({X.data(), kRows, input.columns}, options_of(MetricKind::Euclidean, 0.5), hooks)
            .report.neighbours;
    ASSERT_EQ(graph.neighbour_count, 30U);
    for (std::size_t n = 0; n < kRows; ++n) {
        for (std::size_t k = 0; k < 30; ++k) {
            const bool is_there = k < counts[n];
            EXPECT_EQ(graph.neighbours[n * 30 + k], is_there ? lists.of(n)[k].row : n);
            EXPECT_EQ(std::isfinite(graph.distances[n * 30 + k]), is_there);
        }
    }
}

}  // namespace
}  // namespace ovik
