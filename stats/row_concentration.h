#pragma once

#include <vector>

#include "util/api.h"
#include "util/matrix_view.h"

namespace ovik {

/// How much of what sets each row of a matrix apart lies in a single column: the largest squared
/// distance of a value from the median of its column, as a part of the sum of them over the
/// columns. The median is that of `median`: with an even number of rows, the mean of the two in the
/// middle.
///
/// @param X  finite
/// @return one per row, from 1 / columns, where all columns take part, to 1, where all values but
/// one are medians; 0 where all are
OVIK_API std::vector<double> row_concentrations(MatrixView<const double> X);

}  // namespace ovik
