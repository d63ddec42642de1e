#include "stats/kernels/slice_pass.h"

#include "util/kernel_dispatch.h"

namespace ovik {

OVIK_DISPATCH_KERNELS(SliceKernels, kSliceKernels, slice_kernels)

}  // namespace ovik
