#include "stats/kernels/far_pairs.h"

#include "util/kernel_dispatch.h"

namespace ovik {

OVIK_DISPATCH_KERNELS(FarPairs, kFarPairs, far_pairs)

}  // namespace ovik
