#include "stats/similarity_sum.h"

#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "tests/plain/plain_tsne.h"
#include "tests/support/pair_kernels.h"
#include "tests/support/random_points.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

double plain_sum(const std::vector<double>& Y, std::size_t N, std::size_t dims) {
    const std::vector<double> distances = plain::squared_distances(Y, N, dims);
    double sum = 0.0;
    for (std::size_t n = 0; n < N; ++n) {
        for (std::size_t m = 0; m < N; ++m) {
            if (m != n) {
                sum += 1.0 / (distances[n * N + m] + 1.0);
            }
        }
    }
    return sum;
}

std::vector<double> padded_columns(const std::vector<double>& Y, std::size_t N, std::size_t dims) {
    std::vector<double> columns(padded_to_panels(N) * dims, 0.0);
    for (std::size_t i = 0; i < N * dims; ++i) {
        columns[i % dims * padded_to_panels(N) + i / dims] = Y[i];
    }
    return columns;
}

/// Twice for each embedding: the second time the units of the rows are known.
void expect_plain_sums(const std::vector<std::vector<double>>& embeddings,
                       std::size_t N,
                       std::size_t dims) {
    std::vector<double> expected;
    for (const auto& Y : embeddings) {
        expected.push_back(plain_sum(Y, N, dims));
    }
    for (const PairKernels* const kernels : test::all_pair_kernels()) {
        SimilaritySum sum(N, *kernels);
        for (std::size_t i = 0; i < embeddings.size(); ++i) {
            const std::vector<double> columns = padded_columns(embeddings[i], N, dims);
            EXPECT_EQ(sum({columns.data(), N, dims}), expected[i]) << N << " x " << dims;
            EXPECT_EQ(sum({columns.data(), N, dims}), expected[i]) << N << " x " << dims;
        }
    }
}

TEST(SimilaritySum, EqualsThePlainLoopForEveryNumberOfPoints) {
    for (const std::size_t dims : {1U, 2U, 3U, 5U}) {
        for (std::size_t N = 0; N <= 67; ++N) {
            // The first is that of a start; in the second and third many similarities lie midway
            // between two multiples of the unit.
            expect_plain_sums({test::random_values(N * dims, 41, 1e-4),
                               test::random_values(N * dims, 42, 0.1),
                               test::random_values(N * dims, 43, 1.0),
                               test::random_values(N * dims, 44, 1e30)},
                              N,
                              dims);
        }
    }
}

TEST(SimilaritySum, EqualsThePlainLoopForAnyNumberOfThreads) {
    constexpr std::size_t kCount = 603;
    for (const int threads : test::kThreadCounts) {
        const test::ThreadCount scope(threads);
        expect_plain_sums({test::random_values(kCount * 2, 45, 1e-4),
                           test::random_values(kCount * 2, 46, 3.0),
                           test::random_values(kCount * 2, 47, 30.0),
                           test::random_values(kCount * 2, 48, 1e-2)},
                          kCount,
                          2);
    }
}

TEST(SimilaritySum, TakesTiesOneByOne) {
    // Distances of whole numbers and of quarters: similarities with few digits among others.
    constexpr std::size_t kCount = 150;
    std::vector<double> Y = test::random_values(kCount, 49, 2.0);
    for (std::size_t i = 0; i < kCount; ++i) {
        Y[i] = i % 5 == 0 ? Y[i] : std::round(Y[i] * 0x1p20) * 0x1p-20;
    }
    expect_plain_sums({Y, std::vector<double>(kCount, 0.5), Y}, kCount, 1);
}

}  // namespace
}  // namespace ovik
