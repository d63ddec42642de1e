#include "plots/point_image.h"

#include <gtest/gtest.h>

#include "plots/panel_names.h"

namespace ovik {
namespace {

using Pixel = std::array<int, 4>;

/// A figure of 400 x 400 pixels without legend, of the square from 0 to 10.
class Points : public testing::Test {
  protected:
    Points() {
        figure_.bounds = {0, 10, 0, 10};
        figure_.panels.resize(1);
        figure_.panels[0].points.resize(1);
        style_.width = 400;
        style_.height = 400;
        style_.right = 1;
        style_.left = 0;
        style_.bottom = 0;
        style_.top = 1;
        style_.font_size = 21;
        style_.overlap = true;
    }

    void add(std::size_t list, std::array<double, 2> at, std::size_t times = 1) {
        figure_.panels[0].points[list].insert(figure_.panels[0].points[list].end(), times, at);
    }

    /// The pixel of a place of the map.
    Pixel pixel(std::array<double, 2> at, double scale = 1.0) {
        const FigureLayout layout = layout_in_style(figure_, style_);
        const PixelImage image = point_image(figure_, layout, scale);
        EXPECT_EQ(image.width, static_cast<std::size_t>(400 * scale));
        EXPECT_EQ(image.rgba.size(), 4 * image.width * image.height);
        const auto place = PanelView(figure_, layout, 0).toPixels(at);
        const std::size_t first = 4 * (static_cast<std::size_t>(place[1] * scale) * image.width +
                                       static_cast<std::size_t>(place[0] * scale));
        return {
            image.rgba[first], image.rgba[first + 1], image.rgba[first + 2], image.rgba[first + 3]};
    }

    Figure figure_;
    FigureStyle style_;
};

TEST_F(Points, ArePlacedAndColouredAsInTheFigure) {
    add(0, {2, 8});
    EXPECT_EQ(pixel({2, 8}), (Pixel{0x00, 0x72, 0xb2, 128}));
    EXPECT_EQ(pixel({2, 8}, 2.5), (Pixel{0x00, 0x72, 0xb2, 128}));
    EXPECT_EQ(pixel({2, 2}), (Pixel{0, 0, 0, 0}));
    style_.overlap = false;
    EXPECT_EQ(pixel({2, 8})[3], 255);
}

TEST_F(Points, ShowHowManyLieUponEachOther) {
    add(0, {1, 1});
    add(0, {3, 3}, 2);
    add(0, {5, 5}, 30);
    add(0, {7, 7}, 2000);
    const int one = pixel({1, 1})[3];
    const int two = pixel({3, 3})[3];
    const int many = pixel({5, 5})[3];
    EXPECT_EQ(one, 128);
    EXPECT_LT(one, two);
    EXPECT_LT(two + 20, many);
    EXPECT_LT(many + 20, pixel({7, 7})[3]);
    EXPECT_GE(pixel({7, 7})[3], 250);
}

TEST_F(Points, OfSmallGroupsLieOverThoseOfLargeOnes) {
    figure_.labels = {"small", "large", "other"};
    figure_.grey_labels = 1;
    figure_.panels[0].points.resize(3);
    style_.overlap = false;
    add(0, {5, 5});
    add(1, {5, 5}, 2);
    add(2, {5, 5}, 9);
    add(2, {8, 8});
    EXPECT_EQ(pixel({5, 5}), (Pixel{0x00, 0x72, 0xb2, 255}));
    EXPECT_EQ(pixel({8, 8}), (Pixel{0xb4, 0xbc, 0xc4, 255}));
    style_.overlap = true;
    const Pixel mixed = pixel({5, 5});
    EXPECT_GT(mixed[0], 0x20);
    EXPECT_LT(mixed[0], 0xd5);
}

TEST_F(Points, OfAScaleHaveTheColourOfTheirMean) {
    figure_.scale = ColourScale{"n", 0, 2};
    figure_.panels[0].points.resize(2);
    add(0, {2, 2});
    add(0, {5, 5});
    add(0, {8, 8}, 2);
    figure_.panels[0].numbers = {0, 1, 0, 2};
    add(1, {1, 9});
    EXPECT_EQ(pixel({2, 2}), (Pixel{0x44, 0x01, 0x54, 128}));
    const Pixel middle = pixel({5, 5});
    Pixel both = pixel({8, 8});
    EXPECT_GT(both[3], middle[3]);
    both[3] = middle[3];
    EXPECT_EQ(both, middle);
    EXPECT_EQ(pixel({1, 9}), (Pixel{0xdd, 0xe2, 0xe7, 128}));
}

TEST_F(Points, StayWithinTheirPanel) {
    style_.left = 0.5;
    figure_.bounds = {0, 10, 0, 10};
    add(0, {-400, 5}, 3);
    add(0, {1e300, 5});
    const FigureLayout layout = layout_in_style(figure_, style_);
    const PixelImage image = point_image(figure_, layout, 1.0);
    EXPECT_EQ(image.rgba, std::vector<std::uint8_t>(4 * 400 * 400));
}

}  // namespace
}  // namespace ovik
