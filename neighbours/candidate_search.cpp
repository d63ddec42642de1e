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

static_assert(RowBlocks::kMostRows <= kMostBlockRows);

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

/// Most blocks of a part, and fewest blocks that are put into parts of several: with fewer there
/// would be too few parts for the threads.
constexpr std::size_t kMostBlocksOfPart = 4;
constexpr std::size_t kFewestBlocksForParts = 256;

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

CandidateSearch::CandidateSearch(
    const double* points, std::size_t N, std::size_t dims, std::size_t wanted, const Metric& metric)
    : points_(points),
      dims_(dims),
      wanted_(wanted) {
    if (wanted == 0 || N < wanted || N < kFewestRows) {
        return;
    }
    const std::optional<double> extent = packable_extent(points, N, dims, metric);
    if (!extent) {
        return;
    }
    kernels_ = &metric.candidates(instruction_set());
    row_distances_ = metric.kernels(instruction_set()).row_distances;
    margin_ = rounding_share_of(dims) * *extent;
    scale_ = packing_scale(*extent);
    blocks_.emplace(points, N, dims, metric);
    formParts();
}

/// Puts blocks into parts: those that follow one another and lie so near that the rows of all are
/// told apart relative to the centre of the first almost as well as relative to their own.
void CandidateSearch::formParts() {
    const std::vector<RowBlocks::Block>& blocks = blocks_->blocks();
    constexpr double kNear = 0.75;
    for (std::size_t b = 0; b < blocks.size(); ++b) {
        if (!parts_.empty() && blocks.size() >= kFewestBlocksForParts &&
            parts_.back().size() < kMostBlocksOfPart) {
            IndexRange& last = parts_.back();
            const auto other = static_cast<std::uint32_t>(b);
            double distance = 0.0;
            row_distances_(blocks_->centres(),
                           dims_,
                           blocks_->centres() + last.begin * dims_,
                           &other,
                           1,
                           &distance);
            if (distance <= kNear * std::min(blocks[last.begin].radius, blocks[b].radius)) {
                last.end = b + 1;
                continue;
            }
        }
        parts_.push_back({b, b + 1});
    }
}

/// Finds the candidates of all rows of some blocks.
void CandidateSearch::collect(IndexRange targets, Scratch& scratch) const {
    const Frame frame{blocks_->centres() + targets.begin * dims_, scale_};
    begin(targets, frame, scratch);
    orderBlocks(targets, scratch);
    for (const NearBlock& other : scratch.blocks) {
        compare(targets, other, frame, scratch);
    }
    for (std::size_t block = targets.begin; block < targets.end; ++block) {
        CandidateBlock& candidates = scratch.candidates[block - targets.begin];
        for (std::size_t t = 0; t < blocks_->blocks()[block].count; ++t) {
            candidates.tighten(t);
        }
    }
}

/// Packs the targets, and makes room for their candidates.
void CandidateSearch::begin(IndexRange targets, const Frame& frame, Scratch& scratch) const {
    scratch.packed_targets.resize(std::max(scratch.packed_targets.size(), targets.size()));
    scratch.candidates.resize(std::max(scratch.candidates.size(), targets.size()));
    scratch.reaches.assign(targets.size(), kInfinity);
    for (std::size_t i = 0; i < targets.size(); ++i) {
        const RowBlocks::Block& block = blocks_->blocks()[targets.begin + i];
        PackedBlock& packed = scratch.packed_targets[i];
        packed.pack(*kernels_, points_, dims_, blocks_->rows(block), frame, 0);
        scratch.candidates[i].begin(*kernels_, packed, dims_, wanted_);
    }
}

/// Lists all blocks by the distances of their centres from that of the first target block.
void CandidateSearch::orderBlocks(IndexRange targets, Scratch& scratch) const {
    const std::size_t count = blocks_->blocks().size();
    scratch.rows.resize(count);
    std::iota(scratch.rows.begin(), scratch.rows.end(), 0U);
    scratch.block_distances.resize(count * targets.size());
    const double* const centres = blocks_->centres();
    for (std::size_t i = 0; i < targets.size(); ++i) {
        row_distances_(centres,
                       dims_,
                       centres + (targets.begin + i) * dims_,
                       scratch.rows.data(),
                       count,
                       scratch.block_distances.data() + i * count);
    }
    scratch.blocks.clear();
    for (std::size_t b = 0; b < count; ++b) {
        scratch.blocks.push_back({b, scratch.block_distances[b]});
    }
    std::sort(scratch.blocks.begin(),
              scratch.blocks.end(),
              [](const NearBlock& a, const NearBlock& b) { return a.distance < b.distance; });
}

/// Offers the rows of a block to those target blocks that are not too far away for all their rows.
void CandidateSearch::compare(IndexRange targets,
                              const NearBlock& other,
                              const Frame& frame,
                              Scratch& scratch) const {
    const std::vector<RowBlocks::Block>& blocks = blocks_->blocks();
    const RowBlocks::Block& sources = blocks[other.block];
    bool is_packed = false;
    for (std::size_t i = 0; i < targets.size(); ++i) {
        const double distance = scratch.block_distances[i * blocks.size() + other.block];
        const double nearest = distance - blocks[targets.begin + i].radius - sources.radius;
        if (nearest - margin_ > scratch.reaches[i]) {
            continue;
        }
        if (!is_packed) {
            scratch.sources.pack(*kernels_,
                                 points_,
                                 dims_,
                                 blocks_->rows(sources),
                                 frame,
                                 static_cast<std::uint32_t>(sources.first));
            is_packed = true;
        }
        CandidateBlock& candidates = scratch.candidates[i];
        candidates.offer(scratch.sources, [&](std::size_t t) { candidates.giveUp(t); });
        scratch.reaches[i] = std::sqrt(candidates.farthestSquare()) / scale_;
    }
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
        scratch.rows[i] = blocks_->order()[positions[i]];
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
