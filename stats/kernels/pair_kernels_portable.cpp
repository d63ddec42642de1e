#define OVIK_LANES 2
#include "stats/kernels/pair_loops.inc"
#include "stats/kernels/versions.h"

namespace ovik {

const PairKernels kPortablePairKernels = kPairKernels;

}  // namespace ovik
