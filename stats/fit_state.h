#pragma once

#include <span>

#include "stats/iteration_report.h"

namespace ovik {

/// A fit between two iterations: all that the iterations to come depend on beside the matrix and
/// the options. The arrays are row-major, rows x output dimensions, and change with the next one.
struct FitState {
    IterationReport reached;
    std::span<const double> embedding;
    std::span<const double> velocity;
    std::span<const double> gains;

    /// Whether no iteration follows unless the limit is raised.
    [[nodiscard]] bool isLast() const { return reached.iteration >= reached.max_iter; }
};

}  // namespace ovik
