#include "stats/cost_terms.h"

#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "stats/panels.h"

#include "tests/support/pair_kernels.h"
#include "tests/support/random_points.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

/// A symmetric matrix with a diagonal of 0; about half of its entries are 0 or next to it.
std::vector<double> symmetric_matrix(std::size_t N) {
    std::vector<double> P = test::random_values(N * N, 121);
    for (std::size_t n = 0; n < N; ++n) {
        for (std::size_t m = n; m < N; ++m) {
            const double value = P[n * N + m];
            P[n * N + m] =
                n == m || value > 0.8 ? 0.0 : std::exp(value < 0.0 ? 9.0 * value : -90.0);
            P[m * N + n] = P[n * N + m];
        }
    }
    return P;
}

bool has_mark(const CostTerms& terms, std::size_t N, std::size_t panel, std::size_t m) {
    const std::uint64_t word =
        terms.significant()[panel * words_per_panel(N) + m / kColumnsPerWord];
    return (word >> (m % kColumnsPerWord) & 1U) != 0;
}

TEST(CostTerms, AreTheSumsOfPlainLoops) {
    for (const std::size_t N : {2U, 9U, 67U, 200U}) {
        const std::vector<double> P = symmetric_matrix(N);
        double sum = 0.0;
        double entropy = 0.0;
        for (const double p : P) {
            sum += p;
            entropy += p > 0.0 ? p * std::log(p) : 0.0;
        }
        std::vector<double> panels = P;
        panels.resize(panel_matrix_size(N));
        rows_to_panels(panels.data(), N);
        CostTerms terms(N);
        terms.take(panels.data());
        EXPECT_NEAR(terms.sum(), sum, 1e-14 * sum);
        EXPECT_NEAR(terms.entropy(), entropy, 1e-14 * std::fabs(entropy));
    }
}

TEST(CostTerms, AreTheSameForAnyNumberOfThreadsAndInstructionSet) {
    constexpr std::size_t kCount = 203;
    std::vector<double> panels = symmetric_matrix(kCount);
    panels.resize(panel_matrix_size(kCount));
    rows_to_panels(panels.data(), kCount);
    CostTerms expected(kCount, pair_kernels(InstructionSet::Scalar));
    expected.take(panels.data());
    for (const int threads : test::kThreadCounts) {
        const test::ThreadCount scope(threads);
        for (const PairKernels* const kernels : test::all_pair_kernels()) {
            CostTerms terms(kCount, *kernels);
            terms.take(panels.data());
            EXPECT_EQ(terms.sum(), expected.sum());
            EXPECT_EQ(terms.entropy(), expected.entropy());
        }
    }
}

TEST(CostTerms, MarkThePairsThatCanBeSeenInTheCost) {
    for (const std::size_t N : {9U, 64U, 131U}) {
        const std::vector<double> P = symmetric_matrix(N);
        std::vector<double> panels = P;
        panels.resize(panel_matrix_size(N));
        rows_to_panels(panels.data(), N);
        CostTerms terms(N);
        terms.take(panels.data());
        double unmarked = 0.0;
        std::size_t marks = 0;
        for (std::size_t n = 0; n < N; ++n) {
            const std::size_t panel = n / kPanelWidth;
            for (std::size_t m = 0; m < N; ++m) {
                const bool mark = has_mark(terms, N, panel, m);
                marks += mark ? 1U : 0U;
                EXPECT_FALSE(mark && m < panel * kPanelWidth);
                unmarked += mark || m < n ? 0.0 : P[n * N + m];
            }
        }
        EXPECT_LE(unmarked, 0x1p-60 * terms.sum());
        EXPECT_GT(marks, N);
    }
}

TEST(CostTerms, MarkNoColumnOfSimilaritiesThatAreNextToZero) {
    constexpr std::size_t kCount = 64;
    std::vector<double> P(panel_matrix_size(kCount), 1e-300);
    // Rows 8 to 15, column 20.
    P[kPanelWidth * kCount + 20 * kPanelWidth + 3] = 1.0;
    CostTerms terms(kCount);
    terms.take(P.data());
    for (std::size_t panel = 0; panel < panel_count(kCount); ++panel) {
        for (std::size_t m = 0; m < kCount; ++m) {
            EXPECT_EQ(has_mark(terms, kCount, panel, m), panel == 1 && m == 20);
        }
    }
}

}  // namespace
}  // namespace ovik
