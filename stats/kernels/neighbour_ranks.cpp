#include "stats/kernels/neighbour_ranks.h"

#include "util/kernels/lanes.h"

namespace ovik::OVIK_KERNELS {

namespace {

constexpr double kInfinity = __builtin_inf();

/// Puts a point behind those that are as near; the last of a full list falls off.
void insert(std::uint32_t point,
            double distance,
            std::size_t held,
            std::uint32_t* nearest,
            double* nearest_distances) {
    std::size_t place = held;
    for (; place > 0 && distance < nearest_distances[place - 1]; --place) {
        nearest[place] = nearest[place - 1];
        nearest_distances[place] = nearest_distances[place - 1];
    }
    nearest[place] = point;
    nearest_distances[place] = distance;
}

void nearest_points(const double* distances,
                    std::size_t padded_count,
                    std::size_t count,
                    std::uint32_t* nearest,
                    double* nearest_distances) {
    std::size_t held = 0;
    for (std::size_t first = 0; first < padded_count; first += kLanes) {
        double farthest = kInfinity;
        if (held == count) {
            farthest = nearest_distances[count - 1];
        }
        Mask nearer = less(load(distances + first), broadcast(farthest));
        for (; nearer != 0; nearer &= nearer - 1) {
            const std::size_t m = first + static_cast<std::size_t>(__builtin_ctz(nearer));
            if (held < count) {
                insert(
                    static_cast<std::uint32_t>(m), distances[m], held, nearest, nearest_distances);
                ++held;
            } else if (distances[m] < nearest_distances[count - 1]) {
                insert(static_cast<std::uint32_t>(m),
                       distances[m],
                       count - 1,
                       nearest,
                       nearest_distances);
            }
        }
    }
}

std::size_t rank(const double* distances, std::size_t padded_count, std::size_t point) {
    const double distance = distances[point];
    const Lanes of_point = broadcast(distance);
    const std::size_t block = point / kLanes * kLanes;
    std::size_t nearer = 0;
    for (std::size_t first = 0; first < block; first += kLanes) {
        const Mask farther = less(of_point, load(distances + first));
        nearer += kLanes - static_cast<std::size_t>(__builtin_popcount(farther));
    }
    for (std::size_t m = block; m < block + kLanes; ++m) {
        nearer += distances[m] < distance || (distances[m] == distance && m < point) ? 1 : 0;
    }
    for (std::size_t first = block + kLanes; first < padded_count; first += kLanes) {
        nearer +=
            static_cast<std::size_t>(__builtin_popcount(less(load(distances + first), of_point)));
    }
    return nearer;
}

}  // namespace

extern const RankKernels kRankKernels;
const RankKernels kRankKernels = {&nearest_points, &rank};

}  // namespace ovik::OVIK_KERNELS
