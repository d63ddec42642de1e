#include "neighbours/kernels/block_distances.h"

#include "util/kernels/lanes.h"

namespace ovik::OVIK_KERNELS {

void measure_block(const double* block, const double* target, std::size_t dims, double* distances) {
    constexpr std::size_t kVectors = kBlockPoints / kLanes;
    Lanes squared_distance[kVectors];
    for (std::size_t v = 0; v < kVectors; ++v) {
        squared_distance[v] = broadcast(0.0);
    }
    for (std::size_t d = 0; d < dims; ++d) {
        const Lanes coordinate = broadcast(target[d]);
        for (std::size_t v = 0; v < kVectors; ++v) {
            const Lanes other = load(block + d * kBlockPoints + v * kLanes);
            const Lanes difference = subtract(other, coordinate);
            squared_distance[v] = add(squared_distance[v], multiply(difference, difference));
        }
    }
    for (std::size_t v = 0; v < kVectors; ++v) {
        store(distances + v * kLanes, square_root(squared_distance[v]));
    }
}

bool is_beyond_radius(const double* bounds, const double* target, double radius) {
    const Lanes limit = broadcast(radius);
    Mask beyond = none();
    for (std::size_t p = 0; p < kPivots; p += kLanes) {
        const Lanes distance = load(target + p);
        const Lanes nearer = subtract(load(bounds + p), distance);
        const Lanes farther = subtract(distance, load(bounds + kPivots + p));
        beyond = either(beyond, either(less(limit, nearer), less(limit, farther)));
    }
    return any(beyond);
}

}  // namespace ovik::OVIK_KERNELS
