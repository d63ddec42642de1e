#pragma once

#include <string>

#include "plots/point_image.h"

namespace ovik {

/// An image as a PNG file of 8 bits a channel.
std::string png_of(const PixelImage& image);

}  // namespace ovik
