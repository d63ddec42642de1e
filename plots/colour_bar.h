#pragma once

#include <string>
#include <vector>

#include "plots/figure.h"

namespace ovik {

/// A number beside the bar of a colour scale.
struct BarNumber {
    double at = 0.0;
    std::string text;
};

/// What the bar of a colour scale spans, and the numbers beside it.
struct ColourBar {
    double least = 0.0;
    double most = 0.0;
    /// Ascending round numbers, all different as they are written.
    std::vector<BarNumber> numbers{};
};

/// A scale of one number alone has no ends: its bar has others.
///
/// @param scale       finite, its ends in order
/// @param most_parts  into which the numbers divide the bar; at least 2
ColourBar colour_bar(const ColourScale& scale, int most_parts = 10);

/// How wide the widest of the numbers is, in the unit of the font's size.
double numbers_width(const ColourBar& bar, double font_size);

}  // namespace ovik
