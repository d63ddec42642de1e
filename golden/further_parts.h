#pragma once

#include <vector>

#include "golden/golden_parts.h"

namespace ovik::golden {

/// What is made of several maps or on top of one: the best of several seeds, maps of other columns
/// and of noise, new rows on a map.
std::vector<Part> further_parts();

}  // namespace ovik::golden
