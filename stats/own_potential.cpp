#include "stats/own_potential.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "stats/fourier_plan.h"
#include "stats/mesh_potential.h"

namespace ovik {

namespace {

/// Cells of a ring on which G is formed: what deconvolution makes of the kernel's crease at the
/// half of it has faded beyond the last bits where splines meet.
constexpr std::size_t kRing = 64;

/// 1024 times the coefficients of A_d, d from 0 to 5, of the squared distance from the middle.
constexpr double kProducts[kSplineOrder][kOwnTerms] = {
    {5770588, 744240, -2363520, 2772480, -1397760, 258048},
    {3626866, -577640, 1840960, -2182400, 1128960, -215040},
    {800632, 262240, -846080, 1039360, -583680, 122880},
    {59533, -62340, 206880, -274560, 180480, -46080},
    {474, 5640, -20160, 32000, -28160, 10240},
    {1, -20, 160, -640, 1280, -1024},
};

/// 2772 times the means of A_d.
constexpr double kMeans[kSplineOrder] = {15724248, 9738114, 2203488, 152637, 2036, 1};

/// Numbers on the ring that are the same on both sides of cell 0.
using Ring = std::vector<double>;

std::size_t distance_on_ring(std::size_t a, std::size_t b) {
    const std::size_t ahead = (a + kRing - b) % kRing;
    return std::min(ahead, kRing - ahead);
}

/// What a number on cell 0 becomes when the spline is divided out twice.
Ring sharpened_cell() {
    const std::vector<double> factors = spline_deconvolution(kRing);
    std::vector<double> cosines;
    for (std::size_t k = 0; k < kRing; ++k) {
        cosines.push_back(unit_root(k, kRing).cosine);
    }
    Ring ring(kRing, 0.0);
    for (std::size_t a = 0; a < kRing; ++a) {
        for (std::size_t k = 0; k < kRing; ++k) {
            ring[a] += factors[distance_on_ring(k, 0)] * cosines[a * k % kRing];
        }
        ring[a] /= static_cast<double>(kRing);
    }
    return ring;
}

/// What each row weighs in the mean over all y.
Ring row_weights(const Ring& sharpened) {
    Ring weights(kRing);
    for (std::size_t y = 0; y < kRing; ++y) {
        weights[y] = kMeans[0] / 2772.0 * sharpened[y];
        for (std::size_t e = 1; e < kSplineOrder; ++e) {
            weights[y] +=
                kMeans[e] / 2772.0 *
                (sharpened[distance_on_ring(y, e)] + sharpened[distance_on_ring(e, kRing - y)]);
        }
    }
    return weights;
}

/// The mean over all y of what a column of charges has at the columns.
Ring mean_kernel(const Ring& weights, double cells_per_unit) {
    const double unit = cells_per_unit * cells_per_unit;
    Ring kernel(kRing, 0.0);
    for (std::size_t x = 0; x < kRing; ++x) {
        const std::size_t dx = distance_on_ring(x, 0);
        for (std::size_t y = 0; y < kRing; ++y) {
            const std::size_t dy = distance_on_ring(y, 0);
            kernel[x] += weights[y] * (unit / (unit + static_cast<double>(dx * dx + dy * dy)));
        }
    }
    return kernel;
}

}  // namespace

OwnPotential own_potential(double cells_per_unit) {
    const Ring sharpened = sharpened_cell();
    const Ring kernel = mean_kernel(row_weights(sharpened), cells_per_unit);
    OwnPotential own{};
    double mean = 0.0;
    for (std::size_t d = 0; d < kSplineOrder; ++d) {
        double at = 0.0;
        for (std::size_t a = 0; a < kRing; ++a) {
            at += sharpened[a] * kernel[distance_on_ring(d, a)];
        }
        // Columns on both sides.
        at = d == 0 ? at : 2.0 * at;
        mean += kMeans[d] / 2772.0 * at;
        for (std::size_t i = 0; i < kOwnTerms; ++i) {
            own.terms[i] += kProducts[d][i] / 1024.0 * at;
        }
    }
    own.terms[0] -= 0.5 * mean;
    for (std::size_t i = 1; i < kOwnTerms; ++i) {
        own.slopes[i - 1] = static_cast<double>(i) * own.terms[i];
    }
    return own;
}

}  // namespace ovik
