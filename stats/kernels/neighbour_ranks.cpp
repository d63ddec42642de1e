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

/// The `count` nearest of the points, or all that are nearer than a limit where these are fewer.
///
/// @return how many it has
std::size_t list_nearest(const double* distances,
                         std::size_t padded_count,
                         double limit,
                         std::size_t count,
                         std::uint32_t* nearest,
                         double* nearest_distances) {
    std::size_t held = 0;
    double farthest = limit;
    for (std::size_t first = 0; first < padded_count; first += kLanes) {
        Mask nearer = less(load(distances + first), broadcast(farthest));
        for (; nearer != 0; nearer &= nearer - 1) {
            const std::size_t m = first + static_cast<std::size_t>(__builtin_ctz(nearer));
            if (!(distances[m] < farthest)) {
                continue;
            }
            const std::size_t last = held < count ? held++ : count - 1;
            insert(static_cast<std::uint32_t>(m), distances[m], last, nearest, nearest_distances);
            if (held == count) {
                farthest = nearest_distances[count - 1];
            }
        }
    }
    return held;
}

/// Groups into which points are divided to find out cheaply how far the nearest may be.
constexpr std::size_t kGroups = 128;

/// Writes the distance of the nearest point of each group.
void group_minima(const double* distances, std::size_t padded_count, double* minima) {
    for (std::size_t group = 0; group < kGroups; ++group) {
        minima[group] = kInfinity;
    }
    for (std::size_t begin = 0; begin < padded_count; begin += kGroups) {
        const std::size_t end = begin + kGroups < padded_count ? begin + kGroups : padded_count;
        for (std::size_t first = begin; first < end; first += kLanes) {
            const Lanes some = load(distances + first);
            const Lanes least = load(minima + (first - begin));
            store(minima + (first - begin), some < least ? some : least);
        }
    }
}

/// The least number above a finite one that is not negative.
double next_above(double number) {
    // Of zeros the one without a sign.
    number += 0.0;
    std::uint64_t bits = 0;
    __builtin_memcpy(&bits, &number, sizeof bits);
    ++bits;
    __builtin_memcpy(&number, &bits, sizeof bits);
    return number;
}

/// A distance below which there are at least `count` points and, if they are in no particular
/// order, few more: the distance of as many groups is below it. Infinite where none is to be had.
double distance_limit(const double* distances,
                      std::size_t padded_count,
                      std::size_t count,
                      std::uint32_t* nearest,
                      double* nearest_distances) {
    constexpr std::size_t kFewestOfGroup = 4;
    if (count > kGroups / 2 || padded_count < kFewestOfGroup * kGroups) {
        return kInfinity;
    }
    double minima[kGroups];
    group_minima(distances, padded_count, minima);
    const std::size_t held =
        list_nearest(minima, kGroups, kInfinity, count, nearest, nearest_distances);
    return held < count ? kInfinity : next_above(nearest_distances[count - 1]);
}

void nearest_points(const double* distances,
                    std::size_t padded_count,
                    std::size_t count,
                    std::uint32_t* nearest,
                    double* nearest_distances) {
    const double limit = distance_limit(distances, padded_count, count, nearest, nearest_distances);
    list_nearest(distances, padded_count, limit, count, nearest, nearest_distances);
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
