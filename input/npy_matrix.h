#pragma once

#include "input/inspected_matrix.h"
#include "input/matrix_source.h"

namespace ovik {

/// Reads an array saved by NumPy: two dimensions, rows of items by columns of measurements, of
/// whole or real numbers, in either order of bytes and of elements. NaN is a missing value. Rows
/// have no names and stand on no line. Infinities are not taken note of.
///
/// @param source  read to its end
/// @throws InputError if it is no such array, or is cut off
/// @throws std::system_error if the file cannot be read to its end
/// @par Source NumPy Enhancement Proposal 1, "A Simple File Format for NumPy Arrays"
InspectedMatrix read_npy_matrix(MatrixSource& source);

}  // namespace ovik
