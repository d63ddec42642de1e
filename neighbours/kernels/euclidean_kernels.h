#pragma once

#include "neighbours/kernels/metric_kernels.h"

namespace ovik {

/// Euclidean distances; each square is added in coordinate order, as in `euclidean_distance`.
const MetricKernels& euclidean_kernels(InstructionSet instructions);

}  // namespace ovik
