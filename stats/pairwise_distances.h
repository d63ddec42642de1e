#pragma once

#include <cstddef>

namespace ovik {

struct Metric;

/// Fills a matrix with the squared Euclidean distances of all pairs of points.
///
/// @param points     row-major, point_count x dims
/// @param distances  row-major, point_count x point_count; symmetric, the diagonal 0.0
void squared_distance_matrix(const double* points,
                             std::size_t point_count,
                             std::size_t dims,
                             double* distances);

/// Fills a matrix with the squared distances of all pairs of points under any metric.
///
/// @throws InputError if the metric has a complaint of a point
void squared_distance_matrix(const double* points,
                             std::size_t point_count,
                             std::size_t dims,
                             double* distances,
                             const Metric& metric);

}  // namespace ovik
