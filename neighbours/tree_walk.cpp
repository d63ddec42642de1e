#include "neighbours/kernels/tree_walk.h"

namespace ovik {

#define OVIK_DECLARE_WALK(instructions)                                                  \
    namespace instructions {                                                             \
    template <std::size_t Dims>                                                          \
    void walk_tree(const TreeView&, double, std::size_t, std::size_t, double*, double*); \
    }

OVIK_DECLARE_WALK(scalar)
#ifdef OVIK_X86_KERNELS
OVIK_DECLARE_WALK(avx2)
OVIK_DECLARE_WALK(avx512)
#endif

namespace {

template <std::size_t Dims>
TreeWalk walk_in(InstructionSet instructions) {
    switch (instructions) {
#ifdef OVIK_X86_KERNELS
        case InstructionSet::Avx512:
            return &avx512::walk_tree<Dims>;
        case InstructionSet::Avx2:
            return &avx2::walk_tree<Dims>;
#endif
        default:
            return &scalar::walk_tree<Dims>;
    }
}

}  // namespace

TreeWalk tree_walk(InstructionSet instructions, std::size_t dims) {
    switch (dims) {
        case 2:
            return walk_in<2>(instructions);
        case 3:
            return walk_in<3>(instructions);
        default:
            return nullptr;
    }
}

}  // namespace ovik
