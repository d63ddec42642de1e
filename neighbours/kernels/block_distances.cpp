#include "neighbours/kernels/block_distances.h"

#include "util/kernels/lanes.h"

namespace ovik::OVIK_KERNELS {

void measure_block(const double* block,
                   const double* const* targets,
                   std::size_t dims,
                   double* distances) {
    // As many sums side by side as there are registers for.
    constexpr std::size_t kVectors = kLanes == 1 ? 1 : 2;
    for (std::size_t first = 0; first < kBlockPoints; first += kVectors * kLanes) {
        Lanes squared_distances[kTargets][kVectors];
        for (auto& target_sums : squared_distances) {
            for (Lanes& sum : target_sums) {
                sum = broadcast(0.0);
            }
        }
        for (std::size_t d = 0; d < dims; ++d) {
            Lanes points[kVectors];
            for (std::size_t v = 0; v < kVectors; ++v) {
                points[v] = load(block + d * kBlockPoints + first + v * kLanes);
            }
            for (std::size_t t = 0; t < kTargets; ++t) {
                const Lanes target = broadcast(targets[t][d]);
                for (std::size_t v = 0; v < kVectors; ++v) {
                    const Lanes difference = subtract(points[v], target);
                    squared_distances[t][v] =
                        add(squared_distances[t][v], multiply(difference, difference));
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
