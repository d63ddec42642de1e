#include "plots/comparison_page.h"

#include <cmath>
#include <limits>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "tests/support/page_data.h"

namespace ovik {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

Comparison two_runs() {
    Comparison comparison;
    comparison.title = "Yeast";
    comparison.name = "yeast_comparison";
    comparison.facts = {{"Input", "3 rows"}};
    comparison.alignment = "Laid onto the first.";
    comparison.numbers = {{"Cost", "Less is better.", {"1.25", ""}, {true, false}}};
    ComparedRun first;
    first.title = "Perplexity 5";
    first.picture = "a b.png";
    first.chart_page = "a.html";
    first.files = {{"Result table (csv)", "a.csv"}};
    first.x = {0.0, 1.0, 2.0};
    first.y = {-4.0, 0.0, 4.0};
    ComparedRun second;
    second.title = "Perplexity 30";
    second.note = "1 gene is not in this map.";
    second.x = {7.0, kNone, 7.0};
    second.y = {1.0, kNone, 3.0};
    comparison.runs = {first, second};
    comparison.genes.names = {"A", "B", "C"};
    comparison.genes.functions = {"kinase", "", "NULL"};
    comparison.genes.label_columns = {{"process", {"x", "y", "x"}, {}},
                                      {"half-life", {"1", "", "2"}, {1.0, kNone, 2.0}}};
    return comparison;
}

/// The data in a page that compares runs.
nlohmann::json data_in(const std::string& page) {
    return test::page_data(page, "comparison-data");
}

TEST(ComparisonPage, ShowsTheChoiceOfAPerplexity) {
    Comparison comparison = two_runs();
    EXPECT_THAT(comparison_page(comparison), testing::HasSubstr("\"choice\":null"));
    comparison.choice =
        ComparedChoice{"5 < 10 is recommended.",
                       {"x", {5.0, 10.0}, {{"Stability", {0.5, std::nan("")}}}, std::nan(""), 5.0},
                       "choice.svg",
                       {{"Choice (tsv)", "choice.tsv"}}};
    const std::string page = comparison_page(comparison);
    EXPECT_THAT(page, testing::HasSubstr("<p class=\"recommendation\">5 &lt; 10 is recommended."));
    EXPECT_THAT(page, testing::HasSubstr("<img src=\"./choice.svg\""));
    EXPECT_THAT(page, testing::HasSubstr("<a href=\"./choice.tsv\">Choice (tsv)</a>"));
    EXPECT_THAT(page,
                testing::HasSubstr("\"choice\":{\"perplexities\":[5,10],\"curves\":[{\"name\":"
                                   "\"Stability\",\"shares\":[0.5,null]}],\"ofNoise\":null,"
                                   "\"recommended\":5}"));
}

TEST(ComparisonPage, ShowsRunsAndLeadsToTheirFiles) {
    const std::string page = comparison_page(two_runs());
    EXPECT_THAT(page, HasSubstr("<title>Yeast</title>"));
    EXPECT_THAT(page,
                HasSubstr("<h1>Yeast</h1>\n<dl class=\"facts\"><div><dt>Input</dt><dd>3 "
                          "rows</dd></div></dl>\n<p class=\"alignment\">Laid onto the "
                          "first.</p>\n"));
    EXPECT_THAT(page,
                HasSubstr("<li class=\"run card\">\n<h2><a href=\"./a.html\">Perplexity "
                          "5</a></h2>\n<div class=\"map\"></div>\n"
                          "<img src=\"./a%20b.png\" class=\"picture\" alt=\"Map: Perplexity "
                          "5\" width=\"1200\" height=\"1200\">\n"
                          "<p class=\"files\"><a href=\"./a.csv\">Result table (csv)</a> </p>\n"
                          "</li>\n"));
    EXPECT_THAT(page,
                HasSubstr("<li class=\"run card\">\n<h2>Perplexity 30</h2>\n<p class=\"note\">1 "
                          "gene is not in this map.</p>\n<div class=\"map\"></div>\n</li>\n"));
}

TEST(ComparisonPage, TellsTheNumbersAndMarksTheBest) {
    const std::string page = comparison_page(two_runs());
    EXPECT_THAT(page,
                AllOf(HasSubstr("<th scope=\"row\">Perplexity 5</th><td class=\"best\">1.25 "
                                "<span>best</span></td>"),
                      HasSubstr("<th scope=\"row\">Perplexity 30</th><td><span class=\"none\">not "
                                "measured</span></td>"),
                      HasSubstr("<div><dt>Cost</dt><dd>Less is better.</dd></div>")));
    Comparison without = two_runs();
    without.numbers.clear();
    EXPECT_THAT(comparison_page(without), Not(HasSubstr("<table>")));
}

TEST(ComparisonPage, HasThePlacesOfAllRuns) {
    const nlohmann::json data = data_in(comparison_page(two_runs()));
    EXPECT_EQ(data["title"], "Yeast");
    EXPECT_EQ(data["name"], "yeast_comparison");
    EXPECT_EQ(data["pointCount"], 3);
    EXPECT_EQ(data["reference"], 0);
    EXPECT_EQ(data["names"], nlohmann::json({"A", "B", "C"}));
    EXPECT_EQ(data["functions"], nlohmann::json({"kinase", "", "NULL"}));
    EXPECT_EQ(data["genes"], nlohmann::json::array());
    EXPECT_EQ(data["labelColumns"][0]["texts"], nlohmann::json({"x", "y", "x"}));
    EXPECT_EQ(data["labelColumns"][1]["numbers"], nlohmann::json({1.0, nullptr, 2.0}));
    const nlohmann::json& first = data["runs"][0];
    EXPECT_EQ(first["title"], "Perplexity 5");
    EXPECT_EQ(first["window"], nlohmann::json({0.0, 2.0, -4.0, 4.0}));
    // Steps 0, 0; 32767, 32767; 65534, 65534: each as its lower and its upper byte.
    EXPECT_EQ(first["places"], "AAAAAP9//3/+//7/");
    // A map without a width, and a gene without a place: 0, 0; 65535, 65535; 0, 65534.
    EXPECT_EQ(data["runs"][1]["window"], nlohmann::json({7.0, 7.0, 1.0, 3.0}));
    EXPECT_EQ(data["runs"][1]["places"], "AAAAAP////8AAP7/");
}

TEST(ComparisonPage, HoldsCoordinatesOfAnySize) {
    Comparison comparison = two_runs();
    const double most = std::numeric_limits<double>::max();
    comparison.runs[0].x = {-most, 0.0, most};
    EXPECT_EQ(data_in(comparison_page(comparison))["runs"][0]["places"], "AAAAAP9//3/+//7/");
}

TEST(ComparisonPage, OfRunsWithoutMapsHasNoPlaces) {
    Comparison comparison = two_runs();
    for (ComparedRun& run : comparison.runs) {
        run.x.clear();
        run.y.clear();
    }
    comparison.genes = {};
    const nlohmann::json data = data_in(comparison_page(comparison));
    EXPECT_EQ(data["pointCount"], 0);
    EXPECT_EQ(data["runs"][0]["places"], "");
    EXPECT_EQ(data_in(comparison_page({}))["runs"], nlohmann::json::array());
}

TEST(ComparisonPage, TakesAllTextsForData) {
    const std::string evil = "\"></script><script>alert(1)</script>{{comparison-data}}";
    Comparison comparison;
    comparison.title = comparison.name = comparison.alignment = evil;
    comparison.facts = {{evil, evil}};
    comparison.numbers = {{evil, evil, {evil}, {true}}};
    comparison.runs = {{evil, evil, evil, evil, {{evil, evil}}, {1.0}, {2.0}}};
    comparison.genes = {{evil}, {evil}, {evil}, {{evil, {evil}, {}}}};
    const std::string page = comparison_page(comparison);
    EXPECT_THAT(page, Not(HasSubstr("<script>alert")));
    EXPECT_THAT(page, HasSubstr("<h1>&quot;&gt;&lt;/script&gt;"));
    const nlohmann::json data = data_in(page);
    EXPECT_EQ(data["names"][0], evil);
    EXPECT_EQ(data["labelColumns"][0]["title"], evil);
    EXPECT_EQ(data["runs"][0]["title"], evil);
}

}  // namespace
}  // namespace ovik
