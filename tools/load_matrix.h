#pragma once

#include <string>
#include <vector>

#include "util/matrix_check.h"

#include "tools/options.h"

namespace ovik::tool {

/// Reads the matrix and its labels and applies `--missing`: no value is missing afterwards. Warns
/// of what is odd.
///
/// @param labels  set to one per row if there is a file of labels
/// @throws InputError if the matrix cannot be embedded
InspectedMatrix load_matrix(const Options& options, std::vector<std::string>& labels);

}  // namespace ovik::tool
