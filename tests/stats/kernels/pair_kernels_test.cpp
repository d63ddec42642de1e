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

TEST_P(PairKernelsTest, BinaryLogarithmsAreCloseAndTheSameForEveryInstructionSet) {
    std::mt19937_64 generator(107);
    std::uniform_real_distribution<double> significand(1.0, 2.0);
    std::uniform_int_distribution<int> exponent(0, 211);
    std::vector<double> x = {1.0, 0x1.fffffffffffffp211};
    // The ends of the sixteenths, where the error is largest, and numbers between.
    for (int i = 16; i <= 32; ++i) {
        x.push_back(i / 16.0);
        x.push_back(std::nextafter(i / 8.0, 0.0));
    }
    for (int i = 0; i < 50000; ++i) {
        x.push_back(std::ldexp(significand(generator), i % 2 == 0 ? 0 : exponent(generator)));
    }
    std::vector<double> actual(x.size());
    std::vector<double> portable(x.size());
    kernels.binary_logarithms(x.data(), x.size(), actual.data());
    pair_kernels(InstructionSet::Scalar).binary_logarithms(x.data(), x.size(), portable.data());
    EXPECT_EQ(actual, portable);
    for (std::size_t i = 0; i < x.size(); ++i) {
        const double expected = std::log2(x[i]);
        ASSERT_NEAR(actual[i], expected, 1e-13 + 2e-16 * std::fabs(expected)) << x[i];
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

/// The similarity of two points that are stored coordinate by coordinate.
double plain_similarity(const std::vector<double>& columns,
                        std::size_t dims,
                        std::size_t n,
                        std::size_t m) {
    const std::size_t stride = columns.size() / dims;
    double squared_distance = 0.0;
    for (std::size_t d = 0; d < dims; ++d) {
        const double difference = columns[d * stride + n] - columns[d * stride + m];
        squared_distance += difference * difference;
    }
    return 1.0 / (squared_distance + 1.0);
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
                    ASSERT_EQ(q[m], m == n ? 0.0 : plain_similarity(columns, dims, n, m));
                }
            }
        }
    }
}

TEST_P(PairKernelsTest, SumsOfSimilaritiesAreThoseOfAPlainLoopForEveryNumberOfPoints) {
    for (std::size_t dims = 1; dims <= 4; ++dims) {
        for (std::size_t N = 1; N <= 67; ++N) {
            const std::vector<double> columns = embedding_columns(N, dims);
            const std::size_t stride = padded_to_panels(N);
            std::vector<double> sums(stride);
            for (std::size_t panel = 0; panel * kPanelWidth < N; ++panel) {
                kernels.similarity_sums(
                    {columns.data(), N, dims}, panel, sums.data() + panel * kPanelWidth);
            }
            for (std::size_t n = 0; n < N; ++n) {
                double sum = 0.0;
                for (std::size_t m = 0; m < N; ++m) {
                    sum += m == n ? 0.0 : plain_similarity(columns, dims, n, m);
                }
                ASSERT_EQ(sums[n], sum) << n << " of " << N;
            }
        }
    }
}

/// What the sums over panels write for the rows of points, one after the other.
std::vector<double> sums_of_panels(const PairKernels& kernels, std::size_t N, std::size_t dims) {
    const std::vector<double> columns = embedding_columns(N, dims);
    const EmbeddingColumns Y = {columns.data(), N, dims};
    const std::size_t padded = padded_to_panels(N);
    const std::vector<double> shifts(padded, 1.5 * 0x1p10);
    const std::vector<double> half_units(padded, 0x1p-43);
    std::vector<double> sums(padded, 0.0);
    const auto ties = std::make_unique<bool[]>(padded);
    for (std::size_t panel = 0; panel < padded / kPanelWidth; ++panel) {
        kernels.add_rounded_similarities(
            Y, panel, {shifts.data(), half_units.data()}, {sums.data(), ties.get()});
    }
    std::vector<double> results;
    results.insert(results.end(), sums.data(), sums.data() + N);
    results.insert(results.end(), ties.get(), ties.get() + N);
    return results;
}

/// A symmetric matrix by panels, with zeros in its diagonal.
std::vector<double> symmetric_panels(std::size_t N) {
    std::vector<double> P(padded_to_panels(N) * N, 0.0);
    for (std::size_t n = 0; n < N; ++n) {
        for (std::size_t m = 0; m < N; ++m) {
            P[n / kPanelWidth * kPanelWidth * N + m * kPanelWidth + n % kPanelWidth] =
                n == m ? 0.0 : 1e-4 * static_cast<double>((n + m) % 5);
        }
    }
    return P;
}

struct ForcesAndCosts {
    std::vector<double> forces;
    std::vector<double> costs;
};

/// By blocks of some rows and of as many columns as a word tells of.
ForcesAndCosts sums_of_blocks(const PairKernels& kernels,
                              std::size_t N,
                              std::size_t dims,
                              std::size_t rows_per_block) {
    const std::vector<double> columns = embedding_columns(N, dims);
    const EmbeddingColumns Y = {columns.data(), N, dims};
    const std::vector<double> P = symmetric_panels(N);
    const std::size_t padded = padded_to_panels(N);
    std::vector<std::uint64_t> significant(padded / kPanelWidth * words_per_panel(N), 0);
    for (std::size_t n = 0; n < padded; n += kPanelWidth) {
        for (std::size_t m = n; m < N; ++m) {
            significant[n / kPanelWidth * words_per_panel(N) + m / kColumnsPerWord] |=
                std::uint64_t{m % 7 != 3} << (m % kColumnsPerWord);
        }
    }
    ForcesAndCosts sums = {std::vector<double>(padded * dims), std::vector<double>(padded)};
    for (std::size_t row = 0; row < N; row += rows_per_block) {
        for (std::size_t column = row / kColumnsPerWord * kColumnsPerWord; column < N;
             column += kColumnsPerWord) {
            const PairBlock block = {row, row + rows_per_block, column, column + kColumnsPerWord};
            kernels.add_forces(Y, block, {100.0, P.data(), sums.forces.data()});
            kernels.add_costs(Y, block, {P.data(), significant.data(), sums.costs.data()});
        }
    }
    // What lies behind the last point is nobody's.
    for (std::size_t n = N; n < padded; ++n) {
        sums.costs[n] = 0.0;
        for (std::size_t d = 0; d < dims; ++d) {
            sums.forces[n / kPanelWidth * kPanelWidth * dims + d * kPanelWidth + n % kPanelWidth] =
                0.0;
        }
    }
    return sums;
}

/// The sum over m, in order, of the offsets from m times the multiplier.
double plain_force(std::size_t N, std::size_t dims, std::size_t n, std::size_t d) {
    const std::vector<double> columns = embedding_columns(N, dims);
    const std::size_t stride = padded_to_panels(N);
    double force = 0.0;
    for (std::size_t m = 0; m < N; ++m) {
        const double q = plain_similarity(columns, dims, n, m);
        const double p = n == m ? 0.0 : 1e-4 * static_cast<double>((n + m) % 5);
        force += (columns[d * stride + n] - columns[d * stride + m]) * (q * (p - q / 100.0));
    }
    return force;
}

TEST_P(PairKernelsTest, ForcesAreThoseOfAPlainLoopForEveryNumberOfPoints) {
    for (std::size_t dims = 1; dims <= 4; ++dims) {
        for (const std::size_t N : {2U, 7U, 8U, 9U, 20U, 63U, 64U, 65U, 67U, 131U}) {
            const ForcesAndCosts sums = sums_of_blocks(kernels, N, dims, 24);
            for (std::size_t n = 0; n < N; n += N < 64 ? 1 : 5) {
                for (std::size_t d = 0; d < dims; ++d) {
                    ASSERT_EQ(sums.forces[n / kPanelWidth * kPanelWidth * dims + d * kPanelWidth +
                                          n % kPanelWidth],
                              plain_force(N, dims, n, d))
                        << n << " of " << N << " points in " << dims << " dimensions";
                }
            }
        }
    }
}

TEST_P(PairKernelsTest, CostsAreThoseOfAPlainLoopOverSignificantPairs) {
    constexpr std::size_t kPoints = 131;
    const std::vector<double> P = symmetric_panels(kPoints);
    const std::vector<double> costs = sums_of_blocks(kernels, kPoints, 2, 24).costs;
    const std::vector<double> columns = embedding_columns(kPoints, 2);
    const double* const x = columns.data();
    const double* const y = x + padded_to_panels(kPoints);
    for (std::size_t n = 0; n < kPoints; ++n) {
        const std::size_t panel = n / kPanelWidth * kPanelWidth;
        double expected = 0.0;
        for (std::size_t m = panel; m < kPoints; ++m) {
            const double p = P[panel * kPoints + m * kPanelWidth + n % kPanelWidth];
            const double squared_distance =
                (x[n] - x[m]) * (x[n] - x[m]) + (y[n] - y[m]) * (y[n] - y[m]);
            const double share = m < panel + kPanelWidth ? 0.5 : 1.0;
            expected += m % 7 == 3 ? 0.0 : share * p * std::log2(1.0 + squared_distance);
        }
        ASSERT_NEAR(costs[n], expected, 1e-14) << n;
    }
}

TEST_P(PairKernelsTest, BlocksHaveTheBitsOfTheScalarOnesForEveryNumberOfPointsAndRows) {
    const PairKernels& scalar = pair_kernels(InstructionSet::Scalar);
    for (std::size_t dims = 1; dims <= 4; ++dims) {
        for (std::size_t N = 2; N <= 67; ++N) {
            const ForcesAndCosts expected = sums_of_blocks(scalar, N, dims, 128);
            for (const std::size_t rows : {8U, 24U, 128U}) {
                const ForcesAndCosts actual = sums_of_blocks(kernels, N, dims, rows);
                ASSERT_EQ(actual.forces, expected.forces) << N << " x " << dims;
                ASSERT_EQ(actual.costs, expected.costs) << N << " x " << dims;
            }
        }
    }
}

TEST_P(PairKernelsTest, PanelsHaveTheBitsOfTheScalarOnesForEveryNumberOfPoints) {
    const PairKernels& scalar = pair_kernels(InstructionSet::Scalar);
    for (std::size_t dims = 1; dims <= 4; ++dims) {
        for (std::size_t N = 2; N <= 67; ++N) {
            ASSERT_EQ(sums_of_panels(kernels, N, dims), sums_of_panels(scalar, N, dims))
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
        kernels.binary_logarithms(x.data(), count, actual.data());
        scalar.binary_logarithms(x.data(), count, expected.data());
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
