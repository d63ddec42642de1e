#pragma once

#include <limits>
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
    /// The cost after the last iteration before `reached.iteration` at which the gain was looked at
    /// (`Schedule::isMark`); infinite before the first.
    double marked_cost = std::numeric_limits<double>::infinity();

    /// Whether no iteration follows unless the limit is raised.
    [[nodiscard]] bool isLast() const { return reached.isLast(); }
};

}  // namespace ovik
