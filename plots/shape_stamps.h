#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "plots/point_style.h"

namespace ovik {

/// How much of each pixel a point covers, for places of its middle within a pixel.
class ShapeStamps {
  public:
    /// @param radius  of the shape as `radius_of` has it, in pixels
    ShapeStamps(const PointShape& shape, double radius);

    /// Pixels from the one of the middle to the edge of the square that a stamp is.
    [[nodiscard]] int reach() const { return reach_; }

    /// Shares from 0 to 1 of the pixels of a square, row by row.
    ///
    /// @param x, y  of the middle within its pixel, from 0 to below 1
    [[nodiscard]] const float* stamp(double x, double y) const {
        return stamps_[phase(y) * kPhases + phase(x)].data();
    }

  private:
    static constexpr std::size_t kPhases = 4;

    static std::size_t phase(double within) {
        return static_cast<std::size_t>(within * static_cast<double>(kPhases));
    }

    int reach_;
    std::array<std::vector<float>, kPhases * kPhases> stamps_{};
};

}  // namespace ovik
