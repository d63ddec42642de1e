#include "neighbours/row_blocks.h"

#include <algorithm>
#include <numeric>

namespace ovik {

namespace {

/// Ranges of rows that are split by a task each: enough of them for a dynamic schedule.
constexpr std::size_t kTasks = 16;

/// Fewest distances for which another thread pays.
constexpr std::size_t kDistanceGrain = 2048;

/// Far above what rounding adds to a distance.
constexpr double kRoundingMargin = 1e-9;

/// Whether a row is nearer to the first of two far ones.
const auto is_on_first_side = [](const auto& side) { return side.key < 0.0; };

}  // namespace

RowBlocks::RowBlocks(const double* points, std::size_t N, std::size_t dims, const Metric& metric)
    : points_(points),
      dims_(dims),
      row_distances_(metric.kernels(instruction_set()).row_distances),
      order_(N),
      distances_(N),
      sides_(N) {
    std::iota(order_.begin(), order_.end(), 0U);
    // Large ranges one after the other, each by all threads; from then on each by one.
    const std::size_t task_size = std::max(kMostRows, N / kTasks);
    std::vector<IndexRange> ranges;
    std::vector<IndexRange> large{{0, N}};
    while (!large.empty()) {
        const IndexRange range = large.back();
        large.pop_back();
        if (range.size() <= task_size) {
            ranges.push_back(range);
        } else {
            const std::size_t middle = split(range);
            large.push_back({middle, range.end});
            large.push_back({range.begin, middle});
        }
    }
    std::vector<std::vector<IndexRange>> leaves(ranges.size());
    parallel_tasks(
        ranges.size(), worker_count(N, kDistanceGrain), [&](std::size_t i, std::size_t /*worker*/) {
            splitToEnd(ranges[i], leaves[i]);
        });
    for (const std::vector<IndexRange>& some : leaves) {
        for (const IndexRange leaf : some) {
            blocks_.push_back({leaf.begin, leaf.size(), 0.0});
        }
    }
    centres_.resize(blocks_.size() * dims_);
    parallel_tasks(blocks_.size(),
                   worker_count(N, kDistanceGrain),
                   [&](std::size_t i, std::size_t /*worker*/) { measureBlock(i); });
    distances_ = {};
    sides_ = {};
}

/// Writes the distances of a point from the rows of a range.
void RowBlocks::measure(const double* target, IndexRange range) {
    parallel_for(range.size(), kDistanceGrain, [&](std::size_t /*worker*/, IndexRange part) {
        const std::size_t first = range.begin + part.begin;
        row_distances_(
            points_, dims_, target, order_.data() + first, part.size(), distances_.data() + first);
    });
}

/// The position of the row at the greatest distance.
std::size_t RowBlocks::farthest(IndexRange range) const {
    const auto begin = distances_.begin() + static_cast<std::ptrdiff_t>(range.begin);
    const auto place = std::max_element(begin, begin + static_cast<std::ptrdiff_t>(range.size()));
    return static_cast<std::size_t>(place - distances_.begin());
}

/// Tells on which side of two far ones the rows of a range are.
void RowBlocks::sortSides(IndexRange range) {
    measure(rowAt(range.begin), range);
    measure(rowAt(farthest(range)), range);
    const std::size_t second = farthest(range);
    for (std::size_t i = range.begin; i < range.end; ++i) {
        sides_[i] = {distances_[i] * distances_[i], order_[i]};
    }
    measure(rowAt(second), range);
    for (std::size_t i = range.begin; i < range.end; ++i) {
        sides_[i].key -= distances_[i] * distances_[i];
    }
}

/// Splits a range between two far rows, neither part much smaller than the other.
///
/// @return where the second part begins
std::size_t RowBlocks::split(IndexRange range) {
    sortSides(range);
    const auto begin = sides_.begin() + static_cast<std::ptrdiff_t>(range.begin);
    const auto end = sides_.begin() + static_cast<std::ptrdiff_t>(range.end);
    const auto middle = std::partition(begin, end, is_on_first_side);
    constexpr std::ptrdiff_t kLeastShare = 8;
    const std::ptrdiff_t least = (end - begin) / kLeastShare;
    const auto kept = std::clamp(middle, begin + least, end - least);
    if (kept != middle) {
        std::nth_element(
            begin, kept, end, [](const Side& a, const Side& b) { return a.key < b.key; });
    }
    takeSides(range);
    return static_cast<std::size_t>(kept - sides_.begin());
}

/// Adds the rows of a small range to the leaves: as one, or if they lie in a few groups that keep
/// apart, as these.
void RowBlocks::addGroups(IndexRange range, std::vector<IndexRange>& leaves) {
    constexpr std::size_t kMostGroups = 8;
    constexpr std::size_t kFewestRows = 8;
    // How far the rows of a group may be from one of them, as a share of the distance of all.
    constexpr double kApart = 0.4;
    const std::size_t most_groups = std::min(kMostGroups, range.size() / kFewestRows);
    Groups groups;
    groups.farthest = range.begin;
    const double whole = addGroup(range, groups);
    double distance = whole;
    while (groups.count < most_groups && distance > kApart * whole) {
        distance = addGroup(range, groups);
    }
    if (groups.count == 1 || distance > kApart * whole) {
        leaves.push_back(range);
        return;
    }
    std::size_t next = range.begin;
    for (std::size_t group = 0; group < groups.count; ++group) {
        const std::size_t first = next;
        for (std::size_t i = 0; i < range.size(); ++i) {
            if (groups.of_rows[i] == group) {
                sides_[next++].row = order_[range.begin + i];
            }
        }
        leaves.push_back({first, next});
    }
    takeSides(range);
}

/// Takes the row that is farthest from all groups for the middle of another one.
///
/// @return the greatest distance of a row from the middle of its group
double RowBlocks::addGroup(IndexRange range, Groups& groups) {
    measure(rowAt(groups.farthest), range);
    double farthest = 0.0;
    for (std::size_t i = 0; i < range.size(); ++i) {
        const double distance = distances_[range.begin + i];
        if (distance < groups.distances[i]) {
            groups.distances[i] = distance;
            groups.of_rows[i] = groups.count;
        }
        if (groups.distances[i] > farthest) {
            farthest = groups.distances[i];
            groups.farthest = range.begin + i;
        }
    }
    ++groups.count;
    return farthest;
}

/// Writes the mean of the rows of a range.
///
/// @return the greatest distance of the rows from it
double RowBlocks::radius(IndexRange range, double* centre) {
    std::fill_n(centre, dims_, 0.0);
    for (std::size_t i = range.begin; i < range.end; ++i) {
        const double* const row = rowAt(i);
        for (std::size_t d = 0; d < dims_; ++d) {
            centre[d] += row[d];
        }
    }
    for (std::size_t d = 0; d < dims_; ++d) {
        centre[d] /= static_cast<double>(range.size());
    }
    measure(centre, range);
    const auto first = distances_.begin() + static_cast<std::ptrdiff_t>(range.begin);
    return *std::max_element(first, first + static_cast<std::ptrdiff_t>(range.size()));
}

/// Orders the rows of a range as the sides are.
void RowBlocks::takeSides(IndexRange range) {
    for (std::size_t i = range.begin; i < range.end; ++i) {
        order_[i] = sides_[i].row;
    }
}

void RowBlocks::splitToEnd(IndexRange range, std::vector<IndexRange>& leaves) {
    if (range.size() <= kMostRows) {
        addGroups(range, leaves);
        return;
    }
    const std::size_t middle = split(range);
    splitToEnd({range.begin, middle}, leaves);
    splitToEnd({middle, range.end}, leaves);
}

/// Finds the centre and the radius of a block.
void RowBlocks::measureBlock(std::size_t number) {
    Block& block = blocks_[number];
    double* const centre = centres_.data() + number * dims_;
    block.radius =
        radius({block.first, block.first + block.count}, centre) * (1.0 + kRoundingMargin);
}

}  // namespace ovik
