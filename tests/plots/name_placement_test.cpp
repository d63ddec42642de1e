#include "plots/name_placement.h"

#include <algorithm>
#include <random>

#include <gtest/gtest.h>

namespace ovik {
namespace {

using Point = std::array<double, 2>;

constexpr FigurePlace kFrame = {100, 50, 800, 600};
constexpr double kRadius = 6;

bool overlap(const FigurePlace& a, const FigurePlace& b) {
    return a.left < b.left + b.width && b.left < a.left + a.width && a.top < b.top + b.height &&
           b.top < a.top + a.height;
}

/// Whether a rectangle reaches into the circle around a point.
bool covers(const FigurePlace& box, const Point& point) {
    const double x = std::clamp(point[0], box.left, box.left + box.width) - point[0];
    const double y = std::clamp(point[1], box.top, box.top + box.height) - point[1];
    return x * x + y * y < kRadius * kRadius * 0.999;
}

bool is_within(const FigurePlace& box, const FigurePlace& frame) {
    return box.left >= frame.left && box.top >= frame.top &&
           box.left + box.width <= frame.left + frame.width &&
           box.top + box.height <= frame.top + frame.height;
}

TEST(PlaceNames, PutsALonelyNameBesideItsPointWithoutALine) {
    const std::vector<NameToPlace> names = {{{400, 300}, 60, 20}};
    const std::vector<PlacedName> placed = place_names(names, kRadius, kFrame, {});
    ASSERT_TRUE(placed[0].is_placed);
    EXPECT_FALSE(placed[0].has_line);
    EXPECT_GT(placed[0].box.left, 400 + kRadius);
    EXPECT_LT(placed[0].box.left, 400 + kRadius + 10);
    EXPECT_DOUBLE_EQ(placed[0].box.top + placed[0].box.height / 2, 300);
}

TEST(PlaceNames, LeavesPointsOpenWhereItCan) {
    // Points to the right of the named one.
    std::vector<Point> others;
    for (int n = 0; n < 60; ++n) {
        others.push_back({412.0 + n, 300.0});
    }
    const std::vector<NameToPlace> names = {{{400, 300}, 60, 20}};
    const std::vector<PlacedName> placed = place_names(names, kRadius, kFrame, others);
    ASSERT_TRUE(placed[0].is_placed);
    for (const Point& point : others) {
        EXPECT_FALSE(overlap(placed[0].box, {point[0], point[1], 0.1, 0.1}));
    }
}

TEST(PlaceNames, OverlapsNoNameAndNoNamedPointAnywhere) {
    for (unsigned seed = 1; seed <= 8; ++seed) {
        std::mt19937 random(seed);
        std::uniform_real_distribution<double> part(0, 1);
        std::vector<NameToPlace> names;
        for (int n = 0; n < 40; ++n) {
            // Half of them lie close together.
            const double spread = n % 2 == 0 ? 1.0 : 0.15;
            names.push_back({{kFrame.left + kFrame.width * spread * part(random),
                              kFrame.top + kFrame.height * spread * part(random)},
                             40 + 40 * part(random),
                             20});
        }
        const std::vector<PlacedName> placed = place_names(names, kRadius, kFrame, {});
        std::size_t count = 0;
        for (std::size_t n = 0; n < names.size(); ++n) {
            if (!placed[n].is_placed) {
                continue;
            }
            ++count;
            EXPECT_TRUE(is_within(placed[n].box, kFrame)) << seed;
            for (std::size_t other = 0; other < names.size(); ++other) {
                EXPECT_FALSE(covers(placed[n].box, names[other].at)) << seed;
                EXPECT_FALSE(other != n && placed[other].is_placed &&
                             overlap(placed[n].box, placed[other].box))
                    << seed;
            }
        }
        EXPECT_GE(count, 38U) << seed;
        const std::vector<PlacedName> again = place_names(names, kRadius, kFrame, {});
        for (std::size_t n = 0; n < names.size(); ++n) {
            EXPECT_EQ(again[n].box.left, placed[n].box.left);
            EXPECT_EQ(again[n].box.top, placed[n].box.top);
        }
    }
}

TEST(PlaceNames, LeadsALineToANameThatIsFarAway) {
    // A crowd around one point.
    std::vector<NameToPlace> names;
    for (int n = 0; n < 12; ++n) {
        names.push_back({{400.0 + n, 300.0}, 50, 20});
    }
    const std::vector<PlacedName> placed = place_names(names, kRadius, kFrame, {});
    EXPECT_TRUE(std::all_of(placed.begin(), placed.end(), [](auto& p) { return p.is_placed; }));
    EXPECT_TRUE(std::any_of(placed.begin(), placed.end(), [](auto& p) { return p.has_line; }));
    for (const PlacedName& name : placed) {
        EXPECT_GE(name.line_end[0], name.box.left);
        EXPECT_LE(name.line_end[0], name.box.left + name.box.width);
    }
}

TEST(PlaceNames, PlacesNothingWhereThereIsNoRoom) {
    const std::vector<NameToPlace> wide = {{{400, 300}, 900, 20}};
    EXPECT_FALSE(place_names(wide, kRadius, kFrame, {})[0].is_placed);
    EXPECT_TRUE(place_names({}, kRadius, kFrame, {}).empty());
}

}  // namespace
}  // namespace ovik
