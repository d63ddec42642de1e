#pragma once

#include <ovik/input/load.h>
#include <string>
#include <vector>

namespace ovik::r {

/// A matrix file as it is handed to R.
struct MatrixFile {
    /// `values` is null if the file is refused.
    InspectedMatrix matrix;
    /// What is odd about the matrix, a text each; also of one that is refused.
    std::vector<std::string> warnings;
    /// How the file was taken where it could be taken otherwise, a text each.
    std::vector<std::string> notes;
    /// Why the file is refused, and what to do; empty if it is not.
    std::string refusal;
};

/// Reads a matrix file of any format that the command reads. Texts spell options as arguments of
/// `read_matrix`.
///
/// @param options  what these arguments say; the rest is filled in
/// @param missing  what becomes of missing values, by its name on the command line; empty: they
/// stay NaN
/// @throws std::bad_alloc if the matrix cannot have its memory
MatrixFile read_matrix_file(const std::string& path,
                            LoadOptions options,
                            const std::string& missing);

}  // namespace ovik::r
