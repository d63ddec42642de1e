#include "util/elementary.h"

#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "util/rounded_functions.h"

#include "tests/support/instruction_sets.h"

namespace ovik {
namespace {

/// Both signs, all sizes.
std::vector<double> arguments() {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    std::vector<double> values = {
        0.0, -0.0, 1.0, -1.0, 5e-324, 1e-310, 800.0, -800.0, kInfinity, -kInfinity};
    std::mt19937_64 generator(231);
    std::uniform_real_distribution<double> significand(-1.0, 1.0);
    for (int i = 0; i < 10000; ++i) {
        values.push_back(std::ldexp(significand(generator), i % 72 - 60));
    }
    return values;
}

using Function = double (*)(double x);

/// Bit for bit, but for the bits of NaN.
void expect_same(double actual, double expected, double x) {
    if (std::isnan(expected)) {
        EXPECT_TRUE(std::isnan(actual)) << std::hexfloat << x;
    } else {
        EXPECT_EQ(actual, expected) << std::hexfloat << x;
        EXPECT_EQ(std::signbit(actual), std::signbit(expected)) << std::hexfloat << x;
    }
}

void expect_are(const Elementary& functions, Function log, Function log1p, Function exp) {
    std::vector<double> exponentials = arguments();
    functions.exponentials(exponentials.data(), exponentials.size());
    std::size_t i = 0;
    for (const double x : arguments()) {
        expect_same(functions.log(x), log(x), x);
        expect_same(functions.log1p(x), log1p(x), x);
        expect_same(exponentials[i++], exp(x), x);
    }
}

TEST(PlatformElementary, IsTheCLibrary) {
    expect_are(
        platform_elementary(),
        [](double x) { return std::log(x); },
        [](double x) { return std::log1p(x); },
        [](double x) { return std::exp(x); });
}

TEST(PortableElementary, IsRoundedForEveryInstructionSet) {
    for (const InstructionSet set : test::kInstructionSets) {
        const test::InstructionLimit limit(set);
        expect_are(portable_elementary(), &rounded_log, &rounded_log1p, &rounded_exp);
    }
}

TEST(Elementary, TakesNoValues) {
    for (const Elementary* functions : {&platform_elementary(), &portable_elementary()}) {
        double untouched = 3.0;
        functions->exponentials(&untouched, 0);
        EXPECT_EQ(untouched, 3.0);
    }
}

}  // namespace
}  // namespace ovik
