#include "stats/kernels/edge_pass.h"

#include "util/kernel_dispatch.h"

namespace ovik {

OVIK_DISPATCH_KERNELS(EdgeKernels, kEdgeKernels, edge_kernels)

}  // namespace ovik
