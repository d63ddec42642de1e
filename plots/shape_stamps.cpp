#include "plots/shape_stamps.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string_view>

namespace ovik {

namespace {

using Corner = std::array<double, 2>;

/// The page draws shapes in a square of 16 by 16, the circle with this radius.
constexpr double kPageMiddle = 8.0;
constexpr double kPageRadius = 7.5;

/// The next number of a path.
double take_number(std::string_view& path) {
    path.remove_prefix(std::min(path.find_first_not_of(" ,"), path.size()));
    double number = 0.0;
    const auto taken = std::from_chars(path.data(), path.data() + path.size(), number);
    path.remove_prefix(static_cast<std::size_t>(taken.ptr - path.data()));
    return number;
}

/// The corners of a path of straight lines, from its middle and as parts of the circle's radius;
/// none of a path with an arc, which is the circle.
std::vector<Corner> corners_of(std::string_view path) {
    std::vector<Corner> corners;
    char command = 'M';
    Corner at{};
    while (!path.empty() && path.front() != 'Z') {
        if (path.front() >= 'A' && path.front() <= 'Z') {
            command = path.front();
            path.remove_prefix(1);
        }
        if (command == 'A') {
            return {};
        }
        at[0] = command == 'V' ? at[0] : take_number(path);
        at[1] = command == 'H' ? at[1] : take_number(path);
        corners.push_back(
            {(at[0] - kPageMiddle) / kPageRadius, (at[1] - kPageMiddle) / kPageRadius});
        path.remove_prefix(std::min(path.find_first_not_of(' '), path.size()));
    }
    return corners;
}

/// Whether a place is within a shape of radius 1.
bool is_inside(const std::vector<Corner>& corners, const Corner& at) {
    if (corners.empty()) {
        return at[0] * at[0] + at[1] * at[1] < 1.0;
    }
    bool inside = false;
    Corner before = corners.back();
    for (const Corner& corner : corners) {
        const bool is_crossed = (corner[1] > at[1]) != (before[1] > at[1]);
        if (is_crossed &&
            at[0] < (before[0] - corner[0]) * (at[1] - corner[1]) / (before[1] - corner[1]) +
                        corner[0]) {
            inside = !inside;
        }
        before = corner;
    }
    return inside;
}

/// The share of a pixel that a shape covers.
///
/// @param left, top  of the pixel, from the middle of the shape, as parts of its radius
/// @param side       of the pixel
float covered_share(const std::vector<Corner>& corners, double left, double top, double side) {
    constexpr int kSamples = 8;
    int covered = 0;
    for (int row = 0; row < kSamples; ++row) {
        for (int column = 0; column < kSamples; ++column) {
            covered += is_inside(corners,
                                 {left + side * (column + 0.5) / kSamples,
                                  top + side * (row + 0.5) / kSamples})
                           ? 1
                           : 0;
        }
    }
    return static_cast<float>(covered) / (kSamples * kSamples);
}

}  // namespace

ShapeStamps::ShapeStamps(const PointShape& shape, double radius)
    : reach_(static_cast<int>(std::ceil(radius * shape.page_scale * kPageMiddle / kPageRadius))) {
    const std::vector<Corner> corners = corners_of(shape.path);
    const double side = 1.0 / (radius * shape.page_scale);
    for (std::size_t n = 0; n < stamps_.size(); ++n) {
        const auto middle = [](std::size_t phase) {
            return (static_cast<double>(phase) + 0.5) / static_cast<double>(kPhases);
        };
        const double x = middle(n % kPhases);
        const double y = middle(n / kPhases);
        for (int row = -reach_; row <= reach_; ++row) {
            for (int column = -reach_; column <= reach_; ++column) {
                stamps_[n].push_back(
                    covered_share(corners, (column - x) * side, (row - y) * side, side));
            }
        }
    }
}

}  // namespace ovik
