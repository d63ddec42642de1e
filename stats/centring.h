#pragma once

#include <cstddef>

#include "stats/input_scale.h"
#include "util/matrix_view.h"

namespace ovik {

/// Centres every column of a matrix on 0.
///
/// Column sums run in row order; a mean is the sum times 1.0 / rows, which rounds otherwise than
/// the quotient.
///
/// @param X  row-major, rows x columns, modified
/// @throws WorkMemoryError if the means do not fit in memory
void zero_mean(double* X, std::size_t rows, std::size_t columns);

/// Centres the columns of a matrix, then scales it so that its largest absolute value is 1.
///
/// A matrix whose rows are all equal has no scale: its entries become NaN.
///
/// @param X  modified
/// @throws WorkMemoryError if the means do not fit in memory
InputScale centre_and_scale(MatrixView<double> X);

/// Puts further rows through what `centre_and_scale` did to a matrix, by the same operations.
///
/// @param X      modified
/// @param scale  of as many columns
void scale_alike(MatrixView<double> X, const InputScale& scale);

}  // namespace ovik
