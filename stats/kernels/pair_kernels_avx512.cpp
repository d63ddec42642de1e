#define OVIK_LANES 8
#include "stats/kernels/pair_loops.inc"
#include "stats/kernels/versions.h"

namespace ovik {

const PairKernels kAvx512PairKernels = kPairKernels;

}  // namespace ovik
