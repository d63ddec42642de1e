#pragma once

#include <cstddef>
#include <string>

#include "input/inspected_matrix.h"
#include "input/load_options.h"
#include "input/table_layout.h"

namespace ovik {

/// Refuses delimited text whose fields are not the names and values that they are taken for.
///
/// @throws InputError with place and cure: a name got lost to the trimming, there is no number,
/// numbers have decimal commas or grouped digits, a column is text, a value is text, the
/// table is cut off
void check_fields(const std::string& path,
                  const TableLayout& layout,
                  const LoadOptions& options,
                  const InspectedMatrix& matrix);

/// @param path  of the file
/// @param line  of it, from 1
/// @throws InputError always: a quote opens a field, and none ends it
[[noreturn]] void refuse_quote(const std::string& path, std::size_t line);

}  // namespace ovik
