#include "plots/point_image.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

#include "plots/panel_names.h"
#include "plots/point_style.h"
#include "plots/shape_stamps.h"

namespace ovik {

namespace {

/// Red, green and blue, 0 to 1.
using Colour = std::array<float, 3>;

/// @param digits  six hexadecimal ones
Colour colour_from(const std::string& digits) {
    Colour colour{};
    for (std::size_t channel = 0; channel < colour.size(); ++channel) {
        colour[channel] =
            static_cast<float>(std::stoul(digits.substr(2 * channel, 2), nullptr, 16)) / 255.0F;
    }
    return colour;
}

/// The colours of a scale, in steps that are too small to be told apart.
class ScaleColours {
  public:
    explicit ScaleColours(const Figure& figure) {
        for (int step = 0; figure.scale && step <= kSteps; ++step) {
            const ColourScale& scale = *figure.scale;
            const double share = static_cast<double>(step) / kSteps;
            NamedPoint point;
            point.number = scale.least + share * (scale.most - scale.least);
            colours_.push_back(colour_from(colour_of_point(figure, point)));
        }
    }

    /// Where a number stands on the scale, from 0 to 1.
    static float shareOf(const ColourScale& scale, double number) {
        const double width = scale.most - scale.least;
        return width > 0.0
                   ? static_cast<float>(std::clamp((number - scale.least) / width, 0.0, 1.0))
                   : 0.5F;
    }

    [[nodiscard]] const Colour& at(float share) const {
        return colours_[static_cast<std::size_t>(std::lround(share * kSteps))];
    }

  private:
    /// Few enough that images of many numbers can be packed.
    static constexpr int kSteps = 63;
    std::vector<Colour> colours_;
};

/// The pixels of a panel on the canvas.
struct Window {
    std::ptrdiff_t left;
    std::ptrdiff_t right;
    std::ptrdiff_t top;
    std::ptrdiff_t bottom;
};

/// Runs `body(right, below, share)` for the pixels of a stamp, by how far they are from its middle.
template <typename Body>
void for_each_share(const float* stamp, std::ptrdiff_t reach, const Body& body) {
    for (std::ptrdiff_t below = -reach; below <= reach; ++below) {
        for (std::ptrdiff_t right = -reach; right <= reach; ++right, ++stamp) {
            body(right, below, *stamp);
        }
    }
}

class PointCanvas {
  public:
    PointCanvas(const Figure& figure, const FigureLayout& layout, double scale)
        : figure_(figure),
          layout_(layout),
          scale_(scale),
          colours_(figure),
          first_opacity_(layout.style.overlap ? 0.5F : 1.0F) {
        image_.width = static_cast<std::size_t>(std::lround(layout.style.width * scale));
        image_.height = static_cast<std::size_t>(std::lround(layout.style.height * scale));
        depth_.resize(image_.width * image_.height);
        pixels_.resize(depth_.size());
    }

    void draw(std::size_t panel) {
        const std::vector<std::size_t> order = order_of_lists(figure_, panel);
        for (const std::size_t list : order) {
            add(panel, list, [](std::size_t, std::size_t, float) {});
        }
        const float opaque_depth = std::max(kUsualDepth, densePart());
        clearDepth();
        for (const std::size_t list : order) {
            drawList(panel, list, opaque_depth);
        }
    }

    [[nodiscard]] PixelImage image() {
        image_.rgba.reserve(4 * pixels_.size());
        for (const auto& [red, green, blue, opacity] : pixels_) {
            for (const float channel : {red, green, blue}) {
                image_.rgba.push_back(byte(opacity > 0.0F ? channel / opacity : 0.0F));
            }
            image_.rgba.push_back(byte(std::round(opacity * kOpacities) / kOpacities));
        }
        return std::move(image_);
    }

  private:
    /// So many points upon each other are opaque, unless there are places where more lie.
    static constexpr float kUsualDepth = 4.0F;
    /// Few enough that the image can be packed.
    static constexpr float kOpacities = 32.0F;

    static std::uint8_t byte(float share) {
        return static_cast<std::uint8_t>(std::lround(255.0F * std::clamp(share, 0.0F, 1.0F)));
    }

    [[nodiscard]] Window windowOf(std::size_t panel) const {
        const FigurePlace place = layout_.panel(panel);
        const auto pixel = [this](double length, std::size_t most) {
            return std::clamp<std::ptrdiff_t>(
                std::lround(length * scale_), 0, static_cast<std::ptrdiff_t>(most));
        };
        return {pixel(place.left, image_.width),
                pixel(place.left + place.width, image_.width),
                pixel(place.top, image_.height),
                pixel(place.top + place.height, image_.height)};
    }

    static bool isWithin(const Window& window, std::ptrdiff_t x, std::ptrdiff_t y) {
        return y >= window.top && y < window.bottom && x >= window.left && x < window.right;
    }

    /// Adds a share to the depth at a place.
    ///
    /// @return its pixel
    std::size_t deepen(std::ptrdiff_t x, std::ptrdiff_t y, float share) {
        const std::size_t pixel =
            static_cast<std::size_t>(y) * image_.width + static_cast<std::size_t>(x);
        if (depth_[pixel] == 0.0F) {
            covered_.push_back(pixel);
        }
        depth_[pixel] += share;
        return pixel;
    }

    /// Adds the points of a list to the depth.
    ///
    /// @param cover  is given the number of a point, the pixel, and its share that the point covers
    template <typename Cover>
    void add(std::size_t panel, std::size_t list, const Cover& cover) {
        const auto& points = figure_.panels[panel].points[list];
        const bool grey = is_grey(figure_, list);
        const PointShape& shape = figure_.scale ? point_shapes()[0] : shape_of_label(figure_, list);
        const ShapeStamps stamps(shape, scale_ * radius_of(figure_, layout_, panel, grey));
        const PanelView view(figure_, layout_, panel);
        const Window window = windowOf(panel);
        const std::ptrdiff_t reach = stamps.reach();
        for (std::size_t point = 0; point < points.size(); ++point) {
            const auto at = view.toPixels(points[point]);
            const double x = at[0] * scale_;
            const double y = at[1] * scale_;
            if (!(x > -1e6 && x < 1e6 && y > -1e6 && y < 1e6)) {
                continue;
            }
            const auto column = static_cast<std::ptrdiff_t>(std::floor(x));
            const auto row = static_cast<std::ptrdiff_t>(std::floor(y));
            const float* stamp = stamps.stamp(x - std::floor(x), y - std::floor(y));
            for_each_share(
                stamp, reach, [&](std::ptrdiff_t right, std::ptrdiff_t below, float share) {
                    if (share != 0.0F && isWithin(window, column + right, row + below)) {
                        cover(point, deepen(column + right, row + below, share), share);
                    }
                });
        }
    }

    /// How many points lie upon each other where the hundredth part of them lies densest.
    [[nodiscard]] float densePart() const {
        constexpr double kStepsOfDoubling = 16.0;
        std::vector<double> weights;
        double sum = 0.0;
        const auto step_of = [](float depth) {
            return static_cast<std::size_t>(
                std::max(kStepsOfDoubling * std::log2(static_cast<double>(depth)), 0.0));
        };
        for (const std::size_t pixel : covered_) {
            const std::size_t step = step_of(depth_[pixel]);
            weights.resize(std::max(weights.size(), step + 1));
            weights[step] += static_cast<double>(depth_[pixel]);
            sum += static_cast<double>(depth_[pixel]);
        }
        double denser = 0.0;
        std::size_t step = weights.size();
        while (step > 0 && denser < 0.01 * sum) {
            denser += weights[--step];
        }
        return static_cast<float>(std::exp2(static_cast<double>(step) / kStepsOfDoubling));
    }

    void clearDepth() {
        for (const std::size_t pixel : covered_) {
            depth_[pixel] = 0.0F;
        }
        covered_.clear();
    }

    [[nodiscard]] float opacityOf(float depth, float opaque_depth) const {
        if (depth <= 1.0F) {
            return first_opacity_ * depth;
        }
        const float share = std::min(std::log(depth) / std::log(opaque_depth), 1.0F);
        return first_opacity_ + (1.0F - first_opacity_) * share;
    }

    void drawList(std::size_t panel, std::size_t list, float opaque_depth) {
        const bool has_scale = figure_.scale && list == 0;
        if (has_scale) {
            share_sums_.assign(depth_.size(), 0.0F);
            const std::vector<double>& numbers = figure_.panels[panel].numbers;
            add(panel, list, [&](std::size_t point, std::size_t pixel, float covered) {
                share_sums_[pixel] +=
                    covered * ScaleColours::shareOf(*figure_.scale, numbers[point]);
            });
        } else {
            add(panel, list, [](std::size_t, std::size_t, float) {});
        }
        const Colour flat =
            colour_from(figure_.scale ? kNumberlessPoint : colour_of_label(figure_, list));
        for (const std::size_t pixel : covered_) {
            const float opacity = opacityOf(depth_[pixel], opaque_depth);
            const Colour& colour =
                has_scale ? colours_.at(std::min(share_sums_[pixel] / depth_[pixel], 1.0F)) : flat;
            auto& below = pixels_[pixel];
            for (std::size_t channel = 0; channel < colour.size(); ++channel) {
                below[channel] = opacity * colour[channel] + (1.0F - opacity) * below[channel];
            }
            below[3] = opacity + (1.0F - opacity) * below[3];
        }
        clearDepth();
    }

    const Figure& figure_;
    const FigureLayout& layout_;
    double scale_;
    ScaleColours colours_;
    /// Of a single point.
    float first_opacity_;
    PixelImage image_;
    /// How many points of a list cover each pixel.
    std::vector<float> depth_;
    /// The pixels where that is not 0.
    std::vector<std::size_t> covered_;
    /// With a scale: where the points that cover a pixel stand on it, as often as they do.
    std::vector<float> share_sums_;
    /// Red, green and blue multiplied by the opacity, and that.
    std::vector<std::array<float, 4>> pixels_;
};

}  // namespace

PixelImage point_image(const Figure& figure, const FigureLayout& layout, double scale) {
    PointCanvas canvas(figure, layout, scale);
    for (std::size_t panel = 0; panel < figure.panels.size(); ++panel) {
        canvas.draw(panel);
    }
    return canvas.image();
}

}  // namespace ovik
