#include "neighbours/row_extent.h"

#include <cfloat>
#include <cmath>
#include <cstdint>
#include <numeric>
#include <vector>

#include "neighbours/candidate_block.h"
#include "util/parallel.h"

namespace ovik {

namespace {

/// Fewest distances for which another thread pays.
constexpr std::size_t kDistanceGrain = 2048;

/// Longest distances between which neither squares overflow nor what underflows counts.
constexpr double kShortest = 1e-100;
constexpr double kLongest = 1e150;

/// At least the distance of any two rows, by the way over the first; infinite or NaN if that is.
double longest_way(const double* points, std::size_t N, std::size_t dims, RowDistances measure) {
    std::vector<std::uint32_t> rows(N);
    std::vector<double> distances(N);
    std::iota(rows.begin(), rows.end(), 0U);
    parallel_for(N, kDistanceGrain, [&](std::size_t /*worker*/, IndexRange part) {
        measure(points,
                dims,
                points,
                rows.data() + part.begin,
                part.size(),
                distances.data() + part.begin);
    });
    double longest = 0.0;
    for (const double distance : distances) {
        if (!(distance <= longest)) {
            longest = distance;
        }
        if (!std::isfinite(longest)) {
            break;
        }
    }
    return 2.0 * longest;
}

}  // namespace

std::optional<double> packable_extent(const double* points,
                                      std::size_t N,
                                      std::size_t dims,
                                      const Metric& metric) {
    if (metric.candidates == nullptr || dims == 0 || N == 0 ||
        packing_error_share(dims) > kLargestErrorShare) {
        return std::nullopt;
    }
    const double longest =
        longest_way(points, N, dims, metric.kernels(instruction_set()).row_distances);
    return longest >= kShortest && longest <= kLongest ? std::optional(longest) : std::nullopt;
}

double packing_scale(double extent) {
    return std::exp2(-std::ilogb(extent));
}

/// What a tree search may be wrong by, eight times over: the sum of n squares is off by n + 1 units
/// of half a last place, its root by half of that, and a bound of the search has three of such
/// numbers, which are added and compared.
double tree_margin(std::size_t dims, double extent) {
    return 8.0 * static_cast<double>(dims + 16) * DBL_EPSILON * extent;
}

}  // namespace ovik
