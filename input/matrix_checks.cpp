#include "input/matrix_checks.h"

#include <algorithm>
#include <limits>

#include "util/counted.h"
#include "util/input_error.h"

namespace ovik {

namespace {

std::string place(const std::string& path, const FieldPlace& place) {
    if (place.line == 0) {
        return path + ": column " + std::to_string(place.field) + " of row " + place.row;
    }
    return path + ":" + std::to_string(place.line) + ": field " + std::to_string(place.field) +
           " of row \"" + place.row + "\"";
}

[[noreturn]] void refuse_ragged(const std::string& path, const MatrixReport& report) {
    const RaggedRow& first = report.first_ragged_rows.front();
    std::string message = path + ":" + std::to_string(first.line) + ": row \"" + first.name +
                          "\" has " + counted(first.values, "value", "values") +
                          ", but the first row has " + std::to_string(report.columns);
    if (report.ragged_rows > 1) {
        message += " (" + std::to_string(report.ragged_rows) + " such rows, also";
        for (std::size_t i = 1; i < report.first_ragged_rows.size(); ++i) {
            message += " line " + std::to_string(report.first_ragged_rows[i].line);
        }
        message += report.ragged_rows > report.first_ragged_rows.size() ? ", ...)" : ")";
    }
    throw InputError(message +
                     "\nEvery row needs the same number of values: fill in those that are missing, "
                     "or check the delimiter.");
}

/// @throws InputError with the first value that is not finite
void check_finite(const std::string& path, const MatrixReport& report) {
    if (report.not_finite.count > 0) {
        const FieldPlace& first = report.not_finite.places.front();
        throw InputError(place(path, first) + " is \"" + first.text +
                         "\", which is not a finite number (" +
                         counted(report.not_finite.count, "such field", "such fields") +
                         ")\nReplace such values, for example by the mean of their row, or take "
                         "the rows out.");
    }
}

/// The engine adds up columns and divides by the largest deviation from their means: both have to
/// be numbers that `double` can hold.
void check_scale(const std::string& path, const InspectedMatrix& matrix) {
    constexpr double kLargest = 1e300;
    const std::size_t columns = matrix.report.columns;
    std::vector<double> lowest(columns, std::numeric_limits<double>::infinity());
    std::vector<double> highest(columns, -std::numeric_limits<double>::infinity());
    const double* value = matrix.values.get();
    for (std::size_t n = 0; n < matrix.report.rows; ++n) {
        for (std::size_t d = 0; d < columns; ++d, ++value) {
            lowest[d] = std::min(lowest[d], *value);
            highest[d] = std::max(highest[d], *value);
        }
    }
    double widest_range = 0.0;
    for (std::size_t d = 0; d < columns; ++d) {
        if (std::max(-lowest[d], highest[d]) > kLargest) {
            throw InputError(path +
                             ": the values are too large to be computed with\nBring them to a "
                             "common scale, for example by logarithms.");
        }
        widest_range = std::max(widest_range, highest[d] - lowest[d]);
    }
    if (widest_range < 1.0 / kLargest) {
        throw InputError(path +
                         ": the values are too close to one another to be computed with\nBring "
                         "them to a common scale, for example by logarithms.");
    }
}

bool all_rows_are_equal(const InspectedMatrix& matrix) {
    const double* const values = matrix.values.get();
    const std::size_t columns = matrix.report.columns;
    return std::equal(values + columns, values + matrix.report.rows * columns, values);
}

}  // namespace

void check_matrix(const std::string& path, const MatrixReport& report, std::size_t least_rows) {
    if (report.ragged_rows > 0) {
        refuse_ragged(path, report);
    }
    check_row_count(path, report.rows, least_rows);
    check_finite(path, report);
}

void check_row_count(const std::string& path, std::size_t rows, std::size_t least_rows) {
    if (rows < least_rows) {
        throw InputError(path + ": has " + counted(rows, "row", "rows") +
                         (least_rows > 1
                              ? ", and an embedding needs at least " + std::to_string(least_rows)
                              : ", so there is none to place") +
                         "\nIn delimited text the first line is "
                         "the header, and lines that are empty or open with # are skipped.");
    }
    if (rows > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
        throw InputError(path + ": has " + counted(rows, "row", "rows") +
                         ", and more than 2147483647 cannot be embedded\nTake a part of them.");
    }
}

void check_values(const std::string& path, const InspectedMatrix& matrix) {
    if (all_rows_are_equal(matrix)) {
        throw InputError(
            path +
            ": all rows hold the same values, so there is nothing to embed\nCheck that "
            "the columns are the measurements, and the delimiter.");
    }
    check_scale(path, matrix);
}

std::vector<std::string> matrix_warnings(const std::string& path, const MatrixReport& report) {
    std::vector<std::string> warnings;
    if (report.unnamed.count > 0) {
        warnings.push_back(path + ":" + std::to_string(report.unnamed.places.front().line) +
                           ": the row has no name (" +
                           counted(report.unnamed.count, "such row", "such rows") + " in all)");
    }
    if (report.duplicate_names > 0) {
        std::string names;
        for (const std::string& name : report.first_duplicate_names) {
            names += (names.empty() ? "\"" : ", \"") + name + "\"";
        }
        warnings.push_back(
            path + ": " + counted(report.duplicate_names, "row repeats", "rows repeat") +
            " the name of an earlier one (" + names +
            (report.duplicate_names > report.first_duplicate_names.size() ? ", ...)" : ")"));
    }
    return warnings;
}

}  // namespace ovik
