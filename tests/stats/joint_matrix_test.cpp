#include "stats/joint_matrix.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numeric>
#include <stdexcept>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "stats/elementwise.h"
#include "stats/sliced_attraction.h"
#include "stats/sparse_affinities.h"

#include "tests/support/malloc_copy.h"
#include "tests/support/random_points.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

/// Neighbours of which many are mutual, and affinities that are positive and differ.
struct Conditional {
    Conditional(std::size_t rows, std::size_t neighbours) : N(rows), K(neighbours) {
        std::uint32_t state = 5;
        const std::vector<double> random = test::random_values(N * K + 1, 17);
        for (std::size_t n = 0; n < N; ++n) {
            for (std::size_t k = 0; k < K; ++k) {
                std::uint32_t column = 0;
                const auto row = columns.end() - static_cast<std::ptrdiff_t>(k);
                // Near rows on both sides, without one that is there already.
                do {
                    state = state * 1664525U + 1013904223U;
                    column = static_cast<std::uint32_t>(
                        (n + N + (state >> 8U) % (2 * K + 3) - K - 1) % N);
                } while (column == n || std::find(row, columns.end(), column) != columns.end());
                columns.push_back(column);
                values.push_back(1.0 / (2.0 + std::fabs(random[n * K + k])) /
                                 static_cast<double>(K));
            }
        }
    }

    /// Makes entry k of a row and those behind it what a row with fewer neighbours has.
    void end(std::size_t row, std::size_t k) {
        std::fill_n(columns.begin() + static_cast<std::ptrdiff_t>(row * K + k), K - k, row);
        std::fill_n(values.begin() + static_cast<std::ptrdiff_t>(row * K + k), K - k, 0.0);
    }

    [[nodiscard]] ConditionalRows rows(ValueForm form) const {
        ConditionalRows rows;
        rows.rows = N;
        rows.row_length = K;
        rows.form = form;
        rows.columns = test::malloc_copy(columns);
        if (form == ValueForm::Double) {
            rows.doubles = test::malloc_copy(values);
        } else if (form == ValueForm::Single) {
            rows.singles = test::malloc_copy(std::vector<float>(values.begin(), values.end()));
        }
        return rows;
    }

    /// What follows by way of a symmetric matrix in compressed rows.
    [[nodiscard]] SlicedMatrix expected(std::size_t dims) const {
        std::vector<unsigned int> row_P(N + 1);
        for (std::size_t n = 0; n <= N; ++n) {
            row_P[n] = static_cast<unsigned int>(n * K);
        }
        SparseMatrix P = symmetrized({row_P.data(), columns.data(), values.data()}, N);
        divide_by_sum(P.val_P.get(), P.row_P[N]);
        return {std::move(P), N, dims};
    }

    std::size_t N;
    std::size_t K;
    std::vector<std::uint32_t> columns;
    std::vector<double> values;
};

/// Some order: the rows in steps of a number that has no divisor in common with theirs.
std::vector<std::uint32_t> mixed(std::size_t N) {
    std::size_t step = N / 3 + 1;
    while (std::gcd(step, N) != 1) {
        ++step;
    }
    std::vector<std::uint32_t> order;
    for (std::size_t n = 0; n < N; ++n) {
        order.push_back(static_cast<std::uint32_t>((n * step + 1) % N));
    }
    return order;
}

using Entries = std::vector<std::pair<std::size_t, double>>;

/// The entries of a row, columns as the matrix counts them.
Entries entries_of(const SlicedMatrix& matrix, std::size_t row, std::size_t dims) {
    std::vector<std::size_t> row_at(matrix.rowCount());
    for (std::size_t n = 0; n < matrix.rowCount(); ++n) {
        row_at[matrix.positionOf(n)] = n;
    }
    Entries entries;
    matrix.forEachEntry(row, [&](std::size_t place, double value) {
        EXPECT_EQ(place % dims, 0U);
        entries.emplace_back(row_at[place / dims], value);
    });
    return entries;
}

void expect_equal(const SlicedMatrix& actual, const SlicedMatrix& expected, std::size_t dims) {
    ASSERT_EQ(actual.rowCount(), expected.rowCount());
    EXPECT_EQ(actual.entryCount(), expected.entryCount());
    // All rows of small matrices.
    for (std::size_t n = 0; n < expected.rowCount(); n += 1 + expected.rowCount() / 500) {
        EXPECT_EQ(entries_of(actual, n, dims), entries_of(expected, n, dims)) << n;
    }
}

// Around whole slices and whole windows.
constexpr std::size_t kCounts[] = {9, 16, 17, 300, 4096, 4100, 8400};
constexpr std::size_t kNeighbours = 4;

TEST(JointMatrix, HasTheEntriesOfTheSymmetricFormInItsOrder) {
    for (const std::size_t N : kCounts) {
        const Conditional conditional(N, kNeighbours);
        const SlicedMatrix expected = conditional.expected(2);
        for (const int threads : test::kThreadCounts) {
            const test::ThreadCount scope(threads);
            expect_equal(joint_matrix(conditional.rows(ValueForm::Double), 2), expected, 2);
            expect_equal(
                joint_matrix(conditional.rows(ValueForm::Double), 2, test::malloc_copy(mixed(N))),
                expected,
                2);
        }
    }
}

TEST(JointMatrix, HasRowsWithFewerNeighboursAndRowsThatHaveThemselves) {
    Conditional conditional(40, kNeighbours);
    conditional.end(0, 1);
    conditional.end(17, 0);
    conditional.end(39, 3);
    conditional.columns[5 * kNeighbours + 1] = 5;
    for (const std::size_t dims : {1U, 3U}) {
        const SlicedMatrix expected = conditional.expected(dims);
        expect_equal(joint_matrix(conditional.rows(ValueForm::Double), dims), expected, dims);
        expect_equal(
            joint_matrix(conditional.rows(ValueForm::Double), dims, test::malloc_copy(mixed(40))),
            expected,
            dims);
    }
}

TEST(JointMatrix, TellsUniformAffinitiesFromTheirDoublesBitByBit) {
    for (const std::size_t K : {3U, 4U, 7U}) {
        for (const std::size_t N : {20U, 300U, 4100U}) {
            Conditional conditional(N, K);
            std::fill(
                conditional.values.begin(), conditional.values.end(), 1.0 / static_cast<double>(K));
            SlicedMatrix expected = conditional.expected(2);
            SlicedMatrix plain = joint_matrix(conditional.rows(ValueForm::OneOrTwo), 2);
            SlicedMatrix reordered =
                joint_matrix(conditional.rows(ValueForm::OneOrTwo), 2, test::malloc_copy(mixed(N)));
            EXPECT_EQ(plain.slices().values, nullptr);
            EXPECT_EQ(plain.slices().singles, nullptr);
            expect_equal(plain, expected, 2);
            expect_equal(reordered, expected, 2);
            for (SlicedMatrix* const matrix : {&expected, &plain, &reordered}) {
                matrix->multiply(12.1);
                matrix->divide(11.3);
            }
            expect_equal(plain, expected, 2);
            expect_equal(reordered, expected, 2);
            EXPECT_EQ(plain.sums().entropy, expected.sums().entropy);
            EXPECT_EQ(plain.sums().weight, expected.sums().weight);
            EXPECT_EQ(reordered.sums().entropy, expected.sums().entropy);
        }
    }
}

TEST(JointMatrix, RoundsValuesOfSinglePrecisionAndDividesTheirFactor) {
    constexpr std::size_t kRows = 500;
    const Conditional conditional(kRows, kNeighbours);
    // The definition: conditional affinities rounded, their mean rounded, all divided by the sum.
    std::vector<Entries> rows(kRows);
    const auto stored = [&](std::size_t row, std::size_t column) {
        for (std::size_t i = row * kNeighbours; i < (row + 1) * kNeighbours; ++i) {
            if (conditional.columns[i] == column) {
                return static_cast<double>(static_cast<float>(conditional.values[i]));
            }
        }
        return 0.0;
    };
    const SlicedMatrix symmetric = conditional.expected(2);
    double sum = 0.0;
    for (std::size_t n = 0; n < kRows; ++n) {
        for (const auto& [column, value] : entries_of(symmetric, n, 2)) {
            const auto mean = static_cast<float>((stored(n, column) + stored(column, n)) * 0.5);
            rows[n].emplace_back(column, static_cast<double>(mean));
            sum += static_cast<double>(mean);
        }
    }
    for (const bool is_reordered : {false, true}) {
        const SlicedMatrix matrix =
            joint_matrix(conditional.rows(ValueForm::Single),
                         2,
                         is_reordered ? test::malloc_copy(mixed(kRows)) : nullptr);
        EXPECT_EQ(matrix.slices().values, nullptr);
        for (std::size_t n = 0; n < kRows; ++n) {
            Entries expected = rows[n];
            for (auto& [column, value] : expected) {
                value *= 1.0 / sum;
            }
            EXPECT_EQ(entries_of(matrix, n, 2), expected) << n;
        }
    }
}

/// Forces and cost of an embedding.
std::pair<std::vector<double>, double> attraction_of(SlicedMatrix matrix, std::size_t dims) {
    const std::size_t N = matrix.rowCount();
    const std::vector<double> Y = test::random_values(N * dims, 23, 3.0);
    std::vector<double> forces(N * dims, -7.0);
    SlicedAttraction attraction(std::move(matrix), dims, platform_elementary().log);
    attraction.prepare(Y.data());
    attraction.pass(Y.data(), {0, N}, forces.data(), true);
    return {forces, attraction.cost(Y.data(), 1e3)};
}

TEST(JointMatrix, GivesTheSameForcesAndTheSameCostInAnyOrder) {
    for (const std::size_t dims : {2U, 3U, 4U}) {
        for (const ValueForm form : {ValueForm::Double, ValueForm::Single, ValueForm::OneOrTwo}) {
            const Conditional conditional(4100, kNeighbours);
            const auto expected = attraction_of(joint_matrix(conditional.rows(form), dims), dims);
            const auto reordered = attraction_of(
                joint_matrix(conditional.rows(form), dims, test::malloc_copy(mixed(4100))), dims);
            EXPECT_EQ(reordered.first, expected.first);
            EXPECT_EQ(reordered.second, expected.second);
        }
        const Conditional conditional(4100, kNeighbours);
        EXPECT_EQ(attraction_of(joint_matrix(conditional.rows(ValueForm::Double), dims), dims),
                  attraction_of(conditional.expected(dims), dims));
    }
}

TEST(JointMatrix, RefusesMorePlacesThanItCanCount) {
    for (const ValueForm form : {ValueForm::Double, ValueForm::OneOrTwo}) {
        ConditionalRows rows;
        rows.rows = std::size_t{1} << 31U;
        rows.form = form;
        EXPECT_THROW((void)joint_matrix(std::move(rows), 1), std::length_error);
    }
    ConditionalRows rows;
    rows.rows = std::size_t{1} << 30U;
    rows.form = ValueForm::OneOrTwo;
    EXPECT_THROW((void)joint_matrix(std::move(rows), 2), std::length_error);
}

}  // namespace
}  // namespace ovik
