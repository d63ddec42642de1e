#include "input/missing_values.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "input/row_removal.h"
#include "util/counted.h"
#include "util/input_error.h"

namespace ovik {

namespace {

constexpr std::pair<const char*, MissingPolicy> kPolicyNames[] = {
    {"zero", MissingPolicy::Zero},
    {"row-mean", MissingPolicy::RowMean},
    {"column-mean", MissingPolicy::ColumnMean},
    {"drop", MissingPolicy::Drop},
    {"error", MissingPolicy::Error}};

constexpr std::size_t kListed = 3;

std::size_t count_affected(const std::vector<std::size_t>& counts) {
    return counts.size() -
           static_cast<std::size_t>(std::count(counts.begin(), counts.end(), std::size_t{0}));
}

std::size_t position_of_most(const std::vector<std::size_t>& counts) {
    return static_cast<std::size_t>(std::max_element(counts.begin(), counts.end()) -
                                    counts.begin());
}

std::string row_name(const InspectedMatrix& matrix, std::size_t row) {
    return "row \"" + matrix.row_names[row] + "\"";
}

/// Says where a row stands in the file; empty in formats without lines.
std::string line_text(const InspectedMatrix& matrix, std::size_t row) {
    const std::size_t line = matrix.row_lines[row];
    return line == 0 ? "" : "line " + std::to_string(line) + ": ";
}

/// Columns without names are numbered; on a line, by its fields.
std::string column_name(const InspectedMatrix& matrix, std::size_t column) {
    const std::string place = matrix.column_fields.empty()
                                  ? "column " + std::to_string(column + 1)
                                  : "field " + std::to_string(matrix.column_fields[column]);
    return matrix.column_names.empty()
               ? place
               : "column \"" + matrix.column_names[column] + "\" (" + place + ")";
}

/// The mean of the numbers among some values, NaN if there is none.
///
/// @param stride  from one of them to the next
double mean_of_numbers(const double* values, std::size_t count, std::size_t stride) {
    double sum = 0.0;
    std::size_t numbers = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const double value = values[i * stride];
        if (!std::isnan(value)) {
            sum += value;
            ++numbers;
        }
    }
    return sum / static_cast<double>(numbers);
}

void fill_in(double* values, std::size_t count, std::size_t stride, double value) {
    for (std::size_t i = 0; i < count; ++i) {
        if (std::isnan(values[i * stride])) {
            values[i * stride] = value;
        }
    }
}

/// Takes note of the missing values before they are filled in.
void mark_missing(InspectedMatrix& matrix) {
    const std::size_t count = matrix.report.rows * matrix.report.columns;
    matrix.filled.resize(count);
    std::transform(
        matrix.values.get(), matrix.values.get() + count, matrix.filled.begin(), [](double value) {
            return std::isnan(value);
        });
}

void fill_in_row_means(const std::string& path,
                       const MissingCounts& missing,
                       const OptionSpelling& spell,
                       InspectedMatrix& matrix) {
    const std::size_t columns = matrix.report.columns;
    for (std::size_t n = 0; n < matrix.report.rows; ++n) {
        double* const row = matrix.values.get() + n * columns;
        if (missing.by_row[n] == columns) {
            const std::size_t line = matrix.row_lines[n];
            throw InputError(path + (line == 0 ? "" : ":" + std::to_string(line)) + ": " +
                             row_name(matrix, n) +
                             " has no number of which to take the mean\nTake such rows out (" +
                             spell("missing", "drop") +
                             " leaves out all rows with missing values), or fill in the means of "
                             "the columns (" +
                             spell("missing", "column-mean") + ").");
        }
        if (missing.by_row[n] > 0) {
            fill_in(row, columns, 1, mean_of_numbers(row, columns, 1));
        }
    }
}

/// @param known  null, or columns whose means are taken
void fill_in_column_means(const MissingCounts& missing,
                          const KnownColumns* known,
                          InspectedMatrix& matrix) {
    const std::size_t rows = matrix.report.rows;
    const std::size_t columns = matrix.report.columns;
    for (std::size_t d = 0; d < columns; ++d) {
        double* const column = matrix.values.get() + d;
        if (missing.by_column[d] > 0 && known != nullptr) {
            fill_in(column, rows, columns, known->means[d]);
        } else if (missing.by_column[d] > 0) {
            const bool has_numbers = missing.by_column[d] < rows;
            fill_in(
                column, rows, columns, has_numbers ? mean_of_numbers(column, rows, columns) : 0.0);
        }
    }
}

}  // namespace

std::optional<MissingPolicy> missing_policy(const std::string& name) {
    for (const auto& [known, policy] : kPolicyNames) {
        if (name == known) {
            return policy;
        }
    }
    return std::nullopt;
}

std::string policy_name(MissingPolicy policy) {
    for (const auto& [name, known] : kPolicyNames) {
        if (policy == known) {
            return name;
        }
    }
    return "";
}

MissingCounts count_missing(const InspectedMatrix& matrix) {
    MissingCounts missing;
    missing.by_row.resize(matrix.report.rows);
    missing.by_column.resize(matrix.report.columns);
    const double* value = matrix.values.get();
    for (std::size_t& in_row : missing.by_row) {
        for (std::size_t& in_column : missing.by_column) {
            if (std::isnan(*value++)) {
                ++in_row;
                ++in_column;
            }
        }
        missing.count += in_row;
    }
    return missing;
}

std::string missing_summary(const InspectedMatrix& matrix, const MissingCounts& missing) {
    const MatrixReport& report = matrix.report;
    return std::to_string(missing.count) + " of " +
           counted(report.rows * report.columns, "value", "values") +
           (missing.count == 1 ? " is missing, in " : " are missing, in ") +
           std::to_string(count_affected(missing.by_row)) + " of " +
           counted(report.rows, "row", "rows") + " and " +
           std::to_string(count_affected(missing.by_column)) + " of " +
           counted(report.columns, "column", "columns");
}

std::string missing_places(const InspectedMatrix& matrix, const MissingCounts& missing) {
    const std::size_t columns = matrix.report.columns;
    std::string places;
    std::size_t listed = 0;
    for (std::size_t i = 0; listed < std::min(kListed, missing.count); ++i) {
        if (std::isnan(matrix.values[i])) {
            places += "  " + line_text(matrix, i / columns) + row_name(matrix, i / columns) + ", " +
                      column_name(matrix, i % columns) + "\n";
            ++listed;
        }
    }
    if (missing.count > listed) {
        const std::size_t row = position_of_most(missing.by_row);
        const std::size_t column = position_of_most(missing.by_column);
        places += "  ...\n  most in " + row_name(matrix, row) + ": " +
                  std::to_string(missing.by_row[row]) + ", and in " + column_name(matrix, column) +
                  ": " + std::to_string(missing.by_column[column]) + "\n";
    }
    const auto first_without =
        std::find(missing.by_row.begin(), missing.by_row.end(), columns) - missing.by_row.begin();
    const auto without = std::count(missing.by_row.begin(), missing.by_row.end(), columns);
    if (without > 0) {
        places +=
            "  " + counted(static_cast<std::size_t>(without), "row has", "rows have") +
            " no number at all: " + row_name(matrix, static_cast<std::size_t>(first_without)) +
            (without > 1 ? ", ...\n" : "\n");
    }
    return places;
}

std::string treatment(MissingPolicy policy, std::size_t rows_before, std::size_t rows_after) {
    switch (policy) {
        case MissingPolicy::RowMean:
            return "replaced by the means of their rows";
        case MissingPolicy::ColumnMean:
            return "replaced by the means of their columns";
        case MissingPolicy::Drop:
            return counted(rows_before - rows_after, "row is", "rows are") + " left out, " +
                   std::to_string(rows_after) + " remain";
        default:
            return "replaced by 0";
    }
}

void treat_missing(const std::string& path,
                   MissingPolicy policy,
                   const MissingCounts& missing,
                   const OptionSpelling& spell,
                   InspectedMatrix& matrix,
                   std::vector<std::string>& labels,
                   const KnownColumns* known) {
    if (policy != MissingPolicy::Drop) {
        mark_missing(matrix);
    }
    switch (policy) {
        case MissingPolicy::RowMean:
            fill_in_row_means(path, missing, spell, matrix);
            break;
        case MissingPolicy::ColumnMean:
            fill_in_column_means(missing, known, matrix);
            break;
        case MissingPolicy::Drop:
            leave_rows_out(
                [&missing](std::size_t row) { return missing.by_row[row] > 0; }, matrix, labels);
            break;
        default:
            fill_in(matrix.values.get(), matrix.report.rows * matrix.report.columns, 1, 0.0);
    }
}

}  // namespace ovik
