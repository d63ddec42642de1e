#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <vector>

#include "plots/figure_layout.h"

namespace ovik {

/// A name that is to stand beside its point. Pixels from the left and from the top.
struct NameToPlace {
    std::array<double, 2> at{};
    double width = 0.0;
    double height = 0.0;
};

/// Where a name stands.
struct PlacedName {
    /// Whether there is room for it.
    bool is_placed = false;
    FigurePlace box{};
    /// Whether it is so far away that a line leads to it, and where this ends.
    bool has_line = false;
    std::array<double, 2> line_end{};
};

/// Places names beside their points, within a frame: over no other name and none of the named
/// points, over few other points, and with short lines that cross each other as little as can be.
/// The same names give the same places.
///
/// @param radius  of the named points
/// @param others  points that names should leave open
std::vector<PlacedName> place_names(std::span<const NameToPlace> names,
                                    double radius,
                                    const FigurePlace& frame,
                                    std::span<const std::array<double, 2>> others);

}  // namespace ovik
