#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "input/matrix_check.h"

#include "tools/options.h"

namespace ovik::tool {

/// A matrix that can be embedded, and what belongs to its rows.
struct LoadedMatrix {
    /// No value is missing.
    InspectedMatrix matrix;
    /// One per row if there is a file of labels, else empty.
    std::vector<std::string> labels;
    MatrixFormat format = MatrixFormat::DelimitedText;
    /// Values that were missing.
    std::size_t missing = 0;
};

/// Reads the matrix and its labels and applies `--missing`. Warns of what is odd.
///
/// @throws InputError if the matrix cannot be embedded
LoadedMatrix load_matrix(const Options& options);

/// What rows without names are called: "1", "2" and so on.
std::vector<std::string> row_numbers(std::size_t count);

}  // namespace ovik::tool
