#include "util/wide_number.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace ovik {
namespace {

using Limbs = WideNumber::Limbs;

constexpr std::size_t kDigits = 16;
constexpr std::uint64_t kBase = 1U << 16U;

/// Whole numbers by digits of 16 bits, from the lowest, as one computes on paper.
using Digits = std::vector<std::uint64_t>;

Digits digits_of(const Limbs& limbs) {
    Digits digits;
    for (const std::uint64_t limb : limbs) {
        for (unsigned int shift = 0; shift < 64; shift += 16) {
            digits.push_back(limb >> shift & (kBase - 1));
        }
    }
    return digits;
}

/// The lowest 256 bits behind some digits.
Limbs limbs_from(const Digits& digits, std::size_t first) {
    Limbs limbs{};
    for (std::size_t i = 0; i < kDigits && first + i < digits.size(); ++i) {
        limbs[i / 4] |= digits[first + i] << (16 * (i % 4));
    }
    return limbs;
}

void carry(Digits& digits) {
    for (std::size_t i = 0; i + 1 < digits.size(); ++i) {
        digits[i + 1] += digits[i] / kBase;
        digits[i] %= kBase;
    }
}

Digits sum_of(const Digits& a, const Digits& b) {
    Digits sum(kDigits);
    for (std::size_t i = 0; i < kDigits; ++i) {
        sum[i] = a[i] + b[i];
    }
    carry(sum);
    return sum;
}

Digits product_of(const Digits& a, const Digits& b) {
    Digits product(a.size() + b.size());
    for (std::size_t i = 0; i < a.size(); ++i) {
        for (std::size_t j = 0; j < b.size(); ++j) {
            product[i + j] += a[i] * b[j];
        }
        carry(product);
    }
    return product;
}

/// By the digits of a quotient, each found by trial.
Digits quotient_of(const Digits& a, std::uint64_t divisor) {
    Digits quotient(a.size());
    std::uint64_t rest = 0;
    for (std::size_t i = a.size(); i-- > 0;) {
        rest = rest * kBase + a[i];
        quotient[i] = rest / divisor;
        rest -= quotient[i] * divisor;
    }
    return quotient;
}

void expect_equal(const WideNumber& actual, const Limbs& expected) {
    const WideNumber number(expected);
    EXPECT_FALSE(actual < number);
    EXPECT_FALSE(number < actual);
}

/// Numbers below 2^(256 - zeros) of which every limb is random, all zeros or all ones: sums carry
/// far.
Limbs random_limbs(std::mt19937_64& generator, unsigned int zeros) {
    Limbs limbs{};
    for (std::uint64_t& limb : limbs) {
        const auto kind = generator() % 4;
        limb = kind == 0 ? 0 : kind == 1 ? ~std::uint64_t{0} : generator();
    }
    limbs[3] >>= zeros;
    return limbs;
}

constexpr int kCases = 2000;

TEST(WideNumber, IsZeroWithoutAnyBit) {
    EXPECT_TRUE(WideNumber().isZero());
    EXPECT_TRUE(WideNumber::ofWhole(0).isZero());
    for (std::size_t limb = 0; limb < 4; ++limb) {
        Limbs limbs{};
        limbs[limb] = 1;
        EXPECT_FALSE(WideNumber(limbs).isZero());
    }
}

TEST(WideNumber, OfWholeHasNoFraction) {
    expect_equal(WideNumber::ofWhole(1), {0, 0, 0, std::uint64_t{1} << 48U});
    expect_equal(WideNumber::ofWhole(65535), {0, 0, 0, std::uint64_t{65535} << 48U});
}

TEST(WideNumber, OfScaledHasTheBitsInTheirPlaces) {
    constexpr std::uint64_t kSignificand = 0x001D5A3C96F0F0F1U;
    for (int exponent = -400; exponent <= -37; ++exponent) {
        Digits digits(2 * kDigits + 10);
        // The number times 2^400 * 2^-160, which the places of a wide number begin behind.
        const auto place = static_cast<std::size_t>(exponent + 400);
        for (std::size_t bit = 0; bit < 53; ++bit) {
            digits[(place + bit) / 16] |= (kSignificand >> bit & 1U) << (place + bit) % 16;
        }
        expect_equal(WideNumber::ofScaled(kSignificand, exponent), limbs_from(digits, 10));
    }
    EXPECT_TRUE(WideNumber::ofScaled(kSignificand, -1074).isZero());
    EXPECT_TRUE(WideNumber::ofScaled(0, -1074).isZero());
    expect_equal(WideNumber::ofScaled(~std::uint64_t{0}, -48), {0, 0, 0, ~std::uint64_t{0}});
    expect_equal(WideNumber::ofScaled(1, 15), {0, 0, 0, std::uint64_t{1} << 63U});
    expect_equal(WideNumber::ofScaled(1, -240), {1, 0, 0, 0});
}

TEST(WideNumber, IsLessByItsHighestDifference) {
    for (std::size_t limb = 0; limb < 4; ++limb) {
        Limbs less{9, 9, 9, 9};
        Limbs more{1, 1, 1, 1};
        for (std::size_t above = limb + 1; above < 4; ++above) {
            more[above] = 9;
        }
        less[limb] = 3;
        more[limb] = std::uint64_t{1} << 63U;
        EXPECT_TRUE(WideNumber(less) < WideNumber(more));
        EXPECT_FALSE(WideNumber(more) < WideNumber(less));
        EXPECT_FALSE(WideNumber(more) < WideNumber(more));
    }
}

TEST(WideNumber, SumsAndDifferencesAreExact) {
    std::mt19937_64 generator(211);
    for (int i = 0; i < kCases; ++i) {
        const Limbs a = random_limbs(generator, 1);
        const Limbs b = random_limbs(generator, 1);
        const Limbs sum = limbs_from(sum_of(digits_of(a), digits_of(b)), 0);
        expect_equal(WideNumber(a) + WideNumber(b), sum);
        expect_equal(WideNumber(sum) - WideNumber(b), a);
        expect_equal(WideNumber(sum) - WideNumber(a), b);
    }
}

TEST(WideNumber, ProductsAreCutBehindTheLastPlace) {
    std::mt19937_64 generator(212);
    for (int i = 0; i < kCases; ++i) {
        const Limbs a = random_limbs(generator, 8);
        const Limbs b = random_limbs(generator, 8);
        expect_equal(
            WideNumber(a) * WideNumber(b),
            limbs_from(product_of(digits_of(a), digits_of(b)), WideNumber::kFractionBits / 16));
    }
}

TEST(WideNumber, ProductsWithWholeNumbersAreExact) {
    std::mt19937_64 generator(213);
    for (int i = 0; i < kCases; ++i) {
        const Limbs a = random_limbs(generator, 32);
        const auto factor = i == 0 ? ~std::uint32_t{0} : static_cast<std::uint32_t>(generator());
        const Digits digits = {factor % kBase, factor / kBase};
        expect_equal(WideNumber(a) * factor, limbs_from(product_of(digits_of(a), digits), 0));
    }
}

TEST(WideNumber, QuotientsAreCutBehindTheLastPlace) {
    std::mt19937_64 generator(214);
    for (int i = 0; i < kCases; ++i) {
        const Limbs a = random_limbs(generator, 0);
        const auto random = static_cast<std::uint32_t>(generator() >> (i % 2 == 0 ? 32U : 58U));
        const std::uint32_t divisor = i == 0 ? ~std::uint32_t{0} : random + (random == 0 ? 1 : 0);
        expect_equal(WideNumber(a) / divisor, limbs_from(quotient_of(digits_of(a), divisor), 0));
    }
}

TEST(WideNumber, IsHalvedAnyNumberOfTimes) {
    std::mt19937_64 generator(215);
    for (int i = 0; i < 20; ++i) {
        const Limbs a = random_limbs(generator, 0);
        Digits digits = digits_of(a);
        for (unsigned int places = 0; places <= 255; ++places) {
            expect_equal(WideNumber(a).halved(places), limbs_from(digits, 0));
            digits = quotient_of(digits, 2);
        }
    }
}

/// What the C library makes of the number times 2^exponent, written down.
double read_back(const Limbs& limbs, int exponent) {
    char text[100];
    std::snprintf(text,
                  sizeof text,
                  "0x%016llx%016llx%016llx%016llxp%d",
                  static_cast<unsigned long long>(limbs[3]),
                  static_cast<unsigned long long>(limbs[2]),
                  static_cast<unsigned long long>(limbs[1]),
                  static_cast<unsigned long long>(limbs[0]),
                  exponent - WideNumber::kFractionBits);
    return std::strtod(text, nullptr);
}

TEST(WideNumber, RoundsAsNumbersThatAreRead) {
    std::mt19937_64 generator(216);
    std::uniform_int_distribution<int> exponents(-1060, 1060);
    for (int i = 0; i < 4 * kCases; ++i) {
        Limbs limbs = random_limbs(generator, static_cast<unsigned int>(generator() % 16));
        // Its lowest bit, below all middles.
        limbs[0] |= 1U;
        limbs[3] |= 1U;
        const int exponent = exponents(generator);
        EXPECT_EQ(WideNumber(limbs).rounded(exponent), read_back(limbs, exponent)) << exponent;
    }
}

TEST(WideNumber, RoundsSmallNumbersOfFewBits) {
    for (int place = 0; place < 256; ++place) {
        Limbs limbs{};
        limbs[static_cast<std::size_t>(place) / 64] = std::uint64_t{1} << place % 64;
        EXPECT_EQ(WideNumber(limbs).rounded(0), std::ldexp(1.0, place - 240));
        EXPECT_EQ(WideNumber(limbs).rounded(-800), std::ldexp(1.0, place - 1040));
    }
}

TEST(WideNumber, RoundsTheMiddleOfTwoDoublesUp) {
    // 1 + 2^-53, and what is next to it.
    const WideNumber middle = WideNumber::ofScaled((std::uint64_t{1} << 53U) + 1, -53);
    const WideNumber least = WideNumber::ofScaled(1, -240);
    EXPECT_EQ(middle.rounded(0), 1.0 + 0x1p-52);
    EXPECT_EQ((middle + least).rounded(0), 1.0 + 0x1p-52);
    EXPECT_EQ((middle - least).rounded(0), 1.0);
    // All ones: to the next power of two.
    EXPECT_EQ((WideNumber::ofWhole(2) - least).rounded(3), 16.0);
}

TEST(WideNumber, RoundsToTheLeastDoublesAndBeyondTheLargest) {
    constexpr double kLeast = std::numeric_limits<double>::denorm_min();
    const WideNumber one = WideNumber::ofWhole(1);
    const WideNumber least = WideNumber::ofScaled(1, -240);
    EXPECT_EQ(one.rounded(-1074), kLeast);
    EXPECT_EQ(one.rounded(-1075), kLeast);
    EXPECT_EQ((one + one).rounded(-1076), kLeast);
    EXPECT_EQ(WideNumber::ofScaled(3, -1).rounded(-1074), 2 * kLeast);
    EXPECT_EQ((WideNumber::ofScaled(3, -1) - least).rounded(-1074), kLeast);
    EXPECT_EQ((one - least).rounded(-1022), std::numeric_limits<double>::min());
    const WideNumber most = WideNumber::ofScaled((std::uint64_t{1} << 54U) - 1, -53);
    EXPECT_EQ((most - least).rounded(1023), std::numeric_limits<double>::max());
    EXPECT_EQ(most.rounded(1023), std::numeric_limits<double>::infinity());
    EXPECT_EQ(one.rounded(1024), std::numeric_limits<double>::infinity());
}

}  // namespace
}  // namespace ovik
