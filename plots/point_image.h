#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "plots/figure.h"
#include "plots/figure_layout.h"

namespace ovik {

/// Pixels with an opacity.
struct PixelImage {
    std::size_t width = 0;
    std::size_t height = 0;
    /// Red, green, blue and opacity of each pixel, row by row from the top; colours are not
    /// multiplied by the opacity.
    std::vector<std::uint8_t> rgba{};
};

/// The points of a figure as an image of its whole canvas, transparent where there are none.
///
/// Where many lie upon each other, the image shows how many: the opacity of a label's colour grows
/// with the logarithm of the number of its points that cover a pixel, from that of a single point
/// up to opaque where the hundredth part of all points that lie densest are. Points of a colour
/// scale have the colour of their mean. Labels cover each other in the order `order_of_lists`.
///
/// @param scale  pixels of the image for one of the figure
PixelImage point_image(const Figure& figure, const FigureLayout& layout, double scale);

}  // namespace ovik
