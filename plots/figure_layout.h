#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "plots/figure.h"
#include "plots/figure_options.h"
#include "plots/figure_style.h"

namespace ovik {

/// A part of a figure: pixels from its left and its top.
struct FigurePlace {
    double left = 0.0;
    double top = 0.0;
    double width = 0.0;
    double height = 0.0;
};

/// The legend, filled column by column from its top.
struct LegendLayout {
    FigurePlace place{};
    std::size_t columns = 1;
    /// Entries in a column.
    std::size_t rows = 0;
    /// Pixels, of the text, from a column to the next and from a line to the next.
    double font = 0.0;
    double column_width = 0.0;
    double line_height = 0.0;
    /// From an entry's left to its text.
    double marker_width = 0.0;
    /// What is shown of the labels, from the first one on; cut, and all different.
    std::vector<std::string> texts{};
    /// Labels for which there is no room: the last line counts them.
    std::size_t left_out = 0;
};

/// Where everything stands in a figure.
struct FigureLayout {
    /// The canvas, where the panels end, and the text.
    FigureStyle style{};
    /// Panels, row by row.
    std::size_t columns = 1;
    std::size_t rows = 1;
    /// Pixels between them.
    double gap_x = 0.0;
    double gap_y = 0.0;
    /// Pixels, of the axes' titles.
    double font = 0.0;
    LegendLayout legend{};
    /// The bar of a colour scale.
    FigurePlace bar{};
    /// Middle of its title, which stands upright.
    double bar_title_x = 0.0;
    /// Middle of the title, and what is shown of it.
    double title_x = 0.0;
    double title_y = 0.0;
    std::string title{};
    /// Pixels for each millimetre on paper; 0 for a figure in pixels.
    double pixels_per_millimetre = 0.0;

    [[nodiscard]] FigurePlace panel(std::size_t position) const;
};

/// The font of the numbers and the title of a colour scale's bar.
double bar_font(const FigureLayout& layout);

/// What is written for the label of the legend's entry; points without one have none.
std::string legend_text(const std::string& label);

/// A figure whose panels end at given edges; the legend has the room at their right, or that of a
/// panel that is missing in the last row.
FigureLayout layout_in_style(const Figure& figure, const FigureStyle& style);

/// A figure of a size on paper or in pixels. Text and margins are as large as a printed page wants
/// them; legend and panels are where the map becomes largest.
FigureLayout layout_of_size(const Figure& figure, const FigureSize& size);

}  // namespace ovik
