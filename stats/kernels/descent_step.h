#pragma once

#include <cstddef>

#include "util/instruction_set.h"

namespace ovik {

/// The elements of a gradient descent, `count` of each.
struct DescentArrays {
    const double* gradient;
    double* velocity;
    double* gains;
    double* Y;
    std::size_t count;
};

struct DescentKernels {
    /// Takes the step that `GradientDescent::step` describes.
    void (*step)(const DescentArrays& arrays, double learning_rate, double momentum);
};

const DescentKernels& descent_kernels(InstructionSet instructions);

}  // namespace ovik
