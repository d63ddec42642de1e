#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "neighbours/metric.h"

/// Metrics that the library has not, in plain code: what takes a metric has to take any.

namespace ovik::test {

/// Calls a distance for every pair that the loops of a metric measure.
template <double (*Distance)(const double*, const double*, std::size_t)>
const MetricKernels& plain_kernels(InstructionSet /*instructions*/) {
    constexpr std::size_t kMostDims = 64;
    static constexpr MetricKernels kKernels = {
        [](const double* block, const double* const* targets, std::size_t dims, double* distances) {
            for (std::size_t i = 0; i < kTargets * kBlockPoints; ++i) {
                double point[kMostDims] = {};
                for (std::size_t d = 0; d < dims; ++d) {
                    point[d] = block[d * kBlockPoints + i % kBlockPoints];
                }
                distances[i] = Distance(targets[i / kBlockPoints], point, dims);
            }
        },
        [](const PointsByColumn& points, std::size_t n, double* squared_distances) {
            for (std::size_t m = 0; m < points.point_count; ++m) {
                double own[kMostDims] = {};
                double other[kMostDims] = {};
                for (std::size_t d = 0; d < points.dims; ++d) {
                    own[d] = points.coordinates[d * points.stride + n];
                    other[d] = points.coordinates[d * points.stride + m];
                }
                const double distance = Distance(own, other, points.dims);
                squared_distances[m] = distance * distance;
            }
        },
        [](const double* points,
           std::size_t dims,
           const double* target,
           const std::uint32_t* rows,
           std::size_t count,
           double* distances) {
            for (std::size_t i = 0; i < count; ++i) {
                distances[i] = Distance(target, points + rows[i] * dims, dims);
            }
        }};
    return kKernels;
}

inline double largest_difference(const double* a, const double* b, std::size_t dims) {
    double largest = 0.0;
    for (std::size_t d = 0; d < dims; ++d) {
        largest = std::max(largest, std::fabs(a[d] - b[d]));
    }
    return largest;
}

inline double sum_of_squares(const double* a, const double* b, std::size_t dims) {
    double sum = 0.0;
    for (std::size_t d = 0; d < dims; ++d) {
        sum += (a[d] - b[d]) * (a[d] - b[d]);
    }
    return sum;
}

inline const char* no_complaint(const double* /*row*/, std::size_t /*dims*/) {
    return nullptr;
}

/// The maximum norm of the difference, with the triangle inequality.
inline constexpr Metric kMaximumMetric = {"maximum",
                                          &largest_difference,
                                          &plain_kernels<&largest_difference>,
                                          true,
                                          &no_complaint,
                                          nullptr};

/// Squared Euclidean distances, which are without the triangle inequality.
inline constexpr Metric kSquaresMetric = {
    "squares", &sum_of_squares, &plain_kernels<&sum_of_squares>, false, &no_complaint, nullptr};

/// The maximum norm, for rows whose first coordinate is not negative.
inline constexpr Metric kComplainingMetric = {
    "complaining",
    &largest_difference,
    &plain_kernels<&largest_difference>,
    true,
    [](const double* row, std::size_t dims) -> const char* {
        return dims > 0 && row[0] < 0.0 ? "the first coordinate is negative" : nullptr;
    },
    nullptr};

}  // namespace ovik::test
