#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "tools/options.h"

namespace ovik::tool {

/// What page and figure of a run lack because it has too many rows for it, a line each; none for
/// most runs.
std::vector<std::string> left_out_of_plots(const Options& options, std::size_t rows);

}  // namespace ovik::tool
