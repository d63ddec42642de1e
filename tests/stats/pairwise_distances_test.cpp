#include "stats/pairwise_distances.h"

#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "stats/tsne.h"
#include "util/input_error.h"

#include "tests/plain/plain_tsne.h"
#include "tests/support/instruction_sets.h"
#include "tests/support/random_points.h"
#include "tests/support/threads.h"
#include "tests/support/toy_metrics.h"

namespace ovik {
namespace {

TEST(SquaredDistanceMatrix, EqualsThePlainProgramBitForBit) {
    for (const std::size_t dims : {1U, 2U, 3U, 36U}) {
        constexpr std::size_t kCount = 101;
        const std::vector<double> points = test::random_values(kCount * dims, 1);
        const std::vector<double> expected = plain::squared_distances(points, kCount, dims);
        for (const int threads : test::kThreadCounts) {
            const test::ThreadCount scope(threads);
            std::vector<double> actual(kCount * kCount, -1.0);
            squared_distance_matrix(points.data(), kCount, dims, actual.data());
            EXPECT_EQ(actual, expected);
        }
    }
}

TEST(SquaredDistanceMatrix, EqualsThePlainProgramForEveryInstructionSetAndNumberOfPoints) {
    for (const InstructionSet set : test::available_instruction_sets()) {
        const test::InstructionLimit limit(set);
        for (std::size_t N = 0; N <= 67; ++N) {
            const std::vector<double> points = test::random_values(N * 3, 2);
            std::vector<double> actual(N * N, -1.0);
            squared_distance_matrix(points.data(), N, 3, actual.data());
            EXPECT_EQ(actual, plain::squared_distances(points, N, 3));
        }
    }
}

TEST(SquaredDistanceMatrix, IsThatOfTheMetric) {
    const std::vector<double> points = {0.0, 0.0, 3.0, -4.0, -1.0, 1.0};
    std::vector<double> actual(9, -1.0);
    squared_distance_matrix(points.data(), 3, 2, actual.data(), test::kMaximumMetric);
    EXPECT_EQ(actual, (std::vector<double>{0, 16, 1, 16, 0, 25, 1, 25, 0}));
}

TEST(SquaredDistanceMatrix, TakesNoPointsThatTheMetricComplainsOf) {
    const double points[] = {1.0, -1.0};
    double distances[4] = {};
    EXPECT_THROW(squared_distance_matrix(points, 2, 1, distances, test::kComplainingMetric),
                 InputError);
}

TEST(SquaredDistanceMatrix, HasAZeroDiagonalEvenForInfinitePoints) {
    const double points[] = {std::numeric_limits<double>::infinity(), 1.0};
    double distances[4] = {};
    squared_distance_matrix(points, 2, 1, distances);
    EXPECT_EQ(distances[0], 0.0);
    EXPECT_EQ(distances[3], 0.0);
}

TEST(ComputeSquaredEuclideanDistance, WritesNothingWithoutPoints) {
    double untouched = -1.0;
    TSNE<double>::computeSquaredEuclideanDistance(nullptr, 0, 2, &untouched);
    EXPECT_EQ(untouched, -1.0);
}

TEST(ComputeSquaredEuclideanDistance, IsZeroForOnePoint) {
    const double point[] = {3.0, 4.0};
    double distance = -1.0;
    TSNE<double>::computeSquaredEuclideanDistance(point, 1, 2, &distance);
    EXPECT_EQ(distance, 0.0);
}

}  // namespace
}  // namespace ovik
