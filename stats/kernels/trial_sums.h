#pragma once

#include <cstddef>

#include "util/instruction_set.h"

namespace ovik {

/// Sums over points at squared distances x, with the weights exp(-beta x).
struct TrialSums {
    double weights = 0.0;
    /// Weights times x.
    double first = 0.0;
    /// Weights times the square of x.
    double second = 0.0;
};

struct TrialKernels {
    /// Adds what some points contribute, in any order: weights below 1e-300 may count as 0, others
    /// are right to 1e-9 of their value.
    ///
    /// @param squared_distances  count values, 0 or more
    /// @param beta               0 or more
    void (*add)(const double* squared_distances, std::size_t count, double beta, TrialSums& sums);
};

const TrialKernels& trial_kernels(InstructionSet instructions);

}  // namespace ovik
