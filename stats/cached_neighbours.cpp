#include "stats/cached_neighbours.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <stdexcept>
#include <utility>

#include "stats/tsne.h"

namespace ovik {

namespace {

/// An upper bound of the distances between points under a metric with the triangle inequality,
/// which the index asks for: the way over the first point.
double longest_way(const double* points, std::size_t N, std::size_t dims, const Metric& metric) {
    double longest = 0.0;
    for (std::size_t n = 1; n < N; ++n) {
        longest = std::max(longest, metric.distance(points, points + n * dims, dims));
    }
    return 2.0 * longest;
}

}  // namespace

std::shared_ptr<CachedNeighbours> make_cached_neighbours(std::size_t most) {
    return std::make_shared<CachedNeighbours>(most);
}

const NeighbourIndex& CachedNeighbours::index(const double* points,
                                              std::size_t N,
                                              std::size_t dims,
                                              RandomStream& random) {
    const Digest digest = digest_of({points, N * dims});
    if (index_ != nullptr) {
        if (N != N_ || digest != points_) {
            throw std::invalid_argument("neighbours of another matrix are cached");
        }
        for (std::size_t draw = 0; draw < index_->drawCount(); ++draw) {
            random.next();
        }
        return *index_;
    }
    // Far above what rounding adds to a distance and to the bounds of a search.
    constexpr double kMargin = 1e-10;
    lists_.resize(N * most_);
    found_.resize(N);
    has_list_.resize(N);
    index_ = std::make_unique<NeighbourIndex>(points, N, dims, euclidean_metric(), random);
    margin_ = kMargin * longest_way(points, N, dims, index_->metric());
    N_ = N;
    points_ = digest;
    return *index_;
}

void CachedNeighbours::search(IndexRange positions,
                              const double* const* targets,
                              std::size_t count,
                              NeighbourIndex::Queries& queries) {
    if (has_list_[positions.begin] == 0) {
        index_->search(targets, positions.size(), most_, queries);
        for (std::size_t i = positions.begin; i < positions.end; ++i) {
            const std::vector<Neighbour>& list = queries.neighbours[i - positions.begin];
            std::copy(list.begin(), list.end(), lists_.data() + i * most_);
            found_[i] = list.size();
            has_list_[i] = 1;
        }
    }
    const double* uncertain[kTargets];
    std::size_t slots[kTargets];
    std::size_t uncertain_count = 0;
    for (std::size_t i = positions.begin; i < positions.end; ++i) {
        if (!isCertain(i, count)) {
            slots[uncertain_count] = i - positions.begin;
            uncertain[uncertain_count++] = targets[i - positions.begin];
        }
    }
    if (uncertain_count > 0) {
        index_->search(uncertain, uncertain_count, count, queries);
    }
    // From the last on: the slot of a target is never before its place among the uncertain.
    for (std::size_t u = uncertain_count; u-- > 0;) {
        std::swap(queries.neighbours[u], queries.neighbours[slots[u]]);
    }
    for (std::size_t i = positions.begin; i < positions.end; ++i) {
        if (isCertain(i, count)) {
            const Neighbour* const list = lists_.data() + i * most_;
            queries.neighbours[i - positions.begin].assign(list, list + std::min(count, found_[i]));
        }
    }
}

/// Whether a search for `count` would give the head of the list.
bool CachedNeighbours::isCertain(std::size_t position, std::size_t count) const {
    if (count == most_) {
        return true;
    }
    const Neighbour* const list = lists_.data() + position * most_;
    if (count == 0 || count >= found_[position]) {
        return count == 0;
    }
    const auto are_equal = [](const Neighbour& a, const Neighbour& b) {
        return a.distance == b.distance;
    };
    return list[count].distance - list[count - 1].distance > margin_ &&
           std::adjacent_find(list, list + count, are_equal) == list + count;
}

}  // namespace ovik
