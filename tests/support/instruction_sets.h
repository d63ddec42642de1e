#pragma once

#include <algorithm>
#include <iterator>
#include <ostream>
#include <vector>

#include "util/instruction_set.h"

namespace ovik {

inline void PrintTo(InstructionSet set, std::ostream* out) {
#define OVIK_PRINT(enumerator, space, ...)   \
    if (set == InstructionSet::enumerator) { \
        *out << #space;                      \
    }
    OVIK_INSTRUCTION_SETS(OVIK_PRINT)
#undef OVIK_PRINT
}

}  // namespace ovik

namespace ovik::test {

/// The instruction sets for which results are to be the same; those beyond the processor's own
/// repeat the best that it has.
using ovik::kInstructionSets;

/// Those of them that the processor has.
inline std::vector<InstructionSet> available_instruction_sets() {
    std::vector<InstructionSet> sets;
    std::copy_if(std::begin(kInstructionSets),
                 std::end(kInstructionSets),
                 std::back_inserter(sets),
                 [](InstructionSet set) { return set <= best_instruction_set(); });
    return sets;
}

/// Limits the instruction set for a scope.
class InstructionLimit {
  public:
    explicit InstructionLimit(InstructionSet best) { limit_instruction_set(best); }

    InstructionLimit(const InstructionLimit&) = delete;
    InstructionLimit& operator=(const InstructionLimit&) = delete;

    ~InstructionLimit() { limit_instruction_set(best_instruction_set()); }
};

}  // namespace ovik::test
