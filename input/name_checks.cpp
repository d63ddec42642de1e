#include "input/name_checks.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <unordered_set>
#include <vector>

#include "input/header_line.h"
#include "input/value_reader.h"
#include "util/input_error.h"

namespace ovik {

namespace {

/// What names are if all are numbers, but for some that are missing.
enum class NumericNames { None, Identifiers, Values };

/// Identifiers are whole numbers that differ.
NumericNames numeric_names(const std::vector<std::string>& names, const LoadOptions& options) {
    const ValueReader reader(options.decimal, options.missing_signs);
    std::unordered_set<double> seen;
    std::size_t numbers = 0;
    bool are_whole = true;
    for (const std::string& name : names) {
        double value = 0.0;
        const FieldKind kind = reader.read(name.c_str(), name.c_str() + name.size(), value);
        if (kind == FieldKind::Number) {
            seen.insert(value);
            are_whole = are_whole && value == std::floor(value);
            ++numbers;
        } else if (kind != FieldKind::Missing) {
            return NumericNames::None;
        }
    }
    if (numbers == 0) {
        return NumericNames::None;
    }
    return are_whole && seen.size() == numbers ? NumericNames::Identifiers : NumericNames::Values;
}

std::size_t count_genes(const std::vector<std::string>& names, const LoadOptions& options) {
    return static_cast<std::size_t>(
        std::count_if(names.begin(), names.end(), [&options](const std::string& name) {
            return looks_like_gene(name, options);
        }));
}

}  // namespace

void check_names(const std::string& path,
                 const TableLayout& layout,
                 const LoadOptions& options,
                 InspectedMatrix& matrix) {
    if (!layout.names_field) {
        return;
    }
    const NumericNames kind = numeric_names(matrix.row_names, options);
    const std::string field = layout.fieldText(*layout.names_field);
    const std::string cure = "if they are values, say " + options.spell("no-names", "") +
                             "; if another column has the names, say which with " +
                             options.spell("names-column", "NAME");
    if (kind == NumericNames::Values) {
        throw InputError(path + ": " + field +
                         " is taken for the names of the rows, but holds numbers such as \"" +
                         matrix.row_names[0] + "\", which are no identifiers\nName the rows; " +
                         cure + ".");
    }
    if (kind == NumericNames::Identifiers) {
        matrix.report.notes.push_back("the names of the rows are numbers, in " + field + ": " +
                                      cure);
    }
}

std::string transposed_warning(const std::string& path,
                               const LoadOptions& options,
                               const InspectedMatrix& matrix) {
    constexpr std::size_t kFewColumns = 1000;
    const std::size_t columns = matrix.column_names.size();
    const std::size_t genes_in_columns = count_genes(matrix.column_names, options);
    const bool has_gene_columns = columns >= 3 && 2 * genes_in_columns > columns;
    const bool is_wide =
        matrix.report.columns >= kFewColumns && matrix.report.columns > 10 * matrix.report.rows;
    if ((!has_gene_columns && !is_wide) ||
        2 * count_genes(matrix.row_names, options) > matrix.row_names.size()) {
        return "";
    }
    return path + ": " +
           (has_gene_columns
                ? std::to_string(genes_in_columns) + " of " + std::to_string(columns) +
                      " columns are named as genes"
                : "there are far more columns (" + std::to_string(matrix.report.columns) +
                      ") than rows (" + std::to_string(matrix.report.rows) + ")") +
           ", and the map is one of the rows, such as \"" + matrix.row_names[0] +
           "\"\nIf the genes should be mapped, " + options.spell("transpose", "") +
           " makes points of the columns.";
}

}  // namespace ovik
