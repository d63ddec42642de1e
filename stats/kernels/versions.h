#pragma once

#include "stats/kernels/pair_kernels.h"

/// The versions of the kernels, each from a unit of its own. Those for AVX are built on x86-64 only
/// and may be called only on processors that have it.

namespace ovik {

extern const PairKernels kPortablePairKernels;
extern const PairKernels kAvx2PairKernels;
extern const PairKernels kAvx512PairKernels;

}  // namespace ovik
