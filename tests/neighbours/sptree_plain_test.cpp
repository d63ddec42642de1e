#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "neighbours/partwise_sptree.h"
#include "util/parallel.h"

#include "tests/plain/plain_sptree.h"
#include "tests/support/instruction_sets.h"
#include "tests/support/random_points.h"
#include "tests/support/threads.h"

/// The engine's space-partitioning tree against a plain one, bit for bit.

namespace ovik {
namespace {

/// Forces, then shares, as bits: equal for equal numbers only. All NaNs are one.
using Bits = std::vector<std::uint64_t>;

Bits bits_of(const std::vector<double>& forces, const std::vector<double>& shares) {
    Bits bits;
    for (const auto* values : {&forces, &shares}) {
        for (const double value : *values) {
            bits.push_back(std::isnan(value) ? 1 : std::bit_cast<std::uint64_t>(value));
        }
    }
    return bits;
}

Bits plain_repulsion(const std::vector<double>& data, std::size_t dims, double theta) {
    const plain::SPTree tree(dims, data);
    std::vector<double> forces(data.size(), 0.0);
    std::vector<double> shares(data.size() / dims, 0.0);
    for (std::size_t n = 0; n < shares.size(); ++n) {
        tree.addRepulsion(n, theta, forces.data() + n * dims, &shares[n]);
    }
    return bits_of(forces, shares);
}

Bits one_by_one(const SPTree& tree, std::size_t N, std::size_t dims, double theta) {
    std::vector<double> forces(N * dims, 0.0);
    std::vector<double> shares(N, 0.0);
    for (std::size_t n = 0; n < N; ++n) {
        tree.computeNonEdgeForces(
            static_cast<unsigned int>(n), theta, forces.data() + n * dims, &shares[n]);
    }
    return bits_of(forces, shares);
}

/// In shares that do not fit the lanes, so that batches begin anywhere.
Bits together(PartwiseSPTree& tree,
              const std::vector<double>& data,
              std::size_t dims,
              double theta) {
    const std::size_t N = data.size() / dims;
    tree.rebuild(data.data(), theta);
    std::vector<double> forces(N * dims, -7.0);
    std::vector<double> shares(N, -7.0);
    constexpr std::size_t kShare = 37;
    parallel_for_each((N + kShare - 1) / kShare, 1, [&](std::size_t i) {
        const std::size_t end = std::min(N, (i + 1) * kShare);
        tree.computeRepulsion(i * kShare, end, forces.data(), shares.data());
    });
    return bits_of(forces, shares);
}

void expect_plain(const std::vector<double>& data, std::size_t dims) {
    const std::size_t N = data.size() / dims;
    for (const double theta : {0.0, 0.05, 0.2, 0.5, 1.0, 2.0}) {
        const Bits expected = plain_repulsion(data, dims, theta);
        for (const int threads : test::kThreadCounts) {
            const test::ThreadCount scope(threads);
            PartwiseSPTree tree(
                static_cast<unsigned int>(dims), data.data(), static_cast<unsigned int>(N));
            ASSERT_EQ(one_by_one(tree, N, dims, theta), expected)
                << dims << " dimensions, theta " << theta << ", " << threads << " threads";
            for (const InstructionSet instructions : test::kInstructionSets) {
                const test::InstructionLimit limit(instructions);
                ASSERT_EQ(together(tree, data, dims, theta), expected)
                    << dims << " dimensions, theta " << theta << ", " << threads
                    << " threads, instruction set " << static_cast<int>(instructions);
            }
        }
    }
}

constexpr std::size_t kDims[] = {1, 2, 3, 5};

TEST(PlainSPTree, HasTheSameForcesOnOrdinaryPoints) {
    for (const std::size_t dims : kDims) {
        expect_plain(test::random_values(1100 * dims, 51, 10.0), dims);
    }
}

TEST(PlainSPTree, HasTheSameForcesOnClusters) {
    for (const std::size_t dims : kDims) {
        std::vector<double> data = test::random_values(500 * dims, 52);
        for (std::size_t i = 0; i < data.size(); ++i) {
            data[i] = data[i] * 1e-7 + static_cast<double>(i / dims % 7 * 3);
        }
        expect_plain(data, dims);
    }
}

TEST(PlainSPTree, HasTheSameForcesOnCoincidentPoints) {
    for (const std::size_t dims : kDims) {
        std::vector<double> data = test::random_values(400 * dims, 53, 2.0);
        for (double& value : data) {
            value = std::round(value);
        }
        expect_plain(data, dims);
        expect_plain(std::vector<double>(40 * dims, 0.25), dims);
    }
}

TEST(PlainSPTree, HasTheSameForcesOnPointsFarApart) {
    for (const std::size_t dims : kDims) {
        std::vector<double> data = test::random_values(300 * dims, 54);
        for (std::size_t i = 0; i < data.size(); ++i) {
            // Far beyond the cells of one grid.
            data[i] = std::ldexp(data[i], -static_cast<int>(i * 7919 % 900));
        }
        expect_plain(data, dims);
    }
}

TEST(PlainSPTree, HasTheSameForcesOnPointsThatAreNotFinite) {
    const double inf = std::numeric_limits<double>::infinity();
    const double odd[] = {std::nan(""), inf, -inf};
    for (const std::size_t dims : kDims) {
        std::vector<double> data = test::random_values(300 * dims, 55);
        for (std::size_t i = 0; i < data.size(); i += 29) {
            data[i] = odd[i % 3];
        }
        expect_plain(data, dims);
        expect_plain(std::vector<double>(20 * dims, inf), dims);
    }
}

TEST(PlainSPTree, HasTheSameForcesOnEveryNumberOfPointsThatFillsLanesInPart) {
    for (std::size_t N = 1; N <= 67; ++N) {
        for (const std::size_t dims : {std::size_t{2}, std::size_t{3}}) {
            const std::vector<double> data = test::random_values(N * dims, 56);
            PartwiseSPTree tree(
                static_cast<unsigned int>(dims), data.data(), static_cast<unsigned int>(N));
            for (const InstructionSet instructions : test::kInstructionSets) {
                const test::InstructionLimit limit(instructions);
                ASSERT_EQ(together(tree, data, dims, 0.5), plain_repulsion(data, dims, 0.5)) << N;
            }
        }
    }
}

TEST(PlainSPTree, HasTheSameForcesOnPointsEnoughForEveryThread) {
    // So many that the sorting and the putting together are spread over threads, too.
    constexpr std::size_t kCount = 40000;
    const std::vector<double> data = test::random_values(2 * kCount, 59, 30.0);
    const Bits expected = plain_repulsion(data, 2, 1.0);
    for (const int threads : test::kThreadCounts) {
        const test::ThreadCount scope(threads);
        PartwiseSPTree tree(2, data.data(), kCount);
        EXPECT_EQ(together(tree, data, 2, 1.0), expected) << threads << " threads";
    }
}

RC_GTEST_PROP(PlainSPTree, HasTheSameForcesOnAnyPoints, ()) {
    const auto dims = *rc::gen::inRange<std::size_t>(1, 6);
    const auto count = *rc::gen::inRange<std::size_t>(1, 80);
    const auto grid = *rc::gen::container<std::vector<int>>(count * dims, rc::gen::inRange(-9, 10));
    const auto scale =
        *rc::gen::container<std::vector<int>>(count * dims, rc::gen::inRange(-40, 2));
    std::vector<double> data(grid.size());
    for (std::size_t i = 0; i < data.size(); ++i) {
        data[i] = std::ldexp(static_cast<double>(grid[i]), scale[i]);
    }
    const auto theta = static_cast<double>(*rc::gen::inRange(0, 12)) / 10.0;
    PartwiseSPTree tree(
        static_cast<unsigned int>(dims), data.data(), static_cast<unsigned int>(count));
    const Bits expected = plain_repulsion(data, dims, theta);
    RC_ASSERT(one_by_one(tree, count, dims, theta) == expected);
    for (const InstructionSet instructions : test::kInstructionSets) {
        const test::InstructionLimit limit(instructions);
        RC_ASSERT(together(tree, data, dims, theta) == expected);
    }
}

TEST(SPTreeRebuild, GivesTheTreeOfTheNewPoints) {
    const std::vector<double> before = test::random_values(2 * 700, 57, 1e5);
    const std::vector<double> after = test::random_values(2 * 700, 58);
    PartwiseSPTree tree(2, before.data(), 700);
    EXPECT_EQ(together(tree, after, 2, 0.5), plain_repulsion(after, 2, 0.5));
    EXPECT_EQ(together(tree, before, 2, 0.5), plain_repulsion(before, 2, 0.5));
    tree.rebuild(after.data());
    EXPECT_EQ(one_by_one(tree, 700, 2, 0.5), plain_repulsion(after, 2, 0.5));
}

}  // namespace
}  // namespace ovik
