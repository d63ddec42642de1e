#include "stats/sliced_matrix.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <stdexcept>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/malloc_copy.h"
#include "tests/support/random_points.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

/// A matrix whose rows have 0 to 40 entries, in no order.
struct Rows {
    explicit Rows(std::size_t N) : row_P{0} {
        const std::vector<double> random = test::random_values(N + 1, 91);
        for (std::size_t n = 0; n < N; ++n) {
            const auto length = static_cast<std::size_t>(std::fabs(random[n]) * 1e6) % 41;
            for (std::size_t i = 0; i < length; ++i) {
                col_P.push_back(static_cast<unsigned int>((7 * n + 3 * i + 1) % N));
                val_P.push_back(1e-4 * static_cast<double>(n + i + 1));
            }
            row_P.push_back(static_cast<unsigned int>(col_P.size()));
        }
    }

    [[nodiscard]] SparseMatrixView view() const {
        return {row_P.data(), col_P.data(), val_P.data()};
    }

    [[nodiscard]] std::size_t count() const { return row_P.size() - 1; }

    std::vector<unsigned int> row_P;
    std::vector<unsigned int> col_P;
    std::vector<double> val_P;
};

/// The same rows as the slices have them; columns are places in an embedding.
Rows rows_of(const SlicedMatrix& sliced) {
    Rows rows(0);
    for (std::size_t n = 0; n < sliced.rowCount(); ++n) {
        sliced.forEachEntry(n, [&rows](std::size_t place, double value) {
            rows.col_P.push_back(static_cast<unsigned int>(place));
            rows.val_P.push_back(value);
        });
        rows.row_P.push_back(static_cast<unsigned int>(rows.col_P.size()));
    }
    return rows;
}

void expect_entries(const SlicedMatrix& sliced, Rows expected, std::size_t dims) {
    EXPECT_EQ(sliced.entryCount(), expected.col_P.size());
    for (unsigned int& column : expected.col_P) {
        column *= static_cast<unsigned int>(dims);
    }
    const Rows rows = rows_of(sliced);
    EXPECT_EQ(rows.row_P, expected.row_P);
    EXPECT_EQ(rows.col_P, expected.col_P);
    EXPECT_EQ(rows.val_P, expected.val_P);
}

// Around whole slices and whole windows.
constexpr std::size_t kCounts[] = {0, 1, 7, 8, 9, 4095, 4096, 4097, 9000};

TEST(SlicedMatrix, HasTheEntriesOfEveryRowInTheirOrder) {
    for (const std::size_t N : kCounts) {
        const Rows rows(N);
        for (const int threads : test::kThreadCounts) {
            const test::ThreadCount scope(threads);
            expect_entries(SlicedMatrix(rows.view(), N, 2), rows, 2);
        }
        expect_entries(SlicedMatrix(rows.view(), N, 1), rows, 1);
        expect_entries(SlicedMatrix(rows.view(), N, 5), rows, 5);
    }
}

TEST(SlicedMatrix, TakesAMatrixOver) {
    const Rows rows(700);
    SparseMatrix P{test::malloc_copy(rows.row_P),
                   test::malloc_copy(rows.col_P),
                   test::malloc_copy(rows.val_P)};
    expect_entries(SlicedMatrix(std::move(P), 700, 2), rows, 2);
}

TEST(SlicedMatrix, PutsTheLongestRowsOfAWindowFirst) {
    constexpr std::size_t kCount = 9001;
    const SlicedMatrix sliced(Rows(kCount).view(), kCount, 2);
    const MatrixSlices slices = sliced.slices();
    std::vector<std::uint32_t> seen(slices.rows, slices.rows + kCount);
    for (std::size_t lane = 0; lane < kCount; ++lane) {
        EXPECT_EQ(slices.rows[lane] / 4096, lane / 4096);
        if (lane % 4096 != 0) {
            EXPECT_LE(slices.lengths[lane], slices.lengths[lane - 1]);
        }
    }
    std::sort(seen.begin(), seen.end());
    for (std::uint32_t row = 0; row < kCount; ++row) {
        EXPECT_EQ(seen[row], row);
    }
    for (std::size_t lane = kCount; lane < sliced.sliceCount() * kSliceRows; ++lane) {
        EXPECT_EQ(slices.rows[lane], kNoRow);
        EXPECT_EQ(slices.lengths[lane], 0U);
    }
}

TEST(SlicedMatrix, FillsUpLittleAndWithNothing) {
    constexpr std::size_t kCount = 9001;
    const SlicedMatrix sliced(Rows(kCount).view(), kCount, 2);
    const MatrixSlices slices = sliced.slices();
    const std::size_t stored = slices.starts[sliced.sliceCount()] * kSliceRows;
    std::size_t filled = 0;
    for (std::size_t i = 0; i < stored; ++i) {
        EXPECT_LT(slices.places[i], 2 * kCount);
        filled += slices.values[i] == 0.0 ? 1 : 0;
    }
    EXPECT_EQ(filled + sliced.entryCount(), stored);
    EXPECT_LT(filled, stored / 100);
}

TEST(SlicedMatrix, StartsItsValuesAtACacheLine) {
    for (const std::size_t N : kCounts) {
        const SlicedMatrix sliced(Rows(N).view(), N, 2);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(sliced.slices().values) % 64, 0U);
    }
}

TEST(SlicedMatrix, MultipliesAndDividesEveryValueByItself) {
    Rows rows(600);
    SlicedMatrix sliced(rows.view(), 600, 2);
    sliced.multiply(12.0);
    for (double& value : rows.val_P) {
        value = value * 12.0;
    }
    expect_entries(sliced, rows, 2);
    sliced.divide(7.0);
    for (double& value : rows.val_P) {
        value = value / 7.0;
    }
    expect_entries(sliced, rows, 2);
}

AffinitySums plain_sums(const Rows& rows) {
    AffinitySums sums{0.0, 0.0};
    for (const double p : rows.val_P) {
        sums.entropy += p * std::log(p + DBL_MIN);
        sums.weight += p;
    }
    return sums;
}

TEST(SlicedMatrix, HasTheSumsOfTheValuesAsTheyStand) {
    Rows rows(1300);
    rows.val_P[5] = 0.0;
    rows.val_P[6] = 1e-310;
    for (const int threads : test::kThreadCounts) {
        const test::ThreadCount scope(threads);
        SlicedMatrix sliced(rows.view(), 1300, 2);
        for (int round = 0; round < 2; ++round) {
            const AffinitySums sums = sliced.sums();
            const AffinitySums expected = plain_sums(rows);
            EXPECT_NEAR(sums.entropy, expected.entropy, 1e-13 * std::fabs(expected.entropy));
            EXPECT_NEAR(sums.weight, expected.weight, 1e-13 * expected.weight);
            EXPECT_EQ(sliced.sums().entropy, sums.entropy);
            // Those of changed values.
            const double factor = round == 0 ? 12.0 : 1.0 / 12.0;
            sliced.multiply(factor);
            for (double& value : rows.val_P) {
                value *= factor;
            }
        }
    }
}

TEST(SlicedMatrix, HasNoSumOfLogarithmsThatAreNone) {
    for (const double value : {-1.0, std::nan(""), double{INFINITY}}) {
        Rows rows(20);
        rows.val_P[3] = value;
        SlicedMatrix sliced(rows.view(), 20, 2);
        EXPECT_TRUE(std::isnan(sliced.sums().entropy)) << value;
    }
}

TEST(SlicedMatrix, RefusesMorePlacesThanItCanCount) {
    const unsigned int row_P[2] = {0, 0};
    const SparseMatrixView P{row_P, nullptr, nullptr};
    EXPECT_THROW(SlicedMatrix(P, 1, std::size_t{1} << 32U), std::length_error);
}

}  // namespace
}  // namespace ovik
