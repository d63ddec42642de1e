#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "tools/options.h"

namespace ovik::tool {

/// Where rows start, by a file.
struct StartPlaces {
    /// Row-major, rows x dimensions; NaN where a row has no place.
    std::vector<double> places;
    /// Rows that have one.
    std::size_t placed = 0;
    /// Names of the file that are of no row.
    std::size_t names_left = 0;
    /// The first few of these names.
    std::vector<std::string> first_names_left;
};

/// Reads places from what an earlier run left (result table, coordinates as text or array,
/// annotated table), or from any table with a header, names in its first column and a coordinate in
/// each of the others. Tables may be packed by gzip. Rows find their places by name, those of an
/// array by their order.
///
/// @param dims  coordinates of a place
/// @throws InputError with the line and the cure if the file cannot be read or is none of these,
/// has a name twice, another number of coordinates or one that is not finite, or a place for no
/// row; if an array has not as many rows
/// @throws std::system_error if it cannot be read to its end
StartPlaces read_start_file(const std::string& path,
                            const std::vector<std::string>& row_names,
                            std::size_t dims);

/// The places of a start by a file, told of on the console; none for another start.
///
/// @throws what `read_start_file` throws
std::vector<double> settle_start(const Options& options, const std::vector<std::string>& row_names);

/// One line: how many rows have a place of their own, and which names are of no row.
std::string start_line(const StartPlaces& start, const std::string& path, std::size_t row_count);

}  // namespace ovik::tool
