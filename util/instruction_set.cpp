#include "util/instruction_set.h"

#include <algorithm>

namespace ovik {

namespace {

InstructionSet best_of_processor() {
#ifdef OVIK_X86_KERNELS
    __builtin_cpu_init();
    if (__builtin_cpu_supports("avx512f") != 0 && __builtin_cpu_supports("avx512dq") != 0 &&
        __builtin_cpu_supports("avx512vl") != 0 && __builtin_cpu_supports("fma") != 0) {
        return InstructionSet::Avx512;
    }
    if (__builtin_cpu_supports("avx2") != 0) {
        return InstructionSet::Avx2;
    }
#endif
    return InstructionSet::Scalar;
}

InstructionSet& allowed() {
    static InstructionSet best = InstructionSet::Avx512;
    return best;
}

}  // namespace

InstructionSet best_instruction_set() {
    static const InstructionSet best = best_of_processor();
    return best;
}

InstructionSet instruction_set() {
    return std::min(best_instruction_set(), allowed());
}

void limit_instruction_set(InstructionSet best) {
    allowed() = best;
}

}  // namespace ovik
