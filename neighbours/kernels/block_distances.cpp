#include "neighbours/kernels/block_distances.h"

#include "util/kernels/lanes.h"

namespace ovik::OVIK_KERNELS {

void measure_block(const double* block, const double* target, std::size_t dims, double* distances) {
    constexpr std::size_t kVectors = kBlockPoints / kLanes;
    Lanes squared_distance[kVectors] = {};
    for (std::size_t d = 0; d < dims; ++d) {
        for (std::size_t v = 0; v < kVectors; ++v) {
            const Lanes difference = load(block + d * kBlockPoints + v * kLanes) - target[d];
            squared_distance[v] += difference * difference;
        }
    }
    for (std::size_t v = 0; v < kVectors; ++v) {
        store(distances + v * kLanes, square_root(squared_distance[v]));
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
