#include "util/instruction_set.h"

#include <algorithm>
#include <iterator>

namespace ovik {

namespace {

#define OVIK_TAKE_IF_AVAILABLE(enumerator, space, is_available, ...) \
    if (is_available) {                                              \
        best = InstructionSet::enumerator;                           \
    }

InstructionSet best_of_processor() {
    InstructionSet best = InstructionSet::Scalar;
    OVIK_INSTRUCTION_SETS(OVIK_TAKE_IF_AVAILABLE)
    return best;
}

InstructionSet& allowed() {
    static InstructionSet best = *std::rbegin(kInstructionSets);
    return best;
}

}  // namespace

#define OVIK_RETURN_NAME(enumerator, space, ...) \
    case InstructionSet::enumerator:             \
        return #space;

const char* name_of(InstructionSet instructions) {
    switch (instructions) {
        OVIK_INSTRUCTION_SETS(OVIK_RETURN_NAME)
        default:
            return "unknown";
    }
}

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
