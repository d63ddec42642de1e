#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "results/digest.h"

#include "tests/support/command_test.h"

/// The report that the real program writes of a run, and the page that it makes of reports.

namespace ovik {
namespace {

using nlohmann::json;
using test::CommandOutcome;
using test::kBadInput;
using test::kFailedRun;
using test::kSuccess;
using testing::HasSubstr;

std::string matrix() {
    std::string content = "gene\ta\tb\n";
    for (int n = 0; n < 80; ++n) {
        content += "G" + std::to_string(n) + "\t" + std::to_string(n % 9) + "\t" +
                   (n == 3 ? "" : std::to_string(n * n % 13)) + "\n";
    }
    return content;
}

class Report : public test::CommandTest {
  protected:
    /// Runs with a report in the directory of the results.
    json report_of(std::vector<std::string> options) {
        std::filesystem::create_directories(results_);
        options.insert(options.end(), {"--json", results_ + "/run.json"});
        const CommandOutcome outcome = run_on(matrix(), options);
        EXPECT_EQ(outcome.exit_status, kSuccess) << outcome.err;
        EXPECT_THAT(outcome.out, HasSubstr("-- Report: " + results_ + "/run.json\n"));
        return json::parse(result("run.json"));
    }
};

TEST_F(Report, HoldsEverythingAboutTheRun) {
    const json report = report_of({"-p",
                                   "10",
                                   "--title",
                                   "T\xff",
                                   "--quality",
                                   "--plot-cost",
                                   "--coordinates",
                                   "tsv,npy",
                                   "--stop-lying-iter",
                                   "3",
                                   "-j",
                                   "2"});
    EXPECT_EQ(report["report"], 1);
    EXPECT_EQ(report["program"], "ovik-tsne");
    EXPECT_EQ("ovik-tsne " + report["version"].get<std::string>() + "\n", run({"--version"}).out);
    EXPECT_EQ(report["command_line"][1], matrix_path());
    EXPECT_EQ(report["started"].get<std::string>().size(), 20U);
    EXPECT_EQ(report["options"]["title"], "T\xef\xbf\xbd");
    EXPECT_EQ(report["options"]["theta"], 0.5);
    EXPECT_EQ(report["options"]["max_iter"], 5);
    EXPECT_EQ(report["options"]["stop_lying_iter"], 3);
    EXPECT_EQ(report["threads"], 2);
    const json& input = report["input"];
    EXPECT_EQ(input["path"], "../../m.txt");
    EXPECT_EQ(input["format"], "text");
    EXPECT_EQ(input["rows"], 80);
    EXPECT_EQ(input["columns"], 2);
    EXPECT_EQ(input["missing_values"], 1);
    EXPECT_EQ(input["digest"]["values"].get<std::string>().size(), 32U);
    EXPECT_EQ(report["exit_status"], 0);
    for (const char* const memory : {"estimated", "peak"}) {
        EXPECT_GT(report["memory_bytes"][memory], 5e6);
    }
    EXPECT_NE(report["platform"]["compiler"], "");
    EXPECT_NE(report["platform"]["instructions"], "");
    EXPECT_EQ(report["given_files"], json::array());
    ASSERT_EQ(report["runs"].size(), 1U);
    const json& only = report["runs"][0];
    EXPECT_EQ(only["perplexity"], 10.0);
    EXPECT_EQ(only["last_iteration"], 5);
    // The file has a head of 128 bytes.
    const std::string array = result("m_tsne_10_0.npy");
    ASSERT_EQ(array.size(), 128U + 80U * 2U * sizeof(double));
    EXPECT_EQ(only["embedding"]["digest"], hexadecimal(checksum_of(array.substr(128))));
    ASSERT_EQ(only["costs"].size(), 6U);
    EXPECT_GT(only["costs"][0], only["costs"][5]);
    EXPECT_EQ(only["final_cost"], only["costs"][5]);
    EXPECT_EQ(only["quality"][0]["neighbours"], 10);
    EXPECT_GT(only["quality"][0]["trustworthiness"], 0.5);
    EXPECT_GE(report["seconds"]["total"], only["seconds"]["fitting"]);
}

TEST_F(Report, NamesAllFilesThatAreThere) {
    const json report =
        report_of({"-p", "5,10", "--plot-cost", "--coordinates", "tsv,npy", "--no-plots"});
    std::size_t count = 0;
    for (const json& each : report["runs"]) {
        for (const json& file : each["files"]) {
            EXPECT_TRUE(file["failure"].is_null());
            EXPECT_TRUE(std::filesystem::exists(results_ + "/" + file["path"].get<std::string>()))
                << file;
            ++count;
        }
    }
    // Table, log, two forms of coordinates, and the figure of costs.
    EXPECT_EQ(count, 2U * 7U);
}

TEST_F(Report, DependsOnTheValuesAndTheNames) {
    const json digest = report_of({"--missing", "zero"})["input"]["digest"];
    EXPECT_EQ(report_of({"--missing", "zero", "-p", "7"})["input"]["digest"], digest);
    const json other = report_of({"--missing", "row-mean"})["input"]["digest"];
    EXPECT_NE(other["values"], digest["values"]);
    EXPECT_EQ(other["names"], digest["names"]);
}

TEST_F(Report, TellsWhatIsMissing) {
    std::filesystem::create_directories(results_ + "/m_tsne_10_0.csv");
    const CommandOutcome outcome =
        run_on(matrix(), {"-p", "10", "--no-plots", "--json", results_ + "/run.json"});
    EXPECT_EQ(outcome.exit_status, kFailedRun);
    const json report = json::parse(result("run.json"));
    EXPECT_EQ(report["exit_status"], kFailedRun);
    EXPECT_EQ(report["runs"][0]["files"][0]["failure"], "Is a directory");
}

TEST_F(Report, ThatCannotBeWrittenFailsTheRunInTheEnd) {
    std::filesystem::create_directories(results_ + "/run.json");
    const CommandOutcome outcome = run_on(matrix(), {"--json", results_ + "/run.json"});
    EXPECT_EQ(outcome.exit_status, kFailedRun);
    EXPECT_THAT(
        outcome.err,
        HasSubstr("Report could not be written: " + results_ + "/run.json (Is a directory)"));
    EXPECT_NE(table(), "");
}

TEST_F(Report, OfSeveralRunsAreCollectedOnAPage) {
    std::filesystem::create_directories(results_);
    std::vector<std::string> arguments = {"-o", directory_.file("page"), "-n", "all", "--collect"};
    for (const char* const perplexity : {"10", "5"}) {
        const std::string path = results_ + "/" + perplexity + ".json";
        ASSERT_EQ(run_on(matrix(), {"-p", perplexity, "--json", path}).exit_status, kSuccess);
        arguments.push_back(path);
    }
    const CommandOutcome outcome = run(arguments);
    EXPECT_EQ(outcome.exit_status, kSuccess) << outcome.err;
    const std::string page = test::read_file(directory_.file("page/all_tsne_comparison.html"));
    EXPECT_THAT(page, HasSubstr("<img src=\"./../made/results/m_tsne_5_0.png\""));
    EXPECT_THAT(page,
                HasSubstr("<a href=\"./../made/results/m_tsne_10_0.html\">Perplexity 10</a>"));
    EXPECT_LT(page.find("Perplexity 5"), page.find("Perplexity 10"));
}

TEST_F(Report, IsRefusedWhenItIsNone) {
    for (const char* const content : {"", "{", "[]", "{\"runs\": 3}", "{\"input\": {}}"}) {
        const CommandOutcome outcome =
            run({"-o", results_, "--collect", directory_.write("r.json", content)});
        EXPECT_EQ(outcome.exit_status, kBadInput);
        EXPECT_THAT(outcome.err,
                    testing::EndsWith("r.json: not the report of a run\nGive the files that runs "
                                      "wrote with --json.\n"));
        EXPECT_FALSE(std::filesystem::exists(results_));
    }
    EXPECT_THAT(run({"--collect", directory_.file("none")}).err,
                HasSubstr("none: No such file or directory"));
}

TEST_F(Report, IsNotCollectedWhereAMatrixIsGiven) {
    const CommandOutcome outcome = run({"m.tsv", "--collect", directory_.write("r.json", "{}")});
    EXPECT_EQ(outcome.exit_status, kBadInput);
    EXPECT_THAT(outcome.err,
                HasSubstr("--collect: makes a page of reports instead of a run: m.tsv "
                          "would not be read"));
}

}  // namespace
}  // namespace ovik
