#pragma once

#include <cstddef>
#include <span>

#include "neighbours/kernels/candidate_kernels.h"
#include "neighbours/kernels/metric_kernels.h"
#include "util/instruction_set.h"

namespace ovik {

/// How far rows of coordinates are from one another. The search for neighbours, the dense distances
/// and the measures of a map take any; its functions are called for a row or a block, never for a
/// coordinate.
struct Metric {
    /// What messages call the metric.
    const char* name;
    /// The distance of two rows of `dims` coordinates: 0 or more, and the same both ways.
    double (*distance)(const double* a, const double* b, std::size_t dims);
    /// The loops over many points that give the same bits.
    const MetricKernels& (*kernels)(InstructionSet instructions);
    /// Whether no distance of two rows is longer than the way over a third one. A search that skips
    /// what is too far away needs that.
    bool has_triangle_inequality;
    /// What forbids to measure a row of `dims` coordinates; null if nothing does.
    const char* (*complaint)(const double* row, std::size_t dims);
    /// The loops that find out cheaply which rows may be near; null where there are none.
    const CandidateKernels& (*candidates)(InstructionSet instructions);
};

/// The metrics that there are.
std::span<const Metric> metrics();

/// The root of the squares, added in coordinate order. Every row can be measured; distances from
/// coordinates that are not finite are NaN or infinity.
const Metric& euclidean_metric();

/// @param rows  row-major, row_count x dims
/// @throws InputError with the metric's complaint if it has one of a row
void require_measurable_rows(const Metric& metric,
                             const double* rows,
                             std::size_t row_count,
                             std::size_t dims);

}  // namespace ovik
