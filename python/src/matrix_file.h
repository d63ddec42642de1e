#pragma once

#include <string>
#include <vector>

#include "input/inspected_matrix.h"
#include "input/load_options.h"

namespace ovik::python {

/// A matrix file as it is handed to Python.
struct MatrixFile {
    /// `values` is not null.
    InspectedMatrix matrix;
    /// What is odd about the matrix, a text each.
    std::vector<std::string> warnings;
    /// How the file was taken where it could be taken otherwise, a text each.
    std::vector<std::string> notes;
};

/// Reads a matrix file of any format that the command reads.
///
/// @param path     also one that opens as standard input, "-"
/// @param options  what the arguments of Python say; the rest is filled in
/// @param missing  what becomes of missing values, by its name on the command line; empty: they
/// stay NaN
/// @throws InputError if the file cannot be read as a matrix, or there is no such policy; its text
/// spells options as arguments of Python
/// @throws std::system_error if it cannot be read to its end
MatrixFile read_matrix_file(const std::string& path,
                            LoadOptions options,
                            const std::string& missing);

}  // namespace ovik::python
