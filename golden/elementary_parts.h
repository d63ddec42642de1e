#pragma once

#include <vector>

#include "golden/golden_parts.h"

namespace ovik::golden {

/// What all else is made of: correctly rounded functions, random numbers, small matrices.
std::vector<Part> elementary_parts();

}  // namespace ovik::golden
