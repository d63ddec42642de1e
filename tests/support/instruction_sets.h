#pragma once

#include <algorithm>
#include <iterator>
#include <ostream>
#include <vector>

#include "util/instruction_set.h"

namespace ovik {

inline void PrintTo(InstructionSet set, std::ostream* out) {
    constexpr const char* kNames[] = {"scalar", "AVX2", "AVX-512"};
    *out << kNames[static_cast<int>(set)];
}

}  // namespace ovik

namespace ovik::test {

/// The instruction sets for which results are to be the same; those beyond the processor's own
/// repeat the best that it has.
constexpr InstructionSet kInstructionSets[] = {
    InstructionSet::Scalar, InstructionSet::Avx2, InstructionSet::Avx512};

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

    ~InstructionLimit() { limit_instruction_set(InstructionSet::Avx512); }
};

}  // namespace ovik::test
