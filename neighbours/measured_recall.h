#pragma once

#include <cstddef>

#include "neighbours/metric.h"
#include "neighbours/nearest_lists.h"
#include "neighbours/neighbour_recall.h"

namespace ovik {

/// Compares some rows with all, and tells how many of their nearest are in their lists.
///
/// @param points  row-major, N x dims, with a `packable_extent`
/// @param scale   `packing_scale` of it
/// @param lists   of all rows
/// @param count   how many of each list count, fewer than there are rows
/// @param most    rows are drawn at random, always the same, but all are if there are not more
NeighbourRecall measured_recall(const double* points,
                                std::size_t dims,
                                double scale,
                                const Metric& metric,
                                const NearestLists& lists,
                                std::size_t count,
                                std::size_t most);

}  // namespace ovik
