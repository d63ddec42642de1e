#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "input/matrix_source.h"
#include "input/table_layout.h"

/// What the first rows of a matrix file tell of all of it. The text is not read any further.

namespace ovik {

/// The delimiter under which the first rows hold the most numbers: tab, semicolon, comma or blank,
/// in this order among equals; none if none of them parts a number from the name.
///
/// @param rows     the text from the first row on; of a longer one the first 20 rows are looked at
/// @param decimal  the decimal sign if it is given: with a comma, commas between plain numbers are
///                 no delimiters
std::optional<char> guess_delimiter(std::string_view rows,
                                    std::optional<char> decimal = std::nullopt);

/// Rows and columns of a matrix.
struct MatrixShape {
    std::size_t rows = 0;
    std::size_t columns = 0;
};

/// The shape of the matrix if its rows are like the first few: a few percent off. None where the
/// size of the text is not known beforehand.
std::optional<MatrixShape> guess_shape(const MatrixSource& source, const TableLayout& layout);

/// The lines of a head that are whole, without the first few.
std::string_view whole_lines(const MatrixSource& source, std::size_t without);

}  // namespace ovik
