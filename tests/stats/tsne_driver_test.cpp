#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <malloc.h>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "stats/tsne.h"
#include "util/console.h"
#include "util/input_error.h"

#include "tests/plain/plain_tsne.h"
#include "tests/support/engine_run.h"
#include "tests/support/temporary_directory.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

using test::RunOutcome;
using test::RunSettings;

std::string matrix_source(int rows, int columns) {
    std::string content = "h\n";
    std::uint32_t state = 1;
    for (int n = 0; n < rows; ++n) {
        content += "G" + std::to_string(n);
        for (int d = 0; d < columns; ++d) {
            state = state * 1664525U + 1013904223U;
            content += "\t" + std::to_string(static_cast<double>(state >> 8U) / 1e6);
        }
        content += "\n";
    }
    return content;
}

class Driver : public testing::Test {
  protected:
    std::string matrix(int rows, int columns = 4) {
        return directory_.write("m.tsv", matrix_source(rows, columns));
    }

    test::TemporaryDirectory directory_;
};

std::size_t count_of(const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
        ++count;
    }
    return count;
}

/// Replaces what stands between two texts, so that times do not count.
std::string masked(std::string text, const std::string& before, const std::string& after) {
    const std::size_t start = text.find(before) + before.size();
    return text.replace(start, text.find(after, start) - start, "*");
}

TEST_F(Driver, ReportsABarnesHutRunLineByLine) {
    const RunOutcome run =
        test::run_engine(matrix(40), {.perplexity = 5.0, .theta = 0.5, .max_iter = 1});
    std::string out = masked(run.out, "for input similarities in ", " seconds!");
    out = masked(out, "Performed fitting in ", "s\n");
    out = masked(out, "Got sparsity ", " for");
    out = masked(out, "Got error of ", " at iteration (0");
    out = masked(out,
                 "(0/1) [                           ] 0.00% completed \r-- Got error of ",
                 " at iteration (1");
    EXPECT_EQ(
        out,
        "-- Random seed:  11\n"
        "-- Launching t-SNE at perplexity = 5.00 and theta = 0.50\n"
        "-- Computing similarities between inputs\n"
        "-- Building tree ...\n"
        "-- Got sparsity * for input similarities in * seconds!\n"
        "\r-- Got error of * at iteration (0/1) [                           ] 0.00% completed "
        "\r-- Got error of * at iteration (1/1) [===========================] 100.00% "
        "completed \n"
        "-- Performed fitting in *s\n");
    EXPECT_EQ(run.err, "");
}

TEST_F(Driver, ReportsAnExactRunLineByLine) {
    const RunOutcome run =
        test::run_engine(matrix(40), {.perplexity = 12.75, .theta = 0.0, .max_iter = -1});
    const std::string out = masked(run.out, "Performed fitting in ", "s\n");
    // Less than a second: the whole seconds are 0, given their deliberate fraction.
    EXPECT_EQ(out,
              "-- Random seed:  11\n"
              "-- Launching t-SNE at perplexity = 12.75 and theta = 0.00\n"
              "-- Computing similarities between inputs\n"
              "-- Got input similarities in 0.0 seconds!\n"
              "\n"
              "-- Performed fitting in *s\n");
    EXPECT_EQ(run.err.find("Exact?"), 0U);
    EXPECT_NE(run.err.find("Symmetrizing...\n"), std::string::npos);
}

TEST_F(Driver, ReportsDensityWithSixDigitsAndSecondsWithTwo) {
    const RunOutcome run = test::run_engine(matrix(40), {.perplexity = 5.0, .max_iter = -1});
    const plain::Matrix input = plain::read_tab_separated(directory_.file("m.tsv"), 40);
    std::vector<double> X = input.values;
    plain::normalise_input(X, 40, 4);
    std::size_t entries = 0;
    for (const auto& row : plain::symmetrise(plain::neighbour_similarities(X, 40, 4, 5.0, 15))) {
        entries += row.size();
    }
    const std::string density =
        std::to_string(static_cast<double>(entries) / 1600.0 + 1e-12).substr(0, 8);
    EXPECT_NE(run.out.find("-- Got sparsity " + density + " for input similarities in 0."),
              std::string::npos);
}

TEST_F(Driver, RunsIterationsInclusiveOfTheLast) {
    const RunOutcome run = test::run_engine(matrix(20), {.perplexity = 3.0, .max_iter = 5});
    EXPECT_EQ(count_of(run.out, "\r-- Got error of "), 6U);
    EXPECT_NE(run.out.find(" at iteration (5/5) "), std::string::npos);
}

TEST_F(Driver, RunsNoIterationForANegativeLimit) {
    const RunOutcome run = test::run_engine(matrix(20), {.perplexity = 3.0, .max_iter = -1});
    EXPECT_EQ(count_of(run.out, "Got error of"), 0U);
    EXPECT_NE(run.out.find("seconds!\n\n-- Performed fitting in 0."), std::string::npos);
    EXPECT_NE(run.table, "");
}

TEST_F(Driver, RunsOneIterationForALimitOfZero) {
    const RunOutcome run = test::run_engine(matrix(20), {.perplexity = 3.0, .max_iter = 0});
    EXPECT_EQ(count_of(run.out, "\r-- Got error of "), 1U);
    EXPECT_NE(run.out.find(" at iteration (0/0) ["), std::string::npos);
}

TEST_F(Driver, TakesOnlyAThetaOfExactlyZeroForTheExactMethod) {
    EXPECT_NE(test::run_engine(matrix(20), {.perplexity = 3.0, .theta = 0.0, .max_iter = 0})
                  .err.find("Exact?"),
              std::string::npos);
    for (const double theta : {1e-12, -0.5, std::nan("")}) {
        EXPECT_EQ(
            test::run_engine(matrix(20), {.perplexity = 3.0, .theta = theta, .max_iter = 0}).err,
            "");
    }
}

TEST_F(Driver, WarnsOfALargePerplexityAndGoesOn) {
    const std::string path = matrix(31);
    const RunOutcome fits = test::run_engine(path, {.perplexity = 10.0, .max_iter = 1});
    EXPECT_EQ(fits.out.find("Error"), std::string::npos);
    const RunOutcome large = test::run_engine(path, {.perplexity = 10.5, .max_iter = 1});
    EXPECT_NE(large.out.find("-- Random seed:  11\n"
                             "-- \x1b[31mError: perplexity is too large for the number of data "
                             "points! It should be <= 9.9\x1b[0m\n"
                             "-- Launching"),
              std::string::npos);
    EXPECT_EQ(count_of(large.out, "Got error of"), 2U);
    for (const double y : large.Y) {
        EXPECT_TRUE(std::isfinite(y));
    }
}

TEST_F(Driver, TakesTheNeighboursThereAreForAHugePerplexity) {
    for (const double perplexity : {30.0, 1e9, 1e300}) {
        const RunOutcome run =
            test::run_engine(matrix(12), {.perplexity = perplexity, .max_iter = 20});
        EXPECT_NE(run.out.find("It should be <= 3.6"), std::string::npos);
        EXPECT_EQ(run.err, "Perplexity should be lower than K!\n");
        EXPECT_EQ(run.Y.size(), 24U);
        for (const double y : run.Y) {
            EXPECT_TRUE(std::isfinite(y));
        }
    }
}

TEST_F(Driver, EndsForPerplexitiesWithoutMeaning) {
    for (const double theta : {0.0, 0.5}) {
        for (const double perplexity : {0.0, -0.2, std::nan("")}) {
            const RunOutcome run = test::run_engine(
                matrix(12), {.perplexity = perplexity, .theta = theta, .max_iter = 3});
            EXPECT_EQ(count_of(run.out, "Got error of"), 4U);
        }
    }
}

TEST_F(Driver, GoesOnWithANegativePerplexityInTheExactMethod) {
    const RunOutcome run =
        test::run_engine(matrix(12), {.perplexity = -5.0, .theta = 0.0, .max_iter = 3});
    EXPECT_EQ(count_of(run.out, "Got error of"), 4U);
}

TEST_F(Driver, EndsWithItsRemarkWhereRowsWouldHaveFewerThanNoNeighbours) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    TSNE<double> tsne(directory_.prefix(), "run", "", "");
    tsne.init(matrix(12), 3, '\t');
    EXPECT_EXIT(tsne.actuate(2, -5.0, {}, 1, 2),
                testing::ExitedWithCode(1),
                "^Perplexity should be lower than K!\nMemory allocation failed!\n$");
    tsne.finish();
}

TEST_F(Driver, EndsForFewRows) {
    for (const double theta : {0.0, 0.5}) {
        for (const int rows : {1, 2, 3}) {
            const RunOutcome run =
                test::run_engine(matrix(rows), {.perplexity = 1.0, .theta = theta, .max_iter = 5});
            EXPECT_EQ(count_of(run.out, "Got error of"), 6U);
            EXPECT_EQ(count_of(run.table, "\n"), static_cast<std::size_t>(rows) + 1);
        }
    }
}

TEST_F(Driver, TurnsEqualRowsIntoNan) {
    std::string content = "h\n";
    for (int n = 0; n < 20; ++n) {
        content += "G\t2\t2\n";
    }
    const std::string path = directory_.write("m.tsv", content);
    for (const double theta : {0.0, 0.5}) {
        const RunOutcome run =
            test::run_engine(path, {.perplexity = 3.0, .theta = theta, .max_iter = 3});
        for (const double y : run.Y) {
            EXPECT_TRUE(std::isnan(y));
        }
    }
}

/// The costs that the progress bar showed, as text.
std::vector<std::string> costs_of(const std::string& out) {
    const std::string before = "\r-- Got error of ";
    std::vector<std::string> costs;
    for (std::size_t at = out.find(before); at != std::string::npos;
         at = out.find(before, at + 1)) {
        const std::size_t start = at + before.size();
        costs.push_back(out.substr(start, out.find(' ', start) - start));
    }
    return costs;
}

TEST_F(Driver, ShowsTheCostsOfThePlainProgramAroundTheChanges) {
    const std::string path = matrix(50);
    const plain::Matrix input = plain::read_tab_separated(path, 50);

    struct Case {
        int stop_lying_iter;
        int mom_switch_iter;
    };

    // Both changes in the same iteration, apart, and never.
    for (const Case& c : {Case{10, 10}, Case{5, 12}, Case{1000, 1000}, Case{-1, 0}}) {
        std::vector<double> costs;
        const std::vector<double> Y =
            plain::embed_exactly(input, 2, 8.0, {20, c.stop_lying_iter, c.mom_switch_iter}, &costs);
        const RunOutcome run = test::run_engine(path,
                                                {.perplexity = 8.0,
                                                 .theta = 0.0,
                                                 .max_iter = 20,
                                                 .stop_lying_iter = c.stop_lying_iter,
                                                 .mom_switch_iter = c.mom_switch_iter});
        std::vector<std::string> expected;
        for (const double cost : costs) {
            char text[64];
            std::snprintf(text, sizeof text, "%f", cost);
            expected.emplace_back(text);
        }
        EXPECT_EQ(costs_of(run.out), expected);
        EXPECT_EQ(run.Y, Y);
    }
}

TEST_F(Driver, DrawsFromTheRandStreamOfTheProcess) {
    const std::string path = matrix(60);
    for (const double theta : {0.0, 0.5}) {
        std::srand(11);
        for (std::size_t i = 0; theta != 0.0 && i < plain::tree_draws(60); ++i) {
            std::rand();
        }
        for (int i = 0; i < 120; ++i) {
            plain::normal_deviate();
        }
        const int expected = std::rand();
        test::run_engine(path, {.perplexity = 5.0, .theta = theta, .max_iter = 0});
        EXPECT_EQ(std::rand(), expected);
    }
}

TEST_F(Driver, StartsFromTheRandStreamBehindTheTreeBuild) {
    const std::string path = matrix(60);
    for (const double theta : {0.0, 0.5}) {
        std::srand(11);
        for (std::size_t i = 0; theta != 0.0 && i < plain::tree_draws(60); ++i) {
            std::rand();
        }
        std::vector<double> expected(120);
        for (double& y : expected) {
            y = plain::normal_deviate() * 0.0001;
        }
        for (const int threads : test::kThreadCounts) {
            const test::ThreadCount scope(threads);
            EXPECT_EQ(test::run_engine(path, {.perplexity = 5.0, .theta = theta, .max_iter = -1}).Y,
                      expected);
        }
    }
}

TEST_F(Driver, WritesTableAndLog) {
    const RunOutcome run =
        test::run_engine(matrix(4), {.no_dims = 3, .perplexity = 1.25, .max_iter = 5});
    EXPECT_EQ(count_of(run.table, "\n"), 1U + 3 * 4);
    EXPECT_EQ(run.table.find("name,data in xaxis,data in yaxis,psize,group,function\nG0,"), 0U);
    EXPECT_EQ(count_of(run.table, ",Group:2:3,\"\"\n"), 4U);
    EXPECT_EQ(run.log,
              "1-1-1-0\n"
              "Title using t-SNE method (perplexity = 1.2).\n"
              "Title using t-SNE method (perplexity = 1.2). The darker color means that there are "
              "overlaps.\n"
              "tsne_1_2_x\n");
}

TEST_F(Driver, EmbedsInSilenceWithoutWritingAnything) {
    const std::string path = matrix(40);
    for (const double theta : {0.0, 0.5}) {
        const RunOutcome run =
            test::run_engine(path, {.perplexity = 10.0, .theta = theta, .max_iter = 3});
        const test::TemporaryDirectory results;
        TSNE<double> tsne(results.prefix(), "run", "", "Title");
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        {
            const ConsoleSilence silence;
            tsne.init(path, 3, '\t');
            tsne.theta = theta;
            std::vector<double> costs;
            tsne.on_iteration = [&costs](const IterationReport& reached) {
                costs.push_back(reached.cost);
                return true;
            };
            EXPECT_EQ(tsne.embed(2, 10.0, 250, 250).iteration, 3);
            EXPECT_EQ(costs.size(), 4U);
            EXPECT_EQ(tsne.costs(), costs);
        }
        EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
        EXPECT_EQ(std::vector<double>(tsne.Y, tsne.Y + 80), run.Y);
        EXPECT_TRUE(std::filesystem::is_empty(results.prefix()));
        tsne.finish();
    }
}

TEST_F(Driver, WritesSinglePrecisionCoordinatesForFloat) {
    const std::string path = matrix(30);
    const RunSettings settings = {.perplexity = 5.0, .max_iter = 100};
    const RunOutcome in_double = test::run_engine<double>(path, settings);
    const RunOutcome in_float = test::run_engine<float>(path, settings);
    EXPECT_EQ(in_float.Y, in_double.Y);
    EXPECT_NE(in_float.table, "");
}

TEST_F(Driver, ServesOneToFiveOutputDimensions) {
    for (const double theta : {0.0, 0.5}) {
        // No dimensions at all leave only the header, without harm.
        EXPECT_EQ(count_of(test::run_engine(
                               matrix(30),
                               {.no_dims = 0, .perplexity = 5.0, .theta = theta, .max_iter = 2})
                               .table,
                           "\n"),
                  1U);
        for (int no_dims = 1; no_dims <= 5; ++no_dims) {
            const RunOutcome run = test::run_engine(
                matrix(30),
                {.no_dims = no_dims, .perplexity = 5.0, .theta = theta, .max_iter = 50});
            EXPECT_EQ(run.Y.size(), 30U * static_cast<std::size_t>(no_dims));
            for (const double y : run.Y) {
                EXPECT_TRUE(std::isfinite(y));
            }
            const auto pairs = static_cast<std::size_t>(no_dims * (no_dims - 1) / 2);
            EXPECT_EQ(count_of(run.table, "\n"), 1 + 30 * pairs);
        }
    }
}

TEST_F(Driver, NeitherLeaksNorCorruptsWhenRepeated) {
    testing::internal::CaptureStdout();
    TSNE<double> tsne(directory_.prefix(), "run", "", "Title");
    tsne.init(matrix(20), 5, '\t');
    tsne.actuate(2, 3.0, {}, 250, 250);
    const double* const first_Y = tsne.Y;
    tsne.actuate(3, 3.0, {}, 250, 250);
    EXPECT_NE(tsne.Y, first_Y);
    EXPECT_TRUE(std::isfinite(first_Y[0]));
    tsne.init(directory_.write("n.tsv", "h\nA\t1\t2\nB\t3\t5\nC\t0\t1\nD\t4\t4\n"), 5, '\t');
    tsne.actuate(2, 1.0, {}, 250, 250);
    tsne.finish();
    testing::internal::GetCapturedStdout();
    const std::string table = test::read_file(directory_.file("run_tsne_1_0.csv"));
    EXPECT_EQ(count_of(table, "\n"), 5U);
    EXPECT_NE(table.find("\nA,"), std::string::npos);
    EXPECT_NE(table.find("\nD,"), std::string::npos);
}

TEST_F(Driver, RefusesToRunOnAReleasedInput) {
    testing::internal::CaptureStdout();
    TSNE<double> tsne(directory_.prefix(), "run", "", "Title");
    tsne.init(matrix(10), 2, '\t');
    tsne.finish();
    EXPECT_THROW(tsne.actuate(2, 3.0, {}, 250, 250), std::logic_error);
    EXPECT_THROW(tsne.checkResume(2, 3.0, 250, 250), std::logic_error);
    testing::internal::GetCapturedStdout();
}

TEST_F(Driver, RunsOnceOnRowsThatAreBroughtIntoTheFormOfAMetric) {
    const ConsoleSilence silence;
    const std::string path = matrix(40);
    TSNE<double> tsne(directory_.prefix(), "run", "", "Title");
    tsne.init(path, 5, '\t');
    tsne.options.metric = MetricKind::Pearson;
    tsne.embed(2, 5.0, 2, 2);
    const std::vector<double> first(tsne.Y, tsne.Y + 80);
    for (const MetricKind metric : {MetricKind::Pearson, MetricKind::Euclidean}) {
        tsne.options.metric = metric;
        EXPECT_THROW(tsne.embed(2, 5.0, 2, 2), std::logic_error);
    }
    tsne.init(path, 5, '\t');
    tsne.options.metric = MetricKind::Pearson;
    tsne.embed(2, 5.0, 2, 2);
    EXPECT_EQ(std::vector<double>(tsne.Y, tsne.Y + 80), first);
    tsne.finish();
}

TEST_F(Driver, TakesACallersOwnInputAfterAFinishAndReleasesIt) {
    testing::internal::CaptureStdout();
    TSNE<double> tsne(directory_.prefix(), "run", "", "Title");
    tsne.draw_plots = false;
    tsne.init(matrix(12), 2, '\t');
    const int N = tsne.N;
    const int D = tsne.D;
    const std::vector<double> values(tsne.X, tsne.X + N * D);
    for (int round = 0; round < 3; ++round) {
        tsne.finish();
        // Likely the address that has just been freed, and of no matter whether it is.
        tsne.X = new double[values.size()];
        std::copy(values.begin(), values.end(), tsne.X);
        tsne.N = N;
        tsne.D = D;
        tsne.actuate(2, 3.0, {}, 250, 250);
        EXPECT_TRUE(tsne.tableWritten());
    }
    tsne.finish();
    testing::internal::GetCapturedStdout();
}

/// Bytes that the process has in blocks of their own, as large arrays are.
std::size_t bytes_of_large_arrays() {
    return mallinfo2().hblkhd;
}

TEST_F(Driver, ReleasesAnEmbeddingThatACallerPutsThereAfterAFinish) {
    constexpr std::size_t kLarge = std::size_t{8} << 20U;
    const ConsoleSilence silence;
    TSNE<double> tsne(directory_.prefix(), "run", "", "Title");
    tsne.draw_plots = false;
    tsne.init(matrix(10), 2, '\t');
    tsne.actuate(2, 3.0, {}, 250, 250);
    tsne.finish();
    const std::size_t before = bytes_of_large_arrays();
    tsne.Y = new double[kLarge];
    tsne.finish();
    EXPECT_LT(bytes_of_large_arrays(), before + kLarge);
    // What was released stays so.
    tsne.finish();
    // Too long for where the other lay.
    tsne.Y = new double[2 * kLarge];
    tsne.init(matrix(10), 2, '\t');
    tsne.actuate(2, 3.0, {}, 250, 250);
    tsne.finish();
    EXPECT_LT(bytes_of_large_arrays(), before + kLarge);
}

TEST_F(Driver, NamesRowsAfterTheLastNamesThatThereAre) {
    testing::internal::CaptureStdout();
    TSNE<double> tsne(directory_.prefix(), "run", "", "Title");
    tsne.draw_plots = false;
    tsne.init(matrix(20), 2, '\t');
    tsne.init(directory_.write("n.tsv", "h\nA\t1\t2\nB\t3\t5\nC\t0\t1\nD\t4\t4\n"), 2, '\t');
    // A caller may take the names of the rows before away.
    tsne.row_names.erase(tsne.row_names.begin(), tsne.row_names.end() - 4);
    tsne.actuate(2, 1.0, {}, 250, 250);
    const std::string table = test::read_file(directory_.file("run_tsne_1_0.csv"));
    EXPECT_NE(table.find("function\nA,"), std::string::npos);
    EXPECT_NE(table.find("\nD,"), std::string::npos);
    tsne.row_names.pop_back();
    try {
        tsne.actuate(2, 1.0, {}, 250, 250);
        ADD_FAILURE() << "three names are enough for four rows";
    } catch (const InputError& error) {
        EXPECT_STREQ(error.what(),
                     "row_names holds 3 names, and there are 4 rows: every row needs one, the "
                     "last names are those of the rows");
    }
    tsne.finish();
    testing::internal::GetCapturedStdout();
}

TEST_F(Driver, TakesFunctionsAndLabelsThatAreGivenForItsRows) {
    testing::internal::CaptureStdout();
    TSNE<double> tsne(directory_.prefix(), "run", "", "Title");
    tsne.init(directory_.write("n.tsv", "h\ncdc28\t1\t2\nB\t3\t5\nC\t0\t1\nD\t4\t4\n"), 2, '\t');
    tsne.row_functions = {"Kinase", "", "", ""};
    tsne.row_genes = {"CDC28", "", "", ""};
    tsne.label_columns = {{"dose", {"1", "2", "3", ""}, {1.0, 2.0, 3.0, std::nan("")}}};
    tsne.actuate(2, 1.0, {}, 250, 250);
    const std::string table = test::read_file(directory_.file("run_tsne_1_0.csv"));
    EXPECT_NE(table.find("\ncdc28,"), std::string::npos);
    EXPECT_EQ(count_of(table, "Group:1:2,\"Kinase\"\n"), 1U);
    EXPECT_EQ(count_of(table, "Group:1:2,\"\"\n"), 3U);
    const std::string page = test::read_file(directory_.file("run_tsne_1_0.html"));
    EXPECT_EQ(count_of(page, "\"genes\":[\"CDC28\",\"\",\"\",\"\"]"), 1U);
    EXPECT_EQ(count_of(page, "\"numbers\":[1,2,3,null]"), 1U);
    EXPECT_NE(test::read_file(directory_.file("run_tsne_1_0.gp")).find("set label 'dose' at"),
              std::string::npos);
    tsne.row_functions.pop_back();
    EXPECT_THROW(tsne.actuate(2, 1.0, {}, 250, 250), InputError);
    tsne.finish();
    testing::internal::GetCapturedStdout();
}

TEST_F(Driver, HasNoRoomForANegativeNumberOfDimensions) {
    TSNE<double> tsne(directory_.prefix(), "run", "", "Title");
    tsne.init(matrix(10), 2, '\t');
    testing::internal::CaptureStdout();
    EXPECT_THROW(tsne.actuate(-1, 3.0, {}, 250, 250), std::bad_array_new_length);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    tsne.finish();
}

TEST_F(Driver, RunsOnNothingBeforeAnyInput) {
    for (const double theta : {0.0, 0.5}) {
        testing::internal::CaptureStdout();
        TSNE<double> tsne(directory_.prefix(), "run", "", "Title");
        tsne.theta = theta;
        tsne.actuate(2, 1e10, {}, 250, 250);
        EXPECT_TRUE(tsne.tableWritten());
        tsne.finish();
        testing::internal::GetCapturedStdout();
    }
}

TEST_F(Driver, TellsWhichResultsWereWrittenAndWhyOthersWereNot) {
    testing::internal::CaptureStdout();
    TSNE<double> tsne(directory_.prefix(), "run", "", "Title");
    EXPECT_FALSE(tsne.tableWritten());
    tsne.init(matrix(10), 2, '\t');
    tsne.actuate(2, 3.0, {}, 250, 250);
    EXPECT_TRUE(tsne.tableWritten());
    EXPECT_TRUE(tsne.logWritten());
    EXPECT_EQ(tsne.tableFailure(), std::error_code());
    EXPECT_EQ(tsne.plots().figure, FigureOutcome::Drawn);
    EXPECT_EQ(tsne.plots().page_failure, std::error_code());
    // A table that cannot be written costs the run nothing else.
    tsne.out_base = directory_.file("missing/run");
    tsne.actuate(2, 3.0, {}, 250, 250);
    EXPECT_FALSE(tsne.tableWritten());
    EXPECT_FALSE(tsne.logWritten());
    EXPECT_EQ(tsne.tableFailure(), std::errc::no_such_file_or_directory);
    EXPECT_EQ(tsne.logFailure(), std::errc::no_such_file_or_directory);
    EXPECT_EQ(tsne.plots().figure, FigureOutcome::Failed);
    EXPECT_EQ(tsne.plots().page_failure, std::error_code());
    tsne.finish();
    const std::string out = testing::internal::GetCapturedStdout();
    EXPECT_NE(out.find("\n-- \033[1;31mError: I cannot open file: " +
                       directory_.file("missing/run_tsne_3_0.csv") + "\n\033[0m\n"),
              std::string::npos);
}

}  // namespace
}  // namespace ovik
