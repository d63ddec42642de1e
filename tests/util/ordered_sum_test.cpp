#include "util/ordered_sum.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/random_points.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

TEST(OrderedSum, EqualsThePlainLoopBitForBit) {
    constexpr std::size_t kBlocks = 333;
    constexpr std::size_t kTerms = 100;
    std::vector<double> values = test::random_values(kBlocks * kTerms, 5, 1e3);
    for (std::size_t i = 0; i < values.size(); i += 7) {
        values[i] *= 1e-12;
    }
    double expected = 0.25;
    for (std::size_t block = 0; block < kBlocks; ++block) {
        for (std::size_t i = 0; i < block % kTerms; ++i) {
            expected += values[block * kTerms + i];
        }
    }
    for (const int threads : test::kThreadCounts) {
        const test::ThreadCount scope(threads);
        const double sum =
            ordered_sum(0.25, kBlocks, kTerms, [&](std::size_t block, double* terms) {
                std::copy_n(values.begin() + static_cast<std::ptrdiff_t>(block * kTerms),
                            block % kTerms,
                            terms);
                return block % kTerms;
            });
        EXPECT_EQ(sum, expected);
    }
}

TEST(OrderedSum, IsTheStartWithoutBlocks) {
    EXPECT_EQ(ordered_sum(1.5, 0, 10, [](std::size_t, double*) { return std::size_t{0}; }), 1.5);
}

}  // namespace
}  // namespace ovik
