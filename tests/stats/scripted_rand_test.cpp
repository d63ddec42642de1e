#include <cmath>
#include <cstdlib>
#include <deque>

#include <gtest/gtest.h>

#include "stats/normal_deviates.h"

/// Deviates from a stream of `rand` that this program dictates: it takes the place of the
/// library's.

namespace {

std::deque<int>& script() {
    static std::deque<int> values;
    return values;
}

}  // namespace

extern "C" int rand() noexcept {
    const int value = script().front();
    script().pop_front();
    return value;
}

namespace ovik {
namespace {

constexpr int kHalf = 1 << 30;           // maps to 0
constexpr int kThreeQuarters = 3 << 29;  // maps to 0.5

TEST(NormalDeviate, RejectsThePairInTheCentre) {
    script() = {kHalf, kHalf, kThreeQuarters, kHalf};
    EXPECT_EQ(normal_deviate(), 0.5 * std::sqrt((std::log(0.25) * -2.0) / 0.25));
    EXPECT_TRUE(script().empty());
}

TEST(NormalDeviate, RejectsZeroForTheFirstOfAPair) {
    script() = {0, kHalf, 0, kThreeQuarters, kThreeQuarters, kHalf};
    EXPECT_EQ(normal_deviate(), 0.5 * std::sqrt((std::log(0.25) * -2.0) / 0.25));
    EXPECT_TRUE(script().empty());
}

TEST(NormalDeviate, DrawsXBeforeY) {
    script() = {kThreeQuarters, kHalf};
    EXPECT_GT(normal_deviate(), 0.0);
    script() = {kHalf, kThreeQuarters};
    EXPECT_EQ(normal_deviate(), 0.0);
}

}  // namespace
}  // namespace ovik
