#include "neighbours/row_join.h"

#include <algorithm>
#include <cmath>

namespace ovik {

RowJoin::RowJoin(
    const double* points, std::size_t dims, double scale, const Metric& metric, NearestLists& lists)
    : points_(points),
      dims_(dims),
      scale_(scale),
      kernels_(metric.candidates(instruction_set())),
      lists_(lists),
      centre_(dims) {}

void RowJoin::joinAll(std::span<const std::uint32_t> rows) {
    std::fill(centre_.begin(), centre_.end(), 0.0);
    for (const std::uint32_t row : rows) {
        for (std::size_t d = 0; d < dims_; ++d) {
            centre_[d] += points_[row * dims_ + d];
        }
    }
    for (double& value : centre_) {
        value /= static_cast<double>(std::max<std::size_t>(rows.size(), 1));
    }
    begin();
    pack(rows, centre_.data());
    for (std::size_t targets = 0; targets < block_count_; ++targets) {
        compare(targets, {0, block_count_});
    }
}

void RowJoin::joinFresh(std::span<const std::uint32_t> fresh,
                        std::span<const std::uint32_t> known,
                        const double* centre) {
    begin();
    pack(fresh, centre);
    const std::size_t fresh_blocks = block_count_;
    pack(known, centre);
    for (std::size_t targets = 0; targets < block_count_; ++targets) {
        compare(targets, {0, targets < fresh_blocks ? block_count_ : fresh_blocks});
    }
}

void RowJoin::begin() {
    block_count_ = 0;
    rows_.clear();
    firsts_.clear();
}

/// Packs rows behind those that are packed.
void RowJoin::pack(std::span<const std::uint32_t> rows, const double* centre) {
    for (std::size_t i = 0; i < rows.size(); i += kMostBlockRows) {
        const auto some = rows.subspan(i, std::min(kMostBlockRows, rows.size() - i));
        if (block_count_ == blocks_.size()) {
            blocks_.emplace_back();
        }
        firsts_.push_back(rows_.size());
        blocks_[block_count_++].pack(kernels_,
                                     points_,
                                     dims_,
                                     some,
                                     {centre, scale_},
                                     static_cast<std::uint32_t>(rows_.size()));
        rows_.insert(rows_.end(), some.begin(), some.end());
    }
}

/// Compares the rows of a block with those of others.
void RowJoin::compare(std::size_t targets, IndexRange sources) {
    const PackedBlock& packed = blocks_[targets];
    const std::uint32_t* const rows = rows_.data() + firsts_[targets];
    // One more than a list holds: the row itself may be among the candidates.
    candidates_.begin(kernels_, packed, dims_, lists_.length() + 1);
    for (std::size_t t = 0; t < packed.count(); ++t) {
        admit(t, rows[t]);
    }
    for (std::size_t block = sources.begin; block < sources.end; ++block) {
        candidates_.offer(blocks_[block], [&](std::size_t t) {
            offerCandidates(t, rows[t]);
            candidates_.clear(t);
            admit(t, rows[t]);
        });
    }
    for (std::size_t t = 0; t < packed.count(); ++t) {
        candidates_.tighten(t);
        offerCandidates(t, rows[t]);
    }
}

/// Leaves out what is farther from a row than all in its list.
void RowJoin::admit(std::size_t target, std::uint32_t row) {
    const double farthest = lists_.farthest(row) * scale_;
    if (std::isfinite(farthest)) {
        candidates_.admit(target, farthest * farthest);
    }
}

void RowJoin::offerCandidates(std::size_t target, std::uint32_t row) {
    offered_.clear();
    for (const std::uint32_t position : candidates_.positions(target)) {
        offered_.push_back(rows_[position]);
    }
    if (!offered_.empty()) {
        lists_.offer(row, offered_, scratch_);
    }
}

}  // namespace ovik
