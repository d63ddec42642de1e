#include "tools/comparison.h"

#include <cmath>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "util/input_error.h"

#include "tests/support/temporary_directory.h"

namespace ovik::tool {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

struct Written {
    bool done = false;
    std::string page;
    std::string out;
    std::string err;
};

class ComparisonTest : public testing::Test {
  protected:
    /// A run of the directory with a chart page and a figure.
    [[nodiscard]] ComparisonEntry entry(const std::string& title, double perplexity) const {
        ComparisonEntry entry;
        entry.title = title;
        entry.rows = 100;
        entry.columns = 1;
        entry.run.perplexity = perplexity;
        entry.run.iteration = 999;
        entry.run.final_cost = 1.23456;
        entry.run.quality = {{10, 0.98765, 0.5}};
        entry.run.files = {{"Chart page", "runs/m.html", ""},
                           {"Figure", "runs/m.png", ""},
                           {"Figure", "runs/m.svg", ""},
                           {"Run log", "runs/m.log", "No space left on device"}};
        entry.directory = directory_.prefix();
        return entry;
    }

    Written write(const std::string& path, const std::vector<ComparisonEntry>& entries) {
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        const bool done = write_comparison(path, entries);
        std::string out = testing::internal::GetCapturedStdout();
        std::string err = testing::internal::GetCapturedStderr();
        return {done, test::read_file(path), out, err};
    }

    test::TemporaryDirectory directory_;
    std::string path_ = directory_.file("page.html");
};

TEST_F(ComparisonTest, TellsOfTheInputOnceAndOfEveryRun) {
    const Written written = write(path_, {entry("Yeast", 5.0), entry("Yeast", 12.75)});
    EXPECT_TRUE(written.done);
    EXPECT_EQ(written.out, "-- Comparison: " + path_ + "\n");
    EXPECT_EQ(written.err, "");
    const std::size_t input = written.page.find("100 rows, 1 column");
    ASSERT_NE(input, std::string::npos);
    EXPECT_EQ(written.page.find("100 rows, 1 column", input + 1), std::string::npos);
    for (const char* const text : {"Yeast",
                                   "Barnes-Hut t-SNE, theta 0.5",
                                   "Perplexity 5<",
                                   "Perplexity 12.75",
                                   "999",
                                   "1.2346",
                                   "Kept of the nearest 10",
                                   "0.9877",
                                   "50.0 %",
                                   "Figure (png)",
                                   "Figure (svg)"}) {
        EXPECT_THAT(written.page, HasSubstr(text));
    }
    // Of a file that is not there nothing is said.
    EXPECT_THAT(written.page, Not(HasSubstr("m.log")));
}

TEST_F(ComparisonTest, LeadsToTheFilesFromWhereItIs) {
    std::filesystem::create_directories(directory_.file("pages"));
    const Written beside = write(path_, {entry("Yeast", 5.0)});
    EXPECT_THAT(beside.page, HasSubstr("\"./runs/m.png\""));
    const Written below = write(directory_.file("pages/page.html"), {entry("Yeast", 5.0)});
    EXPECT_THAT(below.page, HasSubstr("\"./../runs/m.png\""));
}

TEST_F(ComparisonTest, TellsRunsOfDifferentInputApart) {
    ComparisonEntry other = entry("Mouse", 5.0);
    other.rows = 2;
    other.options.theta = 0.0;
    const Written written = write(path_, {entry("Yeast", 5.0), other});
    for (const char* const text : {"Comparison of runs",
                                   "Yeast: perplexity 5",
                                   "Mouse: perplexity 5",
                                   "100 rows, 1 column",
                                   "2 rows, 1 column",
                                   "exact t-SNE"}) {
        EXPECT_THAT(written.page, HasSubstr(text));
    }
}

TEST_F(ComparisonTest, TellsWhatARunHasChosen) {
    ComparisonEntry uniform = entry("Yeast", std::nan(""));
    uniform.options.affinity = AffinityKind::Uniform;
    uniform.options.metric = MetricKind::Pearson;
    const Written written = write(path_, {entry("Yeast", 5.0), uniform});
    EXPECT_THAT(written.page, HasSubstr("Perplexity 5<"));
    EXPECT_THAT(written.page, HasSubstr("Uniform affinities of 15 neighbours<"));
    EXPECT_THAT(written.page, HasSubstr("metric pearson, affinity uniform, neighbours 15"));
    EXPECT_THAT(write(path_, {entry("Yeast", 5.0)}).page, Not(HasSubstr("Choices")));
}

TEST_F(ComparisonTest, LaysTheMapsOntoOneAndSaysSo) {
    ComparedGenes genes;
    genes.names = {"A", "B", "C"};
    const auto rows = std::make_shared<const ComparedGenes>(genes);
    genes.names = {"A", "B", "C", "D"};
    const auto more_rows = std::make_shared<const ComparedGenes>(genes);
    ComparisonEntry first = entry("Yeast", 5.0);
    first.map = {rows, 2, {0, 0, 1, 0, 0, 2}};
    ComparisonEntry second = entry("Yeast", 12.75);
    second.map = {more_rows, 2, {5, 5, 5, 6, 7, 5, 9, 9}};
    const ComparisonEntry third = entry("Yeast", 30.0);
    const std::string page = write(path_, {first, second, third}).page;
    EXPECT_THAT(page, HasSubstr("to that of &quot;Perplexity 12.75&quot; (Procrustes)"));
    EXPECT_THAT(page, HasSubstr("<p class=\"note\">1 gene of the others is not in this map."));
    EXPECT_THAT(page, HasSubstr("The coordinates of this map could not be read."));
    EXPECT_THAT(page, HasSubstr("\"pointCount\":4,\"reference\":1,"));
    // A mirrored map is the same map.
    EXPECT_THAT(page, HasSubstr("<td>0.000</td><td>100.0 %</td>"));
    ComparisonEntry stranger = first;
    genes.names = {"X", "Y", "Z"};
    stranger.map.rows = std::make_shared<const ComparedGenes>(genes);
    const std::string strange = write(path_, {first, stranger}).page;
    EXPECT_THAT(strange, HasSubstr("It lies as it is: it has too few genes in common"));
    EXPECT_THAT(strange, Not(HasSubstr("(Procrustes)")));
}

TEST_F(ComparisonTest, OfNoRunsIsAPage) {
    const Written written = write(path_, {});
    EXPECT_TRUE(written.done);
    EXPECT_THAT(written.page, HasSubstr("Comparison of runs"));
}

TEST_F(ComparisonTest, SaysWhyItCouldNotBeWritten) {
    const Written written = write(directory_.file("missing/page.html"), {entry("Yeast", 5.0)});
    EXPECT_FALSE(written.done);
    EXPECT_EQ(written.err,
              "ovik-tsne: Comparison could not be written: " +
                  directory_.file("missing/page.html") + " (No such file or directory)\n");
}

class CollectReports : public ComparisonTest {
  protected:
    /// A report with one run.
    std::string report(const std::string& name, const std::string& perplexity) {
        return directory_.write(name,
                                R"({"input": {"rows": 40, "columns": 7},
                "options": {"title": "Yeast", "theta": 0, "unknown": 1},
                "runs": [{"perplexity": )" +
                                    perplexity + R"(, "last_iteration": 20, "final_cost": 0.5,
                          "quality": [{"neighbours": 10, "trustworthiness": 0.9,
                                       "preservation": 0.25}],
                          "files": [{"what": "Figure", "path": "a.png", "failure": null},
                                    {"what": "Chart page", "path": "a.html",
                                     "failure": "No space left on device"}]}]})");
    }

    ExitStatus collect(const std::vector<std::string>& reports) {
        Options options;
        options.collected_reports = reports;
        options.out_dir = directory_.file("made/");
        options.name = "collected";
        testing::internal::CaptureStdout();

        struct EndOfCapture {
            ~EndOfCapture() { testing::internal::GetCapturedStdout(); }
        } end_of_capture;

        return collect_reports(options);
    }

    std::string refusal(const std::string& path) {
        try {
            collect({path});
        } catch (const InputError& error) {
            return error.what();
        }
        return "";
    }

    std::string page_ = directory_.file("made/collected_tsne_comparison.html");
};

TEST_F(CollectReports, MakesAPageOfRunsByTheirPerplexity) {
    EXPECT_EQ(collect({report("b.json", "30"), report("a.json", "5.5")}), Success);
    const std::string page = test::read_file(page_);
    const std::size_t first = page.find("Perplexity 5.5");
    const std::size_t second = page.find("Perplexity 30");
    ASSERT_NE(first, std::string::npos);
    ASSERT_NE(second, std::string::npos);
    EXPECT_LT(first, second);
    EXPECT_THAT(page, HasSubstr("40 rows, 7 columns"));
    EXPECT_THAT(page, HasSubstr("exact t-SNE"));
    EXPECT_THAT(page, HasSubstr("<td>0.9000</td>"));
    EXPECT_THAT(page, HasSubstr("<td>25.0 %</td>"));
    EXPECT_THAT(page, HasSubstr("\"./../a.png\""));
    EXPECT_THAT(page, Not(HasSubstr("a.html")));
}

TEST_F(CollectReports, SaysOfAChoiceThatCopiesAreNoSignal) {
    const auto judged = [this](const std::string& name, const std::string& perplexity) {
        return directory_.write(name,
                                R"({"input": {"rows": 600, "columns": 7, "duplicate_rows": 300},
                "options": {"title": "Yeast"}, "runs": [{"perplexity": )" +
                                    perplexity +
                                    R"(, "last_iteration": 20, "final_cost": 0.5, "quality": [],
                "noise": {"matrices": 5, "neighbours": 30, "groups": 5, "least_chance": 0.001,
                "kept": {"better": 0.5, "told": 0.5, "least_rate": 0.01, "signal": 0.5,
                "needed": 0}, "misfit": {"better": 0.5, "told": 0.0, "least_rate": 0.1,
                "signal": 0.5, "needed": 9}},
                "trials": {"seeds": 2, "columns": 0, "neighbours": 10, "shared_by_seeds": 0.5,
                "shared_by_columns": null, "spread_by_seeds": 0.1, "spread_by_columns": null},
                "files": []}]})");
    };
    EXPECT_EQ(collect({judged("a.json", "5"), judged("b.json", "30")}), Success);
    EXPECT_THAT(test::read_file(page_),
                HasSubstr("But 300 rows hold the same values as an earlier one"));
}

TEST_F(CollectReports, TakesTheMapsOfTheResultTables) {
    const auto table_of = [this](const std::string& name, const std::string& places) {
        directory_.write(name + ".csv",
                         "name,data in xaxis,data in yaxis,size,group,what\n" + places);
        return directory_.write(name + ".json",
                                R"({"input": {"rows": 3, "columns": 7},
                "options": {"title": "Yeast"}, "runs": [{"perplexity": 5, "last_iteration": 20,
                "final_cost": 0.5, "quality": [], "seconds": {"similarities": 0.25, "fitting": 1,
                "results": 1}, "files": [{"what": "Result table", "path": ")" +
                                    name + R"(.csv", "failure": null}]}]})");
    };
    const std::string first = table_of("a",
                                       "A,0,0,1,Group:1:2,\"kinase\"\nB,1,0,1,Group:1:2,\"\"\n"
                                       "C,0,3.5,1,Group:1:2,\"\"\n");
    const std::string second = table_of("b",
                                        "C,0,-3.5,1,Group:1:2,\"\"\nB,1,0,1,Group:1:2,\"\"\n"
                                        "A,0,0,1,Group:1:2,\"kinase\"\n");
    EXPECT_EQ(collect({first, second}), Success);
    const std::string page = test::read_file(page_);
    EXPECT_THAT(page,
                HasSubstr("\"names\":[\"A\",\"B\",\"C\"],\"functions\":[\"kinase\",\"\",\"\"]"));
    EXPECT_THAT(page, HasSubstr("<td>0.000</td><td>100.0 %</td>"));
    EXPECT_THAT(page, HasSubstr("<td>1.25</td>"));
}

TEST_F(CollectReports, RefusesWhatIsNoReport) {
    const std::string missing = directory_.file("missing.json");
    EXPECT_EQ(refusal(missing), missing + ": No such file or directory");
    for (const char* const text :
         {"", "{", "[]", "{}", R"({"input": {"rows": 1, "columns": 1}})"}) {
        const std::string path = directory_.write("odd.json", text);
        EXPECT_EQ(refusal(path),
                  path + ": not the report of a run\nGive the files that runs wrote with --json.");
    }
    // A run that lacks something, and one of another kind.
    EXPECT_NE(refusal(report("odd.json", "\"many\"")), "");
    EXPECT_NE(
        refusal(directory_.write(
            "odd.json",
            R"({"input": {"rows": 1, "columns": 1}, "options": {"title": ""}, "runs": [{}]})")),
        "");
    EXPECT_FALSE(std::filesystem::exists(directory_.file("made")));
}

TEST_F(CollectReports, FailsWhereThePageCannotBeWritten) {
    std::filesystem::create_directories(page_);
    testing::internal::CaptureStderr();
    EXPECT_EQ(collect({report("a.json", "5")}), FailedRun);
    EXPECT_THAT(testing::internal::GetCapturedStderr(),
                StartsWith("ovik-tsne: Comparison could not be written: " + page_));
}

}  // namespace
}  // namespace ovik::tool
