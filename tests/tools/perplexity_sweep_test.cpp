#include "tools/perplexity_sweep.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "util/input_error.h"

#include "tests/support/random_points.h"
#include "tests/support/temporary_directory.h"
#include "tools/command_report.h"

namespace ovik::tool {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

Options with_perplexities(std::vector<double> perplexities) {
    Options options;
    options.perplexities = std::move(perplexities);
    return options;
}

struct Chosen {
    std::vector<double> perplexities;
    std::string out;
};

Chosen chosen(const Options& options, std::size_t rows) {
    testing::internal::CaptureStdout();
    std::vector<double> perplexities = choose_perplexities(options, rows);
    return {std::move(perplexities), testing::internal::GetCapturedStdout()};
}

TEST(ChoosePerplexities, TakesThoseGivenInTheirOrder) {
    const Chosen given = chosen(with_perplexities({50.0, 5.0, 12.75}), 1000);
    EXPECT_THAT(given.perplexities, ElementsAre(50.0, 5.0, 12.75));
    EXPECT_EQ(given.out, "");
    // One that the rows can hardly bear is the user's.
    EXPECT_THAT(chosen(with_perplexities({28.9}), 30).perplexities, ElementsAre(28.9));
}

TEST(ChoosePerplexities, WarnsOfThoseThatAreLargeForTheRows) {
    testing::internal::CaptureStderr();
    chosen(with_perplexities({1.0, 3.0}), 5);
    EXPECT_EQ(
        testing::internal::GetCapturedStderr(),
        "ovik-tsne: warning: perplexity 3 is large for 5 rows: it should be at most a third of "
        "the 4 others that a row has\n");
}

TEST(ChoosePerplexities, IsTwentyWhereTheRowsAllowIt) {
    for (const std::size_t rows : {61U, 62U, 100000U}) {
        const Chosen usual = chosen({}, rows);
        EXPECT_THAT(usual.perplexities, ElementsAre(20.0));
        EXPECT_EQ(usual.out, "");
    }
}

TEST(ChoosePerplexities, IsTheLargestThatIsAdvisedForFewRows) {
    for (std::size_t rows = 3; rows <= 60; ++rows) {
        const Chosen largest = chosen({}, rows);
        ASSERT_EQ(largest.perplexities.size(), 1U);
        const double perplexity = largest.perplexities[0];
        const auto others = static_cast<double>(rows - 1);
        EXPECT_LE(3.0 * perplexity, others) << rows;
        EXPECT_GT(3.0 * std::nextafter(std::nextafter(perplexity, HUGE_VAL), HUGE_VAL), others);
        EXPECT_THAT(largest.out,
                    HasSubstr(", the largest that is advised for " + std::to_string(rows) +
                              " rows (the usual 20 needs 61)\n"));
    }
    EXPECT_EQ(chosen({}, 31).out,
              "-- Perplexity 10.00, the largest that is advised for 31 rows (the usual 20 needs "
              "61)\n");
}

TEST(ChoosePerplexities, RefusesAsManyNeighboursAsARowHasOthers) {
    for (const double perplexity : {29.0, 29.5, 1e9}) {
        try {
            choose_perplexities(with_perplexities({5.0, perplexity}), 30);
            ADD_FAILURE() << perplexity;
        } catch (const InputError& error) {
            EXPECT_STREQ(error.what(),
                         "--perplexity: a row has 29 others, so it cannot have as many neighbours "
                         "or more\nGive at most a third of that; 5 to 50 are usual.");
        }
    }
}

/// A matrix of random values, as it is loaded.
LoadedMatrix random_matrix(std::size_t rows, std::size_t columns) {
    LoadedMatrix loaded;
    const std::vector<double> values = test::random_values(rows * columns, 441);
    loaded.matrix.report.rows = rows;
    loaded.matrix.report.columns = columns;
    loaded.matrix.values.reset(new double[values.size()]);
    std::copy(values.begin(), values.end(), loaded.matrix.values.get());
    for (std::size_t n = 0; n < rows; ++n) {
        loaded.matrix.row_names.push_back("row" + std::to_string(n));
    }
    loaded.format = "tsv";
    return loaded;
}

/// Options of short runs without plots.
Options short_runs(const test::TemporaryDirectory& directory) {
    Options options;
    options.out_dir = directory.prefix();
    options.name = "m";
    options.title = "m";
    options.plots = false;
    options.fit.max_iter = 10;
    return options;
}

ExitStatus run(const Options& options, const std::vector<double>& perplexities) {
    testing::internal::CaptureStdout();
    const ExitStatus status = run_perplexities(random_matrix(50, 4),
                                               {},
                                               perplexities,
                                               nullptr,
                                               options,
                                               begin_report(options, {}),
                                               Stopwatch());
    testing::internal::GetCapturedStdout();
    return status;
}

TEST(RunPerplexities, LeavesTheTablesOfSeparateRunsAndAReport) {
    const test::TemporaryDirectory directory;
    Options options = short_runs(directory);
    const std::string paths[] = {directory.file("m_tsne_5_0.csv"),
                                 directory.file("m_tsne_9_0.csv")};
    std::vector<std::string> separate;
    for (const double perplexity : {5.0, 9.0}) {
        EXPECT_EQ(run(options, {perplexity}), Success);
        separate.push_back(test::read_file(paths[separate.size()]));
        EXPECT_NE(separate.back(), "");
    }
    EXPECT_FALSE(std::filesystem::exists(directory.file("m_tsne_comparison.html")));
    options.report_file = directory.file("made/report.json");
    std::filesystem::remove(paths[0]);
    std::filesystem::remove(paths[1]);
    EXPECT_EQ(run(options, {5.0, 9.0}), Success);
    EXPECT_EQ(test::read_file(paths[0]), separate[0]);
    EXPECT_EQ(test::read_file(paths[1]), separate[1]);
    EXPECT_TRUE(std::filesystem::exists(directory.file("m_tsne_comparison.html")));
    const std::string text = test::read_file(options.report_file);
    EXPECT_THAT(text, HasSubstr("\"perplexity\":5,"));
    EXPECT_THAT(text, HasSubstr("\"perplexity\":9,"));
}

TEST(RunPerplexities, FailsWhereAResultCannotBeWritten) {
    const test::TemporaryDirectory directory;
    std::filesystem::create_directories(directory.file("m_tsne_5_0.csv"));
    testing::internal::CaptureStderr();
    EXPECT_EQ(run(short_runs(directory), {5.0}), FailedRun);
    EXPECT_THAT(testing::internal::GetCapturedStderr(),
                HasSubstr("ovik-tsne: Result table could not be written: "));
}

}  // namespace
}  // namespace ovik::tool
