#include "stats/row_metric.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "util/counted.h"
#include "util/input_error.h"
#include "util/parallel.h"

namespace ovik {

namespace {

/// Half the distance from 1 to the next number: what rounding may change a number by, as a share of
/// it.
constexpr double kRounding = 0x1p-53;

double largest_absolute(std::span<const double> row) {
    double largest = 0.0;
    for (const double value : row) {
        largest = std::max(largest, std::fabs(value));
    }
    return largest;
}

double sum_of(std::span<const double> row) {
    double sum = 0.0;
    for (const double value : row) {
        sum += value;
    }
    return sum;
}

/// Brings the largest absolute value into [0.5, 1), without rounding.
void scale_by_power_of_two(std::span<double> row) {
    int exponent = 0;
    std::frexp(largest_absolute(row), &exponent);
    for (double& value : row) {
        value = std::ldexp(value, -exponent);
    }
}

void subtract_mean(std::span<double> row) {
    const double mean = sum_of(row) / static_cast<double>(row.size());
    for (double& value : row) {
        value -= mean;
    }
}

void divide_by_norm(std::span<double> row) {
    double squares = 0.0;
    for (const double value : row) {
        squares += value * value;
    }
    const double norm = std::sqrt(squares);
    for (double& value : row) {
        value /= norm;
    }
}

/// Puts the rank of each value in its place.
///
/// @param order  scratch, of any content
void replace_by_ranks(std::span<double> row, std::vector<std::size_t>& order) {
    order.resize(row.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(), [row](std::size_t a, std::size_t b) {
        return row[a] < row[b];
    });
    for (std::size_t first = 0; first < order.size();) {
        const double value = row[order[first]];
        std::size_t end = first;
        while (end < order.size() && row[order[end]] == value) {
            ++end;
        }
        // Of the ranks first + 1 to end; a half at most, so that it is exact.
        const double rank = 0.5 * static_cast<double>(first + 1 + end);
        for (std::size_t i = first; i < end; ++i) {
            row[order[i]] = rank;
        }
        first = end;
    }
}

void prepare_row(std::span<double> row, MetricKind metric, std::vector<std::size_t>& order) {
    if (metric == MetricKind::Spearman) {
        replace_by_ranks(row, order);
    }
    scale_by_power_of_two(row);
    if (metric != MetricKind::Cosine) {
        subtract_mean(row);
    }
    divide_by_norm(row);
}

bool all_are_equal(std::span<const double> row) {
    return std::all_of(
        row.begin(), row.end(), [first = row.front()](double value) { return value == first; });
}

/// @param scratch  of any content
bool has_direction(std::span<const double> row, MetricKind metric, std::vector<double>& scratch) {
    if (metric == MetricKind::Cosine) {
        return largest_absolute(row) > 0.0;
    }
    if (all_are_equal(row) || metric == MetricKind::Spearman) {
        return !all_are_equal(row);
    }
    scratch.assign(row.begin(), row.end());
    scale_by_power_of_two(scratch);
    const double largest = largest_absolute(scratch);
    subtract_mean(scratch);
    return largest_absolute(scratch) > static_cast<double>(row.size()) * kRounding * largest;
}

/// How two rows are alike under the metric, in the words of messages.
std::string likeness_of(MetricKind metric) {
    return metric == MetricKind::Cosine ? "cosine" : "correlation";
}

std::string opening(const RowWords& words) {
    return words.source.empty() ? "" : words.source + ": ";
}

void check_column_count(std::size_t columns, MetricKind metric, const RowWords& words) {
    const std::size_t fewest = metric == MetricKind::Cosine ? 2 : 3;
    if (columns < fewest) {
        throw InputError(opening(words) + "the rows have " + counted(columns, "value", "values") +
                         ", so that the " + likeness_of(metric) +
                         " of any two of them is 1 or -1\nGive at least " + std::to_string(fewest) +
                         " columns, or compare the rows by the metric euclidean.");
    }
}

[[noreturn]] void refuse_rows(const std::vector<std::size_t>& rows,
                              MetricKind metric,
                              const RowWords& words,
                              const std::string& cure) {
    throw InputError(
        opening(words) + counted(rows.size(), "row has no ", "rows have no ") +
        likeness_of(metric) + " with any other, since " +
        (metric == MetricKind::Cosine ? "all values are 0: " : "the values do not vary: ") +
        listed_rows(rows, words) + "\n" + cure);
}

}  // namespace

bool compares_directions(MetricKind metric) {
    return metric == MetricKind::Pearson || metric == MetricKind::Cosine ||
           metric == MetricKind::Spearman;
}

void prepare_rows(MatrixView<double> X, MetricKind metric) {
    if (!compares_directions(metric)) {
        return;
    }
    parallel_for(X.rows, 1, [&](std::size_t /*worker*/, IndexRange rows) {
        std::vector<std::size_t> order;
        for (std::size_t n = rows.begin; n < rows.end; ++n) {
            prepare_row(X.row(n), metric, order);
        }
    });
}

std::string listed_rows(const std::vector<std::size_t>& rows, const RowWords& words) {
    constexpr std::size_t kListed = 3;
    std::string listed;
    for (std::size_t i = 0; i < std::min(kListed, rows.size()); ++i) {
        const std::size_t row = rows[i];
        const bool has_line = row < words.lines.size() && words.lines[row] > 0;
        listed += i == 0 ? "" : ", ";
        listed +=
            words.names.empty() ? "row " + std::to_string(row) : "\"" + words.names[row] + "\"";
        listed += has_line ? " (line " + std::to_string(words.lines[row]) + ")" : "";
    }
    return listed + (rows.size() > kListed ? ", ..." : "") +
           (words.names.empty() ? " (counted from 0)" : "");
}

std::vector<std::size_t> rows_without_direction(MatrixView<const double> X, MetricKind metric) {
    std::vector<std::size_t> found;
    if (!compares_directions(metric) || X.columns == 0) {
        return found;
    }
    std::vector<double> scratch;
    for (std::size_t n = 0; n < X.rows; ++n) {
        if (!has_direction(X.row(n), metric, scratch)) {
            found.push_back(n);
        }
    }
    return found;
}

void check_directions(MatrixView<const double> X,
                      MetricKind metric,
                      const RowWords& words,
                      const std::string& cure) {
    if (!compares_directions(metric) || X.rows == 0) {
        return;
    }
    check_column_count(X.columns, metric, words);
    const std::vector<std::size_t> rows = rows_without_direction(X, metric);
    if (!rows.empty()) {
        refuse_rows(rows, metric, words, cure);
    }
}

void check_rows(MatrixView<const double> X,
                MetricKind metric,
                const RowWords& words,
                const std::string& cure) {
    if (!compares_directions(metric) || X.rows == 0) {
        return;
    }
    check_directions(X, metric, words, cure);
    // What rounding may leave between rows in the same direction.
    const double indistinct = 8.0 * static_cast<double>(X.columns) * kRounding;
    std::vector<std::size_t> order;
    std::vector<double> first(X.row(0).begin(), X.row(0).end());
    prepare_row(first, metric, order);
    std::vector<double> other;
    for (std::size_t n = 1; n < X.rows; ++n) {
        other.assign(X.row(n).begin(), X.row(n).end());
        prepare_row(other, metric, order);
        for (std::size_t d = 0; d < X.columns; ++d) {
            if (std::fabs(other[d] - first[d]) > indistinct) {
                return;
            }
        }
    }
    throw InputError(opening(words) + "any two of the rows have a " + likeness_of(metric) +
                     " of 1, so there is nothing to embed\nCheck that the columns are the "
                     "measurements, or compare the rows by the metric euclidean.");
}

}  // namespace ovik
