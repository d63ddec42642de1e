#include "plots/figure_layout.h"

#include <cmath>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "plots/colour_bar.h"

namespace ovik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

Figure figure_of(std::size_t panels, const std::vector<std::string>& labels) {
    Figure figure;
    figure.labels = labels;
    figure.bounds = {-40, 40, -30, 30};
    figure.panels.resize(panels, {"Component 1", "Component 2", {{{0, 0}}}});
    return figure;
}

std::vector<std::string> many_labels(std::size_t count, const std::string& start) {
    std::vector<std::string> labels;
    for (std::size_t n = 0; n < count; ++n) {
        labels.push_back(start + std::to_string(n));
    }
    return labels;
}

/// Whether a place lies on the canvas, but for rounding.
void expect_on_canvas(const FigurePlace& place, const FigureLayout& layout) {
    EXPECT_GE(place.left, -0.5);
    EXPECT_GE(place.top, -0.5);
    EXPECT_LE(place.left + place.width, layout.style.width + 0.5);
    EXPECT_LE(place.top + place.height, layout.style.height + 0.5);
}

bool overlap(const FigurePlace& a, const FigurePlace& b) {
    return a.left < b.left + b.width && b.left < a.left + a.width && a.top < b.top + b.height &&
           b.top < a.top + a.height;
}

TEST(LayoutOfSize, IsAsHighAsTheMapNeeds) {
    const FigureLayout layout = layout_of_size(figure_of(1, {}), {});
    EXPECT_EQ(layout.style.width, 1200);
    const FigurePlace panel = layout.panel(0);
    EXPECT_NEAR(panel.width / panel.height, 80.0 / 60.0, 0.01);
    // Margins hold a title of an axis and nothing else.
    EXPECT_GT(panel.width * panel.height, 0.88 * layout.style.width * layout.style.height);
    EXPECT_EQ(layout.pixels_per_millimetre, 0.0);
}

TEST(LayoutOfSize, HasPrintedTextOnPaper) {
    const FigureLayout layout = layout_of_size(figure_of(1, {}), {89, 60, true});
    EXPECT_EQ(layout.style.width, 1051);
    EXPECT_EQ(layout.style.height, 709);
    EXPECT_NEAR(layout.pixels_per_millimetre, 300 / 25.4, 1e-12);
    // Seven points.
    EXPECT_NEAR(layout.font / layout.pixels_per_millimetre, 7 * 25.4 / 72, 1e-9);
    EXPECT_NEAR(layout_of_size(figure_of(1, {}), {183, 0, true}).font, layout.font, 1e-9);
}

TEST(LayoutOfSize, FindsAPlaceForEverythingOnTheCanvas) {
    for (const std::size_t panels : {1U, 3U, 6U, 10U}) {
        for (const std::size_t count : {0U, 1U, 4U, 12U, 60U, 500U}) {
            for (const FigureSize& size : {FigureSize{1200, 0, false},
                                           FigureSize{89, 0, true},
                                           FigureSize{183, 90, true},
                                           FigureSize{600, 600, false}}) {
                SCOPED_TRACE(std::to_string(panels) + " panels, " + std::to_string(count) +
                             " labels, width " + std::to_string(size.width));
                const FigureLayout layout =
                    layout_of_size(figure_of(panels, many_labels(count, "some label ")), size);
                EXPECT_EQ(layout.legend.texts.size() - (layout.legend.left_out > 0 ? 1 : 0) +
                              layout.legend.left_out,
                          count);
                for (std::size_t panel = 0; panel < panels; ++panel) {
                    expect_on_canvas(layout.panel(panel), layout);
                    EXPECT_GT(layout.panel(panel).width, 0);
                    EXPECT_GT(layout.panel(panel).height, 0);
                    EXPECT_FALSE(count > 0 && overlap(layout.panel(panel), layout.legend.place));
                }
                if (count > 0) {
                    expect_on_canvas(layout.legend.place, layout);
                }
            }
        }
    }
}

TEST(LayoutOfSize, LeavesNoQuarterOfThreePanelsEmpty) {
    // In a row, or with the legend in the fourth place.
    EXPECT_EQ(layout_of_size(figure_of(3, {}), {}).columns, 3U);
    EXPECT_EQ(layout_of_size(figure_of(3, {"a", "b"}), {}).columns, 3U);
    const FigureLayout layout = layout_of_size(figure_of(3, many_labels(12, "label ")), {});
    ASSERT_EQ(layout.columns, 2U);
    const FigurePlace& legend = layout.legend.place;
    EXPECT_GT(legend.left, layout.panel(2).left + layout.panel(2).width);
    EXPECT_GT(legend.top, layout.panel(1).top + layout.panel(1).height);
    EXPECT_GT(legend.height, 0.5 * layout.panel(2).height);
}

TEST(LayoutOfSize, HasABarForNumbers) {
    Figure figure = figure_of(1, {});
    figure.scale = {"half-life", 0, 20, false};
    figure.panels[0].points = {{{0, 0}}, {}};
    const FigureLayout layout = layout_of_size(figure, {});
    EXPECT_GT(layout.bar.left, layout.panel(0).left + layout.panel(0).width);
    EXPECT_GT(layout.bar.height, 0.9 * layout.panel(0).height);
    EXPECT_THAT(layout.legend.texts, IsEmpty());
    figure.panels[0].points[1] = {{1, 1}};
    const FigureLayout with_gaps = layout_of_size(figure, {});
    EXPECT_THAT(with_gaps.legend.texts, ElementsAre("no number"));
    EXPECT_GT(with_gaps.legend.place.top, with_gaps.bar.top + with_gaps.bar.height);
}

TEST(LayoutOfSize, HasRoomForTheNumbersOfABarAndItsTitle) {
    Figure figure = figure_of(1, {});
    for (const double largest : {9.0, 1235567.0}) {
        figure.scale = {"half-life", largest - 1, largest, false};
        const FigureLayout layout = layout_of_size(figure, {});
        const double numbers = numbers_width(colour_bar(*figure.scale), bar_font(layout));
        const double numbers_end = layout.bar.left + layout.bar.width + numbers;
        EXPECT_GT(layout.bar_title_x - 0.5 * layout.font, numbers_end);
        EXPECT_LT(layout.bar_title_x + 0.5 * layout.font, layout.style.width);
    }
}

TEST(LayoutOfSize, MakesTheMapSmallerRatherThanCutAFewLabels) {
    const std::vector<std::string> labels = {
        "mitochondria", "stress, folding", "ribosome", "other"};
    for (const double side : {300.0, 1200.0}) {
        const FigureLayout layout = layout_of_size(figure_of(1, labels), {side, side, false});
        EXPECT_EQ(layout.legend.texts, labels) << side;
    }
}

TEST(LayoutOfSize, CutsManyLongLabelsInTheirEndsAndLeavesNoneOut) {
    Figure figure = figure_of(1, {});
    for (int n = 0; n < 60; ++n) {
        figure.labels.push_back("Group no " + std::to_string(n) + " of the long annotation texts");
    }
    for (const double height : {60.0, 90.0}) {
        figure.bounds = {-40, 40, 0, height};
        const LegendLayout legend = layout_of_size(figure, {}).legend;
        EXPECT_EQ(legend.left_out, 0U);
        EXPECT_EQ(legend.texts.size(), 60U);
        for (const std::string& text : legend.texts) {
            EXPECT_GT(text.size(), 15U) << text;
        }
    }
}

TEST(LayoutOfSize, CutsATitleThatIsTooLong) {
    Figure figure = figure_of(1, {});
    figure.title = std::string(500, 'w');
    EXPECT_LT(layout_of_size(figure, {}).title.size(), 100U);
    figure.title = "Yeast";
    EXPECT_EQ(layout_of_size(figure, {}).title, "Yeast");
}

TEST(LayoutInStyle, EndsThePanelsAtItsEdges) {
    const FigureStyle style;
    const FigureLayout layout = layout_in_style(figure_of(1, {"a", "", "b"}), style);
    const FigurePlace panel = layout.panel(0);
    EXPECT_NEAR(panel.left, 120, 1e-9);
    EXPECT_NEAR(panel.left + panel.width, 1020, 1e-9);
    EXPECT_NEAR(panel.top, 120, 1e-9);
    EXPECT_NEAR(panel.top + panel.height, 1080, 1e-9);
    EXPECT_THAT(layout.legend.texts, ElementsAre("a", "(no label)", "b"));
    EXPECT_GT(layout.legend.place.left, 1020);
    expect_on_canvas(layout.legend.place, layout);
}

TEST(LayoutInStyle, PutsTheLegendIntoTheMissingPanel) {
    const FigureLayout layout = layout_in_style(figure_of(3, {"a", "b"}), {});
    EXPECT_EQ(layout.columns, 2U);
    EXPECT_GT(layout.legend.place.top, layout.panel(1).top + layout.panel(1).height);
    EXPECT_GT(layout.legend.place.left, layout.panel(2).left + layout.panel(2).width);
    expect_on_canvas(layout.legend.place, layout);
}

TEST(LayoutInStyle, BearsAnyStyle) {
    const FigureStyle nothing{0, 0, 0, 0, 0, 0, 0, false};
    EXPECT_FALSE(layout_in_style(figure_of(3, many_labels(30, "l")), nothing).legend.texts.empty());
}

}  // namespace
}  // namespace ovik
