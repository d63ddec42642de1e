#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "plots/figure_style.h"

namespace ovik {

/// One pair of axes with its points.
struct FigurePanel {
    std::string x_title;
    std::string y_title;
    /// The finite points of each label, x and y; a single list if there are no labels.
    std::vector<std::vector<std::array<double, 2>>> points;
    /// With a colour scale, the numbers of the points of the first list.
    std::vector<double> numbers{};
};

/// What the colours of a figure measure.
struct ColourScale {
    std::string title;
    /// The numbers at its ends.
    double least = 0.0;
    double most = 0.0;
};

/// A scatter figure. All texts are data: any bytes, escaped where they land.
struct Figure {
    /// File name of the pictures without directory and extension.
    std::string stem;
    /// Shown above the axes; empty for none.
    std::string title;
    /// The legend; empty for points without labels.
    std::vector<std::string> labels;
    /// Whether the points of the first label step back, pale and beneath the others.
    bool has_background = false;
    /// If there is one, panels have two lists of points: those with a number and those without.
    std::optional<ColourScale> scale{};
    std::vector<FigurePanel> panels;
    /// What all panels show: minimum x, maximum x, minimum y, maximum y.
    std::array<double, 4> bounds{};
};

/// The settings at the top of a figure's script: variables that a reader may change.
std::string figure_settings(const FigureStyle& style);

/// The gnuplot script that draws a figure to "./" + stem + ".png" and ".svg". It holds the points
/// and needs no other file. The same figure gives the same script.
///
/// Both axes have the same scale: the shorter one shows more than its bounds, and both a little,
/// so that the outermost points are whole.
///
/// @param settings  as `figure_settings` gives them
/// @param style     what they were made from, for the room that the legend has
std::string gnuplot_script(const Figure& figure,
                           const std::string& settings,
                           const FigureStyle& style);

}  // namespace ovik
