#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "input/inspected_matrix.h"
#include "input/known_columns.h"
#include "input/option_spelling.h"
#include "util/api.h"

namespace ovik {

/// What becomes of missing values.
enum class MissingPolicy {
    /// Missing values are 0, as the library reads them.
    Zero,
    /// Missing values are the mean of the numbers of their row.
    RowMean,
    /// They are the mean of the numbers of their column; 0 in a column without any, which then
    /// tells no row from another.
    ColumnMean,
    /// Rows with missing values are left out.
    Drop,
    /// Missing values are refused.
    Error,
    /// Missing values stay NaN.
    Leave,
};

/// The policy of a name: zero, row-mean, column-mean, drop, error. `Leave` has none: what is
/// embedded lacks no value.
OVIK_API std::optional<MissingPolicy> missing_policy(const std::string& name);

/// The name of a policy; empty for `Leave`.
std::string policy_name(MissingPolicy policy);

/// The missing values of a matrix: how many there are in all, in each row and in each column.
struct MissingCounts {
    std::size_t count = 0;
    std::vector<std::size_t> by_row;
    std::vector<std::size_t> by_column;
};

MissingCounts count_missing(const InspectedMatrix& matrix);

/// One sentence: how many values are missing, in how many rows and columns.
std::string missing_summary(const InspectedMatrix& matrix, const MissingCounts& missing);

/// A line each: the first three missing values, by line, row and column; the row and the column
/// that lack most; the rows that have no number at all.
///
/// @param missing  at least one
std::string missing_places(const InspectedMatrix& matrix, const MissingCounts& missing);

/// In words, what has become of missing values under a policy other than `Error` and `Leave`.
std::string treatment(MissingPolicy policy, std::size_t rows_before, std::size_t rows_after);

/// Applies a policy other than `Error` and `Leave`: afterwards no value is missing, and `filled` of
/// the matrix tells which were.
///
/// @param path    for messages
/// @param matrix  `values` is not null; `report.rows` and the rows' names and lines follow when
///                rows are left out
/// @param spell   writes the options that are the cure
/// @param labels  one per row, or empty; they follow
/// @param known   null, or columns whose means are taken in the place of those of the matrix
/// @throws InputError if a row has no number of which to take the mean
void treat_missing(const std::string& path,
                   MissingPolicy policy,
                   const MissingCounts& missing,
                   const OptionSpelling& spell,
                   InspectedMatrix& matrix,
                   std::vector<std::string>& labels,
                   const KnownColumns* known = nullptr);

}  // namespace ovik
