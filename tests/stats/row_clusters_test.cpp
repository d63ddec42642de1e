#include "stats/row_clusters.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "stats/chosen_affinities.h"
#include "stats/fit.h"
#include "stats/modularity.h"
#include "stats/sparse_affinities.h"
#include "util/random_stream.h"

#include "tests/support/random_points.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

constexpr std::size_t kRows = 180;
constexpr std::size_t kColumns = 6;
constexpr std::size_t kGroups = 3;
/// The resolution at which the groups are not divided further.
constexpr double kCoarse = 0.2;

/// Rows around as many centres as there are groups, in turns.
std::vector<double> grouped_rows() {
    std::vector<double> X = test::random_values(kRows * kColumns, 97);
    for (std::size_t n = 0; n < kRows; ++n) {
        X[n * kColumns + n % kGroups] += 12.0;
    }
    return X;
}

FitOptions short_fit() {
    FitOptions options;
    options.perplexity = 8.0;
    options.max_iter = 1;
    return options;
}

/// A fit whose report has the neighbours, and the rows as it left them.
std::pair<Fit, std::vector<double>> fitted(const FitOptions& options) {
    std::vector<double> X = grouped_rows();
    FitHooks hooks;
    hooks.wants_neighbours = true;
    Fit result = fit({X.data(), kRows, kColumns}, options, hooks);
    return {std::move(result), std::move(X)};
}

void expect_groups(const RowClusters& found) {
    ASSERT_EQ(found.clusters.size(), kRows);
    EXPECT_EQ(found.sizes, (std::vector<std::size_t>(kGroups, kRows / kGroups)));
    for (std::size_t n = 0; n < kRows; ++n) {
        EXPECT_EQ(found.clusters[n], n % kGroups);
    }
}

TEST(RowClusters, AreTheGroupsOfTheRows) {
    const FitOptions options = short_fit();
    const Fit result = fitted(options).first;
    const RowClusters found = clusters_by_neighbours(result.report.neighbours, options, kCoarse);
    expect_groups(found);
    // All weight lies within three groups of the same size.
    EXPECT_NEAR(found.modularity, 1.0 - 1.0 / 3.0, 1e-3);
    EXPECT_GT(clusters_by_neighbours(result.report.neighbours, options).sizes.size(), kGroups);
}

TEST(RowClusters, HaveTheAffinitiesOfTheFit) {
    FitOptions several = short_fit();
    several.multiscale = {4.0, 12.0};
    FitOptions uniform = short_fit();
    uniform.affinity = AffinityKind::Uniform;
    for (const FitOptions& options : {short_fit(), several, uniform}) {
        auto [result, X] = fitted(options);
        const auto rows = chosen_rows(options, kRows);
        OwnRandomStream random;
        random.seed(static_cast<unsigned int>(options.seed));
        NeighbourHooks hooks;
        hooks.random = &random;
        const SparseMatrix conditional = conditional_affinities(
            {X.data(), kRows, kColumns}, *rows, affinity_neighbours(options, kRows), hooks);
        const SparseMatrix expected = symmetrized(conditional.view(), kRows);
        const SparseMatrix found = affinities_of_neighbours(result.report.neighbours, options);
        ASSERT_EQ(found.row_P[kRows], expected.row_P[kRows]);
        const std::size_t entries = expected.row_P[kRows];
        EXPECT_TRUE(
            std::equal(found.col_P.get(), found.col_P.get() + entries, expected.col_P.get()));
        EXPECT_TRUE(
            std::equal(found.val_P.get(), found.val_P.get() + entries, expected.val_P.get()));
    }
}

TEST(RowClusters, AreTheSameForAnyNumberOfThreads) {
    const FitOptions options = short_fit();
    const Fit result = fitted(options).first;
    std::vector<RowClusters> found;
    for (const int threads : test::kThreadCounts) {
        const test::ThreadCount scope(threads);
        found.push_back(clusters_by_neighbours(result.report.neighbours, options, 3.0));
        EXPECT_EQ(found.back().clusters, found.front().clusters) << threads;
        EXPECT_EQ(found.back().modularity, found.front().modularity) << threads;
    }
}

TEST(RowClusters, TakeASearchOfTheirOwnWhereTheMethodHasNone) {
    FitOptions options = short_fit();
    options.theta = 0.0;
    const auto [result, X] = fitted(options);
    ASSERT_EQ(result.report.neighbours.rows, 0U);
    const NeighbourGraph graph = neighbours_of_rows({X.data(), kRows, kColumns}, options);
    EXPECT_EQ(graph.neighbour_count, 24U);
    expect_groups(clusters_by_neighbours(graph, options, kCoarse));
}

TEST(RowClusters, OfRowsWithFewerNeighboursGoByThoseThatThereAre) {
    // Two pairs, and rows that are filled up with themselves.
    NeighbourGraph graph = graph_without_neighbours(5, 2);
    const std::pair<std::size_t, std::uint32_t> kPairs[] = {{0, 3}, {3, 0}, {1, 2}, {2, 1}};
    for (const auto& [row, neighbour] : kPairs) {
        graph.neighbours[row * 2] = neighbour;
        graph.distances[row * 2] = 0.5;
    }
    EXPECT_EQ(clusters_by_neighbours(graph, short_fit()).clusters,
              (std::vector<std::uint32_t>{0, 1, 1, 0, 2}));
}

TEST(RowClusters, RefuseAResolutionThatIsNotAboveZero) {
    const NeighbourGraph graph = graph_without_neighbours(3, 1);
    EXPECT_THROW(clusters_by_neighbours(graph, short_fit(), 0.0), std::invalid_argument);
    EXPECT_THROW(clusters_by_neighbours(graph, short_fit(), std::nan("")), std::invalid_argument);
}

}  // namespace
}  // namespace ovik
