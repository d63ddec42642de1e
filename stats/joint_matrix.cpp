#include "stats/joint_matrix.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <limits>
#include <numeric>
#include <span>
#include <stdexcept>
#include <type_traits>
#include <utility>
#include <vector>

#include "util/cache_line.h"
#include "util/huge_pages.h"
#include "util/malloc_array.h"
#include "util/page_release.h"
#include "util/parallel.h"

namespace ovik {

namespace {

/// Fewest rows and slices for which another thread pays.
constexpr std::size_t kRowGrain = 512;
constexpr std::size_t kSliceGrain = 64;

/// Set in a column whose row stores the entry back.
constexpr std::uint32_t kMutual = std::uint32_t{1} << 31U;

/// In the place of values that are not stored.
struct NoValue {};

template <typename Value>
constexpr bool kIsStored = !std::is_same_v<Value, NoValue>;

/// Moves what an array holds into a larger one. The system cannot do that for arrays in huge pages;
/// it gets the memory back part by part, so that there are never two of them.
///
/// @param held   elements that the array holds
/// @param count  elements that it shall have, not fewer
template <typename T>
void enlarge(MallocArray<T>& array, std::size_t held, std::size_t count) {
    constexpr std::size_t kPart = (std::size_t{1} << 22U) / sizeof(T);
    MallocArray<T> larger = malloc_array<T>(count);
    require_allocated(larger);
    prefer_huge_pages(larger.get(), count * sizeof(T));
    for (std::size_t begin = 0; begin < held; begin += kPart) {
        const std::size_t size = std::min(kPart, held - begin);
        std::copy_n(array.get() + begin, size, larger.get() + begin);
        release_pages(array.get() + begin, size * sizeof(T));
    }
    array = std::move(larger);
}

/// Brings the rows of an array into another order, within a row of room.
///
/// @param order  the row at each place
template <typename T>
void reorder_rows(T* rows, std::size_t length, std::span<const std::uint32_t> order) {
    std::vector<bool> is_done(order.size());
    std::vector<T> kept(length);
    for (std::size_t start = 0; start < order.size(); ++start) {
        if (is_done[start]) {
            continue;
        }
        std::copy_n(rows + start * length, length, kept.begin());
        std::size_t place = start;
        for (; order[place] != start; place = order[place]) {
            std::copy_n(rows + order[place] * length, length, rows + place * length);
            is_done[place] = true;
        }
        std::copy_n(kept.begin(), length, rows + place * length);
        is_done[place] = true;
    }
}

/// Makes joint affinities of conditional ones where these lie.
///
/// Rows and columns have the numbers of the matrix; where a row lies is its position.
template <typename Value>
class JointMatrix {
  public:
    JointMatrix(ConditionalRows& conditional, MallocArray<Value> values, const std::uint32_t* order)
        : N_(conditional.rows),
          K_(conditional.row_length),
          columns_(std::move(conditional.columns)),
          values_(std::move(values)),
          order_(order),
          arrivals_(calloc_array<std::uint32_t>(N_)) {
        require_allocated(arrivals_);
        if (order_ != nullptr) {
            reorderRows();
        }
    }

    /// @param extra  values beyond those of the slices
    SliceLayout spread(std::size_t extra) {
        findMutual();
        SliceLayout layout = countEntries();
        enlarge(columns_, N_ * K_, layout.storedCount());
        if constexpr (kIsStored<Value>) {
            enlarge(values_, N_ * K_, layout.storedCount() + extra);
            spread_values_ = at_cache_line(values_.get(), layout.storedCount());
        }
        spreadRows(layout);
        scatterArrivals(layout);
        return layout;
    }

    /// Brings the entries of every row into their order, and makes places of their columns.
    void finish(const SliceLayout& layout, std::size_t dims) {
        parallel_for(
            layout.sliceCount(), kSliceGrain, [&](std::size_t /*worker*/, IndexRange range) {
                RowEntries entries;
                for (std::size_t slice = range.begin; slice < range.end; ++slice) {
                    finishSlice(layout, slice, static_cast<std::uint32_t>(dims), entries);
                }
            });
    }

    MallocArray<std::uint32_t> takeColumns() { return std::move(columns_); }

    MallocArray<Value> takeValues() { return std::move(values_); }

    [[nodiscard]] Value* spreadValues() const { return spread_values_; }

  private:
    struct Entry {
        std::uint32_t column;
        bool is_mutual;
        [[no_unique_address]] Value value;
    };

    /// The entries of a row: brought up by rows before it, by itself, and by those after it.
    struct RowEntries {
        std::vector<Entry> earlier;
        std::vector<Entry> own;
        std::vector<Entry> later;
    };

    [[nodiscard]] std::uint32_t rowAt(std::size_t position) const {
        return order_ != nullptr ? order_[position] : static_cast<std::uint32_t>(position);
    }

    [[nodiscard]] std::uint32_t positionOf(std::uint32_t row) const {
        return positions_ != nullptr ? positions_[row] : row;
    }

    void reorderRows() {
        positions_ = malloc_array<std::uint32_t>(N_);
        require_allocated(positions_);
        for (std::size_t position = 0; position < N_; ++position) {
            positions_[order_[position]] = static_cast<std::uint32_t>(position);
        }
        reorder_rows(columns_.get(), K_, {order_, N_});
        if constexpr (kIsStored<Value>) {
            reorder_rows(values_.get(), K_, {order_, N_});
        }
    }

    /// Where a row, by its position, stores a column; its last place if there are several, and
    /// `K_` if there is none.
    [[nodiscard]] std::size_t placeIn(std::size_t position, std::uint32_t column) const {
        const std::uint32_t* const columns = columns_.get() + position * K_;
        std::size_t place = K_;
        for (std::size_t k = 0; k < K_; ++k) {
            place = columns[k] == column ? k : place;
        }
        return place;
    }

    /// Marks entries that lie across the diagonal from one another, and gives both the mean of
    /// their values.
    void findMutual() {
        is_mutual_ = calloc_array<unsigned char>(N_ * K_);
        require_allocated(is_mutual_);
        parallel_for_each(N_, kRowGrain, [this](std::size_t position) {
            const std::uint32_t row = rowAt(position);
            for (std::size_t i = position * K_; i < (position + 1) * K_; ++i) {
                // The lower one of two rows, or a row that has itself, does it for both.
                if (columns_[i] >= row) {
                    markMutual(row, i);
                }
            }
        });
    }

    /// The same for an entry of a row.
    void markMutual(std::uint32_t row, std::size_t i) {
        const std::uint32_t column = columns_[i];
        const std::size_t there = positionOf(column);
        const std::size_t place = placeIn(there, row);
        if (place == K_) {
            return;
        }
        const std::size_t mirror = there * K_ + place;
        is_mutual_[i] = 1;
        if constexpr (kIsStored<Value>) {
            values_[i] = static_cast<Value>((double{values_[i]} + double{values_[mirror]}) * 0.5);
        }
        if (column != row) {
            is_mutual_[mirror] = 1;
            if constexpr (kIsStored<Value>) {
                values_[mirror] = values_[i];
            }
        }
    }

    /// Halves the others, and counts the entries of every row.
    SliceLayout countEntries() {
        parallel_for_each(N_, kRowGrain, [this](std::size_t position) {
            for (std::size_t i = position * K_; i < (position + 1) * K_; ++i) {
                if (is_mutual_[i] != 0) {
                    columns_[i] |= kMutual;
                    continue;
                }
                std::atomic_ref(arrivals_[columns_[i]]).fetch_add(1, std::memory_order_relaxed);
                if constexpr (kIsStored<Value>) {
                    values_[i] *= Value{0.5};
                }
            }
        });
        is_mutual_.reset();
        const auto lengths = malloc_array<std::uint32_t>(N_);
        require_allocated(lengths);
        for (std::size_t position = 0; position < N_; ++position) {
            lengths[position] = static_cast<std::uint32_t>(K_) + arrivals_[rowAt(position)];
        }
        return SliceLayout({lengths.get(), N_});
    }

    /// Moves the rows' own entries to where the slices have them, the last rows first: no window
    /// of rows begins before the place where it lay.
    void spreadRows(const SliceLayout& layout) {
        std::vector<std::uint32_t> columns(SliceLayout::kWindowRows * K_);
        std::vector<Value> values(kIsStored<Value> ? columns.size() : 0);
        const std::size_t windows = (N_ + SliceLayout::kWindowRows - 1) / SliceLayout::kWindowRows;
        for (std::size_t window = windows; window-- > 0;) {
            const std::size_t begin = window * SliceLayout::kWindowRows;
            const std::size_t count = std::min(SliceLayout::kWindowRows, N_ - begin);
            std::copy_n(columns_.get() + begin * K_, count * K_, columns.begin());
            if constexpr (kIsStored<Value>) {
                std::copy_n(values_.get() + begin * K_, count * K_, values.begin());
            }
            parallel_for_each(count, kRowGrain, [&](std::size_t i) {
                const std::size_t first = layout.firstOf(begin + i);
                const std::size_t row = layout.rows()[begin + i] - begin;
                spreadRow(columns_.get() + first, columns.data() + row * K_);
                if constexpr (kIsStored<Value>) {
                    spreadRow(spread_values_ + first, values.data() + row * K_);
                }
            });
        }
    }

    template <typename T>
    void spreadRow(T* to, const T* from) const {
        for (std::size_t k = 0; k < K_; ++k) {
            to[k * kSliceRows] = from[k];
        }
    }

    /// Gives every row, behind its own entries, those of others that it does not store back.
    void scatterArrivals(const SliceLayout& layout) {
        parallel_for_each(N_, kRowGrain, [&](std::size_t lane) {
            const std::uint32_t row = rowAt(layout.rows()[lane]);
            for (std::size_t k = 0; k < K_; ++k) {
                const std::size_t from = layout.firstOf(lane) + k * kSliceRows;
                const std::uint32_t column = columns_[from];
                if ((column & kMutual) != 0) {
                    continue;
                }
                const std::size_t left =
                    std::atomic_ref(arrivals_[column]).fetch_sub(1, std::memory_order_relaxed);
                const std::size_t to = layout.firstOf(layout.lanes()[positionOf(column)]) +
                                       (K_ + left - 1) * kSliceRows;
                columns_[to] = row;
                if constexpr (kIsStored<Value>) {
                    spread_values_[to] = spread_values_[from];
                }
            }
        });
    }

    void finishSlice(const SliceLayout& layout,
                     std::size_t slice,
                     std::uint32_t dims,
                     RowEntries& entries) {
        const std::size_t steps = layout.starts()[slice + 1] - layout.starts()[slice];
        for (std::size_t lane = slice * kSliceRows; lane < (slice + 1) * kSliceRows; ++lane) {
            const std::size_t first = layout.firstOf(lane);
            const std::uint32_t position = layout.rows()[lane];
            if (position != kNoRow) {
                collect(rowAt(position), first, layout.lengths()[lane], entries);
            }
            std::size_t next = first;
            for (const auto* const part : {&entries.earlier, &entries.own, &entries.later}) {
                for (const Entry& entry : *part) {
                    put(next, entry, dims);
                    next += kSliceRows;
                }
            }
            for (; next < first + steps * kSliceRows; next += kSliceRows) {
                columns_[next] = 0;
                if constexpr (kIsStored<Value>) {
                    spread_values_[next] = 0;
                }
            }
            entries.earlier.clear();
            entries.own.clear();
            entries.later.clear();
        }
    }

    /// Takes the entries of a row out, in their order.
    void collect(std::uint32_t row,
                 std::size_t first,
                 std::size_t length,
                 RowEntries& entries) const {
        for (std::size_t k = 0; k < length; ++k) {
            const std::size_t i = first + k * kSliceRows;
            Entry entry{columns_[i] & ~kMutual, (columns_[i] & kMutual) != 0, {}};
            if constexpr (kIsStored<Value>) {
                entry.value = spread_values_[i];
            }
            const bool is_own = k < K_;
            const bool is_earlier = entry.column < row && (entry.is_mutual || !is_own);
            (is_earlier ? entries.earlier : is_own ? entries.own : entries.later).push_back(entry);
        }
        const auto by_column = [](const Entry& a, const Entry& b) { return a.column < b.column; };
        std::sort(entries.earlier.begin(), entries.earlier.end(), by_column);
        std::sort(entries.later.begin(), entries.later.end(), by_column);
    }

    void put(std::size_t i, const Entry& entry, std::uint32_t dims) {
        const std::uint32_t place = positionOf(entry.column) * dims;
        if constexpr (kIsStored<Value>) {
            columns_[i] = place;
            spread_values_[i] = entry.value;
        } else {
            columns_[i] = place << 1U | (entry.is_mutual ? 1U : 0U);
        }
    }

    std::size_t N_;
    std::size_t K_;
    MallocArray<std::uint32_t> columns_;
    MallocArray<Value> values_;
    /// In `values_`, once the rows are spread.
    Value* spread_values_ = nullptr;
    const std::uint32_t* order_;
    MallocArray<std::uint32_t> positions_;
    /// Of each conditional entry; then set in its column.
    MallocArray<unsigned char> is_mutual_;
    /// How many entries of other rows each gets, then how many are still to come.
    MallocArray<std::uint32_t> arrivals_;
};

template <typename Value>
SlicedMatrix make_joint(ConditionalRows& conditional,
                        MallocArray<Value> values,
                        std::size_t dims,
                        MallocArray<std::uint32_t> order,
                        SliceEntries entries) {
    JointMatrix<Value> joint(conditional, std::move(values), order.get());
    SliceLayout layout = joint.spread(kCacheLine / sizeof(Value));
    joint.finish(layout, dims);
    entries.places = joint.takeColumns();
    if constexpr (std::is_same_v<Value, double>) {
        entries.values = joint.spreadValues();
        entries.value_block = joint.takeValues();
    } else if constexpr (std::is_same_v<Value, float>) {
        entries.singles = joint.spreadValues();
        entries.single_block = joint.takeValues();
    }
    const std::uint32_t* const lengths = layout.lengths();
    const std::size_t entry_count =
        std::accumulate(lengths, lengths + layout.rowCount(), std::size_t{0});
    SlicedMatrix matrix(std::move(layout), std::move(entries), entry_count, dims, std::move(order));
    matrix.divideBySum();
    return matrix;
}

}  // namespace

void check_coordinates(std::size_t N, std::size_t dims, ValueForm form) {
    constexpr std::size_t kPlaces = std::size_t{std::numeric_limits<std::uint32_t>::max()};
    const std::size_t most = form == ValueForm::OneOrTwo ? kPlaces / 2 : kPlaces;
    if (N >= kMutual || (dims > 0 && N > most / dims)) {
        throw std::length_error("the embedding has more coordinates than can be counted");
    }
}

SlicedMatrix joint_matrix(ConditionalRows conditional,
                          std::size_t dims,
                          MallocArray<std::uint32_t> order) {
    check_coordinates(conditional.rows, dims, conditional.form);
    SliceEntries entries;
    entries.form = conditional.form;
    switch (conditional.form) {
        case ValueForm::Single:
            return make_joint(conditional,
                              std::move(conditional.singles),
                              dims,
                              std::move(order),
                              std::move(entries));
        case ValueForm::OneOrTwo:
            entries.factor = 1.0 / static_cast<double>(conditional.row_length) * 0.5;
            return make_joint(
                conditional, MallocArray<NoValue>(), dims, std::move(order), std::move(entries));
        default:
            return make_joint(conditional,
                              std::move(conditional.doubles),
                              dims,
                              std::move(order),
                              std::move(entries));
    }
}

}  // namespace ovik
