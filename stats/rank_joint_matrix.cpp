#include "stats/rank_joint_matrix.h"

#include <algorithm>
#include <numeric>
#include <span>
#include <utility>
#include <vector>

#include "util/byte_queue.h"
#include "util/cache_line.h"
#include "util/huge_pages.h"
#include "util/malloc_array.h"

namespace ovik {

namespace {

/// Fewest rows and slices for which another thread pays.
constexpr std::size_t kRowGrain = 512;
constexpr std::size_t kSliceGrain = 64;

/// In the place of values that are not stored.
struct NoValue {};

template <typename Value>
constexpr bool kIsStored = !std::is_same_v<Value, NoValue>;

/// A conditional affinity, as it goes to the rank that has its column.
template <typename Value>
struct Arrival {
    std::uint32_t column;
    std::uint32_t row;
    [[no_unique_address]] Value value;
};

/// Those that have come for the rows of a rank: of each row by the rows that they come from.
template <typename Value>
class Arrivals {
  public:
    /// @param all  emptied
    Arrivals(std::vector<Arrival<Value>> all, IndexRange own) : starts_(own.size() + 1, 0) {
        for (const Arrival<Value>& one : all) {
            ++starts_[one.column - own.begin + 1];
        }
        std::partial_sum(starts_.begin(), starts_.end(), starts_.begin());
        arrivals_.resize(all.size());
        std::vector<std::size_t> next(starts_.begin(), starts_.end() - 1);
        for (const Arrival<Value>& one : all) {
            arrivals_[next[one.column - own.begin]++] = one;
        }
        parallel_for_each(own.size(), kRowGrain, [this](std::size_t n) {
            std::sort(arrivals_.begin() + static_cast<std::ptrdiff_t>(starts_[n]),
                      arrivals_.begin() + static_cast<std::ptrdiff_t>(starts_[n + 1]),
                      [](const auto& a, const auto& b) { return a.row < b.row; });
        });
    }

    /// @param n  from the first of the rank's rows on
    [[nodiscard]] std::span<const Arrival<Value>> of(std::size_t n) const {
        return std::span(arrivals_).subspan(starts_[n], starts_[n + 1] - starts_[n]);
    }

  private:
    std::vector<std::size_t> starts_;
    std::vector<Arrival<Value>> arrivals_;
};

/// The rows of a rank, conditional and joint.
template <typename Value>
class RankJoint {
  public:
    RankJoint(const ConditionalRows& conditional, const Value* values, const RankRows& rows)
        : K_(conditional.row_length),
          columns_(conditional.columns.get()),
          values_(values),
          first_(rows.own().begin),
          arrivals_(exchanged(rows), rows.own()) {}

    /// How many entries each row has.
    [[nodiscard]] MallocArray<std::uint32_t> lengths(std::size_t count) const {
        auto lengths = malloc_array<std::uint32_t>(count);
        require_allocated(lengths);
        parallel_for(count, kRowGrain, [&](std::size_t /*worker*/, IndexRange range) {
            RowScratch scratch;
            for (std::size_t n = range.begin; n < range.end; ++n) {
                findMutual(n, scratch);
                const auto shared =
                    std::count(scratch.is_stored_back.begin(), scratch.is_stored_back.end(), true);
                lengths[n] = static_cast<std::uint32_t>(K_ + arrivals_.of(n).size() -
                                                        static_cast<std::size_t>(shared));
            }
        });
        return lengths;
    }

    /// @param values  null where none are stored
    void fill(const SliceLayout& layout,
              std::size_t dims,
              std::uint32_t* places,
              Value* values) const {
        parallel_for(
            layout.sliceCount(), kSliceGrain, [&](std::size_t /*worker*/, IndexRange range) {
                RowScratch scratch;
                for (std::size_t slice = range.begin; slice < range.end; ++slice) {
                    fillSlice(
                        layout, slice, static_cast<std::uint32_t>(dims), scratch, places, values);
                }
            });
    }

  private:
    struct Entry {
        std::uint32_t column;
        bool is_mutual;
        [[no_unique_address]] Value value;
    };

    struct RowScratch {
        /// The columns of the row with their places, by column.
        std::vector<std::pair<std::uint32_t, std::size_t>> columns;
        /// For each place the arrival from its column; none as `kNone`.
        std::vector<std::size_t> mirrors;
        /// For each arrival whether the row has its row among its columns.
        std::vector<bool> is_stored_back;
        std::vector<Entry> entries;
    };

    static constexpr std::size_t kNone = SIZE_MAX;

    /// What other ranks, and this one, store of the rows of this one.
    [[nodiscard]] std::vector<Arrival<Value>> exchanged(const RankRows& rows) const {
        std::vector<std::vector<Arrival<Value>>> for_ranks(rows.ranks().count());
        for (std::size_t n = 0; n < rows.own().size(); ++n) {
            const auto row = static_cast<std::uint32_t>(first_ + n);
            for (std::size_t i = n * K_; i < (n + 1) * K_; ++i) {
                if (columns_[i] == row) {
                    continue;
                }
                Arrival<Value> sent{columns_[i], row, {}};
                if constexpr (kIsStored<Value>) {
                    sent.value = values_[i];
                }
                for_ranks[rows.ownerOf(columns_[i])].push_back(sent);
            }
        }
        std::vector<Arrival<Value>> all;
        rows.ranks().exchange(
            [&](std::size_t to) {
                ByteQueue queue;
                queue.putAll(std::span<const Arrival<Value>>(for_ranks[to]));
                for_ranks[to] = {};
                return queue.take();
            },
            [&](std::size_t /*from*/, std::span<const std::byte> bytes) {
                const std::size_t before = all.size();
                all.resize(before + bytes.size() / sizeof(Arrival<Value>));
                ByteReader(bytes).getAll(std::span(all).subspan(before));
            },
            Errand::Affinities);
        return all;
    }

    void findMutual(std::size_t n, RowScratch& scratch) const {
        const std::uint32_t row = static_cast<std::uint32_t>(first_ + n);
        scratch.columns.clear();
        for (std::size_t k = 0; k < K_; ++k) {
            if (columns_[n * K_ + k] != row) {
                scratch.columns.emplace_back(columns_[n * K_ + k], k);
            }
        }
        std::sort(scratch.columns.begin(), scratch.columns.end());
        const std::span<const Arrival<Value>> arrivals = arrivals_.of(n);
        scratch.mirrors.assign(K_, kNone);
        scratch.is_stored_back.assign(arrivals.size(), false);
        std::size_t a = 0;
        for (const auto& [column, place] : scratch.columns) {
            while (a < arrivals.size() && arrivals[a].row < column) {
                ++a;
            }
            if (a < arrivals.size() && arrivals[a].row == column) {
                scratch.mirrors[place] = a;
                scratch.is_stored_back[a] = true;
            }
        }
    }

    /// Joins the entries of a row, in the order in which rows 0, 1, ... bring them up.
    void collect(std::size_t n, RowScratch& scratch) const {
        findMutual(n, scratch);
        scratch.entries.clear();
        const auto row = static_cast<std::uint32_t>(first_ + n);
        const std::span<const Arrival<Value>> arrivals = arrivals_.of(n);
        std::vector<Entry>& entries = scratch.entries;
        std::size_t a = 0;
        for (; a < arrivals.size() && arrivals[a].row < row; ++a) {
            entries.push_back(scratch.is_stored_back[a] ? mutualEntry(n, arrivals[a], scratch)
                                                        : arrivedEntry(arrivals[a]));
        }
        for (std::size_t k = 0; k < K_; ++k) {
            const std::size_t mirror = scratch.mirrors[k];
            const std::uint32_t column = columns_[n * K_ + k];
            if (column == row) {
                entries.push_back(ownEntry(n, k));
            } else if (mirror == kNone) {
                entries.push_back(lonelyEntry(n, k));
            } else if (column > row) {
                entries.push_back(mutualEntry(n, arrivals[mirror], scratch));
            }
        }
        for (; a < arrivals.size(); ++a) {
            if (!scratch.is_stored_back[a]) {
                entries.push_back(arrivedEntry(arrivals[a]));
            }
        }
    }

    /// Of two rows that store one another: the mean of both.
    [[nodiscard]] Entry mutualEntry(std::size_t n,
                                    const Arrival<Value>& arrival,
                                    const RowScratch& scratch) const {
        Entry entry{arrival.row, true, {}};
        if constexpr (kIsStored<Value>) {
            const auto own = std::lower_bound(scratch.columns.begin(),
                                              scratch.columns.end(),
                                              std::pair(arrival.row, std::size_t{0}));
            const Value value = values_[n * K_ + own->second];
            entry.value = static_cast<Value>((double{value} + double{arrival.value}) * 0.5);
        }
        return entry;
    }

    /// Stored by another row alone.
    [[nodiscard]] Entry arrivedEntry(const Arrival<Value>& arrival) const {
        Entry entry{arrival.row, false, {}};
        if constexpr (kIsStored<Value>) {
            entry.value = arrival.value * Value{0.5};
        }
        return entry;
    }

    /// Stored by this row alone.
    [[nodiscard]] Entry lonelyEntry(std::size_t n, std::size_t k) const {
        Entry entry{columns_[n * K_ + k], false, {}};
        if constexpr (kIsStored<Value>) {
            entry.value = values_[n * K_ + k] * Value{0.5};
        }
        return entry;
    }

    /// A row that has itself stores itself back where it has itself last.
    [[nodiscard]] Entry ownEntry(std::size_t n, std::size_t k) const {
        const std::uint32_t* const columns = columns_ + n * K_;
        Entry entry{columns[k], true, {}};
        if constexpr (kIsStored<Value>) {
            std::size_t last = K_ - 1;
            while (columns[last] != columns[k]) {
                --last;
            }
            entry.value = static_cast<Value>(
                (double{values_[n * K_ + k]} + double{values_[n * K_ + last]}) * 0.5);
        }
        return entry;
    }

    void fillSlice(const SliceLayout& layout,
                   std::size_t slice,
                   std::uint32_t dims,
                   RowScratch& scratch,
                   std::uint32_t* places,
                   Value* values) const {
        const std::size_t steps = layout.starts()[slice + 1] - layout.starts()[slice];
        for (std::size_t lane = slice * kSliceRows; lane < (slice + 1) * kSliceRows; ++lane) {
            scratch.entries.clear();
            if (layout.rows()[lane] != kNoRow) {
                collect(layout.rows()[lane], scratch);
            }
            for (std::size_t k = 0; k < steps; ++k) {
                const std::size_t i = layout.firstOf(lane) + k * kSliceRows;
                const bool is_there = k < scratch.entries.size();
                const Entry entry = is_there ? scratch.entries[k] : Entry{0, false, {}};
                const std::uint32_t place = entry.column * dims;
                if constexpr (kIsStored<Value>) {
                    places[i] = place;
                    values[i] = entry.value;
                } else {
                    places[i] = place << 1U | (entry.is_mutual ? 1U : 0U);
                }
            }
        }
    }

    std::size_t K_;
    const std::uint32_t* columns_;
    const Value* values_;
    std::size_t first_;
    Arrivals<Value> arrivals_;
};

/// Room for the values of slices, from a cache line on.
template <typename Value>
void make_room(MallocArray<Value>& block, Value*& values, std::size_t count) {
    block = malloc_array<Value>(count + kCacheLine / sizeof(Value));
    require_allocated(block);
    prefer_huge_pages(block.get(), count * sizeof(Value));
    values = at_cache_line(block.get(), count);
}

template <typename Value>
SlicedMatrix make_joint(const ConditionalRows& conditional,
                        const Value* stored,
                        std::size_t dims,
                        const RankRows& rows,
                        SliceEntries entries) {
    const RankJoint<Value> joint(conditional, stored, rows);
    const auto lengths = joint.lengths(rows.own().size());
    SliceLayout layout({lengths.get(), rows.own().size()});
    entries.places = malloc_array<std::uint32_t>(layout.storedCount());
    require_allocated(entries.places);
    prefer_huge_pages(entries.places.get(), layout.storedCount() * sizeof(std::uint32_t));
    Value* values = nullptr;
    if constexpr (std::is_same_v<Value, double>) {
        make_room(entries.value_block, entries.values, layout.storedCount());
        values = entries.values;
    } else if constexpr (std::is_same_v<Value, float>) {
        make_room(entries.single_block, entries.singles, layout.storedCount());
        values = entries.singles;
    }
    joint.fill(layout, dims, entries.places.get(), values);
    std::int64_t entry_count =
        std::accumulate(lengths.get(), lengths.get() + rows.own().size(), std::int64_t{0});
    rows.ranks().sum({&entry_count, 1}, Errand::Orders);
    SlicedMatrix matrix(
        std::move(layout), std::move(entries), static_cast<std::size_t>(entry_count), dims, rows);
    matrix.divideBySum();
    return matrix;
}

}  // namespace

SlicedMatrix joint_matrix_of_rank(ConditionalRows conditional,
                                  std::size_t dims,
                                  const RankRows& rows) {
    check_coordinates(rows.count(), dims, conditional.form);
    SliceEntries entries;
    entries.form = conditional.form;
    switch (conditional.form) {
        case ValueForm::Single:
            return make_joint(
                conditional, conditional.singles.get(), dims, rows, std::move(entries));
        case ValueForm::OneOrTwo: {
            entries.factor = 1.0 / static_cast<double>(conditional.row_length) * 0.5;
            const NoValue* const none = nullptr;
            return make_joint(conditional, none, dims, rows, std::move(entries));
        }
        default:
            return make_joint(
                conditional, conditional.doubles.get(), dims, rows, std::move(entries));
    }
}

}  // namespace ovik
