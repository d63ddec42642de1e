#include "input/field_checks.h"

#include <algorithm>
#include <tuple>
#include <vector>

#include "input/delimiters.h"
#include "util/counted.h"
#include "util/input_error.h"

namespace ovik {

namespace {

/// Text columns that a message lists.
constexpr std::size_t kListedColumns = 8;

[[noreturn]] void refuse(const std::string& path,
                         const std::string& what,
                         const std::string& cure) {
    throw InputError(path + ": " + what + "\n" + cure);
}

/// What to do about a file without numbers: another delimiter, if there are numbers with it.
std::string delimiter_advice(const TableLayout& layout, const LoadOptions& options) {
    return !layout.guessed_delimiter || *layout.guessed_delimiter == layout.delimiter
               ? "Every line behind the first should be a name and its values; " +
                     options.spell("delimiter", "") + " says what stands between them."
               : "There are with " +
                     options.spell("delimiter", delimiter_text(*layout.guessed_delimiter)) +
                     ", which is also what is guessed without the option.";
}

/// A line for each place: by line, row, column and text.
std::string places_text(const std::vector<FieldPlace>& places, const TableLayout& layout) {
    std::string text;
    for (const FieldPlace& place : places) {
        text += "  line " + std::to_string(place.line) + ": row \"" + place.row + "\", " +
                layout.fieldText(place.field - 1) + ": \"" + place.text + "\"\n";
    }
    return text;
}

/// The first places of both.
std::vector<FieldPlace> first_of(const FieldFindings& a, const FieldFindings& b) {
    std::vector<FieldPlace> places = a.places;
    places.insert(places.end(), b.places.begin(), b.places.end());
    std::sort(places.begin(), places.end(), [](const FieldPlace& x, const FieldPlace& y) {
        return std::tie(x.line, x.field) < std::tie(y.line, y.field);
    });
    places.resize(std::min(places.size(), FieldFindings::kListed));
    return places;
}

void check_lost_names(const std::string& path, const FieldFindings& lost_names) {
    if (lost_names.count > 0) {
        const FieldPlace& first = lost_names.places.front();
        throw InputError(path + ":" + std::to_string(first.line) +
                         ": the row has no name: the line opens with the delimiter, and \"" +
                         first.row + "\" would be taken for the name (" +
                         counted(lost_names.count, "such row", "such rows") +
                         ")\nGive the row a name, or take it out.");
    }
}

/// @throws InputError if points stand between thousands in many of the fields with text
void check_point_groups(const std::string& path,
                        const TableLayout& layout,
                        const LoadOptions& options,
                        const MatrixReport& report) {
    const FieldFindings& points = report.point_groups;
    const std::size_t commas = report.decimal_commas.count;
    const std::size_t texts = report.not_numbers.count + report.with_text_behind.count;
    if (points.count < commas || 2 * (points.count + commas) <= texts) {
        return;
    }
    refuse(path,
           counted(points.count, "number has", "numbers have") + " points between thousands\n" +
               places_text(points.places, layout) + "which are no part of a number",
           std::string("Take the points out of the numbers") +
               (options.decimal == ',' ? "."
                                       : "; decimal commas are then read with " +
                                             options.spell("decimal", ",") + "."));
}

/// @throws InputError if most of the fields with text are numbers of another way to write them
void check_decimal_sign(const std::string& path,
                        const TableLayout& layout,
                        const LoadOptions& options,
                        const MatrixReport& report) {
    const FieldFindings& commas = report.decimal_commas;
    const FieldFindings& groups = report.grouped_digits;
    const std::size_t texts = report.not_numbers.count + report.with_text_behind.count;
    if (2 * (commas.count + groups.count) <= texts) {
        return;
    }
    if (options.decimal == ',') {
        refuse(path,
               counted(groups.count, "number has", "numbers have") + " commas between thousands\n" +
                   places_text(groups.places, layout) + "and " + options.spell("decimal", ",") +
                   " takes commas for the decimal sign",
               "Write the numbers without commas between thousands, and leave the option out.");
    }
    if (commas.count > 0 && !options.decimal) {
        refuse(path,
               counted(commas.count + groups.count, "number has", "numbers have") +
                   " a decimal comma\n" + places_text(commas.places, layout) +
                   "and would lose what stands behind it",
               options.spell("decimal", ",") + " reads them.");
    }
    refuse(path,
           counted(commas.count + groups.count, "number has", "numbers have") +
               " a comma among the digits\n" + places_text(first_of(commas, groups), layout) +
               "which is no part of a number",
           options.decimal ? "Write the numbers without such commas."
                           : "Write the numbers without commas between thousands; if they are "
                             "decimal commas, " +
                                 options.spell("decimal", ",") + " reads them.");
}

/// The columns of which more than half of what is not missing is text.
std::vector<std::size_t> text_columns(const MatrixReport& report) {
    std::vector<std::size_t> columns;
    for (std::size_t d = 0; d < std::min(report.by_column.size(), report.columns); ++d) {
        const ColumnFindings& column = report.by_column[d];
        if (2 * column.texts > report.rows - std::min(column.missing, report.rows)) {
            columns.push_back(d);
        }
    }
    return columns;
}

/// @throws InputError if a column is mostly text
void check_columns(const std::string& path,
                   const TableLayout& layout,
                   const LoadOptions& options,
                   const InspectedMatrix& matrix) {
    const std::vector<std::size_t> columns = text_columns(matrix.report);
    if (columns.empty()) {
        return;
    }
    std::size_t listed = 0;
    std::string found;
    std::string to_skip;
    for (const std::size_t column : columns) {
        const std::size_t field = matrix.column_fields[column] - 1;
        if (listed++ < kListedColumns) {
            found += "  " + layout.fieldText(field) + ": " +
                     std::to_string(matrix.report.by_column[column].texts) + " of " +
                     counted(matrix.report.rows, "row", "rows") + "\n";
        }
        to_skip += (to_skip.empty() ? "" : ",") + column_handle(layout.header, field);
    }
    const std::vector<FieldPlace> first =
        first_of(matrix.report.not_numbers, matrix.report.with_text_behind);
    refuse(path,
           counted(columns.size(), "column is text", "columns are text") + ", not values\n" +
               found + "as on line " + std::to_string(first.front().line) + ": \"" +
               first.front().text + "\"",
           "Leave out what is no value with " + options.spell("skip-columns", to_skip) +
               "; names of the rows in another column than the first are read with " +
               options.spell("names-column",
                             column_handle(layout.header, matrix.column_fields[columns[0]] - 1)) +
               ".");
}

/// @throws InputError if a field that should be a value is text
void check_texts(const std::string& path,
                 const TableLayout& layout,
                 const LoadOptions& options,
                 const MatrixReport& report) {
    const std::size_t count = report.not_numbers.count + report.with_text_behind.count;
    if (count == 0) {
        return;
    }
    const std::vector<FieldPlace> first = first_of(report.not_numbers, report.with_text_behind);
    refuse(
        path,
        counted(count, "field is no number", "fields are no numbers") + "\n" +
            places_text(first, layout) + (count > first.size() ? "  ...\n" : "") +
            "and text is no value",
        "Mend such fields; if a text stands for a missing value, say so with " +
            options.spell("na", first.front().text) +
            "; a column that is no values is left out with " +
            options.spell("skip-columns", column_handle(layout.header, first.front().field - 1)) +
            ".");
}

/// @throws InputError if the file says that there is more of the table
void check_end(const std::string& path, const TableLayout& layout, const MatrixReport& report) {
    if (!layout.end_mark.empty() && !report.has_end_mark) {
        refuse(path,
               "the table does not end with " + layout.end_mark + ": the file was cut off",
               "Fetch it again.");
    }
    if (layout.end_mark == "!series_matrix_table_end" && report.rows == 0) {
        refuse(
            path,
            "the table of the series matrix is empty",
            "The values of such a series, most often of RNA sequencing, are in its supplementary "
            "files: take the matrix of counts or of expression values from there.");
    }
    if (layout.promised_rows && *layout.promised_rows != report.rows) {
        refuse(path,
               "says that it has " + counted(*layout.promised_rows, "row", "rows") + ", and has " +
                   std::to_string(report.rows),
               "Fetch it again if it was cut off, or mend the number on line 2.");
    }
}

}  // namespace

void check_fields(const std::string& path,
                  const TableLayout& layout,
                  const LoadOptions& options,
                  const InspectedMatrix& matrix) {
    const MatrixReport& report = matrix.report;
    check_lost_names(path, report.lost_names);
    if (report.rows > 0 && report.numbers == 0) {
        refuse(path,
               "holds no numbers with " + delimiter_text(layout.delimiter) + " between the fields",
               delimiter_advice(layout, options));
    }
    check_point_groups(path, layout, options, report);
    check_decimal_sign(path, layout, options, report);
    if (report.ragged_rows == 0) {
        check_columns(path, layout, options, matrix);
        check_texts(path, layout, options, report);
        check_end(path, layout, report);
    }
}

void refuse_quote(const std::string& path, std::size_t line) {
    throw InputError(path + ":" + std::to_string(line) +
                     ": a quote opens a field, and none closes it at the end of a field\nClose it, "
                     "or write quotes within a field in quotes twice (\"\").");
}

}  // namespace ovik
