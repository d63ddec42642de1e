#pragma once

#include <cstddef>

namespace ovik {

/// Replaces both of the entries (n, m) and (m, n) of a square matrix by their sum.
void add_transpose(double* P, std::size_t point_count);

}  // namespace ovik
