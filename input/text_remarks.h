#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "input/inspected_matrix.h"
#include "input/table_layout.h"

/// What there is to tell of how delimited text was taken, a text each.

namespace ovik {

/// What was done that the user may want otherwise: which lines and fields are no rows and no
/// values, and which lines are one row.
std::vector<std::string> text_notes(const TableLayout& layout, const MatrixReport& report);

/// What most likely is not meant: rows that get lost. Each opens with ":" and the line, or with ":
/// ".
std::vector<std::string> text_warnings(const TableLayout& layout, const MatrixReport& report);

/// Whether a field that opens with "#" may be a name all the same: an error of a spreadsheet
/// ("#N/A", "#REF!") or a number ("#1").
bool is_name_behind_hash(std::string_view field);

}  // namespace ovik
