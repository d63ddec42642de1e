#include "plots/chart_page.h"

#include <limits>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <rapidcheck/gtest.h>

#include "plots/page_template.h"

#include "tests/support/page_data.h"

namespace ovik {

namespace {

using nlohmann::json;
using test::page_data;
using testing::HasSubstr;
using testing::Not;

std::size_t count(const std::string& text, const std::string& part) {
    std::size_t found = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
        ++found;
    }
    return found;
}

std::string title_of(const std::string& page) {
    const std::size_t start = page.find("<title>") + 7;
    return page.substr(start, page.find("</title>", start) - start);
}

/// Tags and scripts of the page as it is built; data must not add to them.
void expect_no_markup_from_data(const std::string& html) {
    const std::string empty = chart_page(Chart{});
    for (const char* markup : {"<", ">", "<script", "</script", "<img"}) {
        ASSERT_EQ(count(html, markup), count(empty, markup)) << markup;
    }
}

TEST(ChartPageData, HasTheColumnsOfLabelsThatFitThePoints) {
    Chart chart;
    chart.x = chart.y = {1.0, 2.0};
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const std::vector<LabelColumn> columns = {
        {"<g>", {"a", ""}, {}}, {"n", {"1.50", ""}, {1.5, nan}}, {"short", {"a"}, {}}};
    const std::vector<std::string> genes = {"CDC28", ""};
    chart.label_columns = columns;
    chart.genes = genes;
    const json data = page_data(chart_page(chart));
    EXPECT_EQ(data["labelColumns"],
              json::parse(R"([{"title": "<g>", "texts": ["a", ""], "numbers": []},
                              {"title": "n", "texts": ["1.50", ""], "numbers": [1.5, null]}])"));
    EXPECT_EQ(data["genes"], json::parse(R"(["CDC28", ""])"));
}

TEST(ChartPageData, HasWhatGenesAreCalledBesidesAndTheSets) {
    Chart chart;
    chart.x = chart.y = {1.0, 2.0, 3.0};
    const std::vector<std::string> names = {"CDC28", "</script>", "x"};
    const std::vector<GeneIdentifiers> identifiers = {
        {"YBR160W", "S000000364", {"A", "B|<"}}, {}, {}};
    const std::vector<GeneSet> sets = {{"<one>", {0, 1}, "#102030"}, {"", {}}, {"beyond", {2, 3}}};
    chart.names = names;
    chart.identifiers = identifiers;
    chart.sets = sets;
    const json data = page_data(chart_page(chart));
    EXPECT_EQ(data["aliases"], json::parse(R"([["YBR160W", "S000000364", "A|B|<"], [], []])"));
    EXPECT_EQ(data["sets"], json::parse(R"([{"name": "<one>", "colour": "#102030",
                                             "genes": ["CDC28", "</script>"]},
                                            {"name": "", "colour": "", "genes": []},
                                            {"name": "beyond", "colour": "", "genes": ["x"]}])"));
    chart.identifiers = chart.identifiers.first(2);
    EXPECT_EQ(page_data(chart_page(chart))["aliases"], json::array());
}

TEST(ChartPageData, HasTheTermsOfThePoints) {
    Chart chart;
    chart.x = chart.y = {1.0, 2.0, 3.0};
    EXPECT_TRUE(page_data(chart_page(chart))["terms"].is_null());
    RowTerms terms;
    chart.terms = &terms;
    EXPECT_TRUE(page_data(chart_page(chart))["terms"].is_null());
    terms = {
        {{"GO:1", "<folding>", 'P'}, {"GO:2", "nucleus", 'C'}}, {{0, 1}, {}, {0, 1}}, {{2, 0}}};
    EXPECT_EQ(page_data(chart_page(chart))["terms"],
              json::parse(R"({"list": [["GO:1", "<folding>", "P"], ["GO:2", "nucleus", "C"]],
                              "genes": [[0, 1], [], [0, 1]], "repeated": [[2, 0]]})"));
}

TEST(ChartPageData, HasTheValuesOfThePoints) {
    const std::vector<double> values = {0.0, 1.0, 65534.0, 3.0};
    const QuantisedMatrix matrix =
        quantised({values.data(), 2, 2}, {"heat", "</script>"}, 16, {false, true, false, false});
    Chart chart;
    chart.x = chart.y = {1.0, 2.0};
    chart.matrix = &matrix;
    chart.metric = "pearson";
    const json data = page_data(chart_page(chart));
    EXPECT_EQ(data["matrix"],
              json::parse(R"({"columns": ["heat", "</script>"], "bits": 16, "lows": [0.0, 1.0],
                              "steps": [1.0, 3.051850947599719e-05], "values": "AAAAAP7//v8=",
                              "filled": "Ag==", "metric": "pearson"})"));
    chart.x = chart.y = {1.0};
    EXPECT_EQ(page_data(chart_page(chart))["matrix"], nullptr);
}

TEST(ChartPageData, HasHowFarTheMapCanBeTrusted) {
    Chart chart;
    chart.x = chart.y = {1.0, 2.0, 3.0};
    EXPECT_TRUE(page_data(chart_page(chart))["quality"].is_null());
    MapTrust trust;
    chart.trust = &trust;
    EXPECT_TRUE(page_data(chart_page(chart))["quality"].is_null());
    trust = {{{"Cost", "1.25", "<low> is good."}}, 30, {1.0 / 3.0, 0.5, 1.0}};
    EXPECT_EQ(page_data(chart_page(chart))["quality"],
              json::parse(R"({"numbers": [["Cost", "1.25", "<low> is good."]],
                              "neighbours": 30, "kept": [0.333, 0.5, 1.0], "stability": null,
                              "reliability": null})"));
    trust.kept.pop_back();
    EXPECT_EQ(page_data(chart_page(chart))["quality"]["kept"], json::array());
    RowReliability rows{
        {{"cost", "<b>", {1.0 / 3.0, 2e-7, std::nan("")}}, {"q", "", {0.05000193, 0.5, 1.0}}},
        1,
        2,
        {{2}, {}, {0, 1}},
        {{}, {}, {}}};
    trust.rows = std::make_shared<RowReliability>(rows);
    EXPECT_EQ(page_data(chart_page(chart))["quality"]["reliability"],
              json::parse(R"({"columns": [{"name": "cost", "title": "<b>",
                                           "values": [0.333333, 2e-7, null]},
                                          {"name": "q", "title": "",
                                           "values": [0.0500019, 0.5, 1.0]}],
                              "near": 1, "far": 2, "falselyNear": [[2], [], [0, 1]],
                              "torn": [[], [], []]})"));
    rows.torn.pop_back();
    trust.rows = std::make_shared<RowReliability>(rows);
    EXPECT_TRUE(page_data(chart_page(chart))["quality"]["reliability"].is_null());
}

TEST(ChartPageData, HasHowFarTheMapStaysOnOthers) {
    Chart chart;
    chart.x = chart.y = {1.0, 2.0};
    RecordedStability stability;
    stability.seeds = 5;
    stability.draws = 4;
    stability.neighbours = 10;
    stability.columns = {{"spread_seeds", "<b>", {0.123456, std::nan("")}}};
    stability.pairs = {{0, 2, 0.95, 1.0, std::nan(""), false}};
    MapTrust trust;
    trust.numbers = {{"Cost", "1.25", "Low is good."}};
    trust.stability = std::make_shared<RecordedStability>(stability);
    chart.trust = &trust;
    EXPECT_EQ(page_data(chart_page(chart))["quality"]["stability"],
              json::parse(R"({"seeds": 5, "draws": 4, "neighbours": 10,
                              "columns": [{"name": "spread_seeds", "title": "<b>",
                                           "values": [0.123456, null]}],
                              "pairs": [[1, 3, 0.95, 1, null, false]]})"));
    chart.x.push_back(3.0);
    chart.y.push_back(3.0);
    EXPECT_TRUE(page_data(chart_page(chart))["quality"]["stability"].is_null());
}

TEST(ChartPageData, OfTooManyPointsIsASentence) {
    Chart chart;
    chart.title = "<b>Cells</b>";
    chart.name = "cells_tsne";
    chart.x.resize(kMostPagePoints + 1);
    chart.y.resize(kMostPagePoints + 1);
    const std::string page = chart_page(chart);
    EXPECT_THAT(page,
                HasSubstr("<h1>&lt;b&gt;Cells&lt;/b&gt;</h1>\n<p>This map has 3000001 points, "));
    EXPECT_THAT(page, HasSubstr("cells_tsne.csv"));
    EXPECT_THAT(page, HasSubstr("default-src 'none'"));
    EXPECT_LT(page.size(), 2000U);
}

TEST(ChartPageEscapes, EveryTextForWhereItLands) {
    const std::string hostile = "</script><img src=x onerror=alert(1)> & \" ' \xE2\x80\xA8 \xFF\n";
    Chart chart;
    chart.title = chart.name = chart.x_title = chart.y_title = hostile;
    chart.texts = chart.category_order = chart.colours = chart.links = chart.labels = {hostile};
    chart.colour_scheme = hostile;
    chart.x = chart.y = {1.0};
    const std::vector<std::string> texts = {hostile};
    const std::vector<std::string> groups = {"Group:<1>:2"};
    const std::vector<std::pair<std::string, std::string>> parameters = {{hostile, hostile}};
    chart.names = chart.functions = texts;
    chart.groups = groups;
    chart.parameters = parameters;
    const std::string html = chart_page(chart);
    expect_no_markup_from_data(html);
    const std::string shown =
        "</script><img src=x onerror=alert(1)> & \" ' \xE2\x80\xA8 \xEF\xBF\xBD\n";
    const json data = page_data(html);
    EXPECT_EQ(data["names"][0], shown);
    EXPECT_EQ(data["functions"][0], shown);
    EXPECT_EQ(data["labels"][0], shown);
    EXPECT_EQ(data["title"], shown);
    EXPECT_EQ(data["parameters"][0][1], shown);
    EXPECT_EQ(title_of(html),
              "&lt;/script&gt;&lt;img src=x onerror=alert(1)&gt; &amp; &quot; &#39; "
              "\xE2\x80\xA8 \xEF\xBF\xBD ");
}

RC_GTEST_PROP(ChartPageEscapes, AnyBytes, (const std::string& text)) {
    Chart chart;
    chart.title = text;
    chart.labels = {text};
    chart.x = chart.y = {0.0};
    const std::vector<std::string> texts = {text};
    chart.names = chart.groups = chart.functions = texts;
    const std::string html = chart_page(chart);
    expect_no_markup_from_data(html);
    const json data = page_data(html);
    RC_ASSERT(data["labels"].size() == 1U);
    RC_ASSERT(data["names"][0] == data["functions"][0]);
}

TEST(PageTemplate, HasItsTwoPlacesInOrder) {
    const std::string page(page_template());
    EXPECT_EQ(count(page, "{{page-title}}"), 1U);
    EXPECT_EQ(count(page, "{{chart-data}}"), 1U);
    EXPECT_LT(page.find("{{page-title}}"), page.find("{{chart-data}}"));
    EXPECT_THAT(page, HasSubstr("default-src 'none'"));
    EXPECT_THAT(page, Not(HasSubstr("unsafe-")));
}

}  // namespace

}  // namespace ovik
