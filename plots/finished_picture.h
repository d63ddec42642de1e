#pragma once

#include <string>

namespace ovik {

/// A vector picture by gnuplot, made fit to print: it carries the font of its texts, which stay
/// texts, has the page's shapes of points and its size on paper, and is somewhat shorter.
///
/// @param svg                    as gnuplot wrote it
/// @param pixels_per_millimetre  0 for a picture in pixels
/// @param points                 empty, or a PNG of the whole picture, which lies beneath all else
std::string finished_svg(const std::string& svg,
                         double pixels_per_millimetre,
                         const std::string& points = {});

/// A PNG that tells its size on paper.
///
/// @param png                    whole
/// @param pixels_per_millimetre  0 leaves it as it is
std::string finished_png(const std::string& png, double pixels_per_millimetre);

}  // namespace ovik
