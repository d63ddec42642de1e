#include "stats/fit_checks.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "stats/option_checks.h"
#include "stats/option_effect.h"
#include "stats/option_texts.h"
#include "util/counted.h"
#include "util/format.h"
#include "util/input_error.h"

namespace ovik {

namespace {

/// The engine adds up columns and divides by the largest deviation from their means: both have to
/// be numbers that `double` can hold.
constexpr double kLargest = 1e300;

void check_shape(MatrixView<const double> X, std::span<const std::string> names) {
    constexpr std::size_t kFewestRows = 3;
    constexpr auto kMostRows = static_cast<std::size_t>(std::numeric_limits<int>::max());
    if (X.values == nullptr || X.columns == 0) {
        throw InputError("the matrix has no values\nGive the view as {values, rows, columns}.");
    }
    if (X.rows < kFewestRows || X.rows > kMostRows) {
        throw InputError("the matrix has " + counted(X.rows, "row", "rows") +
                         ", and an embedding needs 3 to 2147483647\nGive the view as {values, "
                         "rows, columns}.");
    }
    if (!names.empty() && names.size() != X.rows) {
        throw InputError("there are " + counted(names.size(), "name", "names") + " for " +
                         std::to_string(X.rows) + " rows\nGive a name for every row, or none.");
    }
}

[[noreturn]] void refuse_value(MatrixView<const double> X,
                               std::span<const std::string> names,
                               std::size_t row,
                               std::size_t column) {
    const double value = X.row(row)[column];
    throw InputError(
        "the value in row " + std::to_string(row) +
        (names.empty() ? "" : " (\"" + names[row] + "\")") + ", column " + std::to_string(column) +
        ", both counted from 0, is " + shortest_text(value) +
        (std::isfinite(value)
             ? ": too large to be computed with\nBring the values to a common scale, for example "
               "by logarithms."
             : ", which is not a finite number\nReplace such values, for example by the mean of "
               "their row, or take the rows out."));
}

/// @return the widest range of a column
/// @throws InputError with the first value that cannot be computed with
double checked_range(MatrixView<const double> X, std::span<const std::string> names) {
    std::vector<double> lowest(X.row(0).begin(), X.row(0).end());
    std::vector<double> highest = lowest;
    for (std::size_t n = 0; n < X.rows; ++n) {
        const std::span<const double> row = X.row(n);
        for (std::size_t d = 0; d < X.columns; ++d) {
            // False for NaN.
            if (!(std::fabs(row[d]) <= kLargest)) {
                refuse_value(X, names, n, d);
            }
            lowest[d] = std::min(lowest[d], row[d]);
            highest[d] = std::max(highest[d], row[d]);
        }
    }
    double widest = 0.0;
    for (std::size_t d = 0; d < X.columns; ++d) {
        widest = std::max(widest, highest[d] - lowest[d]);
    }
    return widest;
}

}  // namespace

void check_fit_matrix(MatrixView<const double> X, std::span<const std::string> names) {
    check_shape(X, names);
    const double range = checked_range(X, names);
    if (range == 0.0) {
        throw InputError(
            "all " + std::to_string(X.rows) +
            " rows hold the same values, so there is nothing to embed\nCheck that the "
            "rows of the view are the rows of the measurements, one behind the other.");
    }
    if (range < 1.0 / kLargest) {
        throw InputError(
            "the values are too close to one another to be computed with\nBring them to a common "
            "scale, for example by logarithms.");
    }
}

void check_fit_options(const FitOptions& options, std::size_t rows, std::size_t columns) {
    visit_fit_options(options, [](const auto& option) {
        if (!option.isInRange()) {
            throw InputError("the option " + std::string(option.words.name) + " should be " +
                             requirement_text(option) + ", not " + value_text(option));
        }
    });
    const OptionSource source = source_of(options);
    check_options_together(options, source);
    check_options_for(options, rows, columns, source);
    if (bar_of(options, "perplexity")) {
        return;
    }
    if (options.perplexity >= static_cast<double>(rows) - 1.0) {
        throw InputError("perplexity " + plain_number(options.perplexity) + ": a row has " +
                         std::to_string(rows - 1) +
                         " others, so it cannot have as many neighbours or more\nSet it to at most "
                         "a third of that; 5 to 50 are usual.");
    }
}

std::string perplexity_remark(double perplexity, std::size_t rows) {
    const double others = static_cast<double>(rows) - 1.0;
    if (3.0 * perplexity <= others) {
        return "";
    }
    return "perplexity " + plain_number(perplexity) + " is large for " + std::to_string(rows) +
           " rows: it should be at most a third of the " + std::to_string(rows - 1) +
           " others that a row has";
}

}  // namespace ovik
