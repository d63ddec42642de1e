#pragma once

#include <span>
#include <string>
#include <system_error>

#include "results/row_reliability.h"

namespace ovik {

/// Writes how far each row can be trusted as a table: tab-separated, a header line, and a line per
/// row with its name, a field for each column, and the names of its false and of its torn
/// neighbours, with "; " between them.
///
/// Numbers are the shortest texts that read as the same, and empty where there are none (NaN).
/// Texts are those of `table_field`. The file appears whole or not at all.
///
/// @param names  of the rows
/// @return why the file could not be written, which the console then says in bold red; no error if
/// it was
std::error_code write_reliability_table(const std::string& path,
                                        std::span<const std::string> names,
                                        const RowReliability& reliability);

}  // namespace ovik
