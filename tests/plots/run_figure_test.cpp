#include "plots/run_figure.h"

#include <cmath>
#include <limits>
#include <numeric>
#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ovik {
namespace {

using testing::ElementsAre;
using testing::UnorderedElementsAre;

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
    ASSERT_EQ(figure.panels[0].points.size(), 1U);
    EXPECT_THAT(figure.panels[0].points[0],
                UnorderedElementsAre(std::array{x[0], y[0]}, std::array{x[1], y[1]}));
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

TEST(FigureOfRun, PutsLabelsThatSayNoneAndTheBackgroundLast) {
    const std::vector<double> x = {1, 2, 3, 4, 5};
    const std::vector<std::string> labels = {"Other", "old", "new", "", "a"};
    PlottedRun<double> run;
    run.x = x;
    run.y = x;
    run.labels = labels;
    EXPECT_THAT(figure_of_run(run, kFrame).labels, ElementsAre("old", "new", "a", "Other", ""));
    EXPECT_EQ(figure_of_run(run, kFrame).grey_labels, 2U);
    run.background = "old";
    const Figure figure = figure_of_run(run, kFrame);
    EXPECT_EQ(figure.grey_labels, 3U);
    EXPECT_THAT(figure.labels, ElementsAre("new", "a", "Other", "old", ""));
    EXPECT_THAT(figure.panels[0].points[3], ElementsAre(std::array{2.0, 2.0}));
}

TEST(FigureOfRun, HasNoLegendOfEmptyLabels) {
    const std::vector<double> x = {1, 2};
    const std::vector<std::string> labels = {"", ""};
    PlottedRun<double> run;
    run.x = run.y = x;
    run.labels = labels;
    EXPECT_TRUE(figure_of_run(run, kFrame).labels.empty());
    EXPECT_EQ(figure_of_run(run, kFrame).panels[0].points[0].size(), 2U);
}

TEST(FigureOfRun, DrawsPointsInTheOrderOfThePage) {
    std::vector<double> x(10);
    std::iota(x.begin(), x.end(), 0.0);
    PlottedRun<double> run;
    run.x = run.y = x;
    std::vector<double> order;
    const Figure figure = figure_of_run(run, kFrame);
    for (const auto& point : figure.panels[0].points[0]) {
        order.push_back(point[0]);
    }
    // Steps of 7: the next without a common divisor from the golden share of 10 on.
    EXPECT_THAT(order, ElementsAre(0, 7, 4, 1, 8, 5, 2, 9, 6, 3));
}

TEST(FigureOfRun, SortsNumbersThatNameGroups) {
    const std::vector<double> x = {1, 2, 3, 4};
    const std::vector<std::string> labels = {"10", "2", "none", "1"};
    PlottedRun<double> run;
    run.x = run.y = x;
    run.labels = labels;
    const Figure figure = figure_of_run(run, kFrame);
    EXPECT_FALSE(figure.scale);
    EXPECT_THAT(figure.labels, ElementsAre("1", "2", "10", "none"));
}

TEST(FigureOfRun, HasAScaleForLabelsThatAreQuantities) {
    const std::vector<double> x = {1, 2, 3};
    const std::vector<std::string> labels = {"0.5", "NA", "2.5"};
    PlottedRun<double> run;
    run.x = run.y = x;
    run.labels = labels;
    const Figure figure = figure_of_run(run, kFrame);
    ASSERT_TRUE(figure.scale);
    EXPECT_EQ(figure.scale->least, 0.5);
    EXPECT_EQ(figure.scale->most, 2.5);
    EXPECT_FALSE(figure.scale->diverging);
    EXPECT_EQ(figure.panels[0].points[1].size(), 1U);
}

TEST(FigureOfRun, EndsTheScaleOfManyNumbersAtPercentiles) {
    std::vector<double> numbers(201);
    std::iota(numbers.begin(), numbers.end(), 0.0);
    numbers.back() = 1e6;
    PlottedRun<double> run;
    run.x = run.y = numbers;
    const std::vector<LabelColumn> columns = {{"n", {}, numbers}};
    run.label_columns = columns;
    const Figure figure = figure_of_run(run, kFrame);
    EXPECT_EQ(figure.scale->least, 2.0);
    EXPECT_EQ(figure.scale->most, 198.0);
}

TEST(FigureOfRun, NamesHighlightedPointsInEveryPanel) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const std::vector<double> x = {1, 2, 3, nan};
    const std::vector<std::string> names = {"A", "B", "A", "B"};
    const std::vector<std::string> groups = {"Group:1:2", "Group:1:2", "Group:1:3", "Group:1:3"};
    const std::vector<std::string> labels = {"a", "b"};
    FigureOptions options;
    options.title = "Chosen";
    options.highlighted = {1, 0, 7};
    PlottedRun<double> run;
    run.x = run.y = x;
    run.names = names;
    run.groups = groups;
    run.labels = labels;
    run.figure = &options;
    const Figure figure = figure_of_run(run, {"f", "", {"x", "y"}, {0, 1, 2, 3}});
    EXPECT_EQ(figure.title, "Chosen");
    ASSERT_EQ(figure.panels[0].named.size(), 2U);
    EXPECT_EQ(figure.panels[0].named[0].name, "B");
    EXPECT_EQ(figure.panels[0].named[0].at, (std::array{2.0, 2.0}));
    EXPECT_EQ(figure.panels[0].named[0].list, 1U);
    // Where a point has no place, it has no name.
    ASSERT_EQ(figure.panels[1].named.size(), 1U);
    EXPECT_EQ(figure.panels[1].named[0].name, "A");
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
    // Both signs: 0 is in the middle.
    EXPECT_TRUE(figure.scale->diverging);
    EXPECT_EQ(figure.scale->least, -9.0);
    EXPECT_EQ(figure.scale->most, 9.0);
    EXPECT_THAT(figure.panels[0].points,
                ElementsAre(UnorderedElementsAre(std::array{1.0, 1.0}, std::array{3.0, 3.0}),
                            Points{{2, 2}}));
    EXPECT_EQ(figure.panels[0].numbers[0] == 7, figure.panels[0].points[0][0][0] == 1);
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
