#include "stats/kernels/neighbour_ranks.h"

#include "stats/kernels/pair_kernels.h"
#include "util/kernels/lanes.h"

namespace ovik::OVIK_KERNELS {

namespace {

constexpr double kInfinity = __builtin_inf();

/// Some panels of points side by side, so that each coordinate of point n is fetched once for all.
template <std::size_t Panels>
void distances_of_panels(const PaddedColumns& points,
                         std::size_t n,
                         std::size_t first,
                         double* distances) {
    constexpr std::size_t kVectors = Panels * kPanelWidth / kLanes;
    const std::size_t stride = padded_to_panels(points.point_count);
    Lanes sums[kVectors] = {};
    for (std::size_t d = 0; d < points.dims; ++d) {
        const double* const column = points.coordinates + d * stride;
        for (std::size_t v = 0; v < kVectors; ++v) {
            const Lanes difference = load(column + first + v * kLanes) - column[n];
            sums[v] += difference * difference;
        }
    }
    for (std::size_t v = 0; v < kVectors; ++v) {
        store(distances + first + v * kLanes, sums[v]);
    }
}

void squared_distances(const PaddedColumns& points, std::size_t n, double* distances) {
    constexpr std::size_t kPanels = 4;
    const std::size_t end = padded_to_panels(points.point_count);
    std::size_t first = 0;
    for (; first + kPanels * kPanelWidth <= end; first += kPanels * kPanelWidth) {
        distances_of_panels<kPanels>(points, n, first, distances);
    }
    for (; first < end; first += kPanelWidth) {
        distances_of_panels<1>(points, n, first, distances);
    }
    distances[n] = kInfinity;
    for (std::size_t m = points.point_count; m < end; ++m) {
        distances[m] = kInfinity;
    }
}

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
const RankKernels kRankKernels = {&squared_distances, &nearest_points, &rank};

}  // namespace ovik::OVIK_KERNELS
