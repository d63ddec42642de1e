#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ovik {

/// A row of a result table as it stands in the file.
struct ResultRow {
    /// Empty if the table has no names.
    std::string name;
    double x = 0.0;
    double y = 0.0;
    /// "Group:1:2" for components 1 and 2, or "Data".
    std::string group;
    std::string function;
};

/// Takes a line of a result table apart; nothing if it is no such line.
///
/// Names and functions are not escaped in the table, and may hold commas and quotes ("ADE5,7"). The
/// four fields between them have a form of their own: the last place of the line that has this form
/// separates the name from the function.
std::optional<ResultRow> parse_result_row(std::string_view line);

/// Reads a result table, header line and all; nothing if there is none or a line is not as it
/// should be.
///
/// @throws std::system_error if the file cannot be read to its end
/// @throws std::bad_alloc if it does not fit in memory
std::optional<std::vector<ResultRow>> read_result_rows(const std::string& path);

/// Whether a coordinate stands in a table as this number: to three decimals, or as not finite.
bool is_in_table_as(double coordinate, double in_table);

}  // namespace ovik
