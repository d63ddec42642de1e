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
    return gnuplot_script(figure, figure_settings(style), layout_in_style(figure, style)).text;
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
    const std::string script = script_of(figure_with_panels(3));
    EXPECT_THAT(script, HasSubstr("set multiplot"));
    EXPECT_THAT(script, HasSubstr("$panel3_label1 << END_OF_POINTS"));
    // Two beside each other, in two rows.
    EXPECT_THAT(script, HasSubstr("(2 - 1) * gap_x) / 2\n"));
    EXPECT_THAT(script, HasSubstr("(2 - 1) * gap_y) / 2\n"));
    EXPECT_THAT(script, HasSubstr("left = left_edge + 1 * (panel_width + gap_x)\n"));
}

TEST(GnuplotScript, DrawsSmallGroupsOverLargeOnes) {
    Figure figure = figure_with_panels(1);
    figure.labels = {"few", "many"};
    figure.panels[0].points = {{{0, 0}}, {{1, 1}, {2, 2}}};
    const std::string script = script_of(figure);
    EXPECT_LT(script.find("$panel1_label2 using"), script.find("$panel1_label1 using"));
    EXPECT_THAT(script, HasSubstr("set label 'few' at screen"));
}

TEST(GnuplotScript, DrawsGreyLabelsBeneathTheOthersWhateverTheirSize) {
    Figure figure = figure_with_panels(1);
    figure.labels = {"new rows", "other"};
    figure.panels[0].points = {{{1, 1}, {2, 2}}, {{0, 0}}};
    figure.grey_labels = 1;
    const std::string script = script_of(figure);
    EXPECT_LT(script.find("$panel1_label2 using"), script.find("$panel1_label1 using"));
    EXPECT_THAT(script, HasSubstr("(transparency * 0x1000000 + 0xb4bcc4) notitle"));
    // The legend has them last.
    EXPECT_LT(script.find("set label 'new rows'"), script.find("set label 'other'"));
    figure.grey_labels = 0;
    EXPECT_THAT(script_of(figure), Not(HasSubstr("0xb4bcc4")));
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
    EXPECT_THAT(script, HasSubstr("\nset cbrange [-1.5:20]\nset colorbox user"));
    EXPECT_THAT(script, HasSubstr("\nset label 'half-life'.sprintf("));
    EXPECT_THAT(script, HasSubstr("$panel1_label1 using 1:2:3 with points"));
    // Points without a number lie beneath the others.
    EXPECT_LT(script.find("$panel1_label2 using"), script.find("$panel1_label1 using"));
    const std::size_t bar = script.find("set colorbox");
    EXPECT_LT(bar, script.find("$panel1_label1 using"));
    EXPECT_LT(script.find("unset colorbox"), script.find("$panel2_label1 using"));
    EXPECT_THAT(script, HasSubstr("set label 'no number' at screen"));
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
    Figure figure = figure_with_panels(3);
    figure.title = "Yeast's";
    const std::string script = script_of(figure);
    const std::string title = "set label 'Yeast'.sprintf('%c',39).'s' at screen ";
    const std::size_t at = script.find(title);
    ASSERT_NE(at, std::string::npos);
    // Once in each picture, not over each panel.
    const std::size_t again = script.find(title, at + 1);
    EXPECT_GT(again, script.find("set output './f.svg'"));
    EXPECT_EQ(script.find(title, again + 1), std::string::npos);
}

TEST(GnuplotScript, HasNoNumbersAtTheAxesUnlessAReaderWantsThem) {
    const std::string script = script_of(figure_with_panels(1));
    EXPECT_THAT(script, HasSubstr("\naxis_numbers = 0\n"));
    EXPECT_LT(script.find("unset xtics"), script.find("if (axis_numbers) {"));
}

TEST(GnuplotScript, NamesPointsOverAllOthers) {
    Figure figure = figure_with_panels(1);
    figure.bounds = {0, 1, 0, 1};
    figure.labels = {"a", "b", "c", "d", "e", "f"};
    figure.panels[0].points.assign(6, {{0.5, 0.5}});
    figure.panels[0].named = {{"CDC28", {0.25, 0.5}, 1}, {"it's", {0.75, 0.5}, 5}};
    const std::string script = script_of(figure);
    EXPECT_THAT(script,
                HasSubstr("$panel1_named << END_OF_POINTS\n"
                          "0.25 0.5 9 0xd55e00\n0.75 0.5 1 0x56b4e9\nEND_OF_POINTS\n"));
    EXPECT_THAT(script, HasSubstr("set label 'CDC28' at 0."));
    EXPECT_THAT(script, HasSubstr("set label 'it'.sprintf('%c',39).'s' at 0."));
    EXPECT_GT(script.find("$panel1_named using"), script.find("$panel1_label6 using"));
    EXPECT_LT(script.find("$panel1_grounds using"), script.find("$panel1_named using"));
}

TEST(GnuplotScript, TellsOfNamesWithoutRoom) {
    Figure figure = figure_with_panels(1);
    figure.bounds = {0, 1, 0, 1};
    figure.panels[0].named = {{"CDC28", {0.25, 0.5}, 0}, {std::string(200, 'w'), {0.5, 0.5}, 0}};
    const FigureStyle style;
    const GnuplotScript script =
        gnuplot_script(figure, figure_settings(style), layout_in_style(figure, style));
    EXPECT_THAT(script.unplaced_names, testing::ElementsAre(std::string(200, 'w')));
    EXPECT_THAT(script.text, Not(HasSubstr("set label 'www")));
}

TEST(GnuplotScript, MakesAnImageOfVeryManyPoints) {
    Figure figure = figure_with_panels(1);
    figure.panels[0].points[0].resize(kFewestImagePoints - 1);
    EXPECT_THAT(script_of(figure), Not(HasSubstr("_points.png")));
    figure.panels[0].points[0].resize(kFewestImagePoints);
    const std::string script = script_of(figure);
    EXPECT_THAT(script, HasSubstr("set output './f_points.png'\n"));
    const std::size_t svg = script.find("set output './f.svg'");
    EXPECT_GT(script.find("plot './f_points.png' binary"), svg);
    EXPECT_EQ(script.find("$panel1_label1 using", svg), std::string::npos);
}

GnuplotScript scripts_of(const Figure& figure) {
    const FigureStyle style;
    return gnuplot_script(figure, figure_settings(style), layout_in_style(figure, style));
}

TEST(GnuplotScript, DrawsAroundTheImageOfVeryManyPoints) {
    Figure figure = figure_with_panels(1);
    figure.panels[0].points[0].resize(kFewestImagePoints - 1);
    EXPECT_EQ(scripts_of(figure).around_image, "");
    figure.panels[0].points[0].resize(kFewestImagePoints);
    const std::string script = scripts_of(figure).around_image;
    const std::size_t image = script.find("plot './f_points.png' binary");
    EXPECT_LT(image, script.find("set output './f.svg'"));
    EXPECT_EQ(script.find("plot './f_points.png' binary", image + 1), std::string::npos);
    EXPECT_THAT(script, Not(HasSubstr("$panel1_label1")));
    EXPECT_THAT(script, Not(HasSubstr("set output './f_points.png'")));
}

TEST(GnuplotScript, OfMillionsOfPointsSaysThatItHasNone) {
    Figure figure = figure_with_panels(1);
    figure.panels[0].points[0].resize(kMostScriptPoints + 1);
    const GnuplotScript script = scripts_of(figure);
    EXPECT_FALSE(script.draws_all);
    EXPECT_THAT(script.text, HasSubstr("exit error \"This figure has 1000001 points. "));
    EXPECT_THAT(script.text, Not(HasSubstr("END_OF_POINTS")));
    EXPECT_THAT(script.around_image, HasSubstr("set output './f.svg'"));
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
