#include "plots/gnuplot_script.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ovik {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

std::string script_of(const Figure& figure) {
    const FigureStyle style;
    return gnuplot_script(figure, figure_settings(style), style);
}

Figure figure_with_panels(std::size_t count) {
    Figure figure;
    figure.stem = "f";
    figure.panels.resize(count, {"x", "y", {{{0.1, 1.0 / 3.0}}}});
    return figure;
}

TEST(GnuplotScript, HoldsThePointsInFullPrecision) {
    const std::string script = script_of(figure_with_panels(1));
    EXPECT_THAT(
        script,
        HasSubstr("$panel1_label1 << END_OF_POINTS\n0.1 0.3333333333333333\nEND_OF_POINTS\n"));
    EXPECT_THAT(script, StartsWith("# Draws the figure anew"));
    EXPECT_THAT(script, HasSubstr(figure_settings({})));
    EXPECT_THAT(script, HasSubstr("set output './f.png'"));
    EXPECT_THAT(script, HasSubstr("set output './f.svg'"));
}

TEST(GnuplotScript, PutsSeveralPanelsOnOneCanvas) {
    EXPECT_THAT(script_of(figure_with_panels(1)), Not(HasSubstr("multiplot")));
    const std::string script = script_of(figure_with_panels(3));
    EXPECT_THAT(script, HasSubstr("set multiplot"));
    EXPECT_THAT(script, HasSubstr("$panel3_label1 << END_OF_POINTS"));
    // Two beside each other, in two rows.
    EXPECT_THAT(script, HasSubstr("gap_x = 0.18 / 2\n"));
    EXPECT_THAT(script, HasSubstr("/ 2\npanel_height"));
}

TEST(GnuplotScript, DrawsSmallGroupsOverLargeOnes) {
    Figure figure = figure_with_panels(1);
    figure.labels = {"few", "many"};
    figure.panels[0].points = {{{0, 0}}, {{1, 1}, {2, 2}}};
    const std::string script = script_of(figure);
    EXPECT_LT(script.find("$panel1_label2 using"), script.find("$panel1_label1 using"));
    EXPECT_THAT(script, HasSubstr("title 'few'"));
}

TEST(GnuplotScript, DrawsTheBackgroundPaleAndBeneathTheOthers) {
    Figure figure = figure_with_panels(1);
    figure.labels = {"old rows", "new rows"};
    figure.panels[0].points = {{{0, 0}}, {{1, 1}, {2, 2}}};
    figure.has_background = true;
    const std::string script = script_of(figure);
    EXPECT_LT(script.find("$panel1_label1 using"), script.find("$panel1_label2 using"));
    EXPECT_THAT(script, HasSubstr("(transparency * 0x1000000 + 0xC8C8C8) notitle"));
    EXPECT_THAT(script, HasSubstr("linecolor rgb 0xC8C8C8 title 'old rows'"));
    // The first label that has a colour has the first one.
    EXPECT_THAT(script, HasSubstr("linecolor rgb 0x0072B2 title 'new rows'"));
    figure.has_background = false;
    EXPECT_THAT(script_of(figure), Not(HasSubstr("0xC8C8C8")));
}

TEST(GnuplotScript, ColoursNumbersByAScaleBesideTheFirstPanel) {
    Figure figure = figure_with_panels(2);
    figure.scale = {"half-life's", -1.5, 20};
    for (FigurePanel& panel : figure.panels) {
        panel.points = {{{0, 0}, {1, 1}}, {{2, 2}}};
        panel.numbers = {20, -1.5};
    }
    const std::string script = script_of(figure);
    EXPECT_THAT(script, HasSubstr("$panel1_label1 << END_OF_POINTS\n0 0 20\n1 1 -1.5\nEND"));
    EXPECT_THAT(script, HasSubstr("$panel1_label2 << END_OF_POINTS\n2 2\nEND"));
    EXPECT_THAT(script, HasSubstr("\nset cbrange [-1.5:20]\nset cblabel 'half-life'.sprintf("));
    EXPECT_THAT(script, HasSubstr("$panel1_label1 using 1:2:3 with points"));
    // Points without a number lie beneath the others.
    EXPECT_LT(script.find("$panel1_label2 using"), script.find("$panel1_label1 using"));
    const std::size_t bar = script.find("set colorbox");
    EXPECT_LT(bar, script.find("$panel1_label1 using"));
    EXPECT_LT(script.find("unset colorbox"), script.find("$panel2_label1 using"));
    EXPECT_THAT(script, Not(HasSubstr("keyentry")));
}

TEST(GnuplotScript, GivesAScaleOfOneNumberTwoEnds) {
    Figure figure = figure_with_panels(1);
    figure.panels[0].points = {{{0, 0}}, {}};
    figure.panels[0].numbers = {3};
    figure.scale = {"n", 3, 3};
    EXPECT_THAT(script_of(figure), HasSubstr("\nset cbrange [0:6]\n"));
    figure.scale = {"n", 0, 0};
    EXPECT_THAT(script_of(figure), HasSubstr("\nset cbrange [-1:1]\n"));
}

TEST(GnuplotScript, HasATitleIfThereIsOne) {
    Figure figure = figure_with_panels(1);
    EXPECT_THAT(script_of(figure), Not(HasSubstr("set title")));
    figure.title = "Yeast's";
    EXPECT_THAT(script_of(figure),
                HasSubstr("set title 'Yeast'.sprintf('%c',39).'s' noenhanced\n"));
}

TEST(GnuplotScript, CentresWholeNumbersBetweenTheirBounds) {
    Figure figure = figure_with_panels(1);
    figure.bounds = {0, 1, 0, 1};
    // An integer by an integer would be cut to an integer.
    EXPECT_THAT(script_of(figure), HasSubstr("mid_x = (min_x + max_x) / 2.0\n"));
    EXPECT_THAT(script_of(figure), HasSubstr("mid_y = (min_y + max_y) / 2.0\n"));
}

}  // namespace
}  // namespace ovik
