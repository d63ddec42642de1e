#include "stats/kernels/neighbour_ranks.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/instruction_sets.h"
#include "tests/support/random_points.h"

namespace ovik {
namespace {

class RankKernelsTest : public testing::TestWithParam<InstructionSet> {
  protected:
    /// @param order  of all points, the nearest first
    void expectNearest(const std::vector<double>& distances,
                       const std::vector<std::uint32_t>& order,
                       std::size_t wanted) const {
        std::vector<std::uint32_t> nearest(wanted);
        std::vector<double> nearest_distances(wanted);
        kernels.nearest(
            distances.data(), distances.size(), wanted, nearest.data(), nearest_distances.data());
        for (std::size_t i = 0; i < wanted; ++i) {
            ASSERT_EQ(nearest[i], order[i]) << i << " of " << wanted << " of " << order.size();
            ASSERT_EQ(nearest_distances[i], distances[order[i]]);
        }
    }

    const RankKernels& kernels = rank_kernels(GetParam());
};

INSTANTIATE_TEST_SUITE_P(EveryInstructionSet,
                         RankKernelsTest,
                         testing::ValuesIn(test::available_instruction_sets()));

/// Padded with infinity; of a few values alone, so that there are ties, if `is_coarse`.
std::vector<double> distances_of(std::size_t count, bool is_coarse) {
    std::vector<double> distances = test::random_values(count, 85, 3.0);
    for (double& distance : distances) {
        distance = is_coarse ? std::round(std::fabs(distance)) : std::fabs(distance);
    }
    distances.resize((count + kRankMultiple - 1) / kRankMultiple * kRankMultiple,
                     std::numeric_limits<double>::infinity());
    return distances;
}

/// The points from the nearest to the farthest, of those equally far the first before the others.
std::vector<std::uint32_t> plain_order(const std::vector<double>& distances, std::size_t count) {
    std::vector<std::uint32_t> order(count);
    std::iota(order.begin(), order.end(), 0U);
    std::stable_sort(order.begin(), order.end(), [&](std::uint32_t a, std::uint32_t b) {
        return distances[a] < distances[b];
    });
    return order;
}

TEST_P(RankKernelsTest, FindTheNearestOfEveryNumberOfPoints) {
    for (const bool is_coarse : {false, true}) {
        for (std::size_t count = 1; count <= 67; ++count) {
            const std::vector<double> distances = distances_of(count, is_coarse);
            const std::vector<std::uint32_t> order = plain_order(distances, count);
            for (std::size_t wanted = 1; wanted < count; wanted += 1 + wanted / 3) {
                expectNearest(distances, order, wanted);
            }
        }
    }
}

/// In the order of the distances a group of points has all of the nearest, or none.
std::vector<double> ordered(std::vector<double> distances, std::size_t count, bool falls) {
    const auto end = distances.begin() + static_cast<std::ptrdiff_t>(count);
    std::sort(distances.begin(), end);
    if (falls) {
        std::reverse(distances.begin(), end);
    }
    return distances;
}

TEST_P(RankKernelsTest, FindTheNearestOfManyPoints) {
    constexpr std::size_t kCount = 1203;
    const double infinity = std::numeric_limits<double>::infinity();
    std::vector<std::vector<double>> cases = {distances_of(kCount, false),
                                              distances_of(kCount, true)};
    cases.push_back(ordered(cases[0], kCount, false));
    cases.push_back(ordered(cases[0], kCount, true));
    cases.emplace_back(cases[0].size(), infinity);
    std::fill_n(cases.back().begin(), 200, -0.0);
    for (const std::vector<double>& distances : cases) {
        const std::vector<std::uint32_t> order = plain_order(distances, kCount);
        for (const std::size_t wanted : {1U, 30U, 64U, 65U, 199U}) {
            expectNearest(distances, order, wanted);
        }
    }
}

TEST_P(RankKernelsTest, RankEveryPointAsSortingDoes) {
    for (const bool is_coarse : {false, true}) {
        for (std::size_t count = 1; count <= 67; ++count) {
            const std::vector<double> distances = distances_of(count, is_coarse);
            const std::vector<std::uint32_t> order = plain_order(distances, count);
            for (std::size_t rank = 0; rank < count; ++rank) {
                ASSERT_EQ(kernels.rank(distances.data(), distances.size(), order[rank]), rank)
                    << count << " points";
            }
        }
    }
}

}  // namespace
}  // namespace ovik
