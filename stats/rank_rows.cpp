#include "stats/rank_rows.h"

#include <algorithm>

namespace ovik {

IndexRange RankRows::of(std::size_t rank) const {
    const IndexRange share = static_share(windows(), ranks_->count(), rank);
    return {std::min(share.begin * kWindowRows, count_), std::min(share.end * kWindowRows, count_)};
}

/// By the sizes of the shares, of which the first ones may be one larger than the others.
std::size_t RankRows::ownerOf(std::size_t row) const {
    const std::size_t window = row / kWindowRows;
    const std::size_t size = windows() / ranks_->count();
    const std::size_t larger = windows() % ranks_->count();
    return window < larger * (size + 1) ? window / (size + 1)
                                        : larger + (window - larger * (size + 1)) / size;
}

void RankRows::gather(double* values, std::size_t columns, Errand errand) const {
    if (!ranks_->areSeveral()) {
        return;
    }
    std::vector<std::size_t> starts;
    for (std::size_t rank = 0; rank < ranks_->count(); ++rank) {
        starts.push_back(of(rank).begin * columns);
    }
    starts.push_back(count_ * columns);
    ranks_->gather({values, count_ * columns}, starts, errand);
}

}  // namespace ovik
