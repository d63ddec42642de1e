#include "neighbours/kernels/euclidean_kernels.h"

#include "util/kernels/lanes.h"

namespace ovik::OVIK_KERNELS {

namespace {

/// Sums of a block are formed side by side in as many vectors as there are registers for.
constexpr std::size_t kBlockVectors = 2;
constexpr std::size_t kBlockPart = kBlockVectors * kLanes;

/// Measures kBlockPart points of a block.
void measure_part(const double* points,
                  const double* const* targets,
                  std::size_t dims,
                  double* distances) {
    Lanes squared_distances[kTargets][kBlockVectors] = {};
    for (std::size_t d = 0; d < dims; ++d) {
        for (std::size_t t = 0; t < kTargets; ++t) {
            for (std::size_t v = 0; v < kBlockVectors; ++v) {
                const Lanes difference =
                    load(points + d * kBlockPoints + v * kLanes) - targets[t][d];
                squared_distances[t][v] += difference * difference;
            }
        }
    }
    for (std::size_t t = 0; t < kTargets; ++t) {
        for (std::size_t v = 0; v < kBlockVectors; ++v) {
            store(distances + t * kBlockPoints + v * kLanes, square_root(squared_distances[t][v]));
        }
    }
}

void block_distances(const double* block,
                     const double* const* targets,
                     std::size_t dims,
                     double* distances) {
    for (std::size_t first = 0; first < kBlockPoints; first += kBlockPart) {
        measure_part(block + first, targets, dims, distances + first);
    }
}

/// Measures `Count` points, so that each coordinate of point n is fetched once for all of them.
template <std::size_t Count>
void measure_columns(const PointsByColumn& points,
                     std::size_t n,
                     std::size_t first,
                     double* squared_distances) {
    constexpr std::size_t kVectors = Count / kLanes;
    Lanes sums[kVectors] = {};
    for (std::size_t d = 0; d < points.dims; ++d) {
        const double* const column = points.coordinates + d * points.stride;
        for (std::size_t v = 0; v < kVectors; ++v) {
            const Lanes difference = load(column + first + v * kLanes) - column[n];
            sums[v] += difference * difference;
        }
    }
    for (std::size_t v = 0; v < kVectors; ++v) {
        store(squared_distances + v * kLanes, sums[v]);
    }
}

void squared_distances(const PointsByColumn& points, std::size_t n, double* results) {
    constexpr std::size_t kMany = 4 * kColumnMultiple;
    std::size_t first = 0;
    for (; first + kMany <= points.point_count; first += kMany) {
        measure_columns<kMany>(points, n, first, results + first);
    }
    for (; first + kColumnMultiple <= points.point_count; first += kColumnMultiple) {
        measure_columns<kColumnMultiple>(points, n, first, results + first);
    }
    if (first < points.point_count) {
        double rest[kColumnMultiple];
        measure_columns<kColumnMultiple>(points, n, first, rest);
        for (std::size_t m = first; m < points.point_count; ++m) {
            results[m] = rest[m - first];
        }
    }
}

/// Vectors of rows whose sums are formed side by side.
constexpr std::size_t kRowVectors = 2;
constexpr std::size_t kRowsAtOnce = kRowVectors * kLanes;

/// Measures kRowsAtOnce rows, given by where they begin.
void measure_rows(const double* const* rows,
                  std::size_t dims,
                  const double* target,
                  double* distances) {
    Lanes sums[kRowVectors] = {};
    std::size_t d = 0;
    for (; d + 2 <= dims; d += 2) {
        for (std::size_t v = 0; v < kRowVectors; ++v) {
            Lanes both[2];
            load_pairs([=](std::size_t lane) { return rows[v * kLanes + lane] + d; }, both);
            for (std::size_t i = 0; i < 2; ++i) {
                const Lanes difference = both[i] - target[d + i];
                sums[v] += difference * difference;
            }
        }
    }
    for (std::size_t v = 0; v < kRowVectors; ++v) {
        if (d < dims) {
            const Lanes last =
                each_lane([=](std::size_t lane) { return rows[v * kLanes + lane][d]; });
            const Lanes difference = last - target[d];
            sums[v] += difference * difference;
        }
        store(distances + v * kLanes, square_root(sums[v]));
    }
}

void row_distances(const double* points,
                   std::size_t dims,
                   const double* target,
                   const std::uint32_t* rows,
                   std::size_t count,
                   double* distances) {
    for (std::size_t first = 0; first < count; first += kRowsAtOnce) {
        const std::size_t rest = count - first < kRowsAtOnce ? count - first : kRowsAtOnce;
        const double* starts[kRowsAtOnce];
        for (std::size_t i = 0; i < kRowsAtOnce; ++i) {
            // The last row stands in for those that are missing.
            starts[i] = points + rows[first + (i < rest ? i : rest - 1)] * dims;
        }
        double results[kRowsAtOnce];
        measure_rows(starts, dims, target, results);
        for (std::size_t i = 0; i < rest; ++i) {
            distances[first + i] = results[i];
        }
    }
}

}  // namespace

extern const MetricKernels kEuclideanKernels;
const MetricKernels kEuclideanKernels = {&block_distances, &squared_distances, &row_distances};

}  // namespace ovik::OVIK_KERNELS
