#pragma once

#include <vector>

#include "golden/golden_parts.h"

namespace ovik::golden {

/// Maps of small matrices: of every method, metric, schedule, start and so on.
std::vector<Part> fit_parts();

}  // namespace ovik::golden
