#include "neighbours/tree_builder.h"

#include <algorithm>
#include <bit>
#include <cfloat>
#include <cmath>
#include <numeric>

#include "util/kernel_dispatch.h"
#include "util/parallel.h"

namespace ovik {

OVIK_DISPATCH_KERNELS(GridKernels, kGridKernels, grid_kernels)

namespace {

constexpr int kGridBits = 32;

/// Most leading bits of a key that choose its bucket.
constexpr int kBucketBits = 12;

/// Fewest points for which another thread pays.
constexpr std::size_t kPointGrain = 2048;

// In the place of a split level: neighbours in Morton order that lie in one cell of the finest
// level, at different places or at the same.
constexpr std::int8_t kSameCell = -1;
constexpr std::int8_t kSamePlace = -2;
/// In the place of a split level: there is no point before the first of a range.
constexpr int kEdge = kGridBits;

/// A grid has a rank for each split level from `kSameCell` on; so many grids within grids have some
/// of their own.
constexpr int kRanksOfGrid = kGridBits - kSameCell;
constexpr int kMostNesting = kAboveRoot / kRanksOfGrid - 1;

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

/// 2^exponent for exponents of normal numbers.
double power_of_two(int exponent) {
    constexpr int kBias = 1023;
    constexpr unsigned int kMantissaBits = 52;
    return std::bit_cast<double>(static_cast<std::uint64_t>(kBias + exponent) << kMantissaBits);
}

/// The largest number from 0 up, or infinity, for which a statement does not hold that holds from
/// some number on, if at all.
template <typename Predicate>
double largest_without(const Predicate& holds) {
    // The bits of such numbers are in their order.
    std::uint64_t below = 0;
    auto above = std::bit_cast<std::uint64_t>(HUGE_VAL) + 1;
    while (above - below > 1) {
        const std::uint64_t middle = below + (above - below) / 2;
        (holds(std::bit_cast<double>(middle)) ? above : below) = middle;
    }
    return std::bit_cast<double>(below);
}

/// The squared side of the cells that are split at a level.
double squared_side(double grid_side, int level) {
    const double side = grid_side * power_of_two(level + 1 - kGridBits);
    return side * side;
}

/// The largest squared distance from which a cell of a squared side is not far: for which
///
///     squared_side < squared_theta * squared_distance,
///
/// with the product rounded as it is, does not hold. Comparing distances with it spares the walk
/// the product.
double squared_reach(double squared_side, double squared_theta) {
    const auto is_far = [=](double squared_distance) {
        return squared_side < squared_theta * squared_distance;
    };
    double reach = squared_side / squared_theta;
    if (squared_theta == 0.0 || std::isinf(reach)) {
        return HUGE_VAL;
    }
    // The quotient is next to the limit, unless numbers are so small that many products are alike.
    constexpr double kSmallest = 0x1p-900;
    if (squared_side < kSmallest || reach < kSmallest) {
        return largest_without(is_far);
    }
    while (is_far(reach)) {
        reach = std::nextafter(reach, 0.0);
    }
    for (double next = std::nextafter(reach, HUGE_VAL); !is_far(next);
         next = std::nextafter(next, HUGE_VAL)) {
        reach = next;
    }
    return reach;
}

/// Puts two zero bits before each of the 21 highest bits, which become the lowest.
std::uint64_t spread_in_space(std::uint32_t code) {
    std::uint64_t bits = code >> 11U;
    bits = (bits | bits << 32U) & 0x001F00000000FFFFU;
    bits = (bits | bits << 16U) & 0x001F0000FF0000FFU;
    bits = (bits | bits << 8U) & 0x100F00F00F00F00FU;
    bits = (bits | bits << 4U) & 0x10C30C30C30C30C3U;
    bits = (bits | bits << 2U) & 0x1249249249249249U;
    return bits;
}

/// Visits keys from the last to the first, those of each quarter in turns with those of the others:
/// near keys are of one bucket, whose count would wait for itself.
template <typename Visit>
void visit_in_turns(const std::vector<GridKey>& keys, const Visit& visit) {
    constexpr std::size_t kTurns = 4;
    const std::size_t quarter = keys.size() / kTurns;
    for (std::size_t i = keys.size(); i-- > kTurns * quarter;) {
        visit(keys[i]);
    }
    for (std::size_t i = quarter; i-- > 0;) {
        for (std::size_t turn = 0; turn < kTurns; ++turn) {
            visit(keys[turn * quarter + i]);
        }
    }
}

bool comes_before(const GridKey& a, const GridKey& b) {
    return a.bits != b.bits ? a.bits < b.bits : a.row < b.row;
}

/// Moves keys to their places one by one.
///
/// @return false, with the keys in some order, if that took too many moves
bool sort_by_moves(GridKey* first, GridKey* last) {
    // Less than other ways to sort would take.
    constexpr std::ptrdiff_t kMovesOfEach = 4;
    std::ptrdiff_t moves = kMovesOfEach * (last - first);
    for (GridKey* next = first; next < last; ++next) {
        const GridKey key = *next;
        GridKey* place = next;
        for (; place > first && comes_before(key, place[-1]); --place) {
            *place = place[-1];
        }
        *place = key;
        moves -= next - place;
        if (moves < 0) {
            return false;
        }
    }
    return true;
}

constexpr unsigned int kDigitBits = 8;

/// Sorts keys by one digit of their bits, and leaves those with the same in their order.
void sort_by_digit(const GridKey* from, std::size_t count, unsigned int shift, GridKey* to) {
    constexpr std::size_t kDigits = std::size_t{1} << kDigitBits;
    const auto digit = [shift](const GridKey& key) { return (key.bits >> shift) % kDigits; };
    std::uint32_t places[kDigits] = {};
    for (std::size_t i = 0; i < count; ++i) {
        ++places[digit(from[i])];
    }
    std::exclusive_scan(places, places + kDigits, places, 0U);
    for (std::size_t i = 0; i < count; ++i) {
        to[places[digit(from[i])]++] = from[i];
    }
}

/// Sorts keys that for the most part are sorted.
///
/// @param spare  has room for as many keys
void sort_nearly_sorted(GridKey* first, GridKey* last, GridKey* spare) {
    if (sort_by_moves(first, last)) {
        return;
    }
    std::uint64_t differing = 0;
    for (const GridKey* key = first; key < last; ++key) {
        differing |= key->bits ^ first->bits;
    }
    const auto width = static_cast<unsigned int>(std::bit_width(differing));
    const unsigned int shift = width < 2 * kDigitBits ? 0 : width - 2 * kDigitBits;
    const auto count = static_cast<std::size_t>(last - first);
    sort_by_digit(first, count, shift, spare);
    sort_by_digit(spare, count, shift + kDigitBits, first);
    if (!sort_by_moves(first, last)) {
        std::sort(first, last, comes_before);
    }
}

/// Fills in a cell's centre of mass from those of its children, and its rank in them.
///
/// @tparam Dims  the number of dimensions where it is known to the compiler, else 0
template <std::size_t Dims>
void weigh_cell(TreeCell* cells, double* centres, std::size_t cell, std::size_t any_dims) {
    const std::size_t dims = Dims > 0 ? Dims : any_dims;
    const TreeCell whole = cells[cell];
    double* const centre = centres + cell * dims;
    // Where they are so many as is known, the sums are kept in registers.
    double held[Dims > 0 ? Dims : 1] = {};
    double* const sum = Dims > 0 ? held : centre;
    std::fill_n(sum, dims, 0.0);
    const std::size_t end = cell + whole.skip;
    for (std::size_t child = cell + 1; child < end; child += cells[child].skip) {
        for (std::size_t d = 0; d < dims; ++d) {
            sum[d] += cells[child].weight * centres[child * dims + d];
        }
        cells[child].parent = whole.rank;
    }
    for (std::size_t d = 0; d < dims; ++d) {
        centre[d] = sum[d] / whole.weight;
    }
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

    /// @param nesting  the number of grids around this one
    Assembler(CellArray& array, double grid_side, const LevelReaches& reaches, int nesting)
        : array_(array),
          grid_side_(grid_side),
          reaches_(reaches),
          first_rank_(std::min(nesting, kMostNesting) * kRanksOfGrid) {}

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
            array_.squared_sides[begin] = squared_side(grid_side_, cell.level);
            array_.cells[begin] = {reaches_[static_cast<std::size_t>(cell.level - kSameCell)],
                                   static_cast<double>(cell.last - unit.first),
                                   unit.first,
                                   cell.last,
                                   static_cast<std::uint32_t>(cell.end - begin),
                                   static_cast<std::uint8_t>(first_rank_ + cell.level - kSameCell),
                                   kAboveRoot};
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
    const LevelReaches& reaches_;
    int first_rank_;
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
      parts_{std::vector<TreeCell>(2 * point_count),
             std::vector<double>(2 * point_count * dims),
             std::vector<double>(2 * point_count)},
      whole_(parts_),
      first_cell_(2 * point_count) {
    std::iota(order_.begin(), order_.end(), 0U);
    for (std::size_t bit = 0; bit < level_of_bit_.size() && dims > 0; ++bit) {
        level_of_bit_[bit] =
            static_cast<std::int8_t>(kGridBits - key_bits_ + static_cast<int>(bit / dims));
    }
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
            whole_.centres.data() + first_cell_ * dims_,
            whole_.squared_sides.data() + first_cell_,
            reach_,
            is_deep_};
}

std::size_t TreeBuilder::prepare(const double* data, double squared_theta) {
    data_ = data;
    squared_theta_ = squared_theta;
    segments_.clear();
    if (point_count_ > 0) {
        layGrid();
        fillKeys();
        fillBuckets();
        listSegments();
    }
    return segments_.size();
}

/// Lays a grid over all points.
void TreeBuilder::layGrid() {
    side_ = 0.0;
    reach_ = 0.0;
    double low[2];
    double high[2];
    const bool is_ordinary =
        dims_ == 2 && grid_kernels(instruction_set()).bounds(data_, point_count_, low, high);
    for (std::size_t d = 0; d < dims_; ++d) {
        const Bounds box = is_ordinary ? Bounds{low[d], high[d]}
                                       : bounds(0, static_cast<std::uint32_t>(point_count_), d);
        low_[d] = box.low;
        side_ = wider(side_, box.low, box.high);
        reach_ = std::max({reach_, -box.low, box.high, box.is_finite ? 0.0 : HUGE_VAL});
    }
    reaches_ = reachesOn(side_);
}

/// From how far the cells of a grid are opened, level by level.
TreeBuilder::LevelReaches TreeBuilder::reachesOn(double grid_side) const {
    LevelReaches reaches;
    for (std::size_t i = 0; i < reaches.size(); ++i) {
        reaches[i] =
            squared_reach(squared_side(grid_side, static_cast<int>(i) + kSameCell), squared_theta_);
    }
    return reaches;
}

/// Lists the keys of the points, in the order of the tree before: that is nearly the order to come,
/// which makes sorting quick.
void TreeBuilder::fillKeys() {
    const GridKernels& kernels = grid_kernels(instruction_set());
    parallel_for(point_count_, kPointGrain, [&](std::size_t /*worker*/, IndexRange range) {
        if (dims_ == 2) {
            kernels.keys(data_,
                         order_.data() + range.begin,
                         range.size(),
                         {{low_[0], low_[1]}, side_},
                         unsorted_.data() + range.begin);
            return;
        }
        for (std::size_t position = range.begin; position < range.end; ++position) {
            const std::uint32_t row = order_[position];
            unsorted_[position] = {keyOf(row), row};
        }
    });
}

/// Writes the cells of a point on the grid over all.
///
/// @return one for each dimension
const std::uint32_t* TreeBuilder::encode(std::uint32_t row) {
    std::uint32_t* const codes = codes_.data() + row * dims_;
    for (std::size_t d = 0; d < dims_; ++d) {
        codes[d] = grid_code(data_[row * dims_ + d], low_[d], side_);
    }
    return codes;
}

/// The leading bits of a point's codes, interleaved, the first dimension first.
std::uint64_t TreeBuilder::keyOf(std::uint32_t row) {
    const std::uint32_t* const codes = encode(row);
    if (dims_ == 3) {
        return spread_in_space(codes[0]) << 2U | spread_in_space(codes[1]) << 1U |
               spread_in_space(codes[2]);
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
    const auto bucket = [shift](const GridKey& key) { return shift < 64 ? key.bits >> shift : 0; };
    std::fill(bucket_starts_.begin(), bucket_starts_.end(), 0U);
    visit_in_turns(unsorted_, [&](const GridKey& key) { ++bucket_starts_[bucket(key)]; });
    // The end of each bucket moves to its start while the bucket is filled from its end.
    std::inclusive_scan(bucket_starts_.begin(), bucket_starts_.end(), bucket_starts_.begin());
    visit_in_turns(unsorted_,
                   [&](const GridKey& key) { keys_[--bucket_starts_[bucket(key)]] = key; });
}

void TreeBuilder::listSegments() {
    const std::size_t step = cellsOf(bucket_levels_ - segment_levels_);
    for (std::size_t bucket = 0; bucket + 1 < bucket_starts_.size(); bucket += step) {
        const std::uint32_t first = bucket_starts_[bucket];
        const std::uint32_t last = bucket_starts_[bucket + step];
        if (first < last) {
            segments_.push_back({first, last, 0, 0, false});
        }
    }
}

void TreeBuilder::buildPart(std::size_t part) {
    Segment& segment = segments_[part];
    sort_nearly_sorted(keys_.data() + segment.first,
                       keys_.data() + segment.last,
                       unsorted_.data() + segment.first);
    orderPoints(segment.first, segment.last);
    const std::size_t end = 2 * std::size_t{segment.last};
    segment.is_deep = false;
    const Grid grid{side_, &reaches_, kSameCell, 0, &segment.is_deep};
    segment.cell_count = end - emitRange(segment.first, segment.last, grid, end);
}

/// Lists the points of sorted keys, and the split levels of neighbours.
void TreeBuilder::orderPoints(std::uint32_t first, std::uint32_t last) {
    for (std::uint32_t begin = first; begin < last;) {
        const GridKey& key = keys_[begin];
        order_[begin] = key.row;
        std::uint32_t end = begin + 1;
        if (end < last && keys_[end].bits == key.bits) [[unlikely]] {
            end = orderPointsOfKey(begin, last);
        }
        if (end < last) {
            split_levels_[end - 1] = splitLevelOfKeys(key, keys_[end]);
        }
        begin = end;
    }
}

/// The same for the points from `first` on that have the same key.
///
/// @return the place behind them
std::uint32_t TreeBuilder::orderPointsOfKey(std::uint32_t first, std::uint32_t last) {
    std::uint32_t end = first;
    for (; end < last && keys_[end].bits == keys_[first].bits; ++end) {
        order_[end] = keys_[end].row;
        encode(order_[end]);
    }
    sortByCode(first, end);
    return end;
}

/// Sorts points by their codes, and lists the split levels of neighbours.
void TreeBuilder::sortByCode(std::uint32_t first, std::uint32_t last) {
    std::sort(order_.begin() + first,
              order_.begin() + last,
              [this](std::uint32_t a, std::uint32_t b) { return precedes(a, b); });
    for (std::uint32_t position = first; position + 1 < last; ++position) {
        split_levels_[position] = splitLevelOfRows(order_[position], order_[position + 1]);
    }
}

/// Writes the cells of some sorted points in front of `end`.
///
/// @return the first of the cells, which is the one that holds them all
std::size_t TreeBuilder::emitRange(std::uint32_t first,
                                   std::uint32_t last,
                                   const Grid& grid,
                                   std::size_t end) {
    Assembler assembler(parts_, grid.side, *grid.reaches, grid.nesting);
    while (last > first) {
        std::uint32_t begin = last - 1;
        while (begin > first && split_levels_[begin - 1] <= grid.within) {
            --begin;
        }
        const int split_level = begin > first ? split_levels_[begin - 1] : kEdge;
        const std::size_t unit = emitUnit(begin, last, grid, end);
        end = assembler.take({begin, last, unit, end}, split_level, [this](std::size_t cell) {
            weigh(parts_, cell);
        });
        last = begin;
    }
    return end;
}

/// Writes a leaf for points at one place, or the cells of a finer grid.
std::size_t TreeBuilder::emitUnit(std::uint32_t first,
                                  std::uint32_t last,
                                  const Grid& around,
                                  std::size_t end) {
    if (last - first > 1 && comparePlaces(order_[first], order_[last - 1]) != 0) {
        const double side = refineGrid(first, last);
        // Places that the grid tells no further apart become units.
        const bool is_blind = highestDifferingBit(order_[first], order_[last - 1]) < 0;
        const LevelReaches reaches = reachesOn(side);
        const Grid grid{
            side, &reaches, is_blind ? kSamePlace : kSameCell, around.nesting + 1, around.is_deep};
        *grid.is_deep = *grid.is_deep || grid.nesting > kMostNesting;
        return emitRange(first, last, grid, end);
    }
    parts_.cells[end - 1] = {
        -1.0, static_cast<double>(last - first), first, last, 1, kLeafRank, kAboveRoot};
    const double* const place = data_ + order_[first] * dims_;
    double* const centre = parts_.centres.data() + (end - 1) * dims_;
    if (dims_ == 2) {
        // In the place of a call for so little.
        centre[0] = place[0];
        centre[1] = place[1];
    } else {
        std::copy_n(place, dims_, centre);
    }
    return end - 1;
}

/// Lays a grid over the points of one cell and sorts them anew.
///
/// @return its side; 0 if the points differ only in coordinates that are not finite
double TreeBuilder::refineGrid(std::uint32_t first, std::uint32_t last) {
    double side = 0.0;
    for (std::size_t d = 0; d < dims_; ++d) {
        const Bounds box = bounds(first, last, d);
        side = wider(side, box.low, box.high);
    }
    for (std::size_t d = 0; d < dims_; ++d) {
        const double low = bounds(first, last, d).low;
        for (std::uint32_t position = first; position < last; ++position) {
            const std::size_t i = order_[position] * dims_ + d;
            codes_[i] = grid_code(data_[i], low, side);
        }
    }
    sortByCode(first, last);
    return side;
}

void TreeBuilder::join() {
    std::size_t end = whole_.cells.size();
    Assembler assembler(whole_, side_, reaches_, 0);
    coarse_cells_.clear();
    is_deep_ = false;
    for (std::size_t i = segments_.size(); i-- > 0;) {
        Segment& segment = segments_[i];
        const int split_level =
            i > 0 ? splitLevelOfKeys(keys_[segment.first - 1], keys_[segment.first]) : kEdge;
        is_deep_ = is_deep_ || segment.is_deep;
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
                       std::copy_n(parts_.squared_sides.data() + from,
                                   segment.cell_count,
                                   whole_.squared_sides.data() + segment.place);
                   });
    for (const std::size_t cell : coarse_cells_) {
        weigh(whole_, cell);
    }
}

void TreeBuilder::rankPoints() {
    for (std::uint32_t position = 0; position < order_.size(); ++position) {
        rank_[order_[position]] = position;
    }
}

/// Fills in a cell's centre of mass from those of its children, and its rank in them.
void TreeBuilder::weigh(CellArray& array, std::size_t cell) const {
    switch (dims_) {
        case 2:
            return weigh_cell<2>(array.cells.data(), array.centres.data(), cell, dims_);
        case 3:
            return weigh_cell<3>(array.cells.data(), array.centres.data(), cell, dims_);
        default:
            return weigh_cell<0>(array.cells.data(), array.centres.data(), cell, dims_);
    }
}

/// Looks at coordinate d of some points.
TreeBuilder::Bounds TreeBuilder::bounds(std::uint32_t first,
                                        std::uint32_t last,
                                        std::size_t d) const {
    Bounds bounds;
    for (std::uint32_t position = first; position < last; ++position) {
        const double coordinate = data_[order_[position] * dims_ + d];
        if (std::isfinite(coordinate)) {
            bounds.low = std::min(bounds.low, coordinate);
            bounds.high = std::max(bounds.high, coordinate);
        } else {
            bounds.is_finite = false;
        }
    }
    return bounds;
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
std::int8_t TreeBuilder::splitLevelOfKeys(const GridKey& a, const GridKey& b) const {
    const int bit = static_cast<int>(std::bit_width(a.bits ^ b.bits)) - 1;
    return level_of_bit_[static_cast<std::size_t>(bit)];
}

std::int8_t TreeBuilder::splitLevelOfRows(std::uint32_t a, std::uint32_t b) const {
    const int level = highestDifferingBit(a, b);
    if (level >= 0) {
        return static_cast<std::int8_t>(level);
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
