#pragma once

#include <optional>
#include <string>
#include <vector>

#include "input/inspected_matrix.h"
#include "input/transformations.h"

namespace ovik::python {

/// A matrix file as it is handed to Python.
struct MatrixFile {
    /// `values` is not null.
    InspectedMatrix matrix;
    /// What the user should know of it, a text each.
    std::vector<std::string> warnings;
};

/// How a text is taken, as the arguments of Python say; see `LoadOptions`.
struct TextForm {
    std::optional<char> delimiter;
    std::optional<char> decimal;
    bool has_header = true;
    bool has_names = true;
    std::string names_column;
    std::vector<std::string> skip_columns;
    std::vector<std::string> missing_signs;
    std::string sheet;
    Transformations transformations;
};

/// Reads a matrix file of any format that the command reads.
///
/// @param path     also one that opens as standard input, "-"
/// @param missing  what becomes of missing values, by its name on the command line; empty: they
/// stay NaN
/// @throws InputError if the file cannot be read as a matrix, or there is no such policy; its text
/// spells options as arguments of Python
/// @throws std::system_error if it cannot be read to its end
MatrixFile read_matrix_file(const std::string& path,
                            const TextForm& form,
                            const std::string& missing);

}  // namespace ovik::python
