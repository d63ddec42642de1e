#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "plots/figure.h"
#include "plots/figure_layout.h"
#include "plots/name_placement.h"

namespace ovik {

/// Pixels of a text for which widths of lines and least radii are given.
constexpr double kUsualFont = 28.0;

/// The lists of a panel in the order in which they are drawn: grey points first, then large groups,
/// so that they do not bury small ones.
std::vector<std::size_t> order_of_lists(const Figure& figure, std::size_t panel);

/// The radius in pixels of the points of a panel: the more points, the smaller. Grey ones do not
/// count for others.
///
/// @param grey  of the grey ones
double radius_of(const Figure& figure, const FigureLayout& layout, std::size_t panel, bool grey);

/// A panel as a part of the figure: pixels from its left and top for the coordinates of the map.
class PanelView {
  public:
    PanelView(const Figure& figure, const FigureLayout& layout, std::size_t panel);

    [[nodiscard]] std::array<double, 2> toPixels(const std::array<double, 2>& at) const {
        return {place_.left + place_.width / 2 + (at[0] - middle_[0]) / unit_,
                place_.top + place_.height / 2 - (at[1] - middle_[1]) / unit_};
    }

    [[nodiscard]] std::array<double, 2> toMap(const std::array<double, 2>& at) const {
        return {middle_[0] + (at[0] - place_.left - place_.width / 2) * unit_,
                middle_[1] - (at[1] - place_.top - place_.height / 2) * unit_};
    }

  private:
    FigurePlace place_;
    double unit_ = 1.0;
    std::array<double, 2> middle_{};
};

/// The names of a panel where they are to stand.
struct PanelNames {
    /// Pixels, of the names.
    double font = 0.0;
    /// Pixels, of the named points.
    double radius = 0.0;
    /// One for each named point; empty without any.
    std::vector<PlacedName> places{};
};

/// Finds places for the names of a panel.
PanelNames names_of(const Figure& figure, const FigureLayout& layout, std::size_t position);

}  // namespace ovik
