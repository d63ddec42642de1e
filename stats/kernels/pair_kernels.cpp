#include "stats/kernels/pair_kernels.h"

#include <atomic>

#include "stats/kernels/versions.h"

namespace ovik {

namespace {

const PairKernels& fastest() {
    for (const InstructionSet set : {InstructionSet::Avx512, InstructionSet::Avx2}) {
        if (const PairKernels* const kernels = pair_kernels(set)) {
            return *kernels;
        }
    }
    return kPortablePairKernels;
}

/// Null until selected.
std::atomic<const PairKernels*> selected = nullptr;

}  // namespace

const PairKernels* pair_kernels(InstructionSet set) {
    switch (set) {
        case InstructionSet::Portable:
            return &kPortablePairKernels;
#ifdef OVIK_X86_KERNELS
        case InstructionSet::Avx2:
            return __builtin_cpu_supports("avx2") ? &kAvx2PairKernels : nullptr;
        case InstructionSet::Avx512:
            return __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512dq")
                       ? &kAvx512PairKernels
                       : nullptr;
#endif
        default:
            return nullptr;
    }
}

const PairKernels& pair_kernels() {
    const PairKernels* const kernels = selected;
    return kernels != nullptr ? *kernels : fastest();
}

void select_pair_kernels(InstructionSet set) {
    selected = pair_kernels(set);
}

}  // namespace ovik
