#include "util/instruction_set.h"

/// Linked into a program that has to compute as on a processor without AVX-512, to compare both on
/// one machine: the limit is set before `main`.

namespace {

struct Limit {
    Limit() { ovik::limit_instruction_set(ovik::InstructionSet::Avx2); }
};

const Limit limit;

}  // namespace
