#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace ovik {

/// A point whose name stands beside it.
struct NamedPoint {
    std::string name;
    std::array<double, 2> at{};
    /// The list of points that it is of.
    std::size_t list = 0;
    /// With a colour scale, its number if it has one.
    double number = 0.0;
};

/// One pair of axes with its points.
struct FigurePanel {
    std::string x_title;
    std::string y_title;
    /// The finite points of each label, x and y, in the order in which they are drawn; a single
    /// list if there are no labels.
    std::vector<std::vector<std::array<double, 2>>> points;
    /// With a colour scale, the numbers of the points of the first list.
    std::vector<double> numbers{};
    /// Points of the lists that are named, too.
    std::vector<NamedPoint> named{};
};

/// What the colours of a figure measure.
struct ColourScale {
    std::string title;
    /// The numbers at its ends.
    double least = 0.0;
    double most = 0.0;
    /// Whether 0 is in its middle, and its ends equally far from it.
    bool diverging = false;
};

/// A scatter figure. All texts are data: any bytes, escaped where they land.
struct Figure {
    /// File name of the pictures without directory and extension.
    std::string stem;
    /// Shown above the axes; empty for none.
    std::string title;
    /// The legend; empty for points without labels.
    std::vector<std::string> labels;
    /// How many of the last labels say that points belong to none of the others: they are grey, and
    /// their points lie beneath.
    std::size_t grey_labels = 0;
    /// If there is one, panels have two lists of points: those with a number and those without.
    std::optional<ColourScale> scale{};
    std::vector<FigurePanel> panels;
    /// What all panels show: minimum x, maximum x, minimum y, maximum y.
    std::array<double, 4> bounds{};
};

}  // namespace ovik
