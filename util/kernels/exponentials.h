#pragma once

#include <cstddef>

#include "util/instruction_set.h"

namespace ovik {

struct ExponentialKernels {
    /// Puts e^x in the place of each x of an array, correctly rounded: `rounded_exp`, many at once.
    void (*exponentials)(double* values, std::size_t count);
};

const ExponentialKernels& exponential_kernels(InstructionSet instructions);

}  // namespace ovik
