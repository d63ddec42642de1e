#pragma once

#include "neighbours/data_point.h"
#include "util/api.h"

namespace ovik {

/// The Euclidean distance of two points of equal dimension, the squares summed in coordinate order.
///
/// Compiled in the library alone, so that its last bit does not depend on a caller's compiler
/// flags.
OVIK_API double euclidean_distance(const DataPoint<double>& a, const DataPoint<double>& b);

}  // namespace ovik
