#include "util/kernels/exponentials.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "util/rounded_functions.h"

#include "tests/support/instruction_sets.h"

namespace ovik {
namespace {

class ExponentialKernelsTest : public testing::TestWithParam<InstructionSet> {
  protected:
    [[nodiscard]] std::vector<double> exponentials(std::vector<double> values) const {
        exponential_kernels(GetParam()).exponentials(values.data(), values.size());
        return values;
    }

    /// Bit for bit, and any NaN is another's equal.
    void expectRounded(const std::vector<double>& arguments) const {
        const std::vector<double> actual = exponentials(arguments);
        for (std::size_t i = 0; i < arguments.size(); ++i) {
            const double expected = rounded_exp(arguments[i]);
            EXPECT_EQ(std::bit_cast<std::uint64_t>(actual[i]),
                      std::bit_cast<std::uint64_t>(expected))
                << "exp(" << std::hexfloat << arguments[i] << "), place " << i;
        }
    }
};

INSTANTIATE_TEST_SUITE_P(EveryInstructionSet,
                         ExponentialKernelsTest,
                         testing::ValuesIn(test::available_instruction_sets()));

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
/// Three vectors of the widest instruction set.
constexpr std::size_t kMostValues = 24;

TEST_P(ExponentialKernelsTest, AreThoseOfAnyNumberOfValuesAndTouchNothingElse) {
    std::mt19937_64 generator(221);
    std::uniform_real_distribution<double> arguments(-40.0, 5.0);
    for (std::size_t count = 0; count <= kMostValues; ++count) {
        std::vector<double> values(kMostValues + 10);
        for (double& value : values) {
            value = arguments(generator);
        }
        const std::vector<double> before = values;
        exponential_kernels(GetParam()).exponentials(values.data() + 1, count);
        EXPECT_EQ(values[0], before[0]);
        for (std::size_t i = 1; i < values.size(); ++i) {
            EXPECT_EQ(values[i], i <= count ? rounded_exp(before[i]) : before[i])
                << count << " values, place " << i;
        }
    }
}

TEST_P(ExponentialKernelsTest, AreRoundedForAllSizesOfArguments) {
    std::mt19937_64 generator(222);
    std::uniform_real_distribution<double> any(-750.0, 715.0);
    std::vector<double> arguments;
    for (int i = 0; i < 20000; ++i) {
        arguments.push_back(i % 2 == 0 ? any(generator) : std::ldexp(any(generator), -i % 70));
    }
    expectRounded(arguments);
}

TEST_P(ExponentialKernelsTest, AreRoundedWhereTheRangeOfTheFastFormEnds) {
    std::vector<double> arguments;
    for (const double end : {-708.0, 709.0}) {
        double above = end;
        double below = end;
        for (int i = 0; i < 50; ++i) {
            arguments.push_back(above);
            arguments.push_back(below);
            above = std::nextafter(above, kInfinity);
            below = std::nextafter(below, -kInfinity);
        }
    }
    expectRounded(arguments);
}

TEST_P(ExponentialKernelsTest, AreRoundedBetweenTheEntriesOfTheTable) {
    std::vector<double> arguments;
    for (int k = -131000; k <= 130800; k += 37) {
        const double middle = (k + 0.5) * 0x1.62e42fefa39efp-8;
        arguments.push_back(std::nextafter(middle, -kInfinity));
        arguments.push_back(middle);
        arguments.push_back(std::nextafter(middle, kInfinity));
        arguments.push_back(k * 0x1.62e42fefa39efp-8);
    }
    expectRounded(arguments);
}

TEST_P(ExponentialKernelsTest, OfSpecialArgumentsAreInAnyPlaceAmongOthers) {
    const double specials[] = {kNaN,
                               kInfinity,
                               -kInfinity,
                               1e300,
                               -1e300,
                               0x1.62e42fefa39efp+9,
                               0x1.62e42fefa39f0p+9,
                               -0x1.74910d52d3051p+9,
                               -0x1.74910d52d3052p+9,
                               -710.0,
                               0.0,
                               -0.0,
                               5e-324,
                               -5e-324,
                               0x1p-53,
                               -0x1p-54,
                               // The middle of two doubles is next to these.
                               0x1.9e9cbbfd6080bp-31,
                               0x1.005ae04256babp-1};
    for (const double special : specials) {
        for (std::size_t place = 0; place < kMostValues; ++place) {
            std::vector<double> arguments(kMostValues - place % 3);
            for (std::size_t i = 0; i < arguments.size(); ++i) {
                arguments[i] = -0.37 * static_cast<double>(i);
            }
            arguments[place % arguments.size()] = special;
            expectRounded(arguments);
        }
    }
    expectRounded(std::vector<double>(std::begin(specials), std::end(specials)));
}

}  // namespace
}  // namespace ovik
