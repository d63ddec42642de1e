#pragma once

#include <cstddef>
#include <optional>

#include "input/matrix_source.h"

/// What the first rows of a matrix file tell of all of it. The text is not read any further.

namespace ovik {

/// The delimiter under which the first rows hold the most numbers: tab, semicolon, comma or blank,
/// in this order among equals; none if none of them parts a number from the name.
std::optional<char> guess_delimiter(const MatrixSource& source);

/// Rows and columns of a matrix.
struct MatrixShape {
    std::size_t rows = 0;
    std::size_t columns = 0;
};

/// The shape of the matrix if its rows are like the first few: a few percent off. None where the
/// size of the text is not known beforehand.
std::optional<MatrixShape> guess_shape(const MatrixSource& source, char delimiter);

}  // namespace ovik
