#pragma once

namespace ovik {

/// What the vector kernels are built for, each a superset of the one before. All of them compute
/// the same results to the last bit.
enum class InstructionSet {
    Scalar,
    Avx2,
    /// AVX-512 F, DQ and VL.
    Avx512,
};

/// The best of this build that the processor has.
InstructionSet best_instruction_set();

/// The instruction set that the kernels use: the best of this build that the processor has and that
/// is allowed.
InstructionSet instruction_set();

/// Allows no instruction set beyond `best`, for tests. Not while another thread computes.
void limit_instruction_set(InstructionSet best);

}  // namespace ovik
