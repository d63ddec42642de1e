#include "neighbours/candidate_search.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <limits>
#include <memory>
#include <numeric>

#include "util/kernel_dispatch.h"
#include "util/parallel.h"

namespace ovik {

OVIK_DISPATCH_KERNELS(CandidateKernels, kEuclideanCandidates, euclidean_candidates)

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

/// Fewest rows for which blocks pay.
constexpr std::size_t kFewestRows = 64;

/// Fewest distances for which another thread pays.
constexpr std::size_t kDistanceGrain = 2048;

/// The share of the longest distance that a tree search may be wrong by, eight times over: the sum
/// of n squares is off by n + 1 units of half a last place, its root by half of that, and a bound
/// of the search has three of such numbers, which are added and compared.
double rounding_share_of(std::size_t dims) {
    return 8.0 * static_cast<double>(dims + 16) * DBL_EPSILON;
}

/// Longest distances between which neither squares overflow nor what underflows counts.
constexpr double kShortest = 1e-100;
constexpr double kLongest = 1e150;

/// The square of a scaled distance below which underflow in single precision may count.
constexpr double kUnderflow = 1e-30;

/// The share of the squared norms A^2 + B^2 of two rows, relative to a centre, by which what is
/// computed of their squared distance A^2 + B^2 - 2 x.y may be wrong.
///
/// Rounding a row of length A to single precision (unit u = 2^-24) moves its product with one of
/// length B by at most u A B, and the product of both in any order of n terms, fused or not, has an
/// error of at most n u / (1 - n u) A B (Higham, Accuracy and Stability of Numerical Algorithms,
/// 2nd edition, 2002, section 3.1). As 2 A B <= A^2 + B^2, that is (n + 2) u (A^2 + B^2) and what
/// is of second order. Rounding the start and the difference adds 4 u (A^2 + B^2). Twice the sum
/// covers all terms of second order, and the far smaller errors of norms and distances in double
/// precision.
double error_share_of(std::size_t dims) {
    constexpr double kUnit = FLT_EPSILON / 2.0;
    return 2.0 * static_cast<double>(dims + 8) * kUnit;
}

/// Above this error candidates would be many.
constexpr double kLargestErrorShare = 0.001;

/// Not below x.
float rounded_up(double x) {
    const auto rounded = static_cast<float>(x);
    return rounded < x ? std::nextafterf(rounded, HUGE_VALF) : rounded;
}

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

CandidateSearch::CandidateSearch(
    const double* points, std::size_t N, std::size_t dims, std::size_t wanted, const Metric& metric)
    : points_(points),
      dims_(dims),
      wanted_(wanted),
      error_share_(error_share_of(dims)) {
    if (metric.candidates == nullptr || dims == 0 || wanted == 0 || N < wanted || N < kFewestRows ||
        error_share_ > kLargestErrorShare) {
        return;
    }
    kernels_ = &metric.candidates(instruction_set());
    row_distances_ = metric.kernels(instruction_set()).row_distances;
    const double longest = longest_way(points, N, dims, row_distances_);
    if (longest >= kShortest && longest <= kLongest) {
        margin_ = rounding_share_of(dims) * longest;
        scale_ = std::exp2(-std::ilogb(longest));
        blocks_.emplace(points, N, dims, metric);
    }
}

/// Finds the candidates of all rows of a block.
void CandidateSearch::collect(std::size_t block, Scratch& scratch) const {
    const std::vector<RowBlocks::Block>& blocks = blocks_->blocks();
    const RowBlocks::Block& targets = blocks[block];
    const Frame frame{blocks_->centres() + block * dims_, scale_};
    begin(targets, frame, scratch);
    orderBlocks(block, scratch);
    double reach = kInfinity;
    for (const NearBlock& other : scratch.blocks) {
        const RowBlocks::Block& sources = blocks[other.block];
        const double nearest = other.distance - targets.radius - sources.radius;
        if (nearest - margin_ > reach) {
            continue;
        }
        offer(targets, sources, frame, scratch);
        const auto bounds = scratch.bounds.begin();
        const double farthest =
            *std::max_element(bounds, bounds + static_cast<std::ptrdiff_t>(targets.count));
        reach = std::sqrt(farthest) / scale_;
    }
    for (std::size_t t = 0; t < targets.count; ++t) {
        tighten(t, scratch);
    }
}

/// Makes room for the candidates of a block of targets, and packs these.
void CandidateSearch::begin(const RowBlocks::Block& targets,
                            const Frame& frame,
                            Scratch& scratch) const {
    const std::size_t room = 2 * wanted_ + 2 * RowBlocks::kMostRows + kPackedMultiple;
    scratch.packed_targets.resize(dims_ * RowBlocks::kMostRows);
    scratch.packed_sources.resize(dims_ * RowBlocks::kMostRows);
    scratch.starts.resize(RowBlocks::kMostRows);
    scratch.target_norms.resize(RowBlocks::kMostRows);
    scratch.source_norms.resize(RowBlocks::kMostRows);
    scratch.values.resize(RowBlocks::kMostRows * room);
    scratch.positions.resize(RowBlocks::kMostRows * room);
    scratch.candidates.resize(RowBlocks::kMostRows);
    scratch.bounds.assign(RowBlocks::kMostRows, kInfinity);
    for (std::size_t t = 0; t < targets.stride; ++t) {
        // What pads the block has no candidates.
        scratch.candidates[t] = {scratch.values.data() + t * room,
                                 scratch.positions.data() + t * room,
                                 0,
                                 t < targets.count ? FLT_MAX : -FLT_MAX};
    }
    kernels_->pack(blocks_->columns(targets),
                   targets.stride,
                   dims_,
                   frame,
                   scratch.packed_targets.data(),
                   scratch.target_norms.data());
}

/// Lists all blocks by the distances of their centres from that of one.
void CandidateSearch::orderBlocks(std::size_t block, Scratch& scratch) const {
    const std::size_t count = blocks_->blocks().size();
    scratch.rows.resize(count);
    scratch.distances.resize(count);
    std::iota(scratch.rows.begin(), scratch.rows.end(), 0U);
    const double* const centres = blocks_->centres();
    row_distances_(centres,
                   dims_,
                   centres + block * dims_,
                   scratch.rows.data(),
                   count,
                   scratch.distances.data());
    scratch.blocks.clear();
    for (std::size_t i = 0; i < count; ++i) {
        scratch.blocks.push_back({i, scratch.distances[i]});
    }
    std::sort(scratch.blocks.begin(),
              scratch.blocks.end(),
              [](const NearBlock& a, const NearBlock& b) { return a.distance < b.distance; });
}

/// Offers the rows of a block to all targets, and sees to it that there is room for the next block.
void CandidateSearch::offer(const RowBlocks::Block& targets,
                            const RowBlocks::Block& sources,
                            const Frame& frame,
                            Scratch& scratch) const {
    kernels_->pack(blocks_->columns(sources),
                   sources.stride,
                   dims_,
                   frame,
                   scratch.packed_sources.data(),
                   scratch.source_norms.data());
    for (std::size_t i = 0; i < sources.stride; ++i) {
        // Lowered by the error, so that no value is above what it stands for.
        scratch.starts[i] = i < sources.count
                                ? static_cast<float>(scratch.source_norms[i] * (1.0 - error_share_))
                                : HUGE_VALF;
    }
    kernels_->collect({scratch.packed_targets.data(), nullptr, targets.stride},
                      targets.count,
                      {scratch.packed_sources.data(), scratch.starts.data(), sources.stride},
                      dims_,
                      static_cast<std::uint32_t>(sources.first),
                      scratch.candidates.data());
    const std::size_t most = 2 * wanted_ + RowBlocks::kMostRows;
    for (std::size_t t = 0; t < targets.count; ++t) {
        const std::size_t count = scratch.candidates[t].count;
        if (count > most || (count >= wanted_ && scratch.bounds[t] == kInfinity)) {
            tighten(t, scratch);
        }
        if (scratch.candidates[t].count > most) {
            // Too many for their room are too near one another to be told apart.
            scratch.candidates[t].count = 0;
            scratch.candidates[t].limit = -FLT_MAX;
            scratch.bounds[t] = 0.0;
        }
    }
}

/// Lowers the limit of a target to what still admits the nearest that are wanted.
///
/// For a target of squared norm a and a value v, v + a (1 - e) is at most the square of the
/// distance, and below it by 2 e (a + b) at most, if e is the error's share and b the squared norm
/// of the source: at most 2 a and twice the square of the distance.
void CandidateSearch::tighten(std::size_t target, Scratch& scratch) const {
    Candidates& candidates = scratch.candidates[target];
    if (candidates.count < wanted_) {
        return;
    }
    const double value = kernels_->bound(candidates.values, candidates.count, wanted_);
    const double norm = scratch.target_norms[target];
    const double least = norm * (1.0 - error_share_);
    const double bound =
        (std::max(value + least, 0.0) + 7.0 * error_share_ * norm) * (1.0 + 5.0 * error_share_) +
        kUnderflow;
    if (bound < scratch.bounds[target]) {
        scratch.bounds[target] = bound;
        candidates.limit = rounded_up(bound - least);
    }
    kernels_->drop(candidates);
}

/// Measures the candidates of a row and sorts them.
void CandidateSearch::measure(std::uint32_t row,
                              const Candidates& candidates,
                              Scratch& scratch) const {
    const std::size_t count = candidates.count;
    scratch.rows.resize(count);
    scratch.distances.resize(count + kPackedMultiple);
    scratch.places.resize(count);
    scratch.nearest.resize(count);
    for (std::size_t i = 0; i < count; ++i) {
        scratch.rows[i] = blocks_->order()[candidates.positions[i]];
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

}  // namespace ovik
