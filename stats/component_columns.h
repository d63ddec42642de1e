#pragma once

#include <cmath>
#include <cstddef>
#include <vector>

/// What is done to the column of a component, however it was found.

namespace ovik {

/// Of an eigenvalue to the largest: what is below it may be rounding errors alone.
constexpr double kVaryingShare = 1e-12;

/// Two magnitudes of this ratio or above are taken for equal.
constexpr double kEqualMagnitudes = 1.0 - 1e-9;

/// Divides column c, which is not zero, by its length, and by -1 if the first of its largest
/// elements is negative. Elements count as equal if rounding alone may tell them apart.
///
/// @param matrix  row-major, of so many columns
inline void normalise_column(std::vector<double>& matrix, std::size_t columns, std::size_t c) {
    double squares = 0.0;
    double largest = 0.0;
    for (std::size_t i = c; i < matrix.size(); i += columns) {
        squares += matrix[i] * matrix[i];
        if (std::fabs(matrix[i]) * kEqualMagnitudes > std::fabs(largest)) {
            largest = matrix[i];
        }
    }
    const double length = std::copysign(std::sqrt(squares), largest);
    for (std::size_t i = c; i < matrix.size(); i += columns) {
        matrix[i] /= length;
    }
}

inline void clear_column(std::vector<double>& matrix, std::size_t columns, std::size_t c) {
    for (std::size_t i = c; i < matrix.size(); i += columns) {
        matrix[i] = 0.0;
    }
}

}  // namespace ovik
