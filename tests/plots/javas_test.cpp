#include "plots/javas.h"

#include <array>
#include <filesystem>
#include <limits>
#include <stdexcept>
#include <system_error>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "results/result_table.h"

#include "tests/support/page_data.h"
#include "tests/support/temporary_directory.h"

namespace ovik {

namespace {

using nlohmann::json;
using test::page_data;
using testing::HasSubstr;

std::string title_of(const std::string& page) {
    const std::size_t start = page.find("<title>") + 7;
    return page.substr(start, page.find("</title>", start) - start);
}

class ChartPage : public testing::Test {
  protected:
    /// The calls of a run on some coordinates.
    template <typename T>
    std::string page(std::vector<std::array<T, 2>> coordinates,
                     const std::vector<std::string>& labels = {},
                     const std::vector<std::string>& options = {"false", ""},
                     const PlottedRun<T>* run = nullptr) {
        std::vector<T*> rows;
        for (auto& row : coordinates) {
            rows.push_back(row.data());
        }
        Javas<T> chart(directory_.prefix(), "yeast");
        chart.set_param(static_cast<int>(rows.size()), 2, nullptr);
        chart.set_postfix("tsne_30_0");
        if (run != nullptr) {
            chart.setRun(*run);
        }
        int parameters[] = {30, 180, 75, 120, 130, 90, -90, 0, 1};
        chart.plotting("scatter",
                       rows.data(),
                       {"", "Component 1", "Component 2", "", "", "", ""},
                       {},
                       {},
                       options,
                       parameters,
                       {"", ""},
                       labels);
        const std::string path = directory_.file("yeast_tsne_30_0.html");
        return std::filesystem::is_regular_file(path) ? test::read_file(path) : "";
    }

    void writeTable(const std::vector<std::array<double, 2>>& coordinates,
                    const std::vector<std::string>& names,
                    const std::vector<std::string>& groups,
                    const std::vector<std::string>& functions) {
        const ResultTable<double> table{coordinates, names, groups, functions};
        ASSERT_EQ(write_result_table(directory_.file("yeast_tsne_30_0.csv"), table),
                  std::error_code());
    }

    test::TemporaryDirectory directory_;
};

TEST_F(ChartPage, HoldsWhatTheCallsSay) {
    const json data = page_data(page<double>({{1.5, -2}, {0, 4}}, {"a", "b"}));
    EXPECT_EQ(data["type"], "scatter");
    EXPECT_EQ(data["name"], "yeast_tsne_30_0");
    EXPECT_EQ(data["title"], "yeast_tsne_30_0");
    EXPECT_EQ(data["texts"], json({"", "", "", ""}));
    EXPECT_EQ(data["layout"],
              json({{"margins", {30, 180, 75, 120}},
                    {"legendWidth", 130},
                    {"xTickTurn", 90},
                    {"yTitleTurn", -90},
                    {"tickDecimals", 0},
                    {"grid", true}}));
    EXPECT_EQ(data["showLabels"], false);
    EXPECT_EQ(data["links"], json::array());
    EXPECT_EQ(data["pointCount"], 2);
    EXPECT_EQ(data["labels"], json({"a", "b"}));
    EXPECT_EQ(data["pairs"],
              json::array({{{"group", ""},
                            {"xTitle", "Component 1"},
                            {"yTitle", "Component 2"},
                            {"x", {1.5, 0.0}},
                            {"y", {-2.0, 4.0}}}}));
}

TEST_F(ChartPage, TakesNamesAndFunctionsFromTheTable) {
    writeTable({{1.5004, -2}, {0, 4}},
               {"ADE5,7", "\"x\""},
               {"Group:1:2", "Group:1:2"},
               {"Enzyme, of \"some\" kind", ""});
    const json data = page_data(page<double>({{1.5004, -2}, {0, 4}}));
    EXPECT_EQ(data["names"], json({"ADE5,7", "\"x\""}));
    EXPECT_EQ(data["functions"], json({"Enzyme, of \"some\" kind", ""}));
    EXPECT_EQ(data["pairs"][0]["group"], "Group:1:2");
}

TEST_F(ChartPage, HasATabForEachPairOfComponents) {
    const std::vector<std::array<double, 2>> coordinates = {{1, 2}, {3, 4}, {1, 5}, {3, 6}};
    writeTable(coordinates,
               {"A", "B", "A", "B"},
               {"Group:1:2", "Group:1:2", "Group:1:3", "Group:1:3"},
               {"f", "g", "f", "g"});
    const json data = page_data(page<double>(coordinates, {"a", "b"}));
    EXPECT_EQ(data["pointCount"], 2);
    EXPECT_EQ(data["names"], json({"A", "B"}));
    EXPECT_EQ(data["labels"], json({"a", "b"}));
    ASSERT_EQ(data["pairs"].size(), 2U);
    EXPECT_EQ(data["pairs"][1]["yTitle"], "Component 3");
    EXPECT_EQ(data["pairs"][1]["y"], json({5.0, 6.0}));
    // A label per row is as good.
    EXPECT_EQ(page_data(page<double>(coordinates, {"a", "b", "a", "b"}))["labels"],
              json({"a", "b"}));
    EXPECT_EQ(page_data(page<double>(coordinates, {"a", "b", "c"}))["labels"], json::array());
}

TEST_F(ChartPage, DoesNotTakeTheTableOfAnotherRun) {
    writeTable({{1.5, -2}, {9, 9}}, {"A", "B"}, {"Group:1:2", "Group:1:2"}, {"f", "g"});
    EXPECT_EQ(page_data(page<double>({{1.5, -2}, {0, 4}}))["names"], json::array());
    EXPECT_EQ(page_data(page<double>({{1.5, -2}}))["names"], json::array());
}

TEST_F(ChartPage, OfARunTakesNothingFromATable) {
    writeTable({{1.5, -2}, {1.5, -2}}, {"X", "Y"}, {"Group:1:2", "Group:1:3"}, {"f", "g"});
    const std::vector<std::string> names = {"A", "line\nbreak"};
    const std::vector<std::string> groups(2, "Group:1:2");
    const std::vector<std::string> functions = {"enzyme", ""};
    PlottedRun<double> run;
    run.names = names;
    run.groups = groups;
    run.functions = functions;
    const json data = page_data(page<double>({{1.5, -2}, {1.5, -2}}, {}, {"false", ""}, &run));
    EXPECT_EQ(data["names"], json(names));
    EXPECT_EQ(data["functions"], json(functions));
    EXPECT_EQ(data["pairs"].size(), 1U);
    EXPECT_EQ(data["pairs"][0]["group"], "Group:1:2");
    // A run without texts has none, whatever the table says.
    const PlottedRun<double> bare;
    const json plain = page_data(page<double>({{1.5, -2}, {1.5, -2}}, {}, {"false", ""}, &bare));
    EXPECT_EQ(plain["names"], json::array());
}

TEST_F(ChartPage, RefusesARunOfOtherRows) {
    const std::vector<std::string> names = {"A", "B"};
    PlottedRun<double> run;
    run.names = names;
    EXPECT_THROW(page<double>({{1.5, -2}}, {}, {"false", ""}, &run), std::invalid_argument);
    EXPECT_EQ(directory_.entryCount(), 0U);
}

TEST_F(ChartPage, ShowsTitleAndParametersOfARun) {
    const std::vector<std::pair<std::string, std::string>> parameters = {{"Perplexity", "30"}};
    PlottedRun<float> run;
    run.title = "Yeast & <friends>";
    run.parameters = parameters;
    const std::string html = page<float>({{1.5F, 2.0F}}, {}, {"false", ""}, &run);
    EXPECT_EQ(title_of(html), "Yeast &amp; &lt;friends&gt;");
    EXPECT_EQ(page_data(html)["title"], run.title);
    EXPECT_EQ(page_data(html)["parameters"], json::array({{"Perplexity", "30"}}));
}

TEST_F(ChartPage, IsTheSameForTheSameInput) {
    const std::string first = page<double>({{1.5, -2}, {0, 4}}, {"a", "b"});
    EXPECT_EQ(page<double>({{1.5, -2}, {0, 4}}, {"a", "b"}), first);
}

TEST_F(ChartPage, HasNoNumbersThatAreNone) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    const json data = page_data(page<double>({{nan, 1}, {inf, -inf}}));
    EXPECT_EQ(data["pairs"][0]["x"], json({nullptr, nullptr}));
    EXPECT_EQ(data["pairs"][0]["y"], json({1.0, nullptr}));
}

TEST_F(ChartPage, CanBeEmpty) {
    const json data = page_data(page<double>({}));
    EXPECT_EQ(data["pointCount"], 0);
    EXPECT_EQ(data["pairs"], json::array());
}

TEST_F(ChartPage, ReadsItsOptions) {
    EXPECT_EQ(page_data(page<double>({}, {}, {"true", "viridis"}))["showLabels"], true);
    EXPECT_EQ(page_data(page<double>({}, {}, {"true", "viridis"}))["colourScheme"], "viridis");
    EXPECT_EQ(page_data(page<double>({}, {}, {}))["showLabels"], false);
}

TEST_F(ChartPage, IsAScatterOnly) {
    Javas<double> chart(directory_.prefix(), "n");
    EXPECT_EQ(chart.base_path, directory_.prefix() + "n");
    EXPECT_THAT(chart.sides, testing::ElementsAre("top", "right", "bottom", "left"));
    int parameters[9] = {};
    EXPECT_THROW(chart.plotting("pie", nullptr, {}, {}, {}, {}, parameters, {}, {}),
                 std::invalid_argument);
}

TEST_F(ChartPage, SaysThatItCannotBeWritten) {
    std::filesystem::create_directory(directory_.file("yeast_tsne_30_0.html"));
    testing::internal::CaptureStdout();
    page<double>({{1, 2}});
    EXPECT_THAT(
        testing::internal::GetCapturedStdout(),
        HasSubstr("Error: I cannot write file: " + directory_.file("yeast_tsne_30_0.html")));
}

}  // namespace

}  // namespace ovik
