#include "util/rounded_functions.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

#include <gtest/gtest.h>

namespace ovik {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kMost = std::numeric_limits<double>::max();
constexpr double kLeast = std::numeric_limits<double>::denorm_min();
/// The double that is nearest to log 2.
constexpr double kLog2 = 0x1.62e42fefa39efp-1;

double above(double x) {
    return std::nextafter(x, kInfinity);
}

double below(double x) {
    return std::nextafter(x, -kInfinity);
}

void expect_zero(double actual, bool is_negative) {
    EXPECT_EQ(actual, 0.0);
    EXPECT_EQ(std::signbit(actual), is_negative);
}

/// An argument and the double nearest to the value there.
struct Case {
    double x;
    double nearest;
};

TEST(RoundedExp, IsThatOfIeee754AtInfinitiesAndNaN) {
    EXPECT_EQ(rounded_exp(kInfinity), kInfinity);
    expect_zero(rounded_exp(-kInfinity), false);
    EXPECT_TRUE(std::isnan(rounded_exp(kNaN)));
    EXPECT_EQ(rounded_exp(0.0), 1.0);
    EXPECT_EQ(rounded_exp(-0.0), 1.0);
}

TEST(RoundedExp, EndsBelowTheLogarithmOfTheLargestPower) {
    // 1024 log 2 is between them.
    EXPECT_EQ(rounded_exp(0x1.62e42fefa39efp+9), 0x1.fffffffffff2ap+1023);
    EXPECT_EQ(rounded_exp(0x1.62e42fefa39f0p+9), kInfinity);
    EXPECT_EQ(rounded_exp(kMost), kInfinity);
}

TEST(RoundedExp, EndsAtHalfTheLeastDouble) {
    // -1075 log 2 is between them.
    EXPECT_EQ(rounded_exp(-0x1.74910d52d3051p+9), kLeast);
    expect_zero(rounded_exp(-0x1.74910d52d3052p+9), false);
    expect_zero(rounded_exp(-kMost), false);
    // -1074 log 2 + log 1.5, at the middle of the least and the next.
    EXPECT_EQ(rounded_exp(-744.0346), 2 * kLeast);
    EXPECT_EQ(rounded_exp(-744.0347), kLeast);
}

TEST(RoundedExp, IsOneForArgumentsWithinHalfAPlace) {
    for (const double x : {kLeast, 1e-310, 0x1p-60, 0x1p-54, below(0x1p-53)}) {
        EXPECT_EQ(rounded_exp(x), 1.0) << std::hexfloat << x;
    }
    for (const double x : {kLeast, 1e-310, 0x1p-60, below(0x1p-54), 0x1p-54}) {
        EXPECT_EQ(rounded_exp(-x), 1.0) << std::hexfloat << x;
    }
    // 2^-107 and 2^-106 from the middle.
    EXPECT_EQ(rounded_exp(0x1p-53), above(1.0));
    EXPECT_EQ(rounded_exp(-above(0x1p-54)), below(1.0));
}

TEST(RoundedExp, TellsTheSquareOfATinyArgumentFromTheLastPlacesOfIt) {
    // For x = (2k + 1) / 2 - steps, in places of 1 or of the numbers below it, e^x is on the side
    // of the middle on which x^2 / 2 - steps is. Neither that nor a step cancels x^2 / 2, which has
    // a bit more than the steps, and x^3 / 6 is smaller than that bit.
    for (std::uint64_t k = 0; k < 1000; ++k) {
        const auto odd = static_cast<double>(2 * k + 1);
        for (const double place : {0x1p-52, -0x1p-53}) {
            double x = odd * place / 2;
            const double half_square = x * x / 2;
            const double result = 1.0 + static_cast<double>(k) * place;
            for (int step = 0; step < 4; ++step) {
                const bool is_further = place > 0.0 ? odd * place / 2 - x < half_square
                                                    : odd * place / 2 - x > half_square;
                EXPECT_EQ(rounded_exp(x), result + (is_further ? place : 0.0))
                    << k << ", " << std::hexfloat << place << ", step " << step;
                x = below(x);
            }
        }
    }
}

TEST(RoundedExp, IsNearestWhereTheMiddleOfTwoDoublesIsNext) {
    // Distances from the middle in units of the last place. The first three: Lefevre and Muller,
    // "Worst cases for correct rounding of the elementary functions in double precision", ARITH 15,
    // 2001; others: tests/support/near_middles.h.
    const Case cases[] = {
        {0x1.9e9cbbfd6080bp-31, 0x1.000000033d398p+0},     // 2^-58.6
        {0x1.005ae04256babp-1, 0x1.a65d89abf3d1fp+0},      // 2^-53.9
        {0x1.accfbe46b4efp-1, 0x1.27c2e4bc1ee7p+1},        // 2^-55.6
        {0x1.3471a58d726eep-20, 0x1.000013471b12ap+0},     // 2^-41.6
        {-0x1.10099ed57b609p-10, 0x1.ff780d4042e59p-1},    // 2^-39.7
        {-0x1.10001b6459406p-1, 0x1.2cfd30de655d8p-1},     // 2^-37.5
        {-0x1.a666797389f3ap+1, 0x1.2e256ebfc6662p-5},     // 2^-34.7
        {-0x1.724ce11a748a5p+9, 0x0.000000000002fp-1022},  // 2^-48.2
    };
    for (const Case& hard : cases) {
        EXPECT_EQ(rounded_exp(hard.x), hard.nearest) << std::hexfloat << hard.x;
    }
}

TEST(RoundedLog, IsThatOfIeee754AtTheEndsOfItsDomainAndBeyond) {
    EXPECT_EQ(rounded_log(kInfinity), kInfinity);
    EXPECT_EQ(rounded_log(0.0), -kInfinity);
    EXPECT_EQ(rounded_log(-0.0), -kInfinity);
    expect_zero(rounded_log(1.0), false);
    for (const double x : {-kLeast, -1.0, -kMost, -kInfinity, kNaN}) {
        EXPECT_TRUE(std::isnan(rounded_log(x))) << x;
    }
}

TEST(RoundedLog, OfPowersOfTwoIsAMultipleOfThatOfTwo) {
    for (int exponent = 1; exponent <= 512; exponent *= 2) {
        EXPECT_EQ(rounded_log(std::ldexp(1.0, exponent)), exponent * kLog2);
        EXPECT_EQ(rounded_log(std::ldexp(1.0, -exponent)), -exponent * kLog2);
    }
    // A subnormal number.
    EXPECT_EQ(rounded_log(0x1p-1024), -1024 * kLog2);
    EXPECT_EQ(rounded_log(kMost), 1024 * kLog2);
    // -1074 log 2 is 13 / 100 of a place from it.
    EXPECT_EQ(rounded_log(kLeast), -0x1.74385446d71c3p+9);
}

TEST(RoundedLog, NextToOneIsTheDistanceWithoutHalfItsSquare) {
    // 2^-105, a place below 2^-52.
    EXPECT_EQ(rounded_log(above(1.0)), below(0x1p-52));
    // 2^-107, a quarter of a place beyond 2^-53.
    EXPECT_EQ(rounded_log(below(1.0)), -0x1p-53);
    // 9 * 2^-105, two places and a quarter.
    EXPECT_EQ(rounded_log(1.0 + 0x3p-52), below(below(0x3p-52)));
}

TEST(RoundedLog, IsNearestWhereTheMiddleOfTwoDoublesIsNext) {
    const Case cases[] = {
        {0x1.33333d5904558p-1, -0x1.058adebe5fa8cp-1},     // 2^-34.0
        {0x1.b33336b06406ap+0, 0x1.0fae85ac1a9cap-1},      // 2^-35.6
        {0x1.2a05febf665cdp+33, 0x1.7069e3595e756p+4},     // 2^-43.8
        {0x1.7e43f218b5e5ep+996, 0x1.5963448d75a6fp+9},    // 2^-38.1
        {0x1.c16ce6f20205cp-1014, -0x1.5f24ebe2b571cp+9},  // 2^-39.5
    };
    for (const Case& hard : cases) {
        EXPECT_EQ(rounded_log(hard.x), hard.nearest) << std::hexfloat << hard.x;
    }
}

TEST(RoundedLog1p, IsThatOfIeee754AtTheEndsOfItsDomainAndBeyond) {
    EXPECT_EQ(rounded_log1p(kInfinity), kInfinity);
    EXPECT_EQ(rounded_log1p(-1.0), -kInfinity);
    expect_zero(rounded_log1p(0.0), false);
    expect_zero(rounded_log1p(-0.0), true);
    for (const double x : {below(-1.0), -2.0, -kMost, -kInfinity, kNaN}) {
        EXPECT_TRUE(std::isnan(rounded_log1p(x))) << x;
    }
}

TEST(RoundedLog1p, IsATinyArgumentItself) {
    for (const double x : {kLeast, 1e-310, 0x1p-1022, 0x1p-60, below(0x1p-54), 0x1p-54}) {
        EXPECT_EQ(rounded_log1p(x), x) << std::hexfloat << x;
        EXPECT_EQ(rounded_log1p(-x), -x) << std::hexfloat << x;
    }
    // Half its square is half the place below it, and x^3 / 3 is added.
    EXPECT_EQ(rounded_log1p(0x1p-53), 0x1p-53);
    EXPECT_EQ(rounded_log1p(-0x1p-53), -0x1p-53);
    // A whole place below it.
    EXPECT_EQ(rounded_log1p(0x1p-52), below(0x1p-52));
    // Half a place above it, and x^3 / 3 is added.
    EXPECT_EQ(rounded_log1p(-0x1p-52), -above(0x1p-52));
}

TEST(RoundedLog1p, IsTheLogarithmWhereTheSumIsExact) {
    for (int i = 1; i <= 1000; ++i) {
        const double x = -1.0 + i * 0x1p-53;
        EXPECT_EQ(rounded_log1p(x), rounded_log(1.0 + x)) << i;
        const double large = i * 0x1.0001p+40;
        EXPECT_EQ(rounded_log1p(large), rounded_log(large + 1.0)) << i;
    }
}

TEST(RoundedLog1p, IsTheLogarithmWhereOneIsNothing) {
    for (const double x : {0x1.8p+120, 0x1.1p+300, 1e308, kMost}) {
        EXPECT_EQ(rounded_log1p(x), rounded_log(x)) << x;
    }
}

TEST(RoundedLog1p, IsNearestWhereTheMiddleOfTwoDoublesIsNext) {
    const Case cases[] = {
        {0x1.231f39443744bp-40, 0x1.231f3944369f2p-40},    // 2^-46.0
        {-0x1.1004a5746ede8p-20, -0x1.1004ae7cbe424p-20},  // 2^-44.7
        {-0x1.10011d207ddbp-10, -0x1.102543d33ff8cp-10},   // 2^-37.4
        {0x1.c000162ce24cap+1, 0x1.810b4138dd9fdp+0},      // 2^-34.5
        {0x1.10003fe665418p+54, 0x1.2becb3165333ap+5},     // 2^-39.6
    };
    for (const Case& hard : cases) {
        EXPECT_EQ(rounded_log1p(hard.x), hard.nearest) << std::hexfloat << hard.x;
    }
}

}  // namespace
}  // namespace ovik
