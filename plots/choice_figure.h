#pragma once

#include <optional>
#include <string>
#include <vector>

#include "plots/plot_outcome.h"

namespace ovik {

/// A share that was measured of the map of each perplexity.
struct ChoiceCurve {
    /// Of the key.
    std::string name;
    /// One per perplexity, 0 to 1; NaN where it was not measured.
    std::vector<double> shares;
};

/// What the maps of several perplexities come to.
struct ChoiceCurves {
    /// Shown above the axes; any bytes.
    std::string title;
    /// Ascending.
    std::vector<double> perplexities;
    std::vector<ChoiceCurve> curves;
    /// What noise itself may reach of the first curve: a dashed line; NaN for none.
    double of_noise = 0.0;
    /// A mark.
    std::optional<double> recommended;
};

/// The gnuplot script that draws the curves to "./" + stem + ".png" and ".svg", against the
/// perplexity on a logarithmic scale. It holds the numbers and needs no other file.
///
/// @param stem  file name of the pictures without directory and extension
std::string choice_figure_script(const std::string& stem, const ChoiceCurves& curves);

/// Writes the script `base` + ".gp" and has gnuplot draw `base` + ".png" and ".svg", whole or not
/// at all. Says on standard error, in one line, what is not there.
FigureOutcome draw_choice_figure(const std::string& base, const ChoiceCurves& curves);

}  // namespace ovik
