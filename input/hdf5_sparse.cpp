#include "input/hdf5_sparse.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numeric>
#include <utility>
#include <vector>

#include "util/format.h"

namespace ovik::hdf5 {

namespace {

constexpr const char* kDamaged = "\nThe file may be damaged: fetch or write it again.";

/// The three arrays, and the words for what they hold.
class SparseArrays {
  public:
    SparseArrays(const File& file, const SparseLayout& layout, const OnShare& on_share)
        : layout_(layout),
          on_share_(on_share),
          data_(file, layout.path + "/data"),
          indices_(file, layout.path + "/indices"),
          pointers_(file, layout.path + "/indptr") {
        for (const Dataset* const array : {&data_, &indices_, &pointers_}) {
            array->requireDimensions(1);
        }
        data_.requireNumbers();
        indices_.requireWholeNumbers();
        pointers_.requireWholeNumbers();
        if (pointers_.size() != outer() + 1) {
            refuse(pointers_.place(),
                   "has " + std::to_string(pointers_.size()) + " elements, and " +
                       std::to_string(outer()) + " " + outerWord() + "s need " +
                       std::to_string(outer() + 1) + kDamaged);
        }
        if (indices_.size() != data_.size()) {
            refuse(indices_.place(),
                   "has " + std::to_string(indices_.size()) + " elements, and the data have " +
                       std::to_string(data_.size()) + kDamaged);
        }
    }

    /// Rows, or columns if the entries come by columns.
    [[nodiscard]] std::size_t outer() const {
        return layout_.is_by_columns ? layout_.columns : layout_.rows;
    }

    [[nodiscard]] std::size_t inner() const {
        return layout_.is_by_columns ? layout_.rows : layout_.columns;
    }

    [[nodiscard]] std::size_t entries() const { return data_.size(); }

    /// Where the entries of each row or column begin.
    [[nodiscard]] std::vector<std::size_t> starts() const {
        std::vector<std::int64_t> read(pointers_.size());
        for (std::size_t begin = 0; begin < read.size(); begin += pointers_.block()) {
            pointers_.read(
                begin, std::min(begin + pointers_.block(), read.size()), read.data() + begin);
        }
        std::vector<std::size_t> starts(read.size());
        for (std::size_t i = 0; i < read.size(); ++i) {
            const std::int64_t before = i == 0 ? 0 : read[i - 1];
            if (read[i] < before || (i == 0 && read[i] != 0)) {
                refuse(pointers_.place(),
                       "element " + std::to_string(i + 1) + " is " + std::to_string(read[i]) +
                           (i == 0 ? ", and should be 0"
                                   : ", less than the one before it, " + std::to_string(before)) +
                           kDamaged);
            }
            starts[i] = static_cast<std::size_t>(read[i]);
        }
        if (starts.back() != entries()) {
            refuse(pointers_.place(),
                   "ends with " + std::to_string(starts.back()) + ", and the data have " +
                       std::to_string(entries()) + " elements" + kDamaged);
        }
        return starts;
    }

    /// Calls `take(i, outer, inner)` for each entry in the order of the file.
    ///
    /// @param from, to  which share of the whole work that is
    template <typename Take>
    void forEach(const std::vector<std::size_t>& starts,
                 double from,
                 double to,
                 const Take& take) const {
        std::vector<std::int64_t> indices(std::min(indices_.block(), entries()));
        std::size_t at = 0;
        for (std::size_t begin = 0; begin < entries(); begin += indices.size()) {
            const std::size_t end = std::min(begin + indices.size(), entries());
            indices_.read(begin, end, indices.data());
            for (std::size_t i = begin; i < end; ++i) {
                while (i == starts[at + 1]) {
                    ++at;
                }
                take(i, at, checkedIndex(at, indices[i - begin]));
            }
            if (on_share_) {
                on_share_(from +
                          (to - from) * static_cast<double>(end) / static_cast<double>(entries()));
            }
        }
    }

    /// The value of an entry; entries are asked for one after the other.
    [[nodiscard]] double value(std::size_t i) {
        if (i >= values_end_) {
            values_begin_ = i;
            values_end_ = std::min(i + data_.block(), entries());
            values_.resize(values_end_ - values_begin_);
            data_.read(values_begin_, values_end_, values_.data());
        }
        return values_[i - values_begin_];
    }

    [[noreturn]] void refuseTwice(std::size_t row, std::size_t column) const {
        refuse(indices_.place(),
               "row " + std::to_string(row + 1) + " has column " + std::to_string(column + 1) +
                   " twice" + kDamaged);
    }

    [[noreturn]] void refuseValue(std::size_t row, std::size_t column, double value) const {
        refuse(data_.place(),
               "column " + std::to_string(column + 1) + " of row " + std::to_string(row + 1) +
                   " is \"" + shortest_text(value) +
                   "\", which is not a finite number\nReplace such values, or take the rows out.");
    }

  private:
    [[nodiscard]] std::string outerWord() const { return layout_.is_by_columns ? "column" : "row"; }

    [[nodiscard]] std::size_t checkedIndex(std::size_t at, std::int64_t index) const {
        if (index < 0 || static_cast<std::size_t>(index) >= inner()) {
            refuse(indices_.place(),
                   outerWord() + " " + std::to_string(at + 1) + " has an entry at " +
                       std::to_string(index) + ", which is not one of 0 to " +
                       std::to_string(static_cast<std::int64_t>(inner()) - 1) + kDamaged);
        }
        return static_cast<std::size_t>(index);
    }

    SparseLayout layout_;
    const OnShare& on_share_;
    Dataset data_;
    Dataset indices_;
    Dataset pointers_;
    /// Those that were read last, and which they are.
    std::vector<double> values_;
    std::size_t values_begin_ = 0;
    std::size_t values_end_ = 0;
};

/// Counting the entries of rows takes about a third of reading a matrix by columns.
constexpr double kCountingShare = 1.0 / 3.0;

/// Where the entries of the rows begin, of a matrix that comes by columns.
std::vector<std::size_t> count_rows(const SparseArrays& arrays,
                                    const std::vector<std::size_t>& starts,
                                    std::size_t rows) {
    std::vector<std::size_t> row_starts(rows + 1, 0);
    arrays.forEach(
        starts,
        0.0,
        kCountingShare,
        [&](std::size_t /*i*/, std::size_t /*column*/, std::size_t row) { ++row_starts[row + 1]; });
    std::partial_sum(row_starts.begin(), row_starts.end(), row_starts.begin());
    return row_starts;
}

/// Brings the entries of a row into the order of their columns.
void sort_row(SparseRows& matrix,
              std::size_t row,
              std::vector<std::pair<std::uint32_t, double>>& sorted) {
    const std::size_t begin = matrix.starts[row];
    const std::size_t end = matrix.starts[row + 1];
    const auto first = matrix.column_of.begin();
    if (std::is_sorted(first + static_cast<std::ptrdiff_t>(begin),
                       first + static_cast<std::ptrdiff_t>(end))) {
        return;
    }
    sorted.clear();
    for (std::size_t i = begin; i < end; ++i) {
        sorted.emplace_back(matrix.column_of[i], matrix.values[i]);
    }
    std::sort(sorted.begin(), sorted.end(), [](const auto& a, const auto& b) {
        return a.first < b.first;
    });
    for (std::size_t i = begin; i < end; ++i) {
        matrix.column_of[i] = sorted[i - begin].first;
        matrix.values[i] = sorted[i - begin].second;
    }
}

void check_entries(const SparseArrays& arrays, const SparseRows& matrix) {
    for (std::size_t n = 0; n < matrix.rows; ++n) {
        for (std::size_t i = matrix.starts[n]; i < matrix.starts[n + 1]; ++i) {
            if (i > matrix.starts[n] && matrix.column_of[i] == matrix.column_of[i - 1]) {
                arrays.refuseTwice(n, matrix.column_of[i]);
            }
            if (!std::isfinite(matrix.values[i])) {
                arrays.refuseValue(n, matrix.column_of[i], matrix.values[i]);
            }
        }
    }
}

}  // namespace

SparseRows read_sparse(const File& file,
                       const SparseLayout& layout,
                       const std::string& cure,
                       const OnShare& on_share) {
    constexpr std::size_t kMostRows = std::numeric_limits<std::int32_t>::max();
    if (layout.rows > kMostRows || layout.columns > kMostRows) {
        refuse(file.place(layout.path),
               "has " + std::to_string(layout.rows) + " rows and " +
                   std::to_string(layout.columns) + " columns, more than are read" + kDamaged);
    }
    SparseArrays arrays(file, layout, on_share);
    const double extents =
        3.0 *
        static_cast<double>(layout.is_by_columns ? layout.rows + layout.columns : layout.rows);
    file.checkMemory("the sparse matrix with " + std::to_string(arrays.entries()) + " values",
                     sparse_bytes(extents, static_cast<double>(arrays.entries())),
                     cure);
    const std::vector<std::size_t> starts = arrays.starts();
    SparseRows matrix;
    matrix.rows = layout.rows;
    matrix.columns = layout.columns;
    matrix.starts = layout.is_by_columns ? count_rows(arrays, starts, layout.rows) : starts;
    matrix.column_of.resize(arrays.entries());
    matrix.values.resize(arrays.entries());
    std::vector<std::size_t> next(matrix.starts.begin(), matrix.starts.end() - 1);
    const double counted = layout.is_by_columns ? kCountingShare : 0.0;
    arrays.forEach(starts, counted, 1.0, [&](std::size_t i, std::size_t outer, std::size_t inner) {
        const std::size_t place = next[layout.is_by_columns ? inner : outer]++;
        matrix.column_of[place] = static_cast<std::uint32_t>(layout.is_by_columns ? outer : inner);
        matrix.values[place] = arrays.value(i);
    });
    std::vector<std::pair<std::uint32_t, double>> sorted;
    for (std::size_t n = 0; n < matrix.rows; ++n) {
        sort_row(matrix, n, sorted);
    }
    check_entries(arrays, matrix);
    return matrix;
}

}  // namespace ovik::hdf5
