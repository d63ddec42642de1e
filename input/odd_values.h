#pragma once

#include <string>

#include "input/inspected_matrix.h"
#include "input/option_spelling.h"

/// Numbers in a matrix that are most likely no measurements: nothing refuses them, and they may
/// decide the whole map.

namespace ovik {

/// Names columns that are unlike all others, as identifiers, lengths and numbers of clusters are:
/// numbers that count the rows, whole numbers alone where most columns have fractions, values that
/// are all far above those of the other columns, or whole numbers under a header such as "length".
/// Empty if there are none. Values that are all equal say nothing.
///
/// @param path    for the message
/// @param spell   how the message names the option that leaves a column out
/// @param matrix  NaN is a missing value
std::string odd_columns_warning(const std::string& path,
                                const OptionSpelling& spell,
                                const InspectedMatrix& matrix);

/// Names rows that are called "Total", "mean", "time", "dose" and the like, as sums below a table
/// and second header lines are. Empty if there are none.
std::string odd_rows_warning(const std::string& path, const InspectedMatrix& matrix);

}  // namespace ovik
