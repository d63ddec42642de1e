#include "input/matrix_market.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numeric>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "input/cell_names.h"
#include "input/market_entries.h"
#include "input/sparse_matrix.h"
#include "util/counted.h"
#include "util/input_error.h"
#include "util/memory_text.h"

namespace ovik {

namespace {

/// How rows and columns of the file become those of the matrix, and what they are called.
class MarketOrientation {
  public:
    MarketOrientation(const MatrixSource& source, const LoadOptions& options)
        : names_(options.has_names && options.row_names_file.empty() && !options.holds_distances
                     ? names_beside(source.path())
                     : std::nullopt) {}

    /// Settles what the extents of the file say.
    void begin(const MarketHead& head, InspectedMatrix& matrix) {
        const CellOrder order =
            names_ ? cell_order(*names_, head.rows, head.columns) : CellOrder::None;
        is_turned_ = order == CellOrder::Columns;
        matrix.report.rows = is_turned_ ? head.columns : head.rows;
        matrix.report.columns = is_turned_ ? head.rows : head.columns;
        if (order != CellOrder::None) {
            matrix.row_names = std::move(names_->cells);
            matrix.column_names = std::move(names_->features);
            matrix.rows_are_points = true;
            matrix.report.notes.push_back(
                "the cells are its " + std::string(is_turned_ ? "columns" : "rows") +
                ", named by " + names_->cells_file +
                ", and become the points; their columns are named by " + names_->features_file);
        } else if (names_) {
            matrix.report.warnings.push_back(
                ": the names beside it are of " + counted(names_->cells.size(), "cell", "cells") +
                " and " + counted(names_->features.size(), "feature", "features") +
                ", and it has " + counted(head.rows, "row", "rows") + " and " +
                counted(head.columns, "column", "columns") + ": they are not used");
        }
    }

    /// Whether rows and columns change places.
    [[nodiscard]] bool isTurned() const { return is_turned_; }

  private:
    std::optional<CellNames> names_;
    bool is_turned_ = false;
};

/// Takes note of an infinite entry.
void note_infinite(const MarketEntry& entry, MatrixReport& report) {
    if (std::isinf(entry.value) && report.not_finite.count++ < FieldFindings::kListed) {
        report.not_finite.places.push_back(
            {entry.line, std::to_string(entry.row + 1), entry.column + 1, std::string(entry.text)});
    }
}

/// Takes the entries of a matrix, for dense values or as they are.
class MatrixMarket : public MarketSink {
  public:
    MatrixMarket(const MatrixSource& source, const LoadOptions& options)
        : name_(source.name()),
          options_(options),
          orientation_(source, options) {}

    void begin(const MarketHead& head) override {
        head_ = head;
        orientation_.begin(head, matrix_);
        stays_sparse_ = head.is_sparse && stays_sparse(options_, head.rows, head.columns);
        checkMemory();
        if (stays_sparse_) {
            entries_.reserve(std::min(head.entries, entries_.max_size() / 2) * copies());
        } else {
            matrix_.values = std::make_unique<double[]>(head.rows * head.columns);
        }
    }

    void add(const MarketEntry& entry) override {
        note_infinite(entry, matrix_.report);
        if (stays_sparse_ && std::isnan(entry.value)) {
            throw InputError(name_ + ":" + std::to_string(entry.line) +
                             ": the value is missing, and a matrix that stays sparse cannot lack "
                             "one\nReplace it, or leave the entry out for 0.");
        }
        put(entry.row, entry.column, entry.value);
        if (head_.is_symmetric && entry.row != entry.column) {
            put(entry.column, entry.row, head_.mirror_sign * entry.value);
        }
    }

    InspectedMatrix take() {
        if (stays_sparse_) {
            matrix_.sparse = sparseRows();
        }
        return std::move(matrix_);
    }

  private:
    struct Entry {
        std::uint32_t row;
        std::uint32_t column;
        double value;
    };

    /// Column and value of an entry in the order of the rows.
    using SortedEntry = std::pair<std::uint32_t, double>;

    /// How often an entry of the file stands in the matrix, at most.
    [[nodiscard]] std::size_t copies() const { return head_.is_symmetric ? 2 : 1; }

    /// What a matrix that stays sparse takes while it is brought into order.
    [[nodiscard]] double sparseBytes() const {
        const double entries = static_cast<double>(head_.entries) * static_cast<double>(copies());
        constexpr double kStarts = 3.0 * sizeof(std::size_t);
        return static_cast<double>(sizeof(Entry) + sizeof(SortedEntry)) * entries +
               kStarts * static_cast<double>(matrix_.report.rows);
    }

    /// @throws InputError if the matrix would not fit in memory
    void checkMemory() const {
        const double rows = static_cast<double>(matrix_.report.rows);
        const double bytes = stays_sparse_
                                 ? sparseBytes()
                                 : 8.0 * rows * static_cast<double>(matrix_.report.columns);
        if (bytes <= 8.0 * static_cast<double>(kMostDenseValues) && !stays_sparse_) {
            return;
        }
        const double limit = memory_limit(options_);
        constexpr std::size_t kMostExtent = std::numeric_limits<std::uint32_t>::max();
        if (stays_sparse_ && (head_.rows > kMostExtent || head_.columns > kMostExtent)) {
            throw InputError(name_ + ": has more rows or columns than are read");
        }
        if (bytes > limit) {
            throw InputError(name_ + ": the matrix of " + std::to_string(head_.rows) +
                             " rows and " + std::to_string(head_.columns) +
                             " columns takes about " + memory_text(bytes) + " of memory, and " +
                             memory_text(std::max(limit, 0.0)) + " are left\n" +
                             (head_.is_sparse && !stays_sparse_
                                  ? "Give " + options_.spell("pca", "50") +
                                        ": it stays sparse on the way to its components."
                                  : std::string("Take a part of the rows.")));
        }
    }

    void put(std::size_t row, std::size_t column, double value) {
        if (orientation_.isTurned()) {
            std::swap(row, column);
        }
        if (stays_sparse_) {
            entries_.push_back(
                {static_cast<std::uint32_t>(row), static_cast<std::uint32_t>(column), value});
        } else {
            matrix_.values[row * matrix_.report.columns + column] += value;
        }
    }

    /// The entries by rows and columns; those that are repeated are added up in their order.
    SparseRows sparseRows() {
        SparseRows rows;
        rows.rows = matrix_.report.rows;
        rows.columns = matrix_.report.columns;
        std::vector<std::size_t> next(rows.rows + 1, 0);
        for (const Entry& entry : entries_) {
            ++next[entry.row + 1];
        }
        std::partial_sum(next.begin(), next.end(), next.begin());
        const std::vector<std::size_t> begins = next;
        std::vector<SortedEntry> sorted(entries_.size());
        for (const Entry& entry : entries_) {
            sorted[next[entry.row]++] = {entry.column, entry.value};
        }
        std::vector<Entry>().swap(entries_);
        rows.column_of.reserve(sorted.size());
        rows.values.reserve(sorted.size());
        rows.starts.reserve(rows.rows + 1);
        rows.starts.push_back(0);
        for (std::size_t n = 0; n < rows.rows; ++n) {
            const auto first = sorted.begin() + static_cast<std::ptrdiff_t>(begins[n]);
            const auto last = sorted.begin() + static_cast<std::ptrdiff_t>(begins[n + 1]);
            std::stable_sort(
                first, last, [](const auto& a, const auto& b) { return a.first < b.first; });
            for (auto entry = first; entry != last; ++entry) {
                if (rows.values.size() > rows.starts.back() &&
                    rows.column_of.back() == entry->first) {
                    rows.values.back() += entry->second;
                } else {
                    rows.column_of.push_back(entry->first);
                    rows.values.push_back(entry->second);
                }
            }
            rows.starts.push_back(rows.values.size());
        }
        return rows;
    }

    std::string name_;
    const LoadOptions& options_;
    MarketOrientation orientation_;
    MarketHead head_;
    InspectedMatrix matrix_;
    bool stays_sparse_ = false;
    std::vector<Entry> entries_;
};

}  // namespace

InspectedMatrix read_matrix_market(MatrixSource& source, const LoadOptions& options) {
    MatrixMarket matrix(source, options);
    read_market_entries(source, matrix);
    return matrix.take();
}

}  // namespace ovik
