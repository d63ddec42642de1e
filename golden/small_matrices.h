#pragma once

#include <cstddef>
#include <vector>

#include "util/matrix_view.h"

/// Small matrices of real values for parts that take a tenth of a second.

namespace ovik::golden {

/// Which values a matrix has.
enum class Values {
    /// Up to 250 rows of the chemostat matrix, 36 columns.
    Chemostat,
    /// Up to 100 rows of the time courses, 79 columns. Every 17th value is missing, and has become
    /// the mean of its row.
    Timecourses,
    /// Rows half way between two of the chemostat matrix, of any number, 12 columns.
    Between,
    /// Counts of about the size of the chemostat values, with totals of 10,000 and logarithms; many
    /// rows are equally near.
    Counts,
    /// The distances between rows of `Chemostat`, as many columns as rows.
    Distances,
};

/// A matrix, row-major.
struct SmallMatrix {
    std::size_t rows = 0;
    std::size_t columns = 0;
    std::vector<double> values;

    [[nodiscard]] MatrixView<double> view() { return {values.data(), rows, columns}; }

    [[nodiscard]] MatrixView<const double> view() const { return {values.data(), rows, columns}; }
};

/// The matrix of the first `rows` rows.
///
/// @param rows  at most those that there are of the kind
/// @throws std::invalid_argument if there are fewer
SmallMatrix small_matrix(Values values, std::size_t rows);

}  // namespace ovik::golden
