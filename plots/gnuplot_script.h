#pragma once

#include <string>
#include <vector>

#include "plots/figure.h"
#include "plots/figure_layout.h"
#include "plots/figure_style.h"

namespace ovik {

/// From so many points on, the ones of the vector picture are an image within it.
constexpr std::size_t kFewestImagePoints = 20001;

/// A figure of more points has no script that draws it.
constexpr std::size_t kMostScriptPoints = 1000000;

/// The settings at the top of a figure's script: variables that a reader may change.
std::string figure_settings(const FigureStyle& style);

/// A script, and what it could not draw.
struct GnuplotScript {
    /// The script to keep.
    std::string text;
    /// Whether that draws the figure.
    bool draws_all = true;
    /// With `kFewestImagePoints` or more, the script to draw by, to which the points are an image:
    /// it takes "./" + stem + "_points.png", as large as the figure, into its ".png", and leaves
    /// the points out of its ".svg". Else empty: the other one draws all.
    std::string around_image;
    /// Names for which there is no room beside their points, each once.
    std::vector<std::string> unplaced_names;
};

/// The gnuplot script that draws a figure to "./" + stem + ".png" and ".svg". It holds the points
/// and needs no other file. The same figure gives the same script. With `kFewestImagePoints` or
/// more, it leaves "./" + stem + "_points.png" besides, the image in the vector picture. With more
/// than `kMostScriptPoints`, it holds none, draws nothing and says why.
///
/// Both axes have the same scale: the shorter one shows more than its bounds, and both a little,
/// so that the outermost points are whole.
///
/// @param settings  as `figure_settings` gives them for the layout's style
GnuplotScript gnuplot_script(const Figure& figure,
                             const std::string& settings,
                             const FigureLayout& layout);

}  // namespace ovik
