#include "stats/kernels/neighbour_ranks.h"

namespace ovik {

namespace scalar {
extern const RankKernels kRankKernels;
}
#ifdef OVIK_X86_KERNELS
namespace avx2 {
extern const RankKernels kRankKernels;
}

namespace avx512 {
extern const RankKernels kRankKernels;
}
#endif

const RankKernels& rank_kernels(InstructionSet instructions) {
    switch (instructions) {
#ifdef OVIK_X86_KERNELS
        case InstructionSet::Avx512:
            return avx512::kRankKernels;
        case InstructionSet::Avx2:
            return avx2::kRankKernels;
#endif
        default:
            return scalar::kRankKernels;
    }
}

}  // namespace ovik
