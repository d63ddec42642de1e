#include "neighbours/block_comparison.h"

#include <algorithm>
#include <numeric>

#include "neighbours/row_extent.h"

namespace ovik {

namespace {

static_assert(RowBlocks::kMostRows <= kMostBlockRows);

/// Most blocks of a group, and fewest blocks that are put into groups of several: with fewer there
/// would be too few groups for the threads.
constexpr std::size_t kMostBlocksOfGroup = 4;
constexpr std::size_t kFewestBlocksForGroups = 256;

}  // namespace

BlockComparison::BlockComparison(const double* points,
                                 std::size_t N,
                                 std::size_t dims,
                                 std::size_t wanted,
                                 double extent,
                                 const Metric& metric)
    : points_(points),
      dims_(dims),
      wanted_(wanted),
      margin_(tree_margin(dims, extent)),
      scale_(packing_scale(extent)),
      row_distances_(metric.kernels(instruction_set()).row_distances),
      kernels_(metric.candidates(instruction_set())),
      blocks_(points, N, dims, metric) {
    formGroups();
}

/// Puts blocks into groups: those that follow one another and lie so near that the rows of all are
/// told apart relative to the centre of the first almost as well as relative to their own.
void BlockComparison::formGroups() {
    const std::vector<RowBlocks::Block>& blocks = blocks_.blocks();
    constexpr double kNear = 0.75;
    for (std::size_t b = 0; b < blocks.size(); ++b) {
        if (!groups_.empty() && blocks.size() >= kFewestBlocksForGroups &&
            groups_.back().size() < kMostBlocksOfGroup) {
            IndexRange& last = groups_.back();
            const auto other = static_cast<std::uint32_t>(b);
            double distance = 0.0;
            row_distances_(blocks_.centres(),
                           dims_,
                           blocks_.centres() + last.begin * dims_,
                           &other,
                           1,
                           &distance);
            if (distance <= kNear * std::min(blocks[last.begin].radius, blocks[b].radius)) {
                last.end = b + 1;
                continue;
            }
        }
        groups_.push_back({b, b + 1});
    }
}

/// Packs the targets, and makes room for their candidates.
void BlockComparison::pack(IndexRange group, Scratch& scratch) const {
    scratch.packed_targets_.resize(std::max(scratch.packed_targets_.size(), group.size()));
    scratch.candidates_.resize(std::max(scratch.candidates_.size(), group.size()));
    scratch.reaches_.resize(group.size());
    for (std::size_t i = 0; i < group.size(); ++i) {
        const RowBlocks::Block& block = blocks_.blocks()[group.begin + i];
        PackedBlock& packed = scratch.packed_targets_[i];
        packed.pack(kernels_, points_, dims_, blocks_.rows(block), frameOf(group), 0);
        scratch.candidates_[i].begin(kernels_, packed, dims_, wanted_);
    }
}

void BlockComparison::packSources(IndexRange group,
                                  const double* points,
                                  const RowBlocks& sources,
                                  std::size_t block,
                                  Scratch& scratch) const {
    const RowBlocks::Block& rows = sources.blocks()[block];
    scratch.sources_.pack(kernels_,
                          points,
                          dims_,
                          sources.rows(rows),
                          frameOf(group),
                          static_cast<std::uint32_t>(rows.first));
}

/// Lists all blocks by the distances of their centres from that of the first target block.
void BlockComparison::orderBlocks(IndexRange group,
                                  const RowBlocks& sources,
                                  Scratch& scratch) const {
    const std::size_t count = sources.blocks().size();
    scratch.rows_.resize(count);
    std::iota(scratch.rows_.begin(), scratch.rows_.end(), 0U);
    scratch.block_distances_.resize(count * group.size());
    for (std::size_t i = 0; i < group.size(); ++i) {
        row_distances_(sources.centres(),
                       dims_,
                       blocks_.centres() + (group.begin + i) * dims_,
                       scratch.rows_.data(),
                       count,
                       scratch.block_distances_.data() + i * count);
    }
    scratch.blocks_.clear();
    for (std::size_t b = 0; b < count; ++b) {
        scratch.blocks_.push_back({b, scratch.block_distances_[b]});
    }
    std::sort(scratch.blocks_.begin(),
              scratch.blocks_.end(),
              [](const NearBlock& a, const NearBlock& b) { return a.distance < b.distance; });
}

/// Whether a block of sources is too far away for all targets of a block.
bool BlockComparison::isTooFar(IndexRange group,
                               std::size_t target,
                               std::size_t source,
                               const RowBlocks& sources,
                               const Scratch& scratch) const {
    const std::size_t count = sources.blocks().size();
    const double distance = scratch.block_distances_[target * count + source];
    const double nearest =
        distance - blocks_.blocks()[group.begin + target].radius - sources.blocks()[source].radius;
    return nearest - margin_ > scratch.reaches_[target];
}

void BlockComparison::tighten(IndexRange group, Scratch& scratch) const {
    for (std::size_t i = 0; i < group.size(); ++i) {
        for (std::size_t t = 0; t < blocks_.blocks()[group.begin + i].count; ++t) {
            scratch.candidates_[i].tighten(t);
        }
    }
}

}  // namespace ovik
