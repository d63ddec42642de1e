#include "plots/run_figure.h"

#include <cmath>
#include <limits>
#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ovik {
namespace {

using testing::ElementsAre;

using Points = std::vector<std::array<double, 2>>;

const FigureFrame kFrame{"f", "Yeast", {"Component 1", "Component 2"}, {0, 1, 2, 3}};

TEST(AsWritten, IsTheDoubleOfTheSameShortestText) {
    EXPECT_EQ(as_written(0.85F), 0.85);
    EXPECT_EQ(as_written(-2.5e-7F), -2.5e-7);
    EXPECT_EQ(as_written(1.0 / 3.0), 1.0 / 3.0);
    EXPECT_TRUE(std::isinf(as_written(std::numeric_limits<float>::infinity())));
    EXPECT_TRUE(std::isnan(as_written(std::numeric_limits<float>::quiet_NaN())));
}

TEST(FigureOfRun, KeepsEveryDigit) {
    const std::vector<double> x = {1.0 / 3.0, 1e-300};
    const std::vector<double> y = {0.1234567890123456, -2.0};
    PlottedRun<double> run;
    run.x = x;
    run.y = y;
    const Figure figure = figure_of_run(run, kFrame);
    EXPECT_EQ(figure.stem, "f");
    EXPECT_EQ(figure.title, "Yeast");
    EXPECT_EQ(figure.bounds, kFrame.bounds);
    EXPECT_TRUE(figure.labels.empty());
    ASSERT_EQ(figure.panels.size(), 1U);
    EXPECT_EQ(figure.panels[0].x_title, "Component 1");
    EXPECT_EQ(figure.panels[0].y_title, "Component 2");
    EXPECT_THAT(figure.panels[0].points, ElementsAre(Points{{x[0], y[0]}, {x[1], y[1]}}));
}

TEST(FigureOfRun, HasAPanelForEachPairAndAListForEachLabel) {
    const std::vector<float> x = {1, 2, 1, 2};
    const std::vector<float> y = {3, 4, 5, 6};
    const std::vector<std::string> groups = {"Group:1:2", "Group:1:2", "Group:1:3", "Group:1:3"};
    const std::vector<std::string> labels = {"b", "a"};
    PlottedRun<float> run;
    run.x = x;
    run.y = y;
    run.groups = groups;
    run.labels = labels;
    const Figure figure = figure_of_run(run, kFrame);
    EXPECT_THAT(figure.labels, ElementsAre("b", "a"));
    ASSERT_EQ(figure.panels.size(), 2U);
    EXPECT_EQ(figure.panels[1].x_title, "Component 1");
    EXPECT_EQ(figure.panels[1].y_title, "Component 3");
    EXPECT_THAT(figure.panels[0].points, ElementsAre(Points{{1, 3}}, Points{{2, 4}}));
    EXPECT_THAT(figure.panels[1].points, ElementsAre(Points{{1, 5}}, Points{{2, 6}}));
}

TEST(FigureOfRun, TakesLabelsPerRowTooAndNoOthers) {
    const std::vector<double> x = {1, 1};
    const std::vector<std::string> groups = {"Group:1:2", "Group:1:3"};
    const std::vector<std::string> labels = {"a", "b"};
    PlottedRun<double> run;
    run.x = run.y = x;
    run.groups = groups;
    run.labels = labels;
    const Figure figure = figure_of_run(run, kFrame);
    EXPECT_THAT(figure.panels[0].points, ElementsAre(Points{{1, 1}}, Points{}));
    EXPECT_THAT(figure.panels[1].points, ElementsAre(Points{}, Points{{1, 1}}));
    const std::vector<std::string> three = {"a", "b", "c"};
    run.labels = three;
    EXPECT_TRUE(figure_of_run(run, kFrame).labels.empty());
}

TEST(FigureOfRun, PutsTheBackgroundFirst) {
    const std::vector<double> x = {1, 2, 3};
    const std::vector<std::string> labels = {"new", "old", "new"};
    PlottedRun<double> run;
    run.x = x;
    run.y = x;
    run.labels = labels;
    EXPECT_FALSE(figure_of_run(run, kFrame).has_background);
    run.background = "old";
    const Figure figure = figure_of_run(run, kFrame);
    EXPECT_TRUE(figure.has_background);
    EXPECT_THAT(figure.labels, ElementsAre("old", "new"));
    EXPECT_THAT(figure.panels[0].points, ElementsAre(Points{{2, 2}}, Points{{1, 1}, {3, 3}}));
    run.background = "none of them";
    EXPECT_FALSE(figure_of_run(run, kFrame).has_background);
    EXPECT_THAT(figure_of_run(run, kFrame).labels, ElementsAre("new", "old"));
}

TEST(FigureOfRun, ShowsTheFirstColumnOfLabels) {
    const std::vector<double> x = {1, 2, 3};
    PlottedRun<double> run;
    run.x = run.y = x;
    const std::vector<std::string> labels = {"other", "other", "other"};
    run.labels = labels;
    const std::vector<LabelColumn> groups = {{"g", {"a", "", "a"}, {}}, {"n", {}, {1, 2, 3}}};
    run.label_columns = groups;
    const Figure figure = figure_of_run(run, kFrame);
    EXPECT_THAT(figure.labels, ElementsAre("a", ""));
    EXPECT_FALSE(figure.scale);
}

TEST(FigureOfRun, PutsPointsWithoutANumberIntoAListOfTheirOwn) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const std::vector<double> x = {1, 2, 3, nan};
    PlottedRun<double> run;
    run.x = run.y = x;
    const std::vector<LabelColumn> columns = {{"n", {"7", "", "-1", "9"}, {7, nan, -1, 9}}};
    run.label_columns = columns;
    const Figure figure = figure_of_run(run, kFrame);
    EXPECT_TRUE(figure.labels.empty());
    ASSERT_TRUE(figure.scale);
    EXPECT_EQ(figure.scale->title, "n");
    EXPECT_EQ(figure.scale->least, -1.0);
    EXPECT_EQ(figure.scale->most, 9.0);
    EXPECT_THAT(figure.panels[0].points, ElementsAre(Points{{1, 1}, {3, 3}}, Points{{2, 2}}));
    EXPECT_THAT(figure.panels[0].numbers, ElementsAre(7, -1));
}

TEST(FigureOfRun, HasAScaleWhereNoPointHasANumber) {
    const std::vector<double> x = {1};
    PlottedRun<double> run;
    run.x = run.y = x;
    const std::vector<LabelColumn> columns = {
        {"n", {""}, {std::numeric_limits<double>::quiet_NaN()}}};
    run.label_columns = columns;
    const Figure figure = figure_of_run(run, kFrame);
    ASSERT_TRUE(figure.scale);
    EXPECT_EQ(figure.scale->least, 0.0);
    EXPECT_EQ(figure.scale->most, 0.0);
}

TEST(FigureOfRun, SpansItsFinitePointsWhereTheBoundsAreNotFinite) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const std::vector<double> x = {nan, 1, 5, -2};
    const std::vector<double> y = {0, 7, 3, std::numeric_limits<double>::infinity()};
    PlottedRun<double> run;
    run.x = x;
    run.y = y;
    FigureFrame frame = kFrame;
    frame.bounds = {nan, nan, 0, 7};
    const Figure figure = figure_of_run(run, frame);
    EXPECT_THAT(figure.bounds, ElementsAre(1, 5, 3, 7));
    EXPECT_EQ(figure.panels[0].points[0].size(), 2U);
    const PlottedRun<double> none;
    EXPECT_THAT(figure_of_run(none, frame).bounds, ElementsAre(0, 0, 0, 0));
    EXPECT_EQ(figure_of_run(none, frame).panels.size(), 1U);
}

TEST(FigureOfRun, RefusesListsOfUnequalLengths) {
    const std::vector<double> two = {1, 2};
    const std::vector<std::string> one = {"Group:1:2"};
    PlottedRun<double> run;
    run.x = two;
    EXPECT_THROW(figure_of_run(run, kFrame), std::invalid_argument);
    run.y = two;
    run.groups = one;
    EXPECT_THROW(figure_of_run(run, kFrame), std::invalid_argument);
}

}  // namespace
}  // namespace ovik
