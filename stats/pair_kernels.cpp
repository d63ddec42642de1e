#include "stats/kernels/pair_kernels.h"

namespace ovik {

namespace scalar {
extern const PairKernels kPairKernels;
}
#ifdef OVIK_X86_KERNELS
namespace avx2 {
extern const PairKernels kPairKernels;
}

namespace avx512 {
extern const PairKernels kPairKernels;
}
#endif

const PairKernels& pair_kernels(InstructionSet instructions) {
    switch (instructions) {
#ifdef OVIK_X86_KERNELS
        case InstructionSet::Avx512:
            return avx512::kPairKernels;
        case InstructionSet::Avx2:
            return avx2::kPairKernels;
#endif
        default:
            return scalar::kPairKernels;
    }
}

}  // namespace ovik
