#include "stats/kernels/pair_kernels.h"

#include "util/kernel_dispatch.h"

namespace ovik {

OVIK_DISPATCH_KERNELS(PairKernels, kPairKernels, pair_kernels)

}  // namespace ovik
