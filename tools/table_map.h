#pragma once

#include <cstddef>
#include <string>

#include "tools/aligned_maps.h"

namespace ovik::tool {

/// The map of a result table, with its names and functions, and coordinates of three decimals.
///
/// @param rows  how many rows the run had
/// @return no map if there is no such table, or one of other rows
/// @throws std::system_error if it cannot be read to its end
RunMap read_table_map(const std::string& path, std::size_t rows);

}  // namespace ovik::tool
