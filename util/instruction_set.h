#pragma once

#include "util/double_arithmetic.h"

namespace ovik {

/// What the vector kernels are built for; of those of a build, each is a superset of the one
/// before. All of them compute the same results to the last bit.
enum class InstructionSet {
    /// What every processor of its kind has, in the compiler's own vectors of two numbers.
    Scalar,
    /// With FMA.
    Avx2,
    /// Stands for AVX-512 F, DQ and VL, with FMA.
    Avx512,
    /// Of 64-bit Arm processors: two numbers in a vector, and FMA.
    Neon,
};

/// The instruction sets of this build, from the least to the best, as `ovik_instruction_sets` in
/// CMakeLists.txt lists them. A row is
///
///     ROW(enumerator, namespace of its kernels, whether the processor has it, ...)
///
/// with what else the user of the list passes on.
#ifdef __x86_64__
    #define OVIK_INSTRUCTION_SETS(ROW, ...)                                                      \
        ROW(Scalar, scalar, true, __VA_ARGS__)                                                   \
        ROW(Avx2,                                                                                \
            avx2,                                                                                \
            __builtin_cpu_supports("avx2") != 0 && __builtin_cpu_supports("fma") != 0,           \
            __VA_ARGS__)                                                                         \
        ROW(Avx512,                                                                              \
            avx512,                                                                              \
            __builtin_cpu_supports("avx512f") != 0 && __builtin_cpu_supports("avx512dq") != 0 && \
                __builtin_cpu_supports("avx512vl") != 0 && __builtin_cpu_supports("fma") != 0,   \
            __VA_ARGS__)
#elif defined(__aarch64__)
    #define OVIK_INSTRUCTION_SETS(ROW, ...)    \
        ROW(Scalar, scalar, true, __VA_ARGS__) \
        ROW(Neon, neon, true, __VA_ARGS__)
#else
    #define OVIK_INSTRUCTION_SETS(ROW, ...) ROW(Scalar, scalar, true, __VA_ARGS__)
#endif

#define OVIK_ENUMERATOR(enumerator, ...) InstructionSet::enumerator,

/// The instruction sets of this build, from the least to the best.
constexpr InstructionSet kInstructionSets[] = {OVIK_INSTRUCTION_SETS(OVIK_ENUMERATOR)};

#undef OVIK_ENUMERATOR

/// What an instruction set is called, as the namespace of its kernels.
const char* name_of(InstructionSet instructions);

/// The best of this build that the processor has.
InstructionSet best_instruction_set();

/// The instruction set that the kernels use: the best of this build that the processor has and that
/// is allowed.
InstructionSet instruction_set();

/// Allows no instruction set beyond `best`, for tests. Not while another thread computes.
void limit_instruction_set(InstructionSet best);

}  // namespace ovik
