#pragma once

namespace ovik {

/// Size and edges of a figure.
struct FigureStyle {
    /// Size of the canvas in pixels.
    double width = 1200;
    double height = 1200;
    /// Where the axes end, as fractions of the canvas from its left and bottom.
    double right = 0.85;
    double left = 0.1;
    double bottom = 0.1;
    double top = 0.9;
    /// Size of the text in typographic points, of which a pixel has three quarters.
    double font_size = 21;
    /// Translucent points, so that darker means overlaps.
    bool overlap = true;
};

}  // namespace ovik
