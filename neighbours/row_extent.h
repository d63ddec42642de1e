#pragma once

#include <cstddef>
#include <optional>

#include "neighbours/metric.h"

namespace ovik {

/// At least the longest distance of two rows of a matrix; none where blocks of them cannot be
/// compared in single precision, since the metric has no kernels for it, or values are so large, so
/// small or so many that the bounds of error would not hold.
std::optional<double> packable_extent(const double* points,
                                      std::size_t N,
                                      std::size_t dims,
                                      const Metric& metric);

/// The power of two by which rows of an extent are multiplied when they are packed.
double packing_scale(double extent);

/// Distances that differ by less may be told apart by one search and not by another: far above what
/// rounding adds to distances of rows of an extent, and to the bounds of a search.
double tree_margin(std::size_t dims, double extent);

}  // namespace ovik
