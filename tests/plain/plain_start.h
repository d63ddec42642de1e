#pragma once

#include <cstddef>
#include <vector>

#include "tests/plain/plain_components.h"

/// Starts of an embedding as plain one-thread programs: the yardstick for the engine, with which
/// they share no code. Matrices are row-major.
namespace plain {

/// A start along the first components: all of them times one factor, with which the first has the
/// standard deviation `spread`.
///
/// @param count  of the components
std::vector<double> component_start(const Components& components,
                                    std::size_t count,
                                    std::size_t N,
                                    std::size_t no_dims,
                                    double spread);

/// A start at places, as they stand. Rows without a place (NaN) get the median of the nearest rows
/// that have one, among their 25 nearest, or else that of all.
///
/// @param points  N x dims, of which the neighbours are
/// @param places  N x no_dims
std::vector<double> start_at_places(const std::vector<double>& points,
                                    std::size_t N,
                                    std::size_t dims,
                                    const std::vector<double>& places,
                                    std::size_t no_dims);

}  // namespace plain
