#include "results/run_report.h"

#include <limits>
#include <system_error>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "tests/support/temporary_directory.h"

namespace ovik {
namespace {

using nlohmann::json;

RunReport full_report() {
    RunReport report;
    report.program = "ovik-tsne";
    report.version = "0.2.0";
    report.command_line = {"ovik-tsne", "m\xff.tsv"};
    report.started = 1795287483;
    report.options = {{"theta", "0.5"}, {"title", "\"Yeast\""}};
    report.threads = 2;
    report.platform = {"P 7", "x86_64", "avx2", "Linux", "glibc 2.36", "GCC 12.2.0"};
    report.given_files = {{"start", "/data/s.tsv", Digest{0x3, 0xef}},
                          {"row-names", "/data/pipe", std::nullopt}};
    report.input = "/data/m.tsv";
    report.format = "text";
    report.rows = 80;
    report.columns = 3;
    report.missing_values = 4;
    report.duplicate_rows = 5;
    report.values = {0x1, 0xab};
    report.names = {0x2, 0xcd};
    report.reading_seconds = 0.25;
    report.total_seconds = 1.5;
    report.estimated_memory = 1e7;
    report.peak_memory = 2e7;
    RunRecord run;
    run.perplexity = 12.75;
    run.iteration = 1;
    run.settled = true;
    run.costs = {2.5, std::numeric_limits<double>::quiet_NaN()};
    run.final_cost = 1.25;
    run.embedding = 0x12ef;
    run.variance_kept = 0.5;
    run.seconds = {0.5, 1.0, 0.125};
    run.quality = {{10, 0.75, 0.5}};
    run.files = {{"Result table", "/results/m.csv", ""}, {"Run log", "/results/m.log", "full"}};
    report.runs = {run};
    report.exit_status = 1;
    return report;
}

TEST(RunReport, TellsOfNoiseHowManyRowsAreCopiesAndWhatEachStatisticNeeds) {
    RunReport report = full_report();
    RecordedNoise noise;
    noise.matrices = 5;
    noise.kept = {0.5, 0.25, 0.01, 0.75, 0};
    noise.misfit = {0.25, 0.0, 0.5, 0.25, 7};
    report.runs.front().noise = noise;
    const json told = json::parse(report_json(report, "/results/report.json"))["runs"][0]["noise"];
    EXPECT_EQ(told["duplicate_rows"], 5);
    EXPECT_EQ(told["kept"]["needed"], 0);
    EXPECT_EQ(told["misfit"]["needed"], 7);
}

TEST(RunReport, IsOneLineOfJson) {
    EXPECT_EQ(
        report_json(full_report(), "/results/report.json"),
        "{\"report\":1,\"program\":\"ovik-tsne\",\"version\":\"0.2.0\","
        "\"command_line\":[\"ovik-tsne\",\"m\\ufffd.tsv\"],\"started\":\"2026-11-21T18:58:03Z\","
        "\"options\":{\"theta\":0.5,\"title\":\"Yeast\"},\"threads\":2,"
        "\"platform\":{\"processor\":\"P 7\",\"architecture\":\"x86_64\","
        "\"instructions\":\"avx2\",\"system\":\"Linux\",\"c_library\":\"glibc 2.36\","
        "\"compiler\":\"GCC 12.2.0\"},"
        "\"given_files\":[{\"option\":\"start\",\"path\":\"../data/s.tsv\","
        "\"algorithm\":\"XXH3-128\",\"digest\":\"00000000000000ef0000000000000003\"},"
        "{\"option\":\"row-names\",\"path\":\"../data/pipe\",\"algorithm\":\"XXH3-128\","
        "\"digest\":null}],"
        "\"input\":{\"path\":\"../data/m.tsv\",\"format\":\"text\",\"rows\":80,\"columns\":3,"
        "\"missing_values\":4,\"duplicate_rows\":5,\"digest\":{\"algorithm\":\"XXH3-128\","
        "\"values\":\"00000000000000ab0000000000000001\","
        "\"names\":\"00000000000000cd0000000000000002\"}},"
        "\"seconds\":{\"reading\":0.25,\"total\":1.5},"
        "\"memory_bytes\":{\"estimated\":1e+07,\"peak\":2e+07},"
        "\"runs\":[{\"perplexity\":12.75,\"last_iteration\":1,\"settled\":true,\"final_cost\":1.25,"
        "\"variance_kept\":0.5,"
        "\"seconds\":{\"similarities\":0.5,\"fitting\":1,\"results\":0.125},"
        "\"quality\":[{\"neighbours\":10,\"trustworthiness\":0.75,\"preservation\":0.5}],"
        "\"files\":[{\"what\":\"Result table\",\"path\":\"m.csv\",\"failure\":null},"
        "{\"what\":\"Run log\",\"path\":\"m.log\",\"failure\":\"full\"}],"
        "\"costs\":[2.5,null],"
        "\"embedding\":{\"algorithm\":\"XXH3-64\",\"digest\":\"00000000000012ef\"}}],\"exit_"
        "status\":1}\n");
}

TEST(RunReport, HasTheSeedsOfARunFromSeveral) {
    RunReport report = full_report();
    report.runs[0].seeds = {{11, 1, 2.5, true}, {12, 0, 3.5, false}};
    report.runs[0].kept_seed = 11;
    const auto run = [&] { return json::parse(report_json(report, "/r.json"))["runs"][0]; };
    EXPECT_EQ(
        run()["seeds"],
        json::parse("[{\"seed\":11,\"last_iteration\":1,\"final_cost\":2.5,\"complete\":true},"
                    "{\"seed\":12,\"last_iteration\":0,\"final_cost\":3.5,"
                    "\"complete\":false}]"));
    EXPECT_EQ(run()["kept_seed"], 11);
    EXPECT_TRUE(run()["agreement"].is_null());
    report.runs[0].agreement = RecordedAgreement{0.25, 10, 0.5};
    EXPECT_EQ(run()["agreement"],
              json::parse("{\"disparity\":0.25,\"neighbours\":10,\"shared_neighbours\":0.5}"));
}

TEST(RunReport, KeepsTheNameOfStandardInput) {
    RunReport report = full_report();
    report.input = "-";
    EXPECT_EQ(json::parse(report_json(report, "/results/report.json"))["input"]["path"], "-");
}

TEST(RunReport, IsWrittenWholeOrReported) {
    const test::TemporaryDirectory directory;
    const std::string path = directory.file("report.json");
    EXPECT_EQ(write_run_report(path, full_report()), std::error_code());
    EXPECT_EQ(test::read_file(path), report_json(full_report(), path));
    testing::internal::CaptureStdout();
    EXPECT_EQ(write_run_report(directory.file("none/report.json"), full_report()),
              std::errc::no_such_file_or_directory);
    EXPECT_NE(testing::internal::GetCapturedStdout().find("none/report.json"), std::string::npos);
}

TEST(RunRecord, IsCompleteWithAllItsFiles) {
    RunRecord run;
    EXPECT_TRUE(run.isComplete());
    run.files = {{"Result table", "t.csv", ""}};
    EXPECT_TRUE(run.isComplete());
    run.files.push_back({"Run log", "t.log", "full"});
    EXPECT_FALSE(run.isComplete());
}

}  // namespace
}  // namespace ovik
