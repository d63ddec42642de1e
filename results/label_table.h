#pragma once

#include <span>
#include <string>
#include <system_error>

#include "results/label_column.h"

namespace ovik {

/// Writes the labels of the rows as a table that reads back as labels by name (input/label_file.h):
/// tab-separated, the header "name" and the title of the column, and a line per row.
///
/// In texts, control characters become blanks and bytes that are not UTF-8 become U+FFFD. A field
/// that holds double quotes stands in double quotes. The file appears whole or not at all.
///
/// @param names  one per label
/// @return why the file could not be written, which the console then says in bold red; no error if
/// it was
std::error_code write_label_table(const std::string& path,
                                  std::span<const std::string> names,
                                  const LabelColumn& column);

}  // namespace ovik
