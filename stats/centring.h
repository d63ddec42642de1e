#pragma once

#include <cstddef>

namespace ovik {

/// Centres every column of a matrix on 0.
///
/// Column sums run in row order; a mean is the sum times 1.0 / rows, which rounds otherwise than
/// the quotient. Ends the process with "Memory allocation failed!" if the means do not fit in
/// memory.
///
/// @param X  row-major, rows x columns, modified
void zero_mean(double* X, std::size_t rows, std::size_t columns);

/// Centres the columns of a matrix, then scales it so that its largest absolute value is 1.
///
/// A matrix whose rows are all equal has no scale: its entries become NaN.
///
/// @param X  row-major, rows x columns, modified
void centre_and_scale(double* X, std::size_t rows, std::size_t columns);

}  // namespace ovik
