#pragma once

#include <string>
#include <vector>

#include "plots/plot_outcome.h"

namespace ovik {

/// The costs of the iterations of a run.
struct CostCurve {
    /// Shown above the axes; any bytes.
    std::string title;
    /// Iteration of the first cost.
    int first_iteration = 0;
    std::vector<double> costs;
    /// Iteration at which early exaggeration ends: a mark, if it is among these.
    int stop_lying_iter = 0;
};

/// The gnuplot script that draws the costs to "./" + stem + ".png" and ".svg", on a logarithmic
/// scale if they are all positive. It holds the costs and needs no other file.
///
/// @param stem  file name of the pictures without directory and extension
std::string cost_figure_script(const std::string& stem, const CostCurve& curve);

/// Writes the script `base` + ".gp" and has gnuplot draw `base` + ".png" and ".svg", whole or not
/// at all. Says on standard error, in one line, what is not there.
FigureOutcome draw_cost_figure(const std::string& base, const CostCurve& curve);

}  // namespace ovik
