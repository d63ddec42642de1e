#pragma once

#include <cstddef>
#include <vector>

#include "util/api.h"
#include "util/matrix_view.h"

namespace ovik {

/// Centres every column of a matrix on 0.
///
/// Column sums run in row order; a mean is the sum times 1.0 / rows, which rounds otherwise than
/// the quotient.
///
/// @param X  row-major, rows x columns, modified
/// @throws WorkMemoryError if the means do not fit in memory
OVIK_API void zero_mean(double* X, std::size_t rows, std::size_t columns);

/// What a matrix was before it was centred and scaled: value = mean of its column + scaled value /
/// factor, but for rounding.
struct InputScale {
    /// Of each column.
    std::vector<double> means;
    /// 1 / largest absolute deviation from the means.
    double factor = 1.0;
};

/// Centres the columns of a matrix, then scales it so that its largest absolute value is 1.
///
/// A matrix whose rows are all equal has no scale: its entries become NaN.
///
/// @param X  modified
/// @throws WorkMemoryError if the means do not fit in memory
OVIK_API InputScale centre_and_scale(MatrixView<double> X);

}  // namespace ovik
