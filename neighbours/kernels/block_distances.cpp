#include "neighbours/kernels/block_distances.h"

#include "util/kernels/lanes.h"

namespace ovik::OVIK_KERNELS {

namespace {

/// As many sums side by side as there are registers for.
constexpr std::size_t kVectors = 2;
constexpr std::size_t kPart = kVectors * kLanes;

/// Measures kPart points of a block.
void measure_part(const double* points,
                  const double* const* targets,
                  std::size_t dims,
                  double* distances) {
    Lanes squared_distances[kTargets][kVectors] = {};
    for (std::size_t d = 0; d < dims; ++d) {
        for (std::size_t t = 0; t < kTargets; ++t) {
            for (std::size_t v = 0; v < kVectors; ++v) {
                const Lanes difference =
                    load(points + d * kBlockPoints + v * kLanes) - targets[t][d];
                squared_distances[t][v] += difference * difference;
            }
        }
    }
    for (std::size_t t = 0; t < kTargets; ++t) {
        for (std::size_t v = 0; v < kVectors; ++v) {
            store(distances + t * kBlockPoints + v * kLanes, square_root(squared_distances[t][v]));
        }
    }
}

}  // namespace

void measure_block(const double* block,
                   const double* const* targets,
                   std::size_t dims,
                   double* distances) {
    for (std::size_t first = 0; first < kBlockPoints; first += kPart) {
        measure_part(block + first, targets, dims, distances + first);
    }
}

bool is_beyond_radius(const double* bounds, const double* target, double radius) {
    const Lanes limit = broadcast(radius);
    Mask beyond = 0;
    for (std::size_t p = 0; p < kPivots; p += kLanes) {
        const Lanes distance = load(target + p);
        beyond |= less(limit, load(bounds + p) - distance);
        beyond |= less(limit, distance - load(bounds + kPivots + p));
    }
    return beyond != 0;
}

}  // namespace ovik::OVIK_KERNELS
