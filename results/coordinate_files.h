#pragma once

#include <cstddef>
#include <string>
#include <system_error>

namespace ovik {

/// The coordinates of an embedding in full precision, for other programs. Files appear whole or not
/// at all: an earlier one stays until then. If one could not be written, the functions return the
/// reason, and the console says so in bold red; no error if it was.

/// Writes an array for NumPy: N x dims, row-major, as T.
///
/// @param Y  row-major, N x dims; converted to T element by element
template <typename T>
std::error_code write_coordinates_npy(const std::string& path,
                                      const double* Y,
                                      std::size_t N,
                                      std::size_t dims);

/// Writes text with a header line, and a row per line: its name and its coordinates, separated by
/// tabs. Each coordinate is the shortest text that reads as the same T. In names, control
/// characters become blanks.
///
/// @param names  N texts
/// @param Y      row-major, N x dims; converted to T element by element
template <typename T>
std::error_code write_coordinates_tsv(const std::string& path,
                                      const std::string* names,
                                      const double* Y,
                                      std::size_t N,
                                      std::size_t dims);

}  // namespace ovik
