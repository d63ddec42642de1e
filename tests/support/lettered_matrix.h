#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

#include "input/inspected_matrix.h"

namespace ovik::test {

/// A matrix as from a file: rows "A", "B" and so on, on every second line.
inline InspectedMatrix lettered_matrix(const std::vector<double>& values, std::size_t columns) {
    InspectedMatrix matrix;
    matrix.report.rows = values.size() / columns;
    matrix.report.columns = columns;
    for (std::size_t n = 0; n < matrix.report.rows; ++n) {
        matrix.row_names.emplace_back(1, static_cast<char>('A' + n));
        matrix.row_lines.push_back(2 * n + 2);
    }
    matrix.values.reset(new double[values.size()]);
    std::copy(values.begin(), values.end(), matrix.values.get());
    return matrix;
}

/// The values of a matrix, row by row.
inline std::vector<double> values_of(const InspectedMatrix& matrix) {
    const double* const values = matrix.values.get();
    return {values, values + matrix.report.rows * matrix.report.columns};
}

}  // namespace ovik::test
