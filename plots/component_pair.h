#pragma once

#include <cstddef>
#include <span>
#include <string>

namespace ovik {

/// Rows per pair of components, which is the number of points: as many as share the group of the
/// first row.
///
/// @param groups     one per row, or none: then all rows are of one pair
/// @param row_count  rows of all pairs
std::size_t rows_per_pair(std::span<const std::string> groups, std::size_t row_count);

/// "Component 3" for the second component of "Group:1:3"; the fallback for a group that is no pair.
///
/// @param position  0 for the first component, 1 for the second
std::string component_title(const std::string& group,
                            std::size_t position,
                            const std::string& fallback);

}  // namespace ovik
