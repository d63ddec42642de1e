#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "results/result_rows.h"

namespace ovik {

/// Rows per pair of components: as many as share the group of the first row; 0 without rows.
std::size_t rows_per_pair(const std::vector<ResultRow>& rows);

/// "Component 3" for the second component of "Group:1:3"; the fallback for a group that is no pair.
///
/// @param position  0 for the first component, 1 for the second
std::string component_title(const std::string& group,
                            std::size_t position,
                            const std::string& fallback);

}  // namespace ovik
