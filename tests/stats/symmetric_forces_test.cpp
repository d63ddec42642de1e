#include "stats/symmetric_forces.h"

#include <cmath>
#include <numeric>
#include <vector>

#include <gtest/gtest.h>

#include "stats/exact_forces.h"
#include "stats/panels.h"

#include "tests/support/pair_kernels.h"
#include "tests/support/random_points.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

/// Symmetric similarities that sum to 1, some of them 0, with a diagonal.
std::vector<double> symmetric_matrix(std::size_t N, double diagonal) {
    std::vector<double> P = test::random_values(N * N, 61);
    for (std::size_t n = 0; n < N; ++n) {
        for (std::size_t m = n; m < N; ++m) {
            const double value = P[n * N + m];
            P[n * N + m] = m == n ? diagonal : (value < -1.5 ? 0.0 : std::exp(4.0 * value));
            P[m * N + n] = P[n * N + m];
        }
    }
    const double sum = std::accumulate(P.begin(), P.end(), 0.0);
    for (double& p : P) {
        p /= sum;
    }
    return P;
}

struct Result {
    std::vector<double> gradient;
    double cost = 0.0;
};

/// Of both calls, which are to agree.
Result result(SymmetricForces& forces,
              const std::vector<double>& P,
              const std::vector<double>& Y,
              std::size_t N) {
    std::vector<double> panels = P;
    panels.resize(panel_matrix_size(N));
    std::vector<double> diagonal(N);
    for (std::size_t n = 0; n < N; ++n) {
        diagonal[n] = P[n * N + n];
        panels[n * N + n] = 0.0;
    }
    rows_to_panels(panels.data(), N);
    forces.takeAffinities(panels.data(), diagonal.data());
    EXPECT_TRUE(forces.take(Y.data()));
    Result both;
    both.gradient.resize(Y.size(), -7.0);
    std::vector<double> alone(Y.size(), -8.0);
    both.cost = forces.cost(both.gradient.data());
    forces.gradient(alone.data());
    EXPECT_EQ(alone, both.gradient);
    EXPECT_EQ(forces.cost(nullptr), both.cost);
    return both;
}

/// The gradient is that of the plain loops; the cost the same everywhere, and close to theirs.
void expect_exact_values(const std::vector<double>& P,
                         const std::vector<double>& Y,
                         std::size_t N) {
    const std::size_t dims = Y.size() / N;
    std::vector<double> gradient(Y.size());
    exact_gradient(P.data(), Y.data(), N, dims, gradient.data());
    const double cost = exact_cost(P.data(), Y.data(), N, dims);
    SymmetricForces portable(
        N, dims, platform_elementary().log, pair_kernels(InstructionSet::Scalar));
    const Result expected = result(portable, P, Y, N);
    EXPECT_EQ(expected.gradient, gradient) << N << " x " << dims;
    EXPECT_NEAR(expected.cost, cost, 1e-12) << N << " x " << dims;
    for (const PairKernels* const kernels : test::all_pair_kernels()) {
        SymmetricForces forces(N, dims, platform_elementary().log, *kernels);
        const Result actual = result(forces, P, Y, N);
        EXPECT_EQ(actual.gradient, gradient) << N << " x " << dims;
        EXPECT_EQ(actual.cost, expected.cost) << N << " x " << dims;
    }
}

TEST(SymmetricForces, EqualTheLoopsOverAllPairsForEveryNumberOfPoints) {
    for (const std::size_t dims : {1U, 2U, 3U, 5U}) {
        for (std::size_t N = 2; N <= 67; ++N) {
            const std::vector<double> P = symmetric_matrix(N, 1e-308);
            for (const double scale : {1e-4, 1.0, 50.0}) {
                expect_exact_values(P, test::random_values(N * dims, 62, scale), N);
            }
        }
    }
}

TEST(SymmetricForces, EqualTheLoopsOverAllPairsForAnyNumberOfThreads) {
    constexpr std::size_t kCount = 603;
    const std::vector<double> P = symmetric_matrix(kCount, 1e-308);
    for (const int threads : test::kThreadCounts) {
        const test::ThreadCount scope(threads);
        expect_exact_values(P, test::random_values(kCount * 2, 63, 10.0), kCount);
    }
}

TEST(SymmetricForces, CountTheDiagonalInTheCost) {
    constexpr std::size_t kCount = 70;
    expect_exact_values(
        symmetric_matrix(kCount, 2.5), test::random_values(kCount * 2, 64, 3.0), kCount);
}

TEST(SymmetricForces, HoldForTheLargestCoordinatesAndForCoincidentPoints) {
    constexpr std::size_t kCount = 70;
    const std::vector<double> P = symmetric_matrix(kCount, 0.0);
    std::vector<double> Y = test::random_values(kCount * 2, 65);
    Y[4] = kLargestCoordinate;
    Y[7] = -kLargestCoordinate;
    expect_exact_values(P, Y, kCount);
    expect_exact_values(P, std::vector<double>(kCount * 2, 0.25), kCount);
    for (double& y : Y) {
        y = y < 0.0 ? -kLargestCoordinate : kLargestCoordinate;
    }
    expect_exact_values(P, Y, kCount);
}

TEST(SymmetricForces, FollowAnEmbeddingThatMoves) {
    constexpr std::size_t kCount = 130;
    const std::vector<double> P = symmetric_matrix(kCount, 1e-308);
    for (const PairKernels* const kernels : test::all_pair_kernels()) {
        SymmetricForces forces(kCount, 2, platform_elementary().log, *kernels);
        for (const double scale : {1e-4, 0.3, 7.0, 90.0, 2.0, 1e-3}) {
            const std::vector<double> Y = test::random_values(kCount * 2, 66, scale);
            std::vector<double> gradient(Y.size());
            exact_gradient(P.data(), Y.data(), kCount, 2, gradient.data());
            EXPECT_EQ(result(forces, P, Y, kCount).gradient, gradient);
        }
    }
}

TEST(SymmetricForces, TakeNoEmbeddingOutOfRange) {
    SymmetricForces forces(3, 2, platform_elementary().log);
    for (const double odd :
         {std::nan(""), HUGE_VAL, -HUGE_VAL, std::nextafter(kLargestCoordinate, HUGE_VAL)}) {
        for (std::size_t place = 0; place < 6; ++place) {
            std::vector<double> Y = {1.0, 2.0, 3.0, 4.0, 5.0, 6.0};
            EXPECT_TRUE(forces.take(Y.data()));
            Y[place] = odd;
            EXPECT_FALSE(forces.take(Y.data()));
        }
    }
}

}  // namespace
}  // namespace ovik
