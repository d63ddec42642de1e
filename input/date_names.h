#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Spreadsheets take some names of genes for dates: what was OCT1 is then "1-Oct", in the sheet and
/// in every file that is saved of it.

namespace ovik {

/// The gene name that a spreadsheet makes a date of, such as "OCT1" for "1-Oct", "Oct-01",
/// "1-Oct-2024" and "2024-10-01"; none if a name is no date.
std::optional<std::string> name_behind_date(std::string_view name);

/// Names what dates there are among the names of rows, and what they may have been. Empty if there
/// are none, or if half of the names or more are: those are meant as dates.
///
/// @param path   for the message
/// @param lines  that of each row in the file; 0 in formats that have none
std::string date_names_warning(const std::string& path,
                               const std::vector<std::string>& names,
                               const std::vector<std::size_t>& lines);

}  // namespace ovik
