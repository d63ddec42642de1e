#include "tools/command_report.h"

#include <algorithm>
#include <string>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "tests/support/temporary_directory.h"

namespace ovik::tool {
namespace {

std::string option(const RunReport& report, const std::string& name) {
    const auto found = std::find_if(report.options.begin(),
                                    report.options.end(),
                                    [&name](const auto& each) { return each.first == name; });
    return found == report.options.end() ? "missing" : found->second;
}

TEST(BeginReport, SaysWhatWasCalledWithWhichNumbers) {
    Options options;
    options.matrix = "yeast.tsv";
    options.title = "Yeast \"A\"";
    options.precision = Precision::Float;
    options.fit.theta = 0.25;
    options.fit.max_iter = 7;
    const RunReport report = begin_report(options, {"ovik-tsne", "yeast.tsv"});
    EXPECT_EQ(report.program, "ovik-tsne");
    EXPECT_EQ(report.version, OVIK_VERSION);
    EXPECT_EQ(report.command_line.size(), 2U);
    EXPECT_EQ(report.input, "yeast.tsv");
    EXPECT_GT(report.started, 0);
    EXPECT_EQ(option(report, "theta"), "0.25");
    EXPECT_EQ(option(report, "max_iter"), "7");
    EXPECT_EQ(option(report, "precision"), "\"float\"");
    EXPECT_EQ(option(report, "transformations"), "null");
    EXPECT_EQ(option(report, "title"), "\"Yeast \\\"A\\\"\"");
}

TEST(BeginReport, NamesWhatIsDoneToTheValues) {
    Options options;
    options.load.transformations = {.log1p = true, .centre = Centring::Rows, .scale = false};
    EXPECT_EQ(option(begin_report(options, {}), "transformations"), "\"log1p, center rows\"");
}

TEST(BeginReport, TellsThePlatformAndGivenFilesWhereAReportIsWanted) {
    const test::TemporaryDirectory directory;
    Options options;
    options.start_file = directory.write("start.tsv", "name\tx\ty\n");
    EXPECT_EQ(begin_report(options, {}).platform, Platform());
    options.report_file = directory.file("r.json");
    const RunReport report = begin_report(options, {});
    EXPECT_EQ(report.platform, this_platform());
    ASSERT_EQ(report.given_files.size(), 1U);
    EXPECT_EQ(report.given_files[0].path, options.start_file);
}

TEST(ReportedOptions, HaveNullForWhatHasNoEffect) {
    Options options;
    options.fit.metric = MetricKind::Pearson;
    options.fit.automatic_rate = true;
    options.fit.schedule = ScheduleKind::Annealed;
    options.fit.multiscale = {10.0, 50.0};
    const RunReport report = begin_report(options, {});
    EXPECT_EQ(option(report, "metric"), "\"pearson\"");
    EXPECT_EQ(option(report, "learning_rate"), "\"auto\"");
    EXPECT_EQ(option(report, "schedule"), "\"annealed\"");
    EXPECT_EQ(option(report, "multiscale"), "[10,50]");
    EXPECT_EQ(option(report, "hold_iter"), "125");
    EXPECT_EQ(option(report, "stop_lying_iter"), "null");
    EXPECT_EQ(option(report, "neighbours"), "null");
    EXPECT_EQ(option(begin_report(Options(), {}), "multiscale"), "[]");
}

TEST(BeginReport, LeavesThePerplexityToTheRuns) {
    EXPECT_EQ(option(begin_report(Options(), {}), "perplexity"), "missing");
}

TEST(WriteReport, SaysWhereItIsOrWhyNot) {
    const test::TemporaryDirectory directory;
    const RunReport report = begin_report(Options(), {});
    testing::internal::CaptureStdout();
    EXPECT_TRUE(write_report(directory.file("run.json"), report));
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "-- Report: " + directory.file("run.json") + "\n");
    EXPECT_EQ(test::read_file(directory.file("run.json")).front(), '{');
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    EXPECT_FALSE(write_report(directory.file("missing/run.json"), report));
    testing::internal::GetCapturedStdout();
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "ovik-tsne: Report could not be written: " + directory.file("missing/run.json") +
                  " (No such file or directory)\n");
}

TEST(EndReport, SaysWhatTheCallCameToAndTook) {
    const test::TemporaryDirectory directory;
    RunReport report = begin_report(Options(), {});
    testing::internal::CaptureStdout();
    EXPECT_EQ(end_report(directory.file("run.json"), report, Interrupted, Stopwatch()),
              Interrupted);
    testing::internal::GetCapturedStdout();
    EXPECT_EQ(report.exit_status, Interrupted);
    EXPECT_GT(report.peak_memory, 1e6);
    EXPECT_GE(report.total_seconds, 0.0);
    const auto written = nlohmann::json::parse(test::read_file(directory.file("run.json")));
    EXPECT_EQ(written.at("exit_status"), static_cast<int>(Interrupted));
}

TEST(EndReport, FailsWhereItCannotBeWritten) {
    const test::TemporaryDirectory directory;
    RunReport report = begin_report(Options(), {});
    testing::internal::CaptureStderr();
    EXPECT_EQ(end_report(directory.file("missing/run.json"), report, Success, Stopwatch()),
              FailedRun);
    EXPECT_NE(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(end_report("", report, Success, Stopwatch()), Success);
}

}  // namespace
}  // namespace ovik::tool
