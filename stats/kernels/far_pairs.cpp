#include "stats/kernels/far_pairs.h"

#include "util/kernels/lanes.h"

namespace ovik::OVIK_KERNELS {

namespace {

inline void add(double* to, Lanes added) {
    store(to, load(to) + added);
}

inline std::int64_t lane_sum(Bits numbers) {
    std::uint64_t sum = 0;
    for (std::size_t i = 0; i < kLanes; ++i) {
        sum += numbers[i];
    }
    return static_cast<std::int64_t>(sum);
}

void sum(const FarTargets& points,
         const FarPlace* far,
         std::size_t far_count,
         double scale,
         double* of_points,
         std::int64_t* of_far) {
    const std::size_t count = points.count;
    for (std::size_t i = 0; i < kFarSums * count; ++i) {
        of_points[i] = 0.0;
    }
    for (std::size_t f = 0; f < far_count; ++f) {
        Bits sums[kFarSums] = {};
        for (std::size_t i = 0; i < count; i += kLanes) {
            const Lanes dx = load(points.x + i) - far[f].x;
            const Lanes dy = load(points.y + i) - far[f].y;
            const Lanes q = 1.0 / (1.0 + (dx * dx + dy * dy));
            const Lanes square = q * q;
            const Lanes terms[kFarSums] = {square * dx, square * dy, q};
            for (std::size_t k = 0; k < kFarSums; ++k) {
                add(of_points + k * count + i, terms[k]);
                sums[k] += nearest_whole(terms[k] * scale);
            }
        }
        for (std::size_t k = 0; k < kFarSums; ++k) {
            of_far[f * kFarSums + k] += lane_sum(sums[k]);
        }
    }
}

}  // namespace

extern const FarPairs kFarPairs;
const FarPairs kFarPairs = {&sum};

}  // namespace ovik::OVIK_KERNELS
