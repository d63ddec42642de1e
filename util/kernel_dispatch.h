#pragma once

#include "util/instruction_set.h"

/// The choice among kernels: loops that are compiled once for each instruction set.
///
/// A family of kernels is a struct of function pointers. The header of the family describes it and
/// declares the function that chooses; the kernel source defines one object of it in the namespace
/// of each instruction set; and one source of the library defines the function:
///
///     struct PairKernels { ... };                                     // kernels/pair_kernels.h
///     const PairKernels& pair_kernels(InstructionSet instructions);
///
///     extern const PairKernels kPairKernels;                          // kernels/pair_kernels.cpp
///     const PairKernels kPairKernels = {...};
///
///     OVIK_DISPATCH_KERNELS(PairKernels, kPairKernels, pair_kernels)  // pair_kernels.cpp

#define OVIK_DECLARE_KERNELS(enumerator, space, is_available, Kernels, kernels) \
    namespace space {                                                           \
    extern const Kernels kernels;                                               \
    }

#define OVIK_RETURN_KERNELS(enumerator, space, is_available, kernels) \
    case InstructionSet::enumerator:                                  \
        return space::kernels;

/// Defines `const Kernels& choose(InstructionSet)` within the namespace `ovik`: the object
/// `kernels` of an instruction set of this build, the scalar one for any other.
#define OVIK_DISPATCH_KERNELS(Kernels, kernels, choose)           \
    OVIK_INSTRUCTION_SETS(OVIK_DECLARE_KERNELS, Kernels, kernels) \
    const Kernels& choose(InstructionSet instructions) {          \
        switch (instructions) {                                   \
            OVIK_INSTRUCTION_SETS(OVIK_RETURN_KERNELS, kernels)   \
            default:                                              \
                return scalar::kernels;                           \
        }                                                         \
    }
