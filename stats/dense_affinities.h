#pragma once

#include <cstddef>

#include "util/api.h"

namespace ovik {

/// Conditional similarities P(m|n) of all pairs of points, each row calibrated to a perplexity
/// (at most 500 attempts) and normalised to sum 1. The diagonal is a tiny positive number, not
/// zero.
///
/// Rows are spread over the cores. The perplexity is logged twice at severity INFO. Ends the
/// process with "Memory allocation failed!" if the matrix of distances does not fit in memory.
///
/// @param points  row-major, point_count x dims
/// @param P       row-major, point_count x point_count, written
OVIK_API void dense_conditional_affinities(
    const double* points, std::size_t point_count, std::size_t dims, double* P, double perplexity);

}  // namespace ovik
