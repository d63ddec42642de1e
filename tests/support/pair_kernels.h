#pragma once

#include <vector>

#include "stats/kernels/pair_kernels.h"

#include "tests/support/instruction_sets.h"

namespace ovik::test {

/// The kernels for each instruction set of this processor.
inline std::vector<const PairKernels*> all_pair_kernels() {
    std::vector<const PairKernels*> kernels;
    for (const InstructionSet set : available_instruction_sets()) {
        kernels.push_back(&pair_kernels(set));
    }
    return kernels;
}

}  // namespace ovik::test
