#include "tools/reported_call.h"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "results/digest.h"
#include "util/input_error.h"

#include "tests/support/refusal.h"
#include "tests/support/temporary_directory.h"

namespace ovik::tool {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;

json plain_report() {
    return json::parse(R"({
        "report": 1, "program": "ovik-tsne", "version": "0.9",
        "command_line": ["ovik-tsne", "old.tsv", "--json", "r.json", "--clusters", "--model", "m",
                         "--preset", "refined", "--delimiter", "comma", "--labels", "l.txt"],
        "options": {"theta": 0.25, "metric": "pearson", "neighbours": null, "title": "T"},
        "threads": 2,
        "platform": {"processor": "P", "architecture": "A", "instructions": "I",
                     "system": "S", "c_library": "C", "compiler": "K"},
        "given_files": [],
        "input": {"path": "old.tsv", "rows": 80, "columns": 3,
                  "digest": {"values": "aa", "names": "bb"}},
        "runs": [{"perplexity": 12.5, "last_iteration": 9, "costs": [3.5, null],
                  "embedding": {"algorithm": "XXH3-64", "digest": "00ff"}}],
        "exit_status": 0})");
}

class ReportedCallTest : public testing::Test {
  protected:
    ReportedCall read(const json& report) const {
        return read_reported_call(directory_.write("r.json", report.dump()));
    }

    /// Why a report is refused.
    std::string refusal(const json& report) const {
        return test::refusal_of([&] { read(report); });
    }

    Options again(const json& report, const Options& call = {}) const {
        return options_to_reproduce(read(report), call);
    }

    test::TemporaryDirectory directory_;
};

TEST_F(ReportedCallTest, HasWhatDecidesItsMaps) {
    const ReportedCall call = read(plain_report());
    EXPECT_EQ(call.version, "0.9");
    EXPECT_EQ(call.rows, 80U);
    EXPECT_EQ(call.columns, 3U);
    EXPECT_EQ(call.values, "aa");
    EXPECT_EQ(call.names, "bb");
    EXPECT_EQ(call.platform, (Platform{"P", "A", "I", "S", "C", "K"}));
    ASSERT_EQ(call.runs.size(), 1U);
    EXPECT_EQ(call.runs[0].perplexity, 12.5);
    EXPECT_EQ(call.runs[0].last_iteration, 9);
    EXPECT_EQ(call.runs[0].embedding, "00ff");
    ASSERT_EQ(call.runs[0].costs.size(), 2U);
    EXPECT_TRUE(std::isnan(call.runs[0].costs[1]));
}

TEST_F(ReportedCallTest, IsRefusedWhereItCannotBeMadeAgain) {
    json report = plain_report();
    report["placement"] = json::object();
    EXPECT_THAT(refusal(report), HasSubstr("rows that were placed on a map"));
    report = plain_report();
    report["choice"] = json::object();
    EXPECT_THAT(refusal(report), HasSubstr("a choice of perplexity leaves no map to compare"));
    report = plain_report();
    report["runs"] = json::array();
    EXPECT_THAT(refusal(report), HasSubstr("has no run"));
    report = plain_report();
    report["runs"][0].erase("embedding");
    EXPECT_THAT(refusal(report), HasSubstr("has no digest of the map: version 0.9"));
    report = plain_report();
    report["runs"][0]["seeds"] = json::parse("[{\"seed\": 1, \"complete\": false}]");
    EXPECT_THAT(refusal(report), HasSubstr("of several seeds of which some were ended early"));
}

TEST_F(ReportedCallTest, IsRefusedWhereItIsNone) {
    for (const char* const text : {"", "{", "[]", "3", "{\"runs\": []}"}) {
        const std::string path = directory_.write("r.json", text);
        EXPECT_NE(test::refusal_of([&] { read_reported_call(path); }), "") << text;
    }
    json report = plain_report();
    report.erase("platform");
    EXPECT_THAT(refusal(report), HasSubstr("not the report of a run"));
    EXPECT_THAT(test::refusal_of([&] { read_reported_call(directory_.file("none")); }),
                HasSubstr("No such file or directory"));
}

TEST_F(ReportedCallTest, GivesOptionsOfTheReportForAnotherMatrix) {
    Options call;
    call.matrix = "new.tsv";
    call.threads = 3;
    call.quiet = true;
    const Options options = again(plain_report(), call);
    EXPECT_EQ(options.matrix, "new.tsv");
    EXPECT_EQ(options.threads, 3);
    EXPECT_TRUE(options.quiet);
    EXPECT_EQ(options.load.delimiter, ',');
    EXPECT_EQ(options.fit.theta, 0.25);
    EXPECT_EQ(options.fit.metric, MetricKind::Pearson);
    EXPECT_TRUE(options.given.contains("theta"));
    EXPECT_FALSE(options.given.contains("neighbours"));
    EXPECT_THAT(options.perplexities, ElementsAre(12.5));
}

TEST_F(ReportedCallTest, LeavesResultsAndPresetsAway) {
    const Options options = again(plain_report());
    EXPECT_EQ(options.preset, PresetKind::Classic);
    EXPECT_FALSE(options.clusters);
    EXPECT_FALSE(options.plots);
    for (const std::string& path :
         {options.report_file, options.model, options.into, options.load.labels_file}) {
        EXPECT_EQ(path, "");
    }
}

TEST_F(ReportedCallTest, IsRefusedWhereThisVersionDoesNotUnderstandIt) {
    json report = plain_report();
    report["command_line"].push_back("--of-another-version");
    testing::internal::CaptureStderr();
    EXPECT_THAT(test::refusal_of([&] { again(report); }),
                HasSubstr("this version does not take the command line of the report, which is of "
                          "version 0.9"));
    EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("--of-another-version"));
}

/// A report with a file of the start.
json report_with_start(const std::string& bytes) {
    json report = plain_report();
    report["command_line"] = {"ovik-tsne", "old.tsv", "--start", "gone/start.tsv"};
    report["options"] = {{"start", "given"}};
    report["given_files"] = {{{"option", "start"},
                              {"path", "start.tsv"},
                              {"algorithm", "XXH3-128"},
                              {"digest", hexadecimal(digest_of(std::string_view(bytes)))}}};
    return report;
}

TEST_F(ReportedCallTest, FindsGivenFilesBesideTheReport) {
    const std::string path = directory_.write("start.tsv", "places");
    const Options options = again(report_with_start("places"));
    EXPECT_EQ(options.start_file, path);
    EXPECT_EQ(options.fit.start, StartKind::Given);
}

TEST_F(ReportedCallTest, TakesGivenFilesFromWhereTheyAreNow) {
    Options call;
    call.start_file = directory_.write("moved.tsv", "places");
    EXPECT_EQ(again(report_with_start("places"), call).start_file, call.start_file);
}

TEST_F(ReportedCallTest, RefusesGivenFilesThatAreGoneOrOthers) {
    EXPECT_THAT(test::refusal_of([&] { again(report_with_start("places")); }),
                HasSubstr("start.tsv: the file of --start is not there\nSay where it is now"));
    directory_.write("start.tsv", "other places");
    EXPECT_THROW(again(report_with_start("places")), DifferenceFound);
    json report = report_with_start("places");
    report["given_files"][0]["digest"] = nullptr;
    EXPECT_THAT(test::refusal_of([&] { again(report); }), HasSubstr("--start was no plain file"));
}

}  // namespace
}  // namespace ovik::tool
