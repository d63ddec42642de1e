#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <ostream>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "util/kernels/exponentials.h"
#include "util/rounded_functions.h"

#include "tests/support/exact_functions.h"
#include "tests/support/instruction_sets.h"
#include "tests/support/near_middles.h"

namespace ovik {
namespace {

/// A number that the environment may make larger or other, for long runs.
int from_environment(const char* name, int usual) {
    const char* const text = std::getenv(name);
    return text == nullptr ? usual : std::stoi(text);
}

int random_value_count() {
    return from_environment("OVIK_RANDOM_VALUES", 70000);
}

/// Of the many shards of a long run.
std::uint64_t random_seed() {
    return static_cast<std::uint64_t>(from_environment("OVIK_RANDOM_SEED", 0));
}

using Generator = std::mt19937_64;

/// Evenly from 0 to 1.
double part(Generator& generator) {
    return std::generate_canonical<double, 53>(generator);
}

double with_random_sign(Generator& generator, double x) {
    return generator() % 2 == 0 ? x : -x;
}

/// 2^lowest to 2^highest in size, all orders of it alike.
double of_any_size(Generator& generator, int lowest, int highest) {
    std::uniform_int_distribution<int> exponent(lowest, highest - 1);
    return with_random_sign(generator, std::ldexp(1.0 + part(generator), exponent(generator)));
}

/// Any double above 0 that is finite.
double of_random_bits(Generator& generator) {
    constexpr std::uint64_t kInfinityBits = 0x7FF0000000000000U;
    return std::bit_cast<double>(1 + generator() % (kInfinityBits - 1));
}

double argument_of_exp(Generator& generator) {
    switch (generator() % 6) {
        case 0:
            return -750.0 + 1465.0 * part(generator);
        case 1:
            return of_any_size(generator, -60, 10);
        case 2:
            return -708.0 - 38.0 * part(generator);
        case 3:
            return with_random_sign(generator, 709.0 + part(generator));
        default:
            return -40.0 * part(generator);
    }
}

double argument_of_log(Generator& generator) {
    constexpr double kLeastNormal = std::numeric_limits<double>::min();
    switch (generator() % 4) {
        case 0:
            return of_random_bits(generator);
        case 1:
            return 1.0 + of_any_size(generator, -53, -1);
        case 2:
            return part(generator) * (generator() % 2 == 0 ? 2.0 : kLeastNormal);
        default:
            return 0.7 + 0.8 * part(generator);
    }
}

double argument_of_log1p(Generator& generator) {
    switch (generator() % 6) {
        case 0:
            return of_random_bits(generator);
        case 1:
            return -part(generator);
        case 2:
            return -1.0 + std::fabs(of_any_size(generator, -53, 0));
        case 3:
            return std::fabs(of_any_size(generator, 0, 60));
        default:
            return of_any_size(generator, -62, 0);
    }
}

/// A function, what it is held to, its arguments, and where consecutive ones begin among which hard
/// ones are looked for.
struct Judged {
    const char* name;
    double (*rounded)(double x);
    test::ExactFunction::Function exact;
    double (*draw)(Generator& generator);
    std::vector<double> starts;
    std::vector<double> limits;
};

void PrintTo(const Judged& function, std::ostream* out) {
    *out << function.name;
}

constexpr double kMost = std::numeric_limits<double>::max();
constexpr double kLeast = std::numeric_limits<double>::denorm_min();
constexpr double kLeastNormal = std::numeric_limits<double>::min();

const std::vector<Judged>& judged_functions() {
    static const std::vector<Judged> functions = {
        {"exp",
         &rounded_exp,
         &mpfr_exp,
         &argument_of_exp,
         {0x1.1p-30,
          -0x1.1p-10,
          0.07,
          -0.53,
          1.13,
          -3.3,
          -17.1,
          -40.1,
          200.7,
          -600.3,
          -720.5,
          -740.0},
         // Overflow, the least normal result, the least, half of it.
         {0x1.62e42fefa39efp+9,
          -0x1.6232bdd7abcd2p+9,
          -0x1.74385446d71c3p+9,
          -0x1.74910d52d3051p+9,
          kMost,
          kLeast,
          0x1p-54,
          0x1p-53,
          0x1p-52}},
        {"log",
         &rounded_log,
         &mpfr_log,
         &argument_of_log,
         {1.0001, 0.99, 1.1, 0.6, 1.7, 3.3, 1e10, 1e-10, 1e300, 1e-305, 0x1.1p-1060},
         {1.0, 0.5, kMost, kLeast, kLeastNormal}},
        {"log1p",
         &rounded_log1p,
         &mpfr_log1p,
         &argument_of_log1p,
         {0x1.23p-40,
          0x1.3p-20,
          -0x1.1p-20,
          -0x1.1p-10,
          0.07,
          -0.53,
          -0.99,
          0.7,
          3.5,
          1e5,
          0x1.1p53,
          1e30},
         {-1.0, 1.0, 0x1p-54, 0x1p-53, 0x1p-52, 0x1p53, 0x1p54, kMost, kLeast, kLeastNormal}},
    };
    return functions;
}

class ExactRounding : public testing::TestWithParam<Judged> {
  protected:
    /// Holds results to those of MPFR, bit for bit, those of vectors as well.
    void judge(const std::vector<double>& arguments) {
        std::vector<double> expected;
        for (const double x : arguments) {
            expected.push_back(exact_.nearest(x));
            expectSame(GetParam().rounded(x), expected.back(), x, "");
        }
        if (GetParam().rounded != &rounded_exp) {
            return;
        }
        for (const InstructionSet set : test::available_instruction_sets()) {
            std::vector<double> values = arguments;
            exponential_kernels(set).exponentials(values.data(), values.size());
            for (std::size_t i = 0; i < values.size(); ++i) {
                expectSame(values[i], expected[i], arguments[i], " of vectors");
            }
        }
    }

    /// Arguments of which the values are next to the middle of two doubles, about one from each
    /// stretch that is searched; `closest` is how near the nearest is.
    std::vector<double> nearMiddles(int stretches, double most, double& closest) {
        std::vector<double> found;
        Generator generator(random_seed());
        closest = most;
        // Fast forms are off otherwise in every place of their tables.
        constexpr int kPlaces = 8;
        for (int i = 0; i < kPlaces; ++i) {
            for (const double start : GetParam().starts) {
                const double x = start * (1.0 + 0x1p-8 * part(generator));
                test::visit_near_middles(
                    exact_, x, stretches / kPlaces, most, [&](double argument, double distance) {
                        found.push_back(argument);
                        closest = std::min(closest, distance);
                    });
            }
        }
        return found;
    }

  private:
    static void expectSame(double actual, double expected, double x, const char* manner) {
        if (std::bit_cast<std::uint64_t>(actual) != std::bit_cast<std::uint64_t>(expected)) {
            EXPECT_TRUE(std::isnan(actual) && std::isnan(expected))
                << GetParam().name << manner << " of " << std::hexfloat << x << " is " << actual
                << ", not " << expected;
        }
    }

    test::ExactFunction exact_{GetParam().exact};
};

INSTANTIATE_TEST_SUITE_P(EveryFunction,
                         ExactRounding,
                         testing::ValuesIn(judged_functions()),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST_P(ExactRounding, HoldsForRandomArguments) {
    constexpr int kAtOnce = 4096;
    Generator generator(random_seed());
    std::vector<double> arguments;
    for (int left = random_value_count(); left > 0; left -= kAtOnce) {
        arguments.resize(static_cast<std::size_t>(std::min(left, kAtOnce)));
        for (double& x : arguments) {
            x = GetParam().draw(generator);
        }
        judge(arguments);
    }
}

TEST_P(ExactRounding, HoldsNearTheMiddleOfTwoDoubles) {
    // About as near as fast forms decide: those of vectors at 2^-14 of a unit of the last place.
    for (const double most : {0x1p-12, 0x1p-15}) {
        double closest = 1.0;
        const std::vector<double> arguments =
            nearMiddles(random_value_count() / 200, most, closest);
        EXPECT_GT(arguments.size(), GetParam().starts.size() * 10);
        judge(arguments);
    }
}

TEST_P(ExactRounding, HoldsNextToTheMiddleOfTwoDoubles) {
    double closest = 1.0;
    const std::vector<double> arguments = nearMiddles(random_value_count() / 70, 0x1p-28, closest);
    // As near as one of thousands of millions of random arguments.
    EXPECT_LT(closest, 0x1p-33);
    judge(arguments);
}

TEST_P(ExactRounding, HoldsWhereArgumentsOrResultsEnd) {
    std::vector<double> arguments = {0.0,
                                     -0.0,
                                     std::numeric_limits<double>::infinity(),
                                     -std::numeric_limits<double>::infinity(),
                                     std::numeric_limits<double>::quiet_NaN()};
    for (const double limit : GetParam().limits) {
        for (double x : {limit, -limit}) {
            double below = x;
            for (int i = 0; i < 200; ++i) {
                arguments.push_back(x);
                arguments.push_back(below);
                x = std::nextafter(x, HUGE_VAL);
                below = std::nextafter(below, -HUGE_VAL);
            }
        }
    }
    judge(arguments);
}

TEST_P(ExactRounding, HoldsForPowersOfTwoAndTheirNeighbours) {
    std::vector<double> arguments;
    for (int exponent = -1074; exponent <= 1023; ++exponent) {
        const double power = std::ldexp(1.0, exponent);
        for (const double x :
             {power, std::nextafter(power, 0.0), std::nextafter(power, HUGE_VAL)}) {
            arguments.push_back(x);
            arguments.push_back(-x);
            arguments.push_back(1.5 * x);
        }
    }
    judge(arguments);
}

TEST_P(ExactRounding, HoldsForTinyArgumentsOfFewBits) {
    std::vector<double> arguments;
    // Odd multiples of half the last place of 1, and what the square adds to them, to and fro.
    for (int k = 0; k < 500; ++k) {
        for (const double middle : {(k + 0.5) * 0x1p-52, (k + 0.5) * -0x1p-53, k * 0x1p-53}) {
            const double square = 0.5 * middle * middle;
            for (const double x : {middle, middle - square, middle + square}) {
                arguments.push_back(x);
                arguments.push_back(std::nextafter(x, 1.0));
                arguments.push_back(std::nextafter(x, -1.0));
                arguments.push_back(1.0 + x);
            }
        }
    }
    judge(arguments);
}

}  // namespace
}  // namespace ovik
