#pragma once

#include <cstddef>
#include <span>
#include <string>

#include "stats/fit_options.h"
#include "util/matrix_view.h"

namespace ovik {

/// Refuses a matrix in memory that cannot be embedded.
///
/// @param X      rows x columns
/// @param names  one per row, or empty
/// @throws InputError with the cure: no values, fewer than 3 rows or more than the engine can
/// count, names that are not as many as the rows; with row and column, a value that is not finite
/// or too large; rows that are all equal, or too close to one another
void check_fit_matrix(MatrixView<const double> X, std::span<const std::string> names);

/// Refuses options that are out of their ranges, do not fit each other, or are such as the matrix
/// cannot bear.
///
/// @throws InputError with the range or the cure
void check_fit_options(const FitOptions& options, std::size_t rows, std::size_t columns);

/// What there is to say of a perplexity that is large for the rows, though they bear it; empty for
/// one that is not.
std::string perplexity_remark(double perplexity, std::size_t rows);

}  // namespace ovik
