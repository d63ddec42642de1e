#include "input/text_remarks.h"

#include <algorithm>

#include "util/counted.h"

namespace ovik {

namespace {

/// The first fields of lines that the layout says are no rows, each once.
std::string summaries_text(const TableLayout& layout, const MatrixReport& report) {
    std::string rows;
    for (const std::string& name : layout.no_rows) {
        if (std::find(report.no_rows.begin(), report.no_rows.end(), name) != report.no_rows.end()) {
            rows += (rows.empty() ? "" : ", ") + name;
        }
    }
    return rows;
}

/// "3 lines that open with # are skipped, though they have the fields of a row: line 5 ("#N/A"),
/// ..."
std::string skipped_text(const FieldFindings& skipped) {
    std::string places;
    for (const FieldPlace& place : skipped.places) {
        places += (places.empty() ? "line " : ", line ") + std::to_string(place.line) + " (\"" +
                  place.text + "\")";
    }
    return counted(skipped.count,
                   "line that opens with # is skipped, though it has the fields of a row",
                   "lines that open with # are skipped, though they have the fields of a row") +
           ": " + places + (skipped.count > skipped.places.size() ? ", ..." : "");
}

std::string lines_text(const RowsOverLines& rows) {
    return "lines " + std::to_string(rows.first_line) + " to " + std::to_string(rows.last_line);
}

std::string such_rows(const RowsOverLines& rows) {
    return rows.count > 1 ? " (" + std::to_string(rows.count) + " such rows)" : "";
}

}  // namespace

std::vector<std::string> text_notes(const TableLayout& layout, const MatrixReport& report) {
    std::vector<std::string> notes = layout.notes;
    const std::string summaries = summaries_text(layout, report);
    if (!summaries.empty()) {
        notes.push_back("no rows: " + summaries);
    }
    if (report.skipped_rows.count > 0) {
        notes.push_back(skipped_text(report.skipped_rows));
    }
    const RowsOverLines& rows = report.rows_over_lines;
    if (rows.count > report.rows_that_may_be_several.count) {
        notes.push_back(lines_text(rows) + " are one row, with a line end in quotes" +
                        such_rows(rows));
    }
    return notes;
}

std::vector<std::string> text_warnings(const TableLayout& layout, const MatrixReport& report) {
    std::vector<std::string> warnings = layout.warnings;
    if (report.skipped_names.count > 0) {
        warnings.push_back(": " + skipped_text(report.skipped_names) +
                           "\nIf they are rows, write their names in quotes or without #.");
    }
    const RowsOverLines& rows = report.rows_that_may_be_several;
    if (rows.count > 0) {
        warnings.push_back(":" + std::to_string(rows.first_line) + ": " + lines_text(rows) +
                           " are one row, with line ends and delimiters in quotes" +
                           such_rows(rows) +
                           "\nIf they are rows of their own, take the quotes away that open and "
                           "close there, or write them twice within quotes.");
    }
    return warnings;
}

bool is_name_behind_hash(std::string_view field) {
    const std::string_view behind = field.substr(std::min<std::size_t>(1, field.size()));
    return field.starts_with('#') && !behind.empty() &&
           (behind == "N/A" || behind.back() == '!' || behind == "NAME?" ||
            behind.find_first_not_of("0123456789") == std::string_view::npos);
}

}  // namespace ovik
