#include "plots/panel_names.h"

#include <gtest/gtest.h>

namespace ovik {
namespace {

Figure figure_of_points(std::size_t count) {
    Figure figure;
    figure.bounds = {-10, 30, -5, 15};
    figure.labels = {"a", "other"};
    figure.grey_labels = 1;
    figure.panels.resize(1);
    figure.panels[0].points = {std::vector<std::array<double, 2>>(count), {{1, 1}, {2, 2}}};
    return figure;
}

TEST(OrderOfLists, HasGreyPointsAndThenLargeGroupsFirst) {
    Figure figure = figure_of_points(1);
    figure.labels = {"a", "b", "c", "other"};
    figure.panels[0].points = {{{1, 1}}, {{1, 1}, {2, 2}}, {{3, 3}}, {}};
    EXPECT_EQ(order_of_lists(figure, 0), (std::vector<std::size_t>{3, 1, 0, 2}));
}

TEST(RadiusOf, IsSmallerForMorePoints) {
    const Figure few = figure_of_points(10);
    const Figure many = figure_of_points(9000);
    const FigureLayout layout = layout_of_size(few, {});
    EXPECT_GT(radius_of(few, layout, 0, false), 1.5 * radius_of(many, layout, 0, false));
    // Grey points count for themselves only.
    EXPECT_GT(radius_of(few, layout, 0, false), radius_of(few, layout, 0, true));
}

TEST(PanelView, GoesToPixelsAndBack) {
    const Figure figure = figure_of_points(1);
    const FigureLayout layout = layout_of_size(figure, {});
    const PanelView view(figure, layout, 0);
    const FigurePlace place = layout.panel(0);
    const auto middle = view.toPixels({10, 5});
    EXPECT_NEAR(middle[0], place.left + place.width / 2, 1e-9);
    EXPECT_NEAR(middle[1], place.top + place.height / 2, 1e-9);
    // Up on the map is up in the figure.
    EXPECT_LT(view.toPixels({10, 15})[1], middle[1]);
    const auto back = view.toMap(view.toPixels({-7, 3}));
    EXPECT_NEAR(back[0], -7, 1e-9);
    EXPECT_NEAR(back[1], 3, 1e-9);
}

TEST(NamesOf, HaveAPlaceForEachNamedPointWithinThePanel) {
    Figure figure = figure_of_points(1);
    const FigureLayout layout = layout_of_size(figure, {});
    EXPECT_TRUE(names_of(figure, layout, 0).places.empty());
    figure.panels[0].named = {{"ABC1", {30, 15}, 0}, {"DEF2", {-10, -5}, 1}};
    const PanelNames names = names_of(figure, layout, 0);
    ASSERT_EQ(names.places.size(), 2U);
    const FigurePlace panel = layout.panel(0);
    for (const PlacedName& name : names.places) {
        EXPECT_TRUE(name.is_placed);
        EXPECT_GE(name.box.left, panel.left);
        EXPECT_LE(name.box.left + name.box.width, panel.left + panel.width);
    }
    EXPECT_LT(names.font, layout.font);
    EXPECT_GT(names.radius, 0.0);
}

}  // namespace
}  // namespace ovik
