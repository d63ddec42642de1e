#include "neighbours/kernels/euclidean_kernels.h"

#include <cmath>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/instruction_sets.h"
#include "tests/support/random_points.h"

namespace ovik {
namespace {

class EuclideanKernelsTest : public testing::TestWithParam<InstructionSet> {
  protected:
    const MetricKernels& kernels = euclidean_kernels(GetParam());
};

INSTANTIATE_TEST_SUITE_P(EveryInstructionSet,
                         EuclideanKernelsTest,
                         testing::ValuesIn(test::available_instruction_sets()));

double plain_square(const std::vector<double>& rows,
                    std::size_t dims,
                    std::size_t n,
                    std::size_t m) {
    double sum = 0.0;
    for (std::size_t d = 0; d < dims; ++d) {
        const double difference = rows[m * dims + d] - rows[n * dims + d];
        sum += difference * difference;
    }
    return sum;
}

std::vector<double> by_column(const std::vector<double>& rows,
                              std::size_t dims,
                              std::size_t stride) {
    // One more, so that columns of no coordinates have an address, as those of the index have.
    std::vector<double> columns(dims * stride + 1, 0.0);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        columns[i % dims * stride + i / dims] = rows[i];
    }
    return columns;
}

TEST_P(EuclideanKernelsTest, GiveTheSquaresOfAPlainLoopForEveryNumberOfPoints) {
    for (const std::size_t dims : {1U, 2U, 7U}) {
        for (std::size_t N = 1; N <= 67; ++N) {
            const std::vector<double> rows = test::random_values(N * dims, 11);
            const std::size_t stride =
                (N + kColumnMultiple - 1) / kColumnMultiple * kColumnMultiple;
            const std::vector<double> columns = by_column(rows, dims, stride);
            for (std::size_t n = 0; n < N; ++n) {
                // The value behind the last must stay.
                std::vector<double> actual(N + 1, -1.0);
                kernels.squared_distances({columns.data(), N, stride, dims}, n, actual.data());
                for (std::size_t m = 0; m < N; ++m) {
                    ASSERT_EQ(actual[m], plain_square(rows, dims, n, m)) << N << " points";
                }
                ASSERT_EQ(actual[N], -1.0);
            }
        }
    }
}

TEST_P(EuclideanKernelsTest, WriteNoSquaresWithoutPoints) {
    double untouched = -1.0;
    kernels.squared_distances({nullptr, 0, 0, 3}, 0, &untouched);
    EXPECT_EQ(untouched, -1.0);
}

TEST_P(EuclideanKernelsTest, GiveTheDistancesOfABlockForEveryNumberOfCoordinates) {
    for (std::size_t dims = 0; dims <= 67; ++dims) {
        const std::vector<double> points = test::random_values(kBlockPoints * dims, 12);
        const std::vector<double> block = by_column(points, dims, kBlockPoints);
        std::vector<double> all = test::random_values(kTargets * dims, 13);
        const double* targets[kTargets];
        for (std::size_t t = 0; t < kTargets; ++t) {
            targets[t] = all.data() + t * dims;
        }
        std::vector<double> actual(kTargets * kBlockPoints, -1.0);
        kernels.block_distances(block.data(), targets, dims, actual.data());
        all.insert(all.end(), points.begin(), points.end());
        for (std::size_t i = 0; i < actual.size(); ++i) {
            ASSERT_EQ(
                actual[i],
                std::sqrt(plain_square(all, dims, i / kBlockPoints, kTargets + i % kBlockPoints)))
                << dims << " coordinates";
        }
    }
}

TEST_P(EuclideanKernelsTest, LetNumbersThatAreNotFiniteThrough) {
    const double inf = std::numeric_limits<double>::infinity();
    const std::vector<double> columns = {0.0, inf, -inf, std::nan(""), 1e200, 0.0, 0.0, 0.0};
    double actual[5] = {};
    kernels.squared_distances({columns.data(), 5, 8, 1}, 0, actual);
    EXPECT_EQ(actual[1], inf);
    EXPECT_EQ(actual[2], inf);
    EXPECT_TRUE(std::isnan(actual[3]));
    EXPECT_EQ(actual[4], inf);
}

}  // namespace
}  // namespace ovik
