#include "neighbours/block_comparison.h"

#include <algorithm>
#include <cstdint>
#include <set>
#include <vector>

#include <gtest/gtest.h>

#include "neighbours/row_extent.h"

#include "tests/support/instruction_sets.h"
#include "tests/support/random_points.h"

namespace ovik {
namespace {

constexpr std::size_t kDims = 4;
constexpr std::size_t kWanted = 6;

/// The distances of a target from all sources, the shortest first.
std::vector<double> distances_from(const double* target, const std::vector<double>& sources) {
    std::vector<double> distances;
    for (std::size_t n = 0; n < sources.size() / kDims; ++n) {
        distances.push_back(euclidean_metric().distance(target, sources.data() + n * kDims, kDims));
    }
    std::sort(distances.begin(), distances.end());
    return distances;
}

/// Holds the candidates of all targets to hold the nearest sources.
///
/// @return how many candidates a target has in the mean
double expect_nearest(const std::vector<double>& targets, const std::vector<double>& sources) {
    std::vector<double> all = targets;
    all.insert(all.end(), sources.begin(), sources.end());
    const std::size_t N = targets.size() / kDims;
    const Metric& metric = euclidean_metric();
    const double extent = *packable_extent(all.data(), all.size() / kDims, kDims, metric);
    const BlockComparison comparison(targets.data(), N, kDims, kWanted, extent, metric);
    const RowBlocks blocks(sources.data(), sources.size() / kDims, kDims, metric);
    BlockComparison::Scratch scratch;
    std::size_t candidates = 0;
    std::set<std::uint32_t> seen;
    for (const IndexRange group : comparison.groups()) {
        comparison.compare(
            group,
            sources.data(),
            blocks,
            scratch,
            [](std::size_t) {},
            [](std::size_t, std::size_t) { FAIL() << "rows are told apart"; });
        for (std::size_t block = group.begin; block < group.end; ++block) {
            const auto rows = comparison.blocks().rows(comparison.blocks().blocks()[block]);
            for (std::size_t t = 0; t < rows.size(); ++t) {
                seen.insert(rows[t]);
                const double* const target = targets.data() + rows[t] * kDims;
                const auto positions = scratch.candidates(block - group.begin).positions(t);
                candidates += positions.size();
                std::vector<double> found;
                for (const std::uint32_t position : positions) {
                    const std::uint32_t source = blocks.order()[position];
                    found.push_back(
                        metric.distance(target, sources.data() + source * kDims, kDims));
                }
                std::sort(found.begin(), found.end());
                const std::vector<double> expected = distances_from(target, sources);
                EXPECT_GE(found.size(), kWanted);
                for (std::size_t k = 0; k < std::min(kWanted, found.size()); ++k) {
                    EXPECT_EQ(found[k], expected[k]) << rows[t];
                }
            }
        }
    }
    EXPECT_EQ(seen.size(), N);
    return static_cast<double>(candidates) / static_cast<double>(N);
}

TEST(BlockComparison, FindsTheNearestSourcesAmongFewCandidates) {
    const std::vector<double> targets = test::random_values(700 * kDims, 1);
    const std::vector<double> sources = test::random_values(1500 * kDims, 2);
    for (const InstructionSet set : test::available_instruction_sets()) {
        const test::InstructionLimit limit(set);
        EXPECT_LT(expect_nearest(targets, sources), 1.5 * kWanted);
        EXPECT_LT(expect_nearest(targets, targets), 1.5 * kWanted);
    }
}

TEST(BlockComparison, GroupsTheBlocksOfManyTargets) {
    const std::vector<double> targets = test::random_values(40'000 * kDims, 1);
    const double extent = *packable_extent(targets.data(), 40'000, kDims, euclidean_metric());
    const BlockComparison comparison(
        targets.data(), 40'000, kDims, kWanted, extent, euclidean_metric());
    std::size_t next = 0;
    std::size_t most = 0;
    for (const IndexRange group : comparison.groups()) {
        EXPECT_EQ(group.begin, next);
        next = group.end;
        most = std::max(most, group.size());
    }
    EXPECT_EQ(next, comparison.blocks().blocks().size());
    EXPECT_GT(most, 1U);
    EXPECT_LE(most, 4U);
}

}  // namespace
}  // namespace ovik
