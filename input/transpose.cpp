#include "input/transpose.h"

#include <cstddef>
#include <memory>
#include <unordered_map>
#include <utility>
#include <vector>

#include "util/counted.h"
#include "util/input_error.h"

namespace ovik {

namespace {

/// @throws InputError if a name is empty or stands there twice
void check_names_of_columns(const std::string& path, const std::vector<std::string>& names) {
    constexpr const char* kCure = "\nGive each column a name of its own in the header.";
    std::unordered_map<std::string, std::size_t> columns;
    for (std::size_t column = 0; column < names.size(); ++column) {
        if (names[column].empty()) {
            throw InputError(path + ": column " + std::to_string(column + 1) +
                             " of the values has no name, which is to be that of a point" + kCure);
        }
        const auto [first, is_new] = columns.emplace(names[column], column);
        if (!is_new) {
            throw InputError(path + ": columns " + std::to_string(first->second + 1) + " and " +
                             std::to_string(column + 1) + " of the values are both called \"" +
                             names[column] + "\", which is to be the name of a point" + kCure);
        }
    }
}

}  // namespace

void check_columns_as_rows(const std::string& path,
                           const LoadOptions& options,
                           const InspectedMatrix& matrix) {
    const bool has_file = !options.row_names_file.empty();
    if (!matrix.column_names.empty() && has_file) {
        throw InputError(options.spell("row-names", "") + ": the columns of " + path +
                         " have names of their own, and become the rows\nLeave it away.");
    }
    if (matrix.column_names.empty() && !has_file) {
        throw InputError(path + ": " + options.spell("transpose", "") +
                         " makes points of the columns, and its " +
                         counted(matrix.report.columns, "column has", "columns have") +
                         " no names\nGive the text a header line with a name for each column, or "
                         "give the names, one per line, with " +
                         options.spell("row-names", "FILE") + ".");
    }
    check_names_of_columns(path, matrix.column_names);
}

void transpose(InspectedMatrix& matrix, std::vector<std::string> row_names) {
    const std::size_t rows = matrix.report.columns;
    const std::size_t columns = matrix.report.rows;
    auto values = std::make_unique_for_overwrite<double[]>(rows * columns);
    for (std::size_t n = 0; n < rows; ++n) {
        for (std::size_t d = 0; d < columns; ++d) {
            values[n * columns + d] = matrix.values[d * rows + n];
        }
    }
    matrix.values = std::move(values);
    if (!matrix.filled.empty()) {
        std::vector<bool> filled(rows * columns);
        for (std::size_t n = 0; n < rows; ++n) {
            for (std::size_t d = 0; d < columns; ++d) {
                filled[n * columns + d] = matrix.filled[d * rows + n];
            }
        }
        matrix.filled = std::move(filled);
    }
    matrix.column_names = std::move(matrix.row_names);
    matrix.row_names = std::move(row_names);
    matrix.row_lines.assign(rows, 0);
    matrix.has_names = true;
    matrix.header.clear();
    matrix.column_fields.clear();
    matrix.report = {};
    matrix.report.rows = rows;
    matrix.report.columns = columns;
}

}  // namespace ovik
