#include "stats/fourier_plan.h"

#include <cmath>
#include <numeric>
#include <vector>

#include <gtest/gtest.h>

namespace ovik {
namespace {

/// Whether numbers of the longer type have more places than a double: emulators such as valgrind
/// compute them as doubles.
bool long_doubles_are_longer() {
    const volatile long double one = 1.0L;
    const volatile long double sum = one + 0x1p-60L;
    return sum != one;
}

TEST(UnitRoot, IsNearTheCosineAndSineOfTheAngle) {
    if (!long_doubles_are_longer()) {
        GTEST_SKIP() << "the angle is not known well enough here";
    }
    for (const std::size_t n : {1U, 2U, 3U, 7U, 12U, 360U, 4096U, 6075U}) {
        for (std::size_t k = 0; k < n; ++k) {
            const long double angle = 2.0L * 3.14159265358979323846264338327950288L *
                                      static_cast<long double>(k) / static_cast<long double>(n);
            const UnitRoot root = unit_root(k, n);
            EXPECT_NEAR(root.cosine, static_cast<double>(std::cos(angle)), 1.2e-16)
                << k << "/" << n;
            EXPECT_NEAR(root.sine, static_cast<double>(std::sin(angle)), 1.2e-16) << k << "/" << n;
        }
    }
}

TEST(UnitRoot, IsExactOnTheAxes) {
    EXPECT_EQ(unit_root(0, 12).cosine, 1.0);
    EXPECT_EQ(unit_root(0, 12).sine, 0.0);
    EXPECT_EQ(unit_root(3, 12).cosine, 0.0);
    EXPECT_EQ(unit_root(3, 12).sine, 1.0);
    EXPECT_EQ(unit_root(6, 12).cosine, -1.0);
    EXPECT_EQ(unit_root(6, 12).sine, 0.0);
    EXPECT_EQ(unit_root(9, 12).cosine, 0.0);
    EXPECT_EQ(unit_root(9, 12).sine, -1.0);
}

TEST(FastLength, IsTheNextEvenOneOfSmallPrimes) {
    EXPECT_EQ(fast_length(0), 2U);
    EXPECT_EQ(fast_length(1), 2U);
    EXPECT_EQ(fast_length(13), 16U);
    EXPECT_EQ(fast_length(241), 250U);
    EXPECT_EQ(fast_length(1024), 1024U);
    EXPECT_EQ(fast_length(1801), 1920U);
}

TEST(FourierPlan, HasPassesThatMakeTheLength) {
    for (const std::size_t length : {1U, 2U, 5U, 60U, 64U, 486U, 1250U}) {
        const FourierPlan plan(length);
        const FourierPasses passes = plan.passes();
        EXPECT_EQ(passes.length, length);
        const std::size_t product = std::accumulate(
            passes.radices, passes.radices + passes.count, std::size_t{1}, std::multiplies<>());
        EXPECT_EQ(product, length);
    }
}

}  // namespace
}  // namespace ovik
