#include "neighbours/candidate_search.h"

#include <algorithm>
#include <limits>

#include "neighbours/row_extent.h"
#include "util/kernel_dispatch.h"

namespace ovik {

OVIK_DISPATCH_KERNELS(CandidateKernels, kEuclideanCandidates, euclidean_candidates)

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

/// Fewest rows for which blocks pay.
constexpr std::size_t kFewestRows = 64;

}  // namespace

CandidateSearch::CandidateSearch(
    const double* points, std::size_t N, std::size_t dims, std::size_t wanted, const Metric& metric)
    : points_(points),
      dims_(dims) {
    if (wanted == 0 || N < wanted || N < kFewestRows) {
        return;
    }
    const std::optional<double> extent = packable_extent(points, N, dims, metric);
    if (!extent) {
        return;
    }
    kernels_ = &metric.candidates(instruction_set());
    row_distances_ = metric.kernels(instruction_set()).row_distances;
    comparison_.emplace(points, N, dims, wanted, *extent, metric);
}

/// Measures the candidates of a row and sorts them.
void CandidateSearch::measure(std::uint32_t row,
                              std::span<const std::uint32_t> positions,
                              Scratch& scratch) const {
    const std::size_t count = positions.size();
    scratch.rows.resize(count);
    scratch.distances.resize(count + kPackedMultiple);
    scratch.places.resize(count);
    scratch.nearest.resize(count);
    for (std::size_t i = 0; i < count; ++i) {
        scratch.rows[i] = comparison_->blocks().order()[positions[i]];
    }
    double* const distances = scratch.distances.data();
    row_distances_(
        points_, dims_, points_ + std::size_t{row} * dims_, scratch.rows.data(), count, distances);
    // Up to here comparing all with all takes less time than sorting.
    constexpr std::size_t kMostRanked = 256;
    if (count <= kMostRanked) {
        kernels_->rank(distances, count, scratch.places.data());
        for (std::size_t i = 0; i < count; ++i) {
            scratch.nearest[scratch.places[i]] = {scratch.rows[i], distances[i]};
        }
        return;
    }
    for (std::size_t i = 0; i < count; ++i) {
        scratch.nearest[i] = {scratch.rows[i], distances[i]};
    }
    std::sort(scratch.nearest.begin(),
              scratch.nearest.end(),
              [](const NearRow& a, const NearRow& b) { return a.distance < b.distance; });
}

bool is_certain(std::span<const NearRow> nearest, std::size_t count, double margin) {
    if (nearest.size() <= count) {
        return false;
    }
    const auto are_equal = [](const NearRow& a, const NearRow& b) {
        return a.distance == b.distance;
    };
    const auto end = nearest.begin() + static_cast<std::ptrdiff_t>(count);
    const double gap =
        count == 0 ? kInfinity : nearest[count].distance - nearest[count - 1].distance;
    return gap > margin && std::adjacent_find(nearest.begin(), end, are_equal) == end;
}

bool is_certain_by_row(std::span<const NearRow> nearest, std::size_t count) {
    return nearest.size() > count &&
           (count == 0 || nearest[count - 1].distance < nearest[count].distance);
}

}  // namespace ovik
