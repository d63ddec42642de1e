#define OVIK_LANES 4
#include "stats/kernels/pair_loops.inc"
#include "stats/kernels/versions.h"

namespace ovik {

const PairKernels kAvx2PairKernels = kPairKernels;

}  // namespace ovik
