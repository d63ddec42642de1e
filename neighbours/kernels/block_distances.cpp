#include "neighbours/kernels/block_distances.h"

#include "util/kernels/lanes.h"

namespace ovik::OVIK_KERNELS {

void measure_block(const double* block,
                   const double* const* targets,
                   std::size_t dims,
                   double* distances) {
    // As many sums side by side as there are registers for.
    constexpr std::size_t kVectors = 2;
    for (std::size_t first = 0; first < kBlockPoints; first += kVectors * kLanes) {
        Lanes squared_distances[kTargets][kVectors] = {};
        for (std::size_t d = 0; d < dims; ++d) {
            const double* const points = block + d * kBlockPoints + first;
            for (std::size_t t = 0; t < kTargets; ++t) {
                for (std::size_t v = 0; v < kVectors; ++v) {
                    const Lanes difference = load(points + v * kLanes) - targets[t][d];
                    squared_distances[t][v] += difference * difference;
                }
            }
        }
        for (std::size_t t = 0; t < kTargets; ++t) {
            for (std::size_t v = 0; v < kVectors; ++v) {
                store(distances + t * kBlockPoints + first + v * kLanes,
                      square_root(squared_distances[t][v]));
            }
        }
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
