#include "input/distance_matrix.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>
#include <vector>

#include "util/comparable_distance.h"
#include "util/counted.h"
#include "util/format.h"
#include "util/input_error.h"

namespace ovik {

namespace {

/// Distances are squared and divided by one another: both have to be numbers that `double` can
/// hold.
constexpr double kLargest = 1e300;

/// What rounding may leave of distances that are computed as differences or as roots of them, in
/// single precision too, as a share of the largest.
constexpr double kRounding = 1e-6;

class DistanceCheck {
  public:
    DistanceCheck(MatrixView<const double> distances, const DistanceWords& words)
        : distances_(distances),
          words_(words) {}

    void checkShape() const {
        if (distances_.rows != distances_.columns) {
            throw InputError(opening() + counted(distances_.rows, "row", "rows") + " and " +
                             counted(distances_.columns, "column", "columns") +
                             ": a matrix of distances is square\nGive the distances of all rows "
                             "from all rows, both ways, or the values of which they were computed "
                             "with another metric.");
        }
    }

    void checkValues() {
        for (const double value : distances_.all()) {
            largest_ = std::isfinite(value) ? std::max(largest_, value) : largest_;
        }
        for (std::size_t n = 0; n < distances_.rows; ++n) {
            for (std::size_t m = 0; m < distances_.columns; ++m) {
                checkValue(n, m);
            }
        }
        if (largest_ < 1.0 / kLargest) {
            throw InputError(opening() +
                             "no distance is above 1e-300, so that there is nothing to embed");
        }
        for (std::size_t n = 0; n < distances_.rows; ++n) {
            for (std::size_t m = 0; m < n; ++m) {
                checkBothWays(n, m);
            }
        }
        checkRange();
    }

  private:
    [[nodiscard]] std::string opening() const {
        return words_.source.empty() ? "" : words_.source + ": ";
    }

    [[nodiscard]] std::string place(std::size_t row, std::size_t column) const {
        const auto text = [this](const char* what, std::size_t index) {
            return what + std::to_string(index + words_.first) +
                   (words_.names.empty() ? "" : " (\"" + words_.names[index] + "\")");
        };
        return text("row ", row) + ", " + text("column ", column);
    }

    [[noreturn]] void refuse(std::size_t row,
                             std::size_t column,
                             const std::string& what,
                             const std::string& cure) const {
        const bool has_line = row < words_.lines.size() && words_.lines[row] > 0;
        throw InputError((has_line ? words_.source + ":" + std::to_string(words_.lines[row]) + ": "
                                   : opening()) +
                         place(row, column) +
                         (words_.first == 0 ? ", both counted from 0: " : ": ") + what + "\n" +
                         cure);
    }

    void checkValue(std::size_t row, std::size_t column) const {
        const double value = distances_.row(row)[column];
        if (!(std::fabs(value) <= kLargest)) {
            refuse(row,
                   column,
                   "the distance is " + shortest_text(value),
                   "Every pair of rows needs a distance, a number from 0 to 1e300.");
        }
        if (value < -kRounding * largest_) {
            refuse(row,
                   column,
                   "the distance " + shortest_text(value) + " is negative",
                   "Distances are needed, not similarities: 1 - r makes one of a correlation.");
        }
        if (row == column && value > kRounding * largest_) {
            refuse(row,
                   column,
                   "the distance of the row from itself is " + shortest_text(value) + ", not 0",
                   "Distances are needed, not similarities: 1 - r makes one of a correlation.");
        }
    }

    void checkBothWays(std::size_t row, std::size_t column) const {
        const double value = distances_.row(row)[column];
        const double other = distances_.row(column)[row];
        if (std::fabs(value - other) > kRounding * largest_) {
            refuse(
                row,
                column,
                "the distance is " + shortest_text(value) + ", and " + shortest_text(other) +
                    " the other way round",
                "Distances are the same both ways: check that rows and columns are in one order, "
                "or give the mean of both.");
        }
    }

    /// Whether no distance is so large that the others are as good as 0 beside it.
    void checkRange() const {
        std::vector<double> nearest(distances_.rows, std::numeric_limits<double>::infinity());
        for (std::size_t n = 0; n < distances_.rows; ++n) {
            for (std::size_t m = 0; m < distances_.columns; ++m) {
                const double value = distances_.row(n)[m];
                if (m != n && value > 0.0) {
                    nearest[n] = std::min(nearest[n], value);
                }
            }
        }
        const double limit = largest_comparable_distance(std::move(nearest));
        if (largest_ <= limit) {
            return;
        }
        const std::span<const double> all = distances_.all();
        const auto at =
            static_cast<std::size_t>(std::find(all.begin(), all.end(), largest_) - all.begin());
        refuse(at / distances_.columns,
               at % distances_.columns,
               "the distance is " + shortest_text(largest_) +
                   ", beside which the others are as good as 0: rows have their nearest at " +
                   shortest_text(limit / kDistanceRange),
               "Give the distance of these rows, at most 1e20 times as large, or leave such pairs "
               "out of a graph of neighbours.");
    }

    MatrixView<const double> distances_;
    const DistanceWords& words_;
    double largest_ = 0.0;
};

void check_column_names(const std::string& path, const InspectedMatrix& matrix) {
    if (!matrix.has_names || matrix.column_names.empty()) {
        return;
    }
    for (std::size_t n = 0; n < matrix.report.rows; ++n) {
        if (matrix.column_names[n] != matrix.row_names[n]) {
            throw InputError(path + ": row " + std::to_string(n + 1) + " is \"" +
                             matrix.row_names[n] + "\", and column " + std::to_string(n + 1) +
                             " is \"" + matrix.column_names[n] +
                             "\"\nIn a matrix of distances the columns are the rows once more, in "
                             "the same order.");
        }
    }
}

}  // namespace

void check_distance_matrix(MatrixView<const double> distances, const DistanceWords& words) {
    DistanceCheck check(distances, words);
    check.checkShape();
    check.checkValues();
}

void check_distance_matrix(const std::string& path, const InspectedMatrix& matrix) {
    const DistanceWords words{path, matrix.row_names, matrix.row_lines, 1};
    DistanceCheck check({matrix.values.get(), matrix.report.rows, matrix.report.columns}, words);
    check.checkShape();
    check_column_names(path, matrix);
    check.checkValues();
}

}  // namespace ovik
