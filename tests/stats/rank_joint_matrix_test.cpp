#include "stats/rank_joint_matrix.h"

#include <algorithm>
#include <numeric>
#include <random>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "util/malloc_array.h"

#include "tests/support/rank_threads.h"

namespace ovik {
namespace {

constexpr std::size_t kRows = 9000;
constexpr std::size_t kLength = 7;

/// Rows of which many store one another, and some themselves, once or several times.
std::vector<std::uint32_t> some_columns() {
    std::mt19937 generator(8);
    std::vector<std::uint32_t> columns;
    for (std::size_t n = 0; n < kRows; ++n) {
        std::vector<std::uint32_t> row;
        while (row.size() < kLength) {
            const auto column =
                static_cast<std::uint32_t>((n + 1 + generator() % 2500 * 3) % kRows);
            if (column != n && std::find(row.begin(), row.end(), column) == row.end()) {
                row.push_back(column);
            }
        }
        for (std::size_t k = kLength - n % 4; n % 50 < 4 && k < kLength; ++k) {
            row[k] = static_cast<std::uint32_t>(n);
        }
        columns.insert(columns.end(), row.begin(), row.end());
    }
    return columns;
}

/// Some of these rows, each value another one.
ConditionalRows rows_of(const std::vector<std::uint32_t>& columns,
                        IndexRange rows,
                        ValueForm form) {
    ConditionalRows part;
    part.rows = rows.size();
    part.row_length = kLength;
    part.form = form;
    const std::size_t first = rows.begin * kLength;
    const std::size_t count = rows.size() * kLength;
    part.columns = malloc_array<std::uint32_t>(count);
    part.doubles = malloc_array<double>(count);
    part.singles = malloc_array<float>(count);
    for (std::size_t i = 0; i < count; ++i) {
        part.columns[i] = columns[first + i];
        part.doubles[i] = 1.0 / static_cast<double>(first + i + 3);
        part.singles[i] = static_cast<float>(part.doubles[i]);
    }
    return part;
}

using Entries = std::vector<std::pair<std::size_t, double>>;

Entries entries_of(const SlicedMatrix& matrix, std::size_t row) {
    Entries entries;
    matrix.forEachEntry(
        row, [&](std::size_t place, double value) { entries.emplace_back(place, value); });
    return entries;
}

TEST(RankJointMatrix, HasTheRowsOfTheWholeOne) {
    const std::vector<std::uint32_t> columns = some_columns();
    for (const ValueForm form : {ValueForm::Double, ValueForm::Single, ValueForm::OneOrTwo}) {
        SlicedMatrix whole = joint_matrix(rows_of(columns, {0, kRows}, form), 2);
        const AffinitySums sums = whole.sums();
        for (const std::size_t count : {std::size_t{2}, std::size_t{3}, std::size_t{5}}) {
            test::run_ranks(count, [&](Ranks& ranks) {
                const RankRows rows(kRows, ranks);
                SlicedMatrix part =
                    joint_matrix_of_rank(rows_of(columns, rows.own(), form), 2, rows);
                ASSERT_EQ(part.rowCount(), rows.own().size());
                EXPECT_EQ(part.entryCount(), whole.entryCount());
                for (std::size_t n = 0; n < part.rowCount(); ++n) {
                    ASSERT_EQ(entries_of(part, n), entries_of(whole, rows.own().begin + n)) << n;
                }
                EXPECT_EQ(part.sums().entropy, sums.entropy);
                EXPECT_EQ(part.sums().weight, sums.weight);
            });
        }
    }
}

TEST(RankJointMatrix, TellsItsRowsFromThoseOfRanksBefore) {
    const std::vector<std::uint32_t> columns = some_columns();
    test::run_ranks(2, [&](Ranks& ranks) {
        const RankRows rows(kRows, ranks);
        const SlicedMatrix part =
            joint_matrix_of_rank(rows_of(columns, rows.own(), ValueForm::Single), 2, rows);
        const MatrixSlices slices = part.slices();
        std::vector<std::uint32_t> targets;
        std::copy_if(slices.targets,
                     slices.targets + part.sliceCount() * kSliceRows,
                     std::back_inserter(targets),
                     [](std::uint32_t row) { return row != kNoRow; });
        std::sort(targets.begin(), targets.end());
        std::vector<std::uint32_t> expected(rows.own().size());
        std::iota(expected.begin(), expected.end(), static_cast<std::uint32_t>(rows.own().begin));
        EXPECT_EQ(targets, expected);
    });
}

}  // namespace
}  // namespace ovik
