#include "neighbours/part_search.h"

#include <algorithm>
#include <optional>

#include "neighbours/row_extent.h"
#include "util/stage_count.h"

namespace ovik {

// Of the candidates, the row itself may be one.
PartSearch::PartSearch(MatrixView<const double> part,
                       std::size_t first,
                       std::size_t wanted,
                       double extent,
                       const Metric& metric)
    : part_(part),
      first_(first),
      wanted_(wanted),
      scale_(packing_scale(extent)),
      metric_(metric),
      row_distances_(metric.kernels(instruction_set()).row_distances),
      kernels_(metric.candidates(instruction_set())),
      comparison_(part.values, part.rows, part.columns, wanted + 1, extent, metric),
      lists_(part.rows * wanted),
      counts_(part.rows) {}

void PartSearch::visit(MatrixView<const double> others, std::size_t first, StageCount& progress) {
    std::optional<RowBlocks> built;
    if (first != first_) {
        built.emplace(others.values, others.rows, others.columns, metric_);
    }
    const Visitors visitors{others, first, built ? *built : comparison_.blocks()};
    const int workers = worker_count(part_.rows);
    std::vector<Scratch> scratch(static_cast<std::size_t>(workers));
    const std::vector<IndexRange>& groups = comparison_.groups();
    parallel_tasks(groups.size(), workers, [&](std::size_t group, std::size_t worker) {
        if (progress.isStopped()) {
            return;
        }
        if (wanted_ > 0) {
            compare(groups[group], visitors, scratch[worker]);
        }
        for (std::size_t block = groups[group].begin; block < groups[group].end; ++block) {
            progress.add(comparison_.blocks().blocks()[block].count);
        }
    });
}

/// Compares the rows of a group of blocks with all visitors that may be near enough to one of them.
void PartSearch::compare(IndexRange group, const Visitors& visitors, Scratch& scratch) {
    const RowBlocks& blocks = comparison_.blocks();
    const auto rows_of = [&](std::size_t block) {
        return blocks.rows(blocks.blocks()[group.begin + block]);
    };
    BlockComparison::Scratch& compared = scratch.comparison;
    comparison_.compare(
        group,
        visitors.rows.values,
        visitors.blocks,
        compared,
        [&](std::size_t block) {
            const std::span<const std::uint32_t> rows = rows_of(block);
            for (std::size_t t = 0; t < rows.size(); ++t) {
                admit(rows[t], t, compared.candidates(block));
            }
        },
        [&](std::size_t block, std::size_t t) {
            const std::uint32_t row = rows_of(block)[t];
            CandidateBlock& candidates = compared.candidates(block);
            offer(row, candidates.positions(t), visitors, scratch);
            candidates.clear(t);
            admit(row, t, candidates);
        });
    for (std::size_t block = 0; block < group.size(); ++block) {
        const std::span<const std::uint32_t> rows = rows_of(block);
        for (std::size_t t = 0; t < rows.size(); ++t) {
            offer(rows[t], compared.candidates(block).positions(t), visitors, scratch);
        }
    }
}

/// Leaves out what is farther from a row than all in its full list.
void PartSearch::admit(std::uint32_t row, std::size_t target, CandidateBlock& candidates) const {
    if (counts_[row] == wanted_) {
        const double farthest = nearest(row).back().distance * scale_;
        candidates.admit(target, farthest * farthest);
    }
}

/// Measures the candidates of a row, and takes those into its list that belong there.
void PartSearch::offer(std::uint32_t row,
                       std::span<const std::uint32_t> positions,
                       const Visitors& visitors,
                       Scratch& scratch) {
    scratch.rows.clear();
    for (const std::uint32_t position : positions) {
        scratch.rows.push_back(visitors.blocks.order()[position]);
    }
    scratch.distances.resize(scratch.rows.size());
    row_distances_(visitors.rows.values,
                   part_.columns,
                   part_.values + std::size_t{row} * part_.columns,
                   scratch.rows.data(),
                   scratch.rows.size(),
                   scratch.distances.data());
    const bool is_full = counts_[row] == wanted_;
    const auto itself = static_cast<std::uint32_t>(first_ + row);
    scratch.found.clear();
    for (std::size_t i = 0; i < scratch.rows.size(); ++i) {
        const NearRow one{static_cast<std::uint32_t>(visitors.first + scratch.rows[i]),
                          scratch.distances[i]};
        if (one.row != itself && (!is_full || is_nearer(one, nearest(row).back()))) {
            scratch.found.push_back(one);
        }
    }
    if (!scratch.found.empty()) {
        sortFound(scratch);
        merge(row, scratch);
    }
}

/// Sorts what has been found into the order of the lists.
void PartSearch::sortFound(Scratch& scratch) const {
    const auto comes_first = [](const NearRow& a, const NearRow& b) { return is_nearer(a, b); };
    const std::size_t count = scratch.found.size();
    scratch.sorted.resize(count);
    // Up to here comparing all with all takes less time than sorting.
    constexpr std::size_t kMostRanked = 256;
    if (count > kMostRanked) {
        scratch.sorted.assign(scratch.found.begin(), scratch.found.end());
        std::sort(scratch.sorted.begin(), scratch.sorted.end(), comes_first);
        return;
    }
    scratch.distances.resize(count + kPackedMultiple);
    scratch.places.resize(count);
    for (std::size_t i = 0; i < count; ++i) {
        scratch.distances[i] = scratch.found[i].distance;
    }
    kernels_.rank(scratch.distances.data(), count, scratch.places.data());
    for (std::size_t i = 0; i < count; ++i) {
        scratch.sorted[scratch.places[i]] = scratch.found[i];
    }
    const auto is_out_of_order = [](const NearRow& a, const NearRow& b) {
        return a.distance == b.distance && a.row > b.row;
    };
    if (std::adjacent_find(scratch.sorted.begin(), scratch.sorted.end(), is_out_of_order) !=
        scratch.sorted.end()) {
        std::sort(scratch.sorted.begin(), scratch.sorted.end(), comes_first);
    }
}

/// Takes the nearest of a list and of what has been found.
void PartSearch::merge(std::uint32_t row, Scratch& scratch) {
    const std::span<const NearRow> listed = nearest(row);
    scratch.merged.resize(listed.size() + scratch.sorted.size());
    std::merge(listed.begin(),
               listed.end(),
               scratch.sorted.begin(),
               scratch.sorted.end(),
               scratch.merged.begin(),
               [](const NearRow& a, const NearRow& b) { return is_nearer(a, b); });
    const std::size_t count = std::min(scratch.merged.size(), wanted_);
    std::copy_n(scratch.merged.begin(),
                count,
                lists_.begin() + static_cast<std::ptrdiff_t>(std::size_t{row} * wanted_));
    counts_[row] = static_cast<std::uint32_t>(count);
}

}  // namespace ovik
