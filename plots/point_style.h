#pragma once

#include <array>
#include <cstddef>
#include <string>

#include "plots/figure.h"

/// Colours and shapes of the points of a figure: those of the chart page on white.

namespace ovik {

/// A shape of points, as gnuplot and as the page draw it.
struct PointShape {
    /// Name of the variable that holds its size in a script.
    const char* name;
    /// Its number in gnuplot.
    int number;
    /// What gnuplot's radius is multiplied by in pictures of either kind, so that all shapes look
    /// equally large.
    double png_scale;
    double svg_scale;
    /// How wide the lines of one that gnuplot draws with lines are to be, for each pixel of the
    /// radius; 0 for filled ones.
    double line;
    /// The page's size of it, and its path in a square of 16 by 16.
    double page_scale;
    const char* path;
};

/// Whether a list of points belongs to no group, or has no numbers.
bool is_grey(const Figure& figure, std::size_t list);

/// In the order in which labels take them.
const std::array<PointShape, 8>& point_shapes();

/// Points of grey labels, beneath the others.
constexpr const char* kGreyPoint = "b4bcc4";

/// With a colour scale, points without a number, paler still.
constexpr const char* kNumberlessPoint = "dde2e7";

/// The shape of a label's points.
const PointShape& shape_of_label(const Figure& figure, std::size_t label);

/// The colour of a label's points, six hexadecimal digits.
std::string colour_of_label(const Figure& figure, std::size_t label);

/// The colour of a point that is named.
std::string colour_of_point(const Figure& figure, const NamedPoint& point);

/// The colours of a scale as gnuplot's palette.
std::string gnuplot_palette(const ColourScale& scale);

}  // namespace ovik
