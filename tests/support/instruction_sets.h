#pragma once

#include "util/instruction_set.h"

namespace ovik::test {

/// The instruction sets for which results are to be the same; those beyond the processor's own
/// repeat the best that it has.
constexpr InstructionSet kInstructionSets[] = {
    InstructionSet::Scalar, InstructionSet::Avx2, InstructionSet::Avx512};

/// Limits the instruction set for a scope.
class InstructionLimit {
  public:
    explicit InstructionLimit(InstructionSet best) { limit_instruction_set(best); }

    InstructionLimit(const InstructionLimit&) = delete;
    InstructionLimit& operator=(const InstructionLimit&) = delete;

    ~InstructionLimit() { limit_instruction_set(InstructionSet::Avx512); }
};

}  // namespace ovik::test
