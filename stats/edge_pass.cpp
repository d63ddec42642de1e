#include "stats/kernels/edge_pass.h"

namespace ovik {

#define OVIK_DECLARE_PASS(instructions)                                            \
    namespace instructions {                                                       \
    template <std::size_t Dims>                                                    \
    void pass_edges(const EdgeView&, std::size_t, std::size_t, double*, RowCost*); \
    }

OVIK_DECLARE_PASS(scalar)
#ifdef OVIK_X86_KERNELS
OVIK_DECLARE_PASS(avx2)
OVIK_DECLARE_PASS(avx512)
#endif

namespace {

template <std::size_t Dims>
EdgePass pass_in(InstructionSet instructions) {
    switch (instructions) {
#ifdef OVIK_X86_KERNELS
        case InstructionSet::Avx512:
            return &avx512::pass_edges<Dims>;
        case InstructionSet::Avx2:
            return &avx2::pass_edges<Dims>;
#endif
        default:
            return &scalar::pass_edges<Dims>;
    }
}

}  // namespace

EdgePass edge_pass(InstructionSet instructions, std::size_t dims) {
    switch (dims) {
        case 2:
            return pass_in<2>(instructions);
        case 3:
            return pass_in<3>(instructions);
        default:
            return pass_in<0>(instructions);
    }
}

}  // namespace ovik
