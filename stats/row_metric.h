#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "stats/fit_choices.h"
#include "util/matrix_view.h"

/// Correlations between rows as Euclidean distances: rows are brought into a form in which half the
/// squared Euclidean distance of two of them is 1 - r, r being their correlation or the cosine of
/// the angle between them. Similarities are then computed as of any rows, from the squared distance
/// 2 (1 - r), not from the square of 1 - r.

namespace ovik {

/// Whether rows are compared by their correlation or angle, so that those without one are refused.
bool compares_directions(MetricKind metric);

/// Brings every row into the form that a metric asks for, in place:
///
/// - Pearson: values minus their mean (sum in column order / columns), divided by the root of the
///   sum of their squares in column order;
/// - cosine: the same without the mean;
/// - Spearman: ranks from 1, the mean of their places for equal values, treated as Pearson has it;
/// - other metrics: left as they are.
///
/// A row is first multiplied by the power of two that brings its largest absolute value into
/// [0.5, 1): no value is too large or too small, and a row times any power of two becomes the same
/// bytes. Rows that `rows_without_direction` finds become NaN, or noise of rounding.
///
/// @param X  modified; finite
void prepare_rows(MatrixView<double> X, MetricKind metric);

/// The rows that have no correlation with any other, in their order: for Pearson and Spearman rows
/// whose values are all equal, or differ from their mean by no more than its rounding (columns *
/// 2^-53 of the largest absolute value); for the cosine rows of zeros; for other metrics none.
///
/// @param X  finite
std::vector<std::size_t> rows_without_direction(MatrixView<const double> X, MetricKind metric);

/// What messages about the rows of a matrix call it and them.
struct RowWords {
    /// What they open with; empty, or such as "m.tsv".
    std::string source;
    /// Of the rows; or none: rows are then called by their numbers, from 0.
    std::span<const std::string> names;
    /// The lines on which rows stand in the file, 0 where there is none; or empty.
    std::span<const std::size_t> lines = {};
};

/// Some rows in the words of messages: the first three, and whether there are more.
std::string listed_rows(const std::vector<std::size_t>& rows, const RowWords& words);

/// Refuses rows that a metric cannot compare with others.
///
/// @param X     finite, before `prepare_rows`
/// @param cure  what the user can do about rows without direction
/// @throws InputError if there are such rows, with the first three of them and the cure; if rows
/// have too few columns: 2 values have a correlation of 1 or -1
void check_directions(MatrixView<const double> X,
                      MetricKind metric,
                      const RowWords& words,
                      const std::string& cure);

/// Refuses what a metric cannot tell apart.
///
/// @param X     finite, before `prepare_rows`
/// @param cure  what the user can do about rows without direction
/// @throws InputError where `check_directions` throws; if all rows are in the same direction, so
/// that all distances are 0 but for rounding
void check_rows(MatrixView<const double> X,
                MetricKind metric,
                const RowWords& words,
                const std::string& cure);

}  // namespace ovik
