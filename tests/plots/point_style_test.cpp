#include "plots/point_style.h"

#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/temporary_directory.h"

namespace ovik {
namespace {

using testing::HasSubstr;

Figure labelled(std::size_t labels, std::size_t grey) {
    Figure figure;
    for (std::size_t n = 0; n < labels; ++n) {
        figure.labels.push_back("l" + std::to_string(n));
    }
    figure.grey_labels = grey;
    return figure;
}

/// The sources of the chart page's colours and shapes.
std::string page_palette() {
    return test::read_file(OVIK_DATA_DIR "/../plots/page/src/palette.js");
}

TEST(IsGrey, HoldsForTheLastLabelsOrForPointsWithoutANumber) {
    Figure figure = labelled(2, 1);
    EXPECT_FALSE(is_grey(figure, 0));
    EXPECT_TRUE(is_grey(figure, 1));
    figure.labels.clear();
    figure.scale = {"n", 0, 1};
    EXPECT_FALSE(is_grey(figure, 0));
    EXPECT_TRUE(is_grey(figure, 1));
}

TEST(PointStyle, HasTheColoursAndShapesOfThePageInItsOrder) {
    const std::string page = page_palette();
    const Figure figure = labelled(8, 0);
    std::size_t at = page.find("OKABE_ITO");
    for (std::size_t label = 0; label < 8; ++label) {
        at = page.find("#" + colour_of_label(figure, label), at);
        ASSERT_NE(at, std::string::npos) << label;
    }
    EXPECT_LT(at, page.find("dark:", page.find("OKABE_ITO")));
    at = page.find("const SHAPES");
    for (std::size_t label = 0; label < 8; ++label) {
        at = page.find(shape_of_label(figure, label).path, at);
        ASSERT_NE(at, std::string::npos) << label;
    }
    EXPECT_THAT(page, HasSubstr(std::string("#") + kGreyPoint));
}

TEST(PointStyle, TellsSixtyFourLabelsApart) {
    const Figure figure = labelled(65, 0);
    std::set<std::string> styles;
    for (std::size_t label = 0; label < 64; ++label) {
        styles.insert(colour_of_label(figure, label) + shape_of_label(figure, label).name);
    }
    EXPECT_EQ(styles.size(), 64U);
    EXPECT_EQ(colour_of_label(figure, 64), colour_of_label(figure, 0));
    EXPECT_EQ(&shape_of_label(figure, 64), &shape_of_label(figure, 0));
}

TEST(PointStyle, MakesTheLastLabelsGreyCircles) {
    const Figure figure = labelled(4, 2);
    EXPECT_NE(colour_of_label(figure, 1), kGreyPoint);
    for (const std::size_t label : {2U, 3U}) {
        EXPECT_EQ(colour_of_label(figure, label), kGreyPoint);
        EXPECT_STREQ(shape_of_label(figure, label).name, "circle");
    }
    // Points without any labels are not grey.
    EXPECT_NE(colour_of_label(labelled(0, 0), 0), kGreyPoint);
}

TEST(PointStyle, ColoursNumbersAlongTheScale) {
    Figure figure;
    figure.scale = {"n", 0, 10, false};
    const auto colour = [&](double number) {
        return colour_of_point(figure, {"g", {0, 0}, 0, number});
    };
    EXPECT_EQ(colour(0), "440154");
    EXPECT_EQ(colour(-5), "440154");
    EXPECT_EQ(colour(10), "bdde2e");
    EXPECT_EQ(colour(99), "bdde2e");
    EXPECT_EQ(colour_of_point(figure, {"g", {0, 0}, 1, 0}), kNumberlessPoint);
    EXPECT_THAT(gnuplot_palette(*figure.scale), HasSubstr("0 '#440154', 1 '#472d7b'"));
    figure.scale = {"n", -2, 2, true};
    EXPECT_EQ(colour(-2), "06316b");
    EXPECT_EQ(colour(0), "c9c3b0");
    EXPECT_EQ(colour(2), "7a2f00");
    EXPECT_THAT(gnuplot_palette(*figure.scale), HasSubstr("2 '#c9c3b0'"));
}

}  // namespace
}  // namespace ovik
