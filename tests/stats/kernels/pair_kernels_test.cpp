#include "stats/kernels/pair_kernels.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/pair_kernels.h"
#include "tests/support/random_points.h"

namespace ovik {
namespace {

class PairKernelsTest : public testing::TestWithParam<InstructionSet> {
  protected:
    const PairKernels& kernels = pair_kernels(GetParam());
};

INSTANTIATE_TEST_SUITE_P(EveryInstructionSet,
                         PairKernelsTest,
                         testing::ValuesIn(test::available_instruction_sets()));

/// Numbers from 1 on whose significands are random, or close to a power of two: reciprocals of the
/// latter come closest to the middle between two numbers.
std::vector<double> divisors() {
    std::mt19937_64 generator(101);
    std::uniform_real_distribution<double> significand(1.0, 2.0);
    std::uniform_int_distribution<int> exponent(0, 208);
    std::vector<double> values;
    for (int i = 0; i < 400000; ++i) {
        values.push_back(std::ldexp(significand(generator), i % 2 == 0 ? 0 : exponent(generator)));
    }
    for (int e = 1; e <= 209; ++e) {
        const double power = std::ldexp(1.0, e);
        double above = power;
        double below = power;
        for (int i = 0; i < 300; ++i) {
            values.push_back(above);
            values.push_back(below);
            above = std::nextafter(above, HUGE_VAL);
            below = std::nextafter(below, 0.0);
        }
    }
    for (int k = 0; k < 100000; ++k) {
        values.push_back(2.0 - k * 0x1p-52);
    }
    return values;
}

TEST_P(PairKernelsTest, ReciprocalsAreThoseOfDivision) {
    const std::vector<double> x = divisors();
    std::vector<double> actual(x.size());
    kernels.reciprocals(x.data(), x.size(), actual.data());
    for (std::size_t i = 0; i < x.size(); ++i) {
        ASSERT_EQ(actual[i], 1.0 / x[i]) << std::hexfloat << x[i];
    }
}

TEST_P(PairKernelsTest, QuotientsAreThoseOfDivision) {
    std::mt19937_64 generator(102);
    std::uniform_real_distribution<double> significand(1.0, 2.0);
    std::uniform_int_distribution<int> exponent(-209, 0);
    const std::vector<double> all_divisors = divisors();
    constexpr std::size_t kDividends = 200;
    std::vector<double> x(kDividends);
    std::vector<double> actual(kDividends);
    for (std::size_t k = 0; k < all_divisors.size(); k += 37) {
        const double divisor = std::fmin(all_divisors[k], 0x1p80) * 0x1p-40;
        for (std::size_t i = 0; i < kDividends; ++i) {
            const double significant = significand(generator);
            x[i] =
                i == 0 ? divisor : std::ldexp(significant, i % 2 == 0 ? -1 : exponent(generator));
        }
        kernels.quotients(x.data(), kDividends, divisor, actual.data());
        for (std::size_t i = 0; i < kDividends; ++i) {
            ASSERT_EQ(actual[i], x[i] / divisor) << std::hexfloat << x[i] << " / " << divisor;
        }
    }
}

/// Numbers whose quotients by an odd whole number of 53 bits are as close to the middle between two
/// numbers as can be: 2^k times such a number is an odd multiple of the divisor but for 1, 3, ...
std::vector<double> hardest_dividends(std::uint64_t divisor) {
    std::vector<double> dividends;
    for (const int k : {53, 54}) {
        for (std::uint64_t rest = 1; rest < 64; ++rest) {
            std::uint64_t x = rest % 2 == 1 ? rest : divisor - (rest - 1);
            for (int i = 0; i < k; ++i) {
                x = x % 2 == 0 ? x / 2 : (x + divisor) / 2;
            }
            x += k == 53 ? divisor : 0;
            if (x >= std::uint64_t{1} << 52 && x < std::uint64_t{1} << 53) {
                dividends.push_back(static_cast<double>(x));
            }
        }
    }
    return dividends;
}

TEST_P(PairKernelsTest, QuotientsNextToTheMiddleOfTwoNumbersAreThoseOfDivision) {
    std::mt19937_64 generator(104);
    std::uniform_int_distribution<std::uint64_t> whole(std::uint64_t{1} << 52,
                                                       (std::uint64_t{1} << 53) - 1);
    for (int i = 0; i < 20000; ++i) {
        const std::uint64_t divisor = whole(generator) | 1U;
        const std::vector<double> x = hardest_dividends(divisor);
        std::vector<double> actual(x.size());
        kernels.quotients(x.data(), x.size(), static_cast<double>(divisor), actual.data());
        for (std::size_t j = 0; j < x.size(); ++j) {
            ASSERT_EQ(actual[j], x[j] / static_cast<double>(divisor))
                << std::hexfloat << x[j] << " / " << divisor;
        }
    }
}

TEST_P(PairKernelsTest, LogarithmsAreCloseAndTheSameForEveryInstructionSet) {
    std::mt19937_64 generator(103);
    std::uniform_real_distribution<double> significand(1.0, 2.0);
    std::uniform_int_distribution<int> exponent(-1022, 1023);
    std::vector<double> x = {1.0, 0x1p-1022, 0x1.fffffffffffffp1023};
    for (int i = 0; i < 200001; ++i) {
        x.push_back(
            std::ldexp(significand(generator), i % 2 == 0 ? i % 3 - 1 : exponent(generator)));
    }
    std::vector<double> actual(x.size());
    std::vector<double> portable(x.size());
    kernels.logarithms(x.data(), x.size(), actual.data());
    pair_kernels(InstructionSet::Scalar).logarithms(x.data(), x.size(), portable.data());
    EXPECT_EQ(actual, portable);
    EXPECT_EQ(actual[0], 0.0);
    for (std::size_t i = 0; i < x.size(); ++i) {
        const double expected = std::log(x[i]);
        // The expected logarithm is rounded too.
        ASSERT_NEAR(actual[i], expected, std::fmax(7e-16, 5e-16 * std::fabs(expected))) << x[i];
    }
}

TEST_P(PairKernelsTest, LogarithmsOfOtherNumbersAreFinite) {
    // So that their product with a similarity of zero is zero.
    for (const double x : {0.0, 0x1p-1074, HUGE_VAL}) {
        double result = HUGE_VAL;
        kernels.logarithms(&x, 1, &result);
        EXPECT_TRUE(std::isfinite(result)) << x;
    }
}

TEST_P(PairKernelsTest, RoundedSumsRefuseWhatCannotBeRounded) {
    constexpr double kShift = 1.5 * 0x1p4;
    constexpr double kHalfUnit = 0x1p-49;
    for (std::size_t count = 1; count < 20; ++count) {
        for (const double refused : {8.0,
                                     -1e-300,
                                     std::nan(""),
                                     HUGE_VAL,
                                     -HUGE_VAL,
                                     kHalfUnit,
                                     1.0 + kHalfUnit,
                                     1.0 + 3.0 * kHalfUnit}) {
            for (std::size_t place = 0; place < count; ++place) {
                std::vector<double> values(count, 0.75);
                double sum = 0.0;
                ASSERT_TRUE(kernels.rounded_sum(values.data(), count, kShift, &sum));
                ASSERT_EQ(sum, 0.75 * static_cast<double>(count));
                values[place] = refused;
                EXPECT_FALSE(kernels.rounded_sum(values.data(), count, kShift, &sum)) << refused;
            }
        }
    }
}

/// Columns of an embedding, padded with zeros to whole panels.
std::vector<double> embedding_columns(std::size_t N, std::size_t dims) {
    const std::vector<double> Y = test::random_values(N * dims, 105, 3.0);
    std::vector<double> columns(padded_to_panels(N) * dims, 0.0);
    for (std::size_t i = 0; i < Y.size(); ++i) {
        columns[i % dims * padded_to_panels(N) + i / dims] = Y[i];
    }
    return columns;
}

TEST_P(PairKernelsTest, SimilaritiesAreThoseOfAPlainLoopForEveryNumberOfPoints) {
    for (std::size_t dims = 1; dims <= 4; ++dims) {
        for (std::size_t N = 1; N <= 67; ++N) {
            const std::vector<double> columns = embedding_columns(N, dims);
            const std::size_t stride = padded_to_panels(N);
            std::vector<double> q(stride, -1.0);
            for (std::size_t n = 0; n < N; ++n) {
                kernels.similarities({columns.data(), N, dims}, n, q.data());
                for (std::size_t m = 0; m < N; ++m) {
                    double squared_distance = 0.0;
                    for (std::size_t d = 0; d < dims; ++d) {
                        const double difference = columns[d * stride + m] - columns[d * stride + n];
                        squared_distance += difference * difference;
                    }
                    ASSERT_EQ(q[m], m == n ? 0.0 : 1.0 / (1.0 + squared_distance));
                }
            }
        }
    }
}

/// What the loops over panels write for the rows of points, one after the other.
std::vector<double> results_of_panels(const PairKernels& kernels, std::size_t N, std::size_t dims) {
    const std::vector<double> columns = embedding_columns(N, dims);
    const EmbeddingColumns Y = {columns.data(), N, dims};
    const std::size_t padded = padded_to_panels(N);
    const std::vector<double> shifts(padded, 1.5 * 0x1p10);
    const std::vector<double> half_units(padded, 0x1p-43);
    std::vector<double> sums(padded, 0.0);
    const auto ties = std::make_unique<bool[]>(padded);
    std::vector<double> P(padded * N, 1e-4);
    for (std::size_t i = 0; i < P.size(); ++i) {
        P[i] *= static_cast<double>(i % 5 + 1);
    }
    std::vector<double> results;
    for (std::size_t panel = 0; panel < padded / kPanelWidth; ++panel) {
        kernels.add_rounded_similarities(
            Y, panel, {shifts.data(), half_units.data()}, {sums.data(), ties.get()});
        const std::size_t rows = std::min(kPanelWidth, N - panel * kPanelWidth);
        for (const bool with_cost : {false, true}) {
            std::vector<double> force(dims * kPanelWidth, 0.0);
            std::vector<double> cost(kPanelWidth, 0.0);
            const PanelTask task = {
                100.0, P.data() + panel * kPanelWidth * N, force.data(), cost.data()};
            (with_cost ? kernels.add_forces_and_cost : kernels.add_forces)(Y, panel, task);
            for (std::size_t d = 0; d < dims; ++d) {
                results.insert(
                    results.end(), &force[d * kPanelWidth], &force[d * kPanelWidth] + rows);
            }
            results.insert(results.end(), cost.data(), cost.data() + rows);
        }
    }
    results.insert(results.end(), sums.data(), sums.data() + N);
    results.insert(results.end(), ties.get(), ties.get() + N);
    return results;
}

TEST_P(PairKernelsTest, PanelsHaveTheBitsOfTheScalarOnesForEveryNumberOfPoints) {
    const PairKernels& scalar = pair_kernels(InstructionSet::Scalar);
    for (std::size_t dims = 1; dims <= 4; ++dims) {
        for (std::size_t N = 2; N <= 67; ++N) {
            ASSERT_EQ(results_of_panels(kernels, N, dims), results_of_panels(scalar, N, dims))
                << N << " points in " << dims << " dimensions";
        }
    }
}

TEST_P(PairKernelsTest, LoopsOverValuesHaveTheBitsOfTheScalarOnesForEveryNumberOfValues) {
    const PairKernels& scalar = pair_kernels(InstructionSet::Scalar);
    for (std::size_t count = 0; count <= 67; ++count) {
        std::vector<double> x = test::random_values(count, 106, 2.0);
        for (double& value : x) {
            value = 1.0 + std::fabs(value);
        }
        // The value behind the last must stay.
        std::vector<double> actual(count + 1, -1.0);
        std::vector<double> expected(count + 1, -1.0);
        kernels.logarithms(x.data(), count, actual.data());
        scalar.logarithms(x.data(), count, expected.data());
        EXPECT_EQ(actual, expected);
        kernels.reciprocals(x.data(), count, actual.data());
        scalar.reciprocals(x.data(), count, expected.data());
        EXPECT_EQ(actual, expected);
        kernels.quotients(x.data(), count, 3.0, actual.data());
        scalar.quotients(x.data(), count, 3.0, expected.data());
        EXPECT_EQ(actual, expected);
        constexpr double kShift = 1.5 * 0x1p10;
        double sum = -1.0;
        double expected_sum = -2.0;
        EXPECT_EQ(kernels.rounded_sum(x.data(), count, kShift, &sum),
                  scalar.rounded_sum(x.data(), count, kShift, &expected_sum));
        EXPECT_EQ(sum, expected_sum);
    }
}

TEST(PairKernels, AreTheFastestUnlessSelected) {
    EXPECT_EQ(&pair_kernels(instruction_set()), test::all_pair_kernels().back());
    {
        const test::InstructionLimit scope(InstructionSet::Scalar);
        EXPECT_EQ(&pair_kernels(instruction_set()), &pair_kernels(InstructionSet::Scalar));
    }
    EXPECT_EQ(&pair_kernels(instruction_set()), test::all_pair_kernels().back());
}

}  // namespace
}  // namespace ovik
