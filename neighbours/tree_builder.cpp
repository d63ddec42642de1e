#include "neighbours/tree_builder.h"

#include <algorithm>
#include <bit>
#include <cfloat>
#include <cmath>
#include <numeric>

#include "util/parallel.h"

namespace ovik {

namespace {

constexpr int kGridBits = 32;

/// Most leading bits of a key that choose its bucket; each bucket is sorted by itself.
constexpr int kBucketBits = 12;

/// Fewest points for which another thread pays.
constexpr std::size_t kPointGrain = 2048;

// In the place of a split level: neighbours in Morton order that lie in one cell of the finest
// level, at different places or at the same.
constexpr std::int8_t kSameCell = -1;
constexpr std::int8_t kSamePlace = -2;
/// In the place of a split level: there is no point before the first of a range.
constexpr int kEdge = kGridBits;

/// Cell of one coordinate on a grid of 2^32 cells over [low, low + side].
std::uint32_t grid_code(double coordinate, double low, double side) {
    constexpr double kCells = 4294967296.0;
    if (coordinate <= low || side == 0.0) {
        return 0;
    }
    const double cell = (coordinate - low) / side * kCells;
    // Written so that NaN and everything beyond the grid fall into the last cell.
    return cell < kCells - 1.0 ? static_cast<std::uint32_t>(cell) : 4294967295U;
}

/// Orders two coordinates; a NaN equals a NaN and follows all numbers.
int compare_coordinates(double a, double b) {
    if (a < b) {
        return -1;
    }
    if (a > b) {
        return 1;
    }
    return static_cast<int>(std::isnan(a)) - static_cast<int>(std::isnan(b));
}

/// The larger of a side and the extent from `low` to `high`, if there is one.
double wider(double side, double low, double high) {
    return low < high ? std::max(side, std::min(high - low, DBL_MAX)) : side;
}

/// Puts a zero bit before each bit.
std::uint64_t spread(std::uint32_t value) {
    std::uint64_t bits = value;
    bits = (bits | bits << 16U) & 0x0000FFFF0000FFFFU;
    bits = (bits | bits << 8U) & 0x00FF00FF00FF00FFU;
    bits = (bits | bits << 4U) & 0x0F0F0F0F0F0F0F0FU;
    bits = (bits | bits << 2U) & 0x3333333333333333U;
    bits = (bits | bits << 1U) & 0x5555555555555555U;
    return bits;
}

}  // namespace

/// Puts cells around units - leaves, or finished parts of the tree - which come from the last to
/// the first. Each open cell has two neighbouring units with its level as their split level.
class TreeBuilder::Assembler {
  public:
    /// The points `first` to `last` - 1 in Morton order; their cells stand at `begin` to `end` - 1.
    struct Unit {
        std::uint32_t first;
        std::uint32_t last;
        std::size_t begin;
        std::size_t end;
    };

    Assembler(CellArray& array, double grid_side) : array_(array), grid_side_(grid_side) {}

    /// Takes a unit and writes the cells that it completes in front of it.
    ///
    /// @param split_level  that of the unit and the one before it, or `kEdge`
    /// @param on_written  called with each cell written
    /// @return the first cell written
    template <typename OnWritten>
    std::size_t take(const Unit& unit, int split_level, const OnWritten& on_written) {
        std::size_t begin = unit.begin;
        OpenCell around{split_level, unit.last, unit.end};
        while (depth_ > 0 && open_[depth_ - 1].level < split_level) {
            const OpenCell& cell = open_[--depth_];
            around.last = cell.last;
            around.end = cell.end;
            --begin;
            const double side = std::ldexp(grid_side_, cell.level + 1 - kGridBits);
            array_.cells[begin] = {side * side,
                                   static_cast<double>(cell.last - unit.first),
                                   unit.first,
                                   static_cast<std::uint32_t>(cell.end - begin)};
            on_written(begin);
        }
        if (split_level != kEdge && (depth_ == 0 || open_[depth_ - 1].level > split_level)) {
            open_[depth_++] = around;
        }
        return begin;
    }

  private:
    struct OpenCell {
        int level;
        /// The places behind the last point and the last cell of the open cell.
        std::uint32_t last;
        std::size_t end;
    };

    CellArray& array_;
    double grid_side_;
    /// Levels fall from the outermost to the innermost.
    OpenCell open_[kGridBits + 1] = {};
    std::size_t depth_ = 0;
};

TreeBuilder::TreeBuilder(std::size_t dims, std::size_t point_count)
    : dims_(dims),
      point_count_(point_count),
      key_bits_(dims == 0 || dims > 64 ? 0 : std::min(kGridBits, 64 / static_cast<int>(dims))),
      bucket_levels_(dims == 0 || dims > 64 ? 0 : kBucketBits / static_cast<int>(dims)),
      segment_levels_(bucket_levels_ / 2),
      low_(dims),
      codes_(dims * point_count),
      unsorted_(point_count),
      keys_(point_count),
      bucket_starts_(cellsOf(bucket_levels_) + 1),
      order_(point_count),
      rank_(point_count),
      split_levels_(point_count),
      parts_{std::vector<TreeCell>(2 * point_count), std::vector<double>(2 * point_count * dims)},
      whole_(parts_),
      first_cell_(2 * point_count) {
    segments_.reserve(cellsOf(segment_levels_));
    // Every coarse cell has two children at least.
    coarse_cells_.reserve(cellsOf(segment_levels_));
}

TreeView TreeBuilder::view() const {
    return {dims_,
            nullptr,
            order_.data(),
            whole_.cells.data() + first_cell_,
            whole_.cells.size() - first_cell_,
            whole_.centres.data() + first_cell_ * dims_};
}

std::size_t TreeBuilder::prepare(const double* data) {
    data_ = data;
    segments_.clear();
    if (point_count_ > 0) {
        fillKeys();
        fillBuckets();
        listSegments();
    }
    return segments_.size();
}

/// Lays a grid over all points.
void TreeBuilder::fillKeys() {
    std::iota(order_.begin(), order_.end(), 0U);
    side_ = 0.0;
    for (std::size_t d = 0; d < dims_; ++d) {
        const auto [low, high] = bounds(0, static_cast<std::uint32_t>(point_count_), d);
        low_[d] = low;
        side_ = wider(side_, low, high);
    }
    parallel_for_each(point_count_, kPointGrain, [this](std::size_t row) {
        for (std::size_t d = 0; d < dims_; ++d) {
            codes_[row * dims_ + d] = grid_code(data_[row * dims_ + d], low_[d], side_);
        }
        unsorted_[row] = {keyOf(row), static_cast<std::uint32_t>(row)};
    });
}

/// The leading bits of a point's codes, interleaved, the first dimension first.
std::uint64_t TreeBuilder::keyOf(std::size_t row) const {
    const std::uint32_t* const codes = codes_.data() + row * dims_;
    if (dims_ == 2) {
        return spread(codes[0]) << 1U | spread(codes[1]);
    }
    std::uint64_t key = 0;
    for (int bit = kGridBits - 1; bit >= kGridBits - key_bits_; --bit) {
        for (std::size_t d = 0; d < dims_; ++d) {
            key = key << 1U | (codes[d] >> static_cast<unsigned int>(bit) & 1U);
        }
    }
    return key;
}

/// Sorts the keys into buckets, which are the cells of a few coarse levels in Morton order.
void TreeBuilder::fillBuckets() {
    const auto shift =
        static_cast<unsigned int>((key_bits_ - bucket_levels_) * static_cast<int>(dims_));
    const auto bucket = [shift](const Key& key) { return shift < 64 ? key.bits >> shift : 0; };
    std::fill(bucket_starts_.begin(), bucket_starts_.end(), 0U);
    for (const Key& key : unsorted_) {
        ++bucket_starts_[bucket(key)];
    }
    std::exclusive_scan(bucket_starts_.begin(), bucket_starts_.end(), bucket_starts_.begin(), 0U);
    for (const Key& key : unsorted_) {
        keys_[bucket_starts_[bucket(key)]++] = key;
    }
    // Each start has moved on to the next one.
    std::copy_backward(bucket_starts_.begin(), bucket_starts_.end() - 1, bucket_starts_.end());
    bucket_starts_[0] = 0;
}

void TreeBuilder::listSegments() {
    const std::size_t step = cellsOf(bucket_levels_ - segment_levels_);
    for (std::size_t bucket = 0; bucket + 1 < bucket_starts_.size(); bucket += step) {
        const std::uint32_t first = bucket_starts_[bucket];
        const std::uint32_t last = bucket_starts_[bucket + step];
        if (first < last) {
            segments_.push_back({first, last, bucket, 0, 0});
        }
    }
}

void TreeBuilder::buildPart(std::size_t part) {
    Segment& segment = segments_[part];
    std::size_t bucket = segment.bucket;
    for (std::uint32_t first = segment.first; first < segment.last; ++bucket) {
        sortBucket(first, bucket_starts_[bucket + 1]);
        first = bucket_starts_[bucket + 1];
    }
    markSplitLevels(segment.first, segment.last);
    const std::size_t end = 2 * std::size_t{segment.last};
    segment.cell_count = end - emitRange(segment.first, segment.last, kSameCell, side_, end);
    for (std::uint32_t position = segment.first; position < segment.last; ++position) {
        rank_[order_[position]] = position;
    }
}

/// Sorts the keys of a bucket, and the points with them.
void TreeBuilder::sortBucket(std::uint32_t first, std::uint32_t last) {
    std::sort(keys_.begin() + first, keys_.begin() + last);
    for (std::uint32_t position = first; position < last; ++position) {
        order_[position] = keys_[position].row;
    }
    for (std::uint32_t begin = first; begin < last;) {
        std::uint32_t end = begin + 1;
        while (end < last && keys_[end].bits == keys_[begin].bits) {
            ++end;
        }
        if (end - begin > 1) {
            sortByCode(begin, end);
        }
        begin = end;
    }
}

void TreeBuilder::sortByCode(std::uint32_t first, std::uint32_t last) {
    std::sort(order_.begin() + first,
              order_.begin() + last,
              [this](std::uint32_t a, std::uint32_t b) { return precedes(a, b); });
}

/// Fills in the split levels of the neighbouring points of a segment.
void TreeBuilder::markSplitLevels(std::uint32_t first, std::uint32_t last) {
    for (std::uint32_t position = first; position + 1 < last; ++position) {
        const Key& a = keys_[position];
        const Key& b = keys_[position + 1];
        split_levels_[position] = static_cast<std::int8_t>(
            a.bits != b.bits ? splitLevelOfKeys(a, b)
                             : splitLevelOfRows(order_[position], order_[position + 1]));
    }
}

/// Writes the cells of some sorted points in front of `end`.
///
/// @param within  the highest split level of two points that still belong to one unit
/// @param side    of the grid
/// @return the first of the cells, which is the one that holds them all
std::size_t TreeBuilder::emitRange(
    std::uint32_t first, std::uint32_t last, int within, double side, std::size_t end) {
    Assembler assembler(parts_, side);
    while (last > first) {
        std::uint32_t begin = last - 1;
        while (begin > first && split_levels_[begin - 1] <= within) {
            --begin;
        }
        const int split_level = begin > first ? split_levels_[begin - 1] : kEdge;
        const std::size_t unit = emitUnit(begin, last, end);
        end = assembler.take({begin, last, unit, end}, split_level, [this](std::size_t cell) {
            weigh(parts_, cell);
        });
        last = begin;
    }
    return end;
}

/// Writes a leaf for points at one place, or the cells of a finer grid.
std::size_t TreeBuilder::emitUnit(std::uint32_t first, std::uint32_t last, std::size_t end) {
    if (comparePlaces(order_[first], order_[last - 1]) != 0) {
        const double side = refineGrid(first, last);
        // Places that the grid tells no further apart become units.
        const bool is_blind = highestDifferingBit(order_[first], order_[last - 1]) < 0;
        return emitRange(first, last, is_blind ? kSamePlace : kSameCell, side, end);
    }
    parts_.cells[end - 1] = {0.0, static_cast<double>(last - first), first, 1};
    std::copy_n(data_ + order_[first] * dims_, dims_, parts_.centres.data() + (end - 1) * dims_);
    return end - 1;
}

/// Lays a grid over the points of one cell and sorts them anew.
///
/// @return its side; 0 if the points differ only in coordinates that are not finite
double TreeBuilder::refineGrid(std::uint32_t first, std::uint32_t last) {
    double side = 0.0;
    for (std::size_t d = 0; d < dims_; ++d) {
        const auto [low, high] = bounds(first, last, d);
        side = wider(side, low, high);
    }
    for (std::size_t d = 0; d < dims_; ++d) {
        const double low = bounds(first, last, d).first;
        for (std::uint32_t position = first; position < last; ++position) {
            const std::size_t i = order_[position] * dims_ + d;
            codes_[i] = grid_code(data_[i], low, side);
        }
    }
    sortByCode(first, last);
    for (std::uint32_t position = first; position + 1 < last; ++position) {
        split_levels_[position] =
            static_cast<std::int8_t>(splitLevelOfRows(order_[position], order_[position + 1]));
    }
    return side;
}

void TreeBuilder::join() {
    std::size_t end = whole_.cells.size();
    Assembler assembler(whole_, side_);
    coarse_cells_.clear();
    for (std::size_t i = segments_.size(); i-- > 0;) {
        Segment& segment = segments_[i];
        const int split_level =
            i > 0 ? splitLevelOfKeys(keys_[segment.first - 1], keys_[segment.first]) : kEdge;
        segment.place = end - segment.cell_count;
        end = assembler.take({segment.first, segment.last, segment.place, end},
                             split_level,
                             [this](std::size_t cell) { coarse_cells_.push_back(cell); });
    }
    first_cell_ = end;
    parallel_tasks(segments_.size(),
                   worker_count(point_count_, kPointGrain),
                   [this](std::size_t i, std::size_t /*worker*/) {
                       const Segment& segment = segments_[i];
                       const std::size_t from = 2 * std::size_t{segment.last} - segment.cell_count;
                       std::copy_n(parts_.cells.data() + from,
                                   segment.cell_count,
                                   whole_.cells.data() + segment.place);
                       std::copy_n(parts_.centres.data() + from * dims_,
                                   segment.cell_count * dims_,
                                   whole_.centres.data() + segment.place * dims_);
                   });
    for (const std::size_t cell : coarse_cells_) {
        weigh(whole_, cell);
    }
}

/// Fills in a cell's centre of mass from those of its children.
void TreeBuilder::weigh(CellArray& array, std::size_t cell) const {
    double* const sum = array.centres.data() + cell * dims_;
    std::fill_n(sum, dims_, 0.0);
    const std::size_t end = cell + array.cells[cell].skip;
    for (std::size_t child = cell + 1; child < end; child += array.cells[child].skip) {
        for (std::size_t d = 0; d < dims_; ++d) {
            sum[d] += array.cells[child].weight * array.centres[child * dims_ + d];
        }
    }
    for (std::size_t d = 0; d < dims_; ++d) {
        sum[d] = sum[d] / array.cells[cell].weight;
    }
}

/// The least and the greatest finite coordinate of some points; DBL_MAX and -DBL_MAX if none is.
std::pair<double, double> TreeBuilder::bounds(std::uint32_t first,
                                              std::uint32_t last,
                                              std::size_t d) const {
    double low = DBL_MAX;
    double high = -DBL_MAX;
    for (std::uint32_t position = first; position < last; ++position) {
        const double coordinate = data_[order_[position] * dims_ + d];
        if (std::isfinite(coordinate)) {
            low = std::min(low, coordinate);
            high = std::max(high, coordinate);
        }
    }
    return {low, high};
}

/// The highest bit in which the codes of two points differ in any dimension; -1 if none.
int TreeBuilder::highestDifferingBit(std::uint32_t a, std::uint32_t b) const {
    std::uint32_t differing = 0;
    for (std::size_t d = 0; d < dims_; ++d) {
        differing |= codes_[a * dims_ + d] ^ codes_[b * dims_ + d];
    }
    return static_cast<int>(std::bit_width(differing)) - 1;
}

/// The split level of two points of different keys.
int TreeBuilder::splitLevelOfKeys(const Key& a, const Key& b) const {
    const int bit = static_cast<int>(std::bit_width(a.bits ^ b.bits)) - 1;
    return kGridBits - key_bits_ + bit / static_cast<int>(dims_);
}

int TreeBuilder::splitLevelOfRows(std::uint32_t a, std::uint32_t b) const {
    const int level = highestDifferingBit(a, b);
    if (level >= 0) {
        return level;
    }
    return comparePlaces(a, b) == 0 ? kSamePlace : kSameCell;
}

/// Morton order: decided by the highest differing bit, the lower dimension first; points of one
/// grid cell are ordered by place, points of one place by row.
bool TreeBuilder::precedes(std::uint32_t a, std::uint32_t b) const {
    std::size_t deciding_dim = 0;
    std::uint32_t highest = 0;
    for (std::size_t d = 0; d < dims_; ++d) {
        const std::uint32_t differing = codes_[a * dims_ + d] ^ codes_[b * dims_ + d];
        // Whether the highest bit of `differing` lies above that of `highest`.
        if (highest < differing && highest < (highest ^ differing)) {
            deciding_dim = d;
            highest = differing;
        }
    }
    if (highest != 0) {
        return codes_[a * dims_ + deciding_dim] < codes_[b * dims_ + deciding_dim];
    }
    const int places = comparePlaces(a, b);
    return places != 0 ? places < 0 : a < b;
}

/// Negative, zero or positive: orders the places of two points, first coordinate first.
int TreeBuilder::comparePlaces(std::uint32_t a, std::uint32_t b) const {
    for (std::size_t d = 0; d < dims_; ++d) {
        const int order = compare_coordinates(data_[a * dims_ + d], data_[b * dims_ + d]);
        if (order != 0) {
            return order;
        }
    }
    return 0;
}

}  // namespace ovik
