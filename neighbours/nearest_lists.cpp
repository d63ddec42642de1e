#include "neighbours/nearest_lists.h"

#include <algorithm>
#include <limits>

namespace ovik {

NearestLists::NearestLists(
    const double* points, std::size_t N, std::size_t dims, std::size_t length, const Metric& metric)
    : points_(points),
      dims_(dims),
      length_(length),
      kernels_(metric.candidates(instruction_set())),
      row_distances_(metric.kernels(instruction_set()).row_distances),
      entries_(N * length),
      distances_(N * length),
      counts_(N),
      farthest_(N) {
    for (std::atomic<double>& farthest : farthest_) {
        farthest = std::numeric_limits<double>::infinity();
    }
}

void NearestLists::offer(std::size_t row, std::span<const std::uint32_t> others, Scratch& scratch) {
    const std::lock_guard lock(locks_[row % locks_.size()]);
    choose(row, others, scratch);
    if (!scratch.found.empty()) {
        merge(row, scratch.found);
    }
}

/// Finds those rows that get into a list, in its order.
void NearestLists::choose(std::size_t row,
                          std::span<const std::uint32_t> others,
                          Scratch& scratch) const {
    const std::size_t count = counts_[row];
    scratch.rows.resize(others.size());
    scratch.rows.resize(kernels_.without(
        entries_.data() + row * length_, count, others.data(), others.size(), scratch.rows.data()));
    std::erase(scratch.rows, static_cast<std::uint32_t>(row));
    scratch.found.clear();
    scratch.distances.resize(scratch.rows.size());
    row_distances_(points_,
                   dims_,
                   points_ + row * dims_,
                   scratch.rows.data(),
                   scratch.rows.size(),
                   scratch.distances.data());
    const bool is_full = count == length_;
    const NearRow last = is_full ? at(row, length_ - 1) : NearRow{0, 0.0};
    for (std::size_t i = 0; i < scratch.rows.size(); ++i) {
        const NearRow one{scratch.rows[i], scratch.distances[i]};
        if (!is_full || is_nearer(one, last)) {
            scratch.found.push_back(one);
        }
    }
    std::sort(scratch.found.begin(), scratch.found.end(), is_nearer);
}

/// Merges rows into a list from behind.
void NearestLists::merge(std::size_t row, std::span<const NearRow> found) {
    std::uint32_t* const entries = entries_.data() + row * length_;
    double* const distances = distances_.data() + row * length_;
    std::size_t listed = counts_[row];
    std::size_t added = found.size();
    counts_[row] = static_cast<std::uint32_t>(std::min(listed + added, length_));
    while (added > 0) {
        const std::size_t place = listed + added - 1;
        const NearRow& one = found[added - 1];
        const bool is_listed_farther =
            listed > 0 && is_nearer(one, {entries[listed - 1] & ~kNew, distances[listed - 1]});
        if (place < length_) {
            entries[place] = is_listed_farther ? entries[listed - 1] : one.row | kNew;
            distances[place] = is_listed_farther ? distances[listed - 1] : one.distance;
        }
        --(is_listed_farther ? listed : added);
    }
    if (counts_[row] == length_) {
        farthest_[row].store(distances[length_ - 1], std::memory_order_relaxed);
    }
}

}  // namespace ovik
