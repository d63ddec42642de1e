#include "stats/sum_in_order.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numeric>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "tests/support/pair_kernels.h"
#include "tests/support/random_points.h"

namespace ovik {
namespace {

std::uint64_t bits(double value) {
    return std::bit_cast<std::uint64_t>(value);
}

double plain_sum(double start, const std::vector<double>& values) {
    return std::accumulate(values.begin(), values.end(), start);
}

void expect_plain_sum(double start, const std::vector<double>& values) {
    const double expected = plain_sum(start, values);
    for (const PairKernels* const kernels : test::all_pair_kernels()) {
        const double sum = sum_in_order(start, values.data(), values.size(), *kernels);
        if (std::isnan(expected)) {
            EXPECT_TRUE(std::isnan(sum));
        } else {
            EXPECT_EQ(bits(sum), bits(expected)) << values.size() << " values from " << start;
        }
    }
}

TEST(SumInOrder, EqualsThePlainLoopForEveryLength) {
    std::vector<double> values = test::random_values(700, 31);
    for (double& value : values) {
        value = value * value;
    }
    for (std::size_t count = 0; count <= values.size(); ++count) {
        const std::vector<double> some(values.begin(),
                                       values.begin() + static_cast<std::ptrdiff_t>(count));
        expect_plain_sum(0.0, some);
        expect_plain_sum(1e5, some);
    }
}

TEST(SumInOrder, EqualsThePlainLoopForValuesOfAnyKind) {
    for (const double odd :
         {-1.0, -0.0, 1e-310, 1e300, HUGE_VAL, -HUGE_VAL, std::nan(""), -1e-320}) {
        for (const std::size_t place : {0U, 1U, 8U, 255U, 256U, 999U}) {
            std::vector<double> values(1000, 0.1);
            values[place] = odd;
            for (const double start : {0.0, -0.0, -5.0, 1e-310, 3.0, 1e6, 1.7e308}) {
                expect_plain_sum(start, values);
            }
        }
    }
    expect_plain_sum(-0.0, std::vector<double>(600, -0.0));
    expect_plain_sum(0.0, std::vector<double>(600, 5e-324));
}

RC_GTEST_PROP(SumInOrder, EqualsThePlainLoopWithTiesAndNewUnits, ()) {
    // Multiples of a few halves of the unit of the running sum, so that many addends lie midway,
    // and sums that cross from one unit to the next.
    const auto start_units = *rc::gen::inRange<std::int64_t>(1, std::int64_t{1} << 53);
    const auto exponent = *rc::gen::inRange(-600, 600);
    const auto count = *rc::gen::inRange<std::size_t>(0, 1200);
    const auto largest = *rc::gen::element<std::int64_t>(3, 1000, std::int64_t{1} << 44);
    const auto seed = *rc::gen::arbitrary<std::uint32_t>();
    const double quarter_unit = std::ldexp(1.0, exponent - 2);
    std::mt19937_64 generator(seed);
    std::uniform_int_distribution<std::int64_t> quarters(0, largest);
    std::vector<double> values(count);
    for (double& value : values) {
        value = static_cast<double>(quarters(generator)) * quarter_unit;
    }
    const double start = std::ldexp(static_cast<double>(start_units), exponent);
    for (const PairKernels* const kernels : test::all_pair_kernels()) {
        RC_ASSERT(bits(sum_in_order(start, values.data(), count, *kernels)) ==
                  bits(plain_sum(start, values)));
    }
}

TEST(RoundingUnit, HoldsTheSumsOfItsBinade) {
    const RoundingUnit unit(5.0);
    EXPECT_EQ(unit.binade(), 4.0);
    EXPECT_EQ(unit.shift(), 6.0);
    EXPECT_EQ(unit.half(), 0x1p-51);
    EXPECT_TRUE(unit.holds(4.0));
    EXPECT_TRUE(unit.holds(std::nextafter(8.0, 0.0)));
    EXPECT_FALSE(unit.holds(8.0));
    EXPECT_FALSE(unit.holds(std::nan("")));
}

TEST(RoundingUnit, IsNoneForSumsThatAreNotOrdinary) {
    for (const double sum : {0.0, -1.0, 1e-310, HUGE_VAL, 1e300, std::nan("")}) {
        const RoundingUnit unit(sum);
        EXPECT_FALSE(unit.exists());
        EXPECT_FALSE(unit.holds(sum));
    }
}

}  // namespace
}  // namespace ovik
