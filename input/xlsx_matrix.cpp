#include "input/xlsx_matrix.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "input/delimited_text.h"
#include "input/value_reader.h"
#include "input/workbook.h"
#include "util/counted.h"
#include "util/input_error.h"
#include "util/input_file.h"

namespace ovik {

namespace {

std::string all_bytes_of(MatrixSource& source) {
    std::string bytes = source.takeHead();
    with_read_failures_named(
        source.name(), [&] { bytes.append(std::istreambuf_iterator<char>(source.rest()), {}); });
    return bytes;
}

/// Names in quotes, separated by commas.
std::string listed(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names) {
        text += (text.empty() ? "\"" : ", \"") + name + "\"";
    }
    return text;
}

/// @throws InputError if there is no sheet of the name
std::size_t sheet_of(const Workbook& workbook,
                     const std::string& file_name,
                     const std::string& wanted) {
    const std::vector<std::string>& names = workbook.sheetNames();
    const auto found =
        wanted.empty() ? names.begin() : std::find(names.begin(), names.end(), wanted);
    if (found == names.end()) {
        throw InputError(file_name + ": the workbook has no sheet \"" + wanted + "\", but " +
                         listed(names));
    }
    return static_cast<std::size_t>(found - names.begin());
}

/// What to do about a sheet that is not the one with the matrix; empty if there is no other.
std::string other_sheets(const Workbook& workbook, const OptionSpelling& spell) {
    const std::vector<std::string>& names = workbook.sheetNames();
    return names.size() > 1 ? "; " + spell("sheet", "") + " reads another: " + listed(names) : "";
}

}  // namespace

InspectedMatrix read_xlsx_matrix(MatrixSource& source, const LoadOptions& options) {
    const std::string bytes = all_bytes_of(source);
    const Workbook workbook(source.name(), bytes);
    const std::size_t sheet = sheet_of(workbook, source.name(), options.sheet);
    const char decimal = options.decimal.value_or(decimal_of_locale());
    SheetText content = workbook.sheetText(sheet, decimal);
    if (content.text.find('\t') == std::string::npos) {
        throw InputError(source.name() + ": sheet \"" + workbook.sheetNames()[sheet] +
                         "\" holds no table of names and numbers" +
                         other_sheets(workbook, options.spell));
    }
    MatrixSource text(source.name(), std::move(content.text));
    LoadOptions of_text = options;
    of_text.delimiter = '\t';
    InspectedMatrix matrix = read_delimited_text(text, of_text);
    const std::vector<std::string>& names = workbook.sheetNames();
    std::vector<std::string>& notes = matrix.report.notes;
    if (names.size() > 1 && options.sheet.empty()) {
        notes.push_back("read is the first of " + std::to_string(names.size()) + " sheets, \"" +
                        names[sheet] + "\"" + other_sheets(workbook, options.spell));
    }
    if (content.hidden_rows + content.hidden_columns > 0) {
        notes.push_back("hidden parts of the sheet are read as the others are: " +
                        counted(content.hidden_rows, "row", "rows") + ", " +
                        counted(content.hidden_columns, "column", "columns"));
    }
    if (content.errors > 0) {
        notes.push_back(counted(content.errors, "cell holds an error", "cells hold errors") +
                        ", taken as missing: " + content.first_error +
                        (content.errors > 1 ? ", ..." : ""));
    }
    if (content.error_names > 0) {
        matrix.report.warnings.push_back(
            ": " + counted(content.error_names, "row opens", "rows open") +
            " with an error in the place of a name: " + content.first_error_name +
            (content.error_names > 1 ? ", ..." : "") + "\nGive such rows their names.");
    }
    return matrix;
}

}  // namespace ovik
