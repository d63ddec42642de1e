#include "stats/kernels/trial_sums.h"

#include "util/kernels/lanes.h"

namespace ovik::OVIK_KERNELS {

namespace {

/// The vectors of sums.
struct Sums {
    Lanes weights = {};
    Lanes first = {};
    Lanes second = {};
};

/// exp(x) for x from -700 to 0, and 0 below.
Lanes exponential(Lanes x) {
    constexpr double kLog2OfE = 1.4426950408889634074;
    constexpr double kLogOf2 = 0.69314718055994530942;
    /// 1.5 * 2^52: a sum with it ends in the bits of the nearest whole number.
    constexpr double kWholeNumbers = 6755399441055744.0;
    const Lanes least = broadcast(-700.0);
    const Lanes in_range = x < least ? least : x;
    const Lanes shifted = in_range * kLog2OfE + kWholeNumbers;
    const Lanes r = in_range - (shifted - kWholeNumbers) * kLogOf2;
    // The series to r^8 for |r| <= log(2) / 2; the next term is below 2.1e-10.
    const Lanes r2 = r * r;
    const Lanes r4 = r2 * r2;
    const Lanes low = (r + 1.0) + r2 * (r * (1.0 / 6.0) + 0.5);
    const Lanes high = (r * (1.0 / 120.0) + 1.0 / 24.0) + r2 * (r * (1.0 / 5040.0) + 1.0 / 720.0);
    const Lanes power = low + r4 * (high + r4 * (1.0 / 40320.0));
    const Lanes scaled = as_lanes(as_bits(power) + (as_bits(shifted) << 52U));
    return x < least ? Lanes{} : scaled;
}

void add_lanes(Lanes squared_distances, double beta, Mask mask, Sums& sums) {
    const Lanes weights = keep(mask, exponential(squared_distances * -beta));
    const Lanes weighted = weights * squared_distances;
    sums.weights += weights;
    sums.first += weighted;
    sums.second += weighted * squared_distances;
}

double sum_of(Lanes lanes) {
    double sum = 0.0;
    for (std::size_t i = 0; i < kLanes; ++i) {
        sum += lanes[i];
    }
    return sum;
}

void add(const double* squared_distances, std::size_t count, double beta, TrialSums& sums) {
    Sums lanes[2];
    std::size_t i = 0;
    for (; i + 2 * kLanes <= count; i += 2 * kLanes) {
        add_lanes(load(squared_distances + i), beta, kAll, lanes[0]);
        add_lanes(load(squared_distances + i + kLanes), beta, kAll, lanes[1]);
    }
    for (; i < count; i += kLanes) {
        const std::size_t rest = count - i < kLanes ? count - i : kLanes;
        const Lanes values = each_lane(
            [=](std::size_t lane) { return lane < rest ? squared_distances[i + lane] : 0.0; });
        add_lanes(values, beta, (1U << rest) - 1, lanes[0]);
    }
    sums.weights += sum_of(lanes[0].weights + lanes[1].weights);
    sums.first += sum_of(lanes[0].first + lanes[1].first);
    sums.second += sum_of(lanes[0].second + lanes[1].second);
}

}  // namespace

extern const TrialKernels kTrialKernels;
const TrialKernels kTrialKernels = {&add};

}  // namespace ovik::OVIK_KERNELS
