#include "stats/compared_rows.h"

#include <algorithm>
#include <utility>

namespace ovik {

namespace {

/// The first `near` of some rows that are not among the first `far` of others.
std::vector<std::uint32_t> near_but_far(std::span<const std::uint32_t> rows,
                                        std::span<const std::uint32_t> others,
                                        std::size_t near,
                                        std::size_t far) {
    const auto end = others.begin() + static_cast<std::ptrdiff_t>(far);
    std::vector<std::uint32_t> found;
    for (std::size_t i = 0; i < near; ++i) {
        if (std::find(others.begin(), end, rows[i]) == end) {
            found.push_back(rows[i]);
        }
    }
    return found;
}

}  // namespace

ComparedRows::ComparedRows(std::size_t N,
                           const std::vector<std::size_t>& sizes,
                           MisplacedNeighbours* misplaced)
    : sizes_(sizes),
      misplaced_(misplaced),
      sums_(N) {
    if (misplaced != nullptr) {
        misplaced->falsely_near.resize(N);
        misplaced->torn.resize(N);
    }
}

std::size_t ComparedRows::wanted() const {
    std::size_t largest = misplaced_ != nullptr ? misplaced_->far : 0;
    for (const std::size_t size : sizes_) {
        largest = std::max(largest, size);
    }
    return largest;
}

std::vector<ComparedRows::Sums> ComparedRows::sumsOf(std::span<const std::uint32_t> ranks) const {
    std::vector<Sums> sums(sizes_.size());
    for (std::size_t i = 0; i < sizes_.size(); ++i) {
        for (const std::uint32_t rank : ranks.first(sizes_[i])) {
            sums[i].recalled += rank < sizes_[i] ? 1 : 0;
            sums[i].excess += rank < sizes_[i] ? 0 : rank + 1 - sizes_[i];
        }
    }
    return sums;
}

void ComparedRows::add(std::size_t n, const ComparedRow& row) {
    sums_[n] = sumsOf(row.ranks);
    if (misplaced_ != nullptr) {
        const auto& [near, far] = std::pair(misplaced_->near, misplaced_->far);
        misplaced_->falsely_near[n] = near_but_far(row.on_map, row.in_data, near, far);
        misplaced_->torn[n] = near_but_far(row.in_data, row.on_map, near, far);
    }
}

/// The trustworthiness for some sums over so many rows of N.
double ComparedRows::trustworthiness(const Sums& sums, double rows, double N, double k) {
    return 1.0 - 2.0 * static_cast<double>(sums.excess) / (rows * k * (2.0 * N - 3.0 * k - 1.0));
}

NeighbourhoodQuality ComparedRows::qualityOf(std::size_t which) const {
    const auto N = static_cast<double>(sums_.size());
    const auto k = static_cast<double>(sizes_[which]);
    NeighbourhoodQuality quality{sizes_[which]};
    Sums total;
    for (const std::vector<Sums>& row : sums_) {
        total.excess += row[which].excess;
        total.recalled += row[which].recalled;
        quality.kept.push_back(static_cast<double>(row[which].recalled) / k);
        quality.trusted.push_back(trustworthiness(row[which], 1.0, N, k));
    }
    quality.trustworthiness = trustworthiness(total, N, N, k);
    quality.preservation = static_cast<double>(total.recalled) / (N * k);
    return quality;
}

std::vector<NeighbourhoodQuality> ComparedRows::quality() const {
    std::vector<NeighbourhoodQuality> result;
    for (std::size_t i = 0; i < sizes_.size(); ++i) {
        result.push_back(qualityOf(i));
    }
    return result;
}

}  // namespace ovik
