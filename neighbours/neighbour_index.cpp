#include "neighbours/neighbour_index.h"

#include <algorithm>
#include <bit>
#include <cfloat>
#include <cmath>
#include <limits>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

#include "util/kernel_dispatch.h"
#include "util/parallel.h"

namespace ovik {

OVIK_DISPATCH_KERNELS(PivotKernels, kPivotKernels, pivot_kernels)

namespace {

/// Levels of a block that has others below it: one lane is left over.
constexpr int kBlockLevels = std::bit_width(kBlockPoints) - 1;

/// Stands for the levels of a block that holds a whole subtree: more than such a subtree has.
constexpr int kWholeSubtree = kBlockLevels + static_cast<int>(kBlockPoints);

/// Subtrees, each built by one task: enough of them that a dynamic schedule keeps all threads busy.
constexpr std::size_t kSubtrees = 64;

/// Fewest distances for which another thread pays.
constexpr std::size_t kDistanceGrain = 256;

constexpr std::uint32_t kNotMeasured = std::numeric_limits<std::uint32_t>::max();

constexpr double kInfinity = std::numeric_limits<double>::infinity();

/// Bounds of a block: two for each pivot.
constexpr std::size_t kBounds = 2 * kPivots;

/// Share of a distance that is above the rounding errors of a sum over a million coordinates.
constexpr double kRoundingMargin = 1e-9;

/// The metric, if the search can skip what it has to.
const Metric& with_triangle_inequality(const Metric& metric) {
    if (!metric.has_triangle_inequality) {
        throw std::invalid_argument(
            std::string("the neighbour index needs the triangle inequality: ") + metric.name +
            " distances are without it");
    }
    return metric;
}

}  // namespace

NeighbourIndex::NeighbourIndex(const double* points,
                               std::size_t N,
                               std::size_t dims,
                               const Metric& metric,
                               RandomStream& random)
    : metric_(with_triangle_inequality(metric)),
      dims_(dims),
      items_(N),
      thresholds_(N),
      blocks_(N),
      block_distances_(metric.kernels(instruction_set()).block_distances),
      pivot_kernels_(pivot_kernels(instruction_set())) {
    require_measurable_rows(metric, points, N, dims);
    for (std::size_t n = 0; n < N; ++n) {
        items_[n].row = static_cast<std::uint32_t>(n);
    }
    drawVantagePoints({0, N}, random);
    // Level by level until there are subtrees enough; from then on each is built by one thread.
    std::vector<Range> ranges{{0, N}};
    while (ranges.size() < kSubtrees && ranges.front().size() > kSubtrees) {
        std::vector<Range> halves;
        for (const Range range : ranges) {
            split(points, range);
            halves.push_back(range.left());
            halves.push_back(range.right());
        }
        ranges = std::move(halves);
    }
    parallel_tasks(ranges.size(),
                   worker_count(N, kDistanceGrain),
                   [&](std::size_t i, std::size_t /*worker*/) { buildSubtree(points, ranges[i]); });
    numberBlocks({0, N}, 0);
    // Vectors that lie across two cache lines take twice the time.
    constexpr std::size_t kCacheLine = 64 / sizeof(double);
    coordinates_.resize(block_count_ * dims * kBlockPoints + kCacheLine);
    void* start = coordinates_.data();
    std::size_t space = coordinates_.size() * sizeof(double);
    first_block_ = static_cast<double*>(std::align(64, sizeof(double), start, space));
    fillBlocks(points, {0, N}, 0, nullptr, 0);
    choosePivots(points);
}

/// Draws where each vantage point comes from, in the order in which one thread would build.
void NeighbourIndex::drawVantagePoints(Range range, RandomStream& random) {
    if (range.size() < 2) {
        return;
    }
    thresholds_[range.lower] = static_cast<double>(random.next()) / 2147483647.0;
    drawVantagePoints(range.left(), random);
    drawVantagePoints(range.right(), random);
}

/// Puts the vantage point first, the nearer half of the others behind it, then the farther half.
void NeighbourIndex::split(const double* points, Range range) {
    if (range.size() < 2) {
        return;
    }
    const double draw = thresholds_[range.lower];
    const auto offset = static_cast<int>(draw * static_cast<double>(range.size() - 1));
    std::swap(items_[range.lower], items_[range.lower + static_cast<std::size_t>(offset)]);
    const double* const vantage = points + items_[range.lower].row * dims_;
    parallel_for_each(range.size() - 1, kDistanceGrain, [&](std::size_t i) {
        Item& item = items_[range.lower + 1 + i];
        item.distance = distanceOf(vantage, points + item.row * dims_);
    });
    const auto begin = items_.begin();
    std::nth_element(begin + static_cast<std::ptrdiff_t>(range.lower) + 1,
                     begin + static_cast<std::ptrdiff_t>(range.median()),
                     begin + static_cast<std::ptrdiff_t>(range.upper),
                     [](const Item& a, const Item& b) { return a.distance < b.distance; });
    thresholds_[range.lower] = items_[range.median()].distance;
}

void NeighbourIndex::buildSubtree(const double* points, Range range) {
    if (range.size() < 2) {
        return;
    }
    split(points, range);
    buildSubtree(points, range.left());
    buildSubtree(points, range.right());
}

std::size_t NeighbourIndex::drawCount(std::size_t N) {
    // The ranges of a level of the tree have few different sizes.
    std::map<std::size_t, std::size_t> counts;
    const auto count = [&counts](const auto& self, Range range) -> std::size_t {
        if (range.size() < 2) {
            return 0;
        }
        const auto [entry, is_new] = counts.try_emplace(range.size(), 1);
        if (is_new) {
            entry->second += self(self, range.left()) + self(self, range.right());
        }
        return entry->second;
    };
    return count(count, {0, N});
}

std::size_t NeighbourIndex::blockCount(std::size_t N) {
    // The ranges of a level of the tree have few different sizes.
    std::map<std::pair<std::size_t, int>, std::size_t> counts;
    const auto count = [&counts](const auto& self, Range range, int levels) -> std::size_t {
        if (range.size() == 0) {
            return 0;
        }
        const auto [entry, is_new] = counts.try_emplace({range.size(), levels}, 0);
        if (is_new) {
            const bool opens_block = levels == 0;
            const int below = (opens_block ? levelsInBlock(range.size()) : levels) - 1;
            entry->second = opens_block ? 1 : 0;
            if (range.size() > 1) {
                entry->second += self(self, range.left(), below) + self(self, range.right(), below);
            }
        }
        return entry->second;
    };
    return count(count, {0, N}, 0);
}

int NeighbourIndex::levelsInBlock(std::size_t size) {
    if (size <= kBlockPoints) {
        return kWholeSubtree;
    }
    // The block at the top takes what is left, so that the many below are full.
    const auto levels_above_whole = static_cast<int>(std::bit_width((size - 1) / kBlockPoints));
    return (levels_above_whole - 1) % kBlockLevels + 1;
}

std::size_t NeighbourIndex::leftLane(int levels, std::size_t lane) {
    return levels > kBlockLevels ? lane + 1 : 2 * lane + 1;
}

std::size_t NeighbourIndex::rightLane(Range range, int levels, std::size_t lane) {
    return levels > kBlockLevels ? lane + range.median() - range.lower : 2 * lane + 2;
}

/// @param levels  how many levels of the range stand in the block of its parent
void NeighbourIndex::numberBlocks(Range range, int levels) {
    if (range.size() == 0) {
        return;
    }
    if (levels == 0) {
        blocks_[range.lower] = block_count_++;
        levels = levelsInBlock(range.size());
    }
    if (range.size() > 1) {
        numberBlocks(range.left(), levels - 1);
        numberBlocks(range.right(), levels - 1);
    }
}

/// @param block  that of the parent
/// @param lane   of the range's vantage point in it
void NeighbourIndex::fillBlocks(
    const double* points, Range range, int levels, double* block, std::size_t lane) {
    if (range.size() == 0) {
        return;
    }
    if (levels == 0) {
        block = first_block_ + blocks_[range.lower] * dims_ * kBlockPoints;
        levels = levelsInBlock(range.size());
        lane = 0;
    }
    for (std::size_t d = 0; d < dims_; ++d) {
        block[d * kBlockPoints + lane] = points[items_[range.lower].row * dims_ + d];
    }
    if (range.size() > 1) {
        fillBlocks(points, range.left(), levels - 1, block, leftLane(levels, lane));
        fillBlocks(points, range.right(), levels - 1, block, rightLane(range, levels, lane));
    }
}

/// Chooses pivots far from one another, so that groups of points that keep apart have different
/// ones, and fills in the distances of every block's points from them.
void NeighbourIndex::choosePivots(const double* points) {
    const std::size_t N = items_.size();
    if (N == 0) {
        return;
    }
    std::vector<double> distances(N * kPivots);
    std::vector<double> to_nearest(N, DBL_MAX);
    std::size_t pivot = 0;
    for (std::size_t p = 0; p < kPivots; ++p) {
        const double* const coordinates = points + items_[pivot].row * dims_;
        pivots_.insert(pivots_.end(), coordinates, coordinates + dims_);
        parallel_for_each(N, kDistanceGrain, [&](std::size_t i) {
            const double* const point = points + items_[i].row * dims_;
            const double distance = distanceOf(coordinates, point);
            distances[i * kPivots + p] = distance;
            to_nearest[i] = distance < to_nearest[i] ? distance : to_nearest[i];
        });
        pivot = static_cast<std::size_t>(std::max_element(to_nearest.begin(), to_nearest.end()) -
                                         to_nearest.begin());
    }
    bounds_.resize(block_count_ * kBounds);
    fillBounds(distances.data(), {0, N}, 0);
}

/// @param distances  of the points in tree order from the pivots
/// @param levels     how many levels of the range stand in the block of its parent
void NeighbourIndex::fillBounds(const double* distances, Range range, int levels) {
    if (range.size() == 0) {
        return;
    }
    if (levels == 0) {
        double* const least = bounds_.data() + blocks_[range.lower] * kBounds;
        double* const greatest = least + kPivots;
        std::fill_n(least, kPivots, kInfinity);
        std::fill_n(greatest, kPivots, -kInfinity);
        for (std::size_t i = range.lower * kPivots; i < range.upper * kPivots; ++i) {
            double& low = least[i % kPivots];
            double& high = greatest[i % kPivots];
            if (std::isfinite(distances[i])) {
                low = std::min(low, distances[i]);
                high = std::max(high, distances[i]);
            } else {
                // A distance that is not finite bounds nothing.
                low = -kInfinity;
                high = kInfinity;
            }
        }
        levels = levelsInBlock(range.size());
    }
    if (range.size() > 1) {
        fillBounds(distances, range.left(), levels - 1);
        fillBounds(distances, range.right(), levels - 1);
    }
}

void NeighbourIndex::search(const double* const* targets,
                            std::size_t target_count,
                            std::size_t count,
                            Queries& queries) const {
    for (const std::uint32_t block : queries.measured) {
        queries.places[block] = kNotMeasured;
    }
    queries.measured.clear();
    queries.places.resize(block_count_, kNotMeasured);
    for (std::size_t t = 0; t < kTargets; ++t) {
        // The last target stands in for those that are missing.
        queries.targets[t] = targets[std::min(t, target_count - 1)];
    }
    queries.wanted = count;
    for (std::size_t t = 0; t < target_count; ++t) {
        queries.current = t;
        searchCurrent(queries);
    }
}

/// Whether a neighbour comes before another.
auto NeighbourIndex::comesBefore(NeighbourTies ties) const {
    return [this, ties](const Neighbour& a, const Neighbour& b) {
        return a.distance < b.distance ||
               (ties == NeighbourTies::ByRow && a.distance == b.distance &&
                rowAt(a.position) < rowAt(b.position));
    };
}

void NeighbourIndex::searchCurrent(Queries& queries) const {
    auto& neighbours = queries.neighbours[queries.current];
    neighbours.clear();
    neighbours.reserve(std::min(queries.wanted, items_.size()) + 1);
    queries.radius = DBL_MAX;
    queries.margin = 0.0;
    for (std::size_t p = 0; p < kPivots && !items_.empty(); ++p) {
        queries.pivot_distances[p] =
            distanceOf(pivots_.data() + p * dims_, queries.targets[queries.current]);
        queries.margin = std::max(queries.margin, queries.pivot_distances[p]);
    }
    if (queries.wanted > 0) {
        visit({0, items_.size()}, 0, 0, 0, queries);
    }
    std::sort_heap(neighbours.begin(), neighbours.end(), comesBefore(queries.ties));
}

/// A radius of 0, among duplicates of the target, admits nothing more, unless lower rows are
/// nearer.
bool NeighbourIndex::admitsNothing(const Queries& queries) {
    return queries.ties == NeighbourTies::OfTree && queries.radius == 0.0;
}

/// The radius by which subtrees are passed over: the order of the tree goes by it as it is, others
/// must not lose a row to rounding.
///
/// @param size  of the distances that it is compared with
double NeighbourIndex::reachOf(const Queries& queries, double size) {
    return queries.ties == NeighbourTies::OfTree
               ? queries.radius
               : queries.radius + kRoundingMargin * (queries.radius + size);
}

/// Takes a neighbour if it is one of the nearest so far.
void NeighbourIndex::offer(const Neighbour& neighbour, Queries& queries) const {
    const bool may_tie =
        queries.ties == NeighbourTies::ByRow && neighbour.distance == queries.radius;
    if (!(neighbour.distance < queries.radius || may_tie)) {
        return;
    }
    auto& heap = queries.neighbours[queries.current];
    const auto comes_before = comesBefore(queries.ties);
    if (heap.size() == queries.wanted) {
        if (may_tie && !comes_before(neighbour, heap.front())) {
            return;
        }
        std::pop_heap(heap.begin(), heap.end(), comes_before);
        heap.pop_back();
    }
    heap.push_back(neighbour);
    std::push_heap(heap.begin(), heap.end(), comes_before);
    if (heap.size() == queries.wanted) {
        queries.radius = heap.front().distance;
    }
}

/// The place of a block's distances, which are computed if they are not there.
std::size_t NeighbourIndex::measure(std::uint32_t block, Queries& queries) const {
    constexpr std::size_t kDistances = kTargets * kBlockPoints;
    if (queries.places[block] == kNotMeasured) {
        const std::size_t place = queries.measured.size();
        queries.places[block] = static_cast<std::uint32_t>(place);
        queries.measured.push_back(block);
        if (queries.distances.size() < (place + 1) * kDistances) {
            queries.distances.resize(2 * (place + 1) * kDistances);
        }
        block_distances_(first_block_ + block * dims_ * kBlockPoints,
                         queries.targets,
                         dims_,
                         queries.distances.data() + place * kDistances);
    }
    return queries.places[block] * kDistances + queries.current * kBlockPoints;
}

/// Offers the points of a range to the current query, narrowing its radius.
///
/// @param levels  how many levels of the range stand in the block of its parent
/// @param place   of the distances of that block
/// @param lane    of the range's vantage point in it
void NeighbourIndex::visit(
    Range range, int levels, std::size_t place, std::size_t lane, Queries& queries) const {
    if (range.size() == 0 || admitsNothing(queries)) {
        return;
    }
    if (levels == 0) {
        const std::uint32_t block = blocks_[range.lower];
        // The margin is far above what rounding adds to a distance.
        const double radius = queries.radius + kRoundingMargin * (queries.radius + queries.margin);
        if (pivot_kernels_.is_beyond(
                bounds_.data() + block * kBounds, queries.pivot_distances, radius)) {
            // No point of the range would be admitted: the query goes on as if it had seen all.
            return;
        }
        place = measure(block, queries);
        levels = levelsInBlock(range.size());
        lane = 0;
    }
    const double distance = queries.distances[place + lane];
    offer({static_cast<std::uint32_t>(range.lower), distance}, queries);
    if (range.size() < 2) {
        return;
    }
    const double threshold = thresholds_[range.lower];
    const bool is_inside = distance < threshold;
    for (const bool goes_left : {is_inside, !is_inside}) {
        // The radius has shrunk when the second half is looked at.
        const double reach = reachOf(queries, distance + threshold);
        if (goes_left && distance - reach <= threshold) {
            visit(range.left(), levels - 1, place, leftLane(levels, lane), queries);
        }
        if (!goes_left && distance + reach >= threshold) {
            visit(range.right(), levels - 1, place, rightLane(range, levels, lane), queries);
        }
    }
}

}  // namespace ovik
