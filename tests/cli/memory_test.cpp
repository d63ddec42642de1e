#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "stats/memory_estimate.h"

#include "tests/support/command_test.h"

/// What a run takes is told before it, and a run that cannot fit is refused.

namespace ovik {
namespace {

using test::CommandOutcome;
using test::kBadInput;
using test::kSuccess;

class Memory : public test::CommandTest {
  protected:
    std::string matrix(std::size_t rows, std::size_t columns) {
        std::string content = "g";
        for (std::size_t n = 0; n < rows; ++n) {
            content += "\nG" + std::to_string(n);
            for (std::size_t d = 0; d < columns; ++d) {
                content += "\t" + std::to_string((n * 7919 + d * 104729 + n * d * 31) % 99991);
            }
        }
        return directory_.write("m.txt", content);
    }
};

TEST_F(Memory, AndFilesAreToldByADryRun) {
    const std::string path = matrix(100, 3);
    const CommandOutcome outcome =
        run({path, "-o", results_, "--dry-run", "-p", "12", "--names", "other"});
    EXPECT_EQ(outcome.exit_status, kSuccess);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.out.find("-- Input: 100 rows, 3 columns\n"
                               "-- Method: Barnes-Hut (theta = 0.50), perplexity 12.00, 2 "
                               "dimensions, 1001 iterations\n"
                               "-- Memory: about "),
              0U);
    const std::string base = results_ + "/m";
    const std::string files =
        "-- Files:\n"
        "--   " +
        base +
        ".log\n"
        "--   " +
        base +
        "_tsne_12_0.csv\n"
        "--   " +
        base +
        "_tsne_12_0.html\n"
        "--   " +
        base +
        "_tsne_12_0.gp\n"
        "--   " +
        base +
        "_tsne_12_0.png\n"
        "--   " +
        base +
        "_tsne_12_0.svg\n"
        "-- Nothing was run and nothing written\n";
    EXPECT_NE(outcome.out.find(files), std::string::npos) << outcome.out;
    // The matrix alone.
    EXPECT_EQ(directory_.entryCount(), 1U);
}

TEST_F(Memory, AndFilesToBeReplacedAreToldByADryRun) {
    const std::string path = matrix(100, 3);
    const std::vector<std::string> arguments = {path, "-o", results_, "--no-plots", "-i", "2"};
    EXPECT_EQ(run(arguments).exit_status, kSuccess);
    std::vector<std::string> dry = arguments;
    dry.insert(dry.end(), {"--dry-run", "--theta", "0"});
    const CommandOutcome outcome = run(dry);
    EXPECT_NE(outcome.out.find("-- Method: exact (theta = 0.00), perplexity 20.00, 2 dimensions, 3 "
                               "iterations\n"),
              std::string::npos);
    EXPECT_NE(outcome.out.find("--   " + results_ + "/m.log (appended to)\n--   " + results_ +
                               "/m_tsne_20_0.csv (replaced)\n-- Nothing"),
              std::string::npos);
    EXPECT_EQ(run({directory_.write("bad", "g\nG1\tx\n"), "--dry-run"}).exit_status, kBadInput);
}

#ifndef OVIK_SANITIZED
TEST_F(Memory, IsEstimatedAsRealRunsTakeIt) {
    const struct {
        std::size_t rows;
        std::size_t columns;
        double perplexity;
        double theta;
        bool has_plots;
    } kRuns[] = {{3000, 4, 20, 0, false},
                 {250, 30000, 20, 0.5, false},
                 {40000, 2, 90, 0.5, false},
                 {130000, 1, 1, 0.5, true}};

    for (const auto& [rows, columns, perplexity, theta, has_plots] : kRuns) {
        std::vector<std::string> arguments = {matrix(rows, columns),
                                              "-o",
                                              results_,
                                              "-i",
                                              "1",
                                              "-q",
                                              "-p",
                                              std::to_string(perplexity),
                                              "-t",
                                              std::to_string(theta)};
        if (!has_plots) {
            arguments.emplace_back("--no-plots");
        }
        // Without gnuplot, which is another process.
        const CommandOutcome outcome = run_in_shell("PATH= exec \"$0\" \"$@\"", arguments);
        EXPECT_EQ(outcome.exit_status, kSuccess);
        const double estimate =
            estimate_memory({rows, columns, {.perplexity = perplexity, .theta = theta}, has_plots})
                .peak();
        EXPECT_GT(outcome.peak_memory, 100e6) << rows << " x " << columns;
        EXPECT_NEAR(estimate / outcome.peak_memory, 1.0, 0.15) << rows << " x " << columns;
    }
}

TEST_F(Memory, IsRefusedWhereItCannotFit) {
    const std::string path = matrix(20000, 2);
    constexpr const char* kLimit = "ulimit -v 3000000; exec \"$0\" \"$@\"";
    const std::vector<std::string> exact = {path, "-o", results_, "-j", "1", "--theta", "0"};
    const CommandOutcome refused = run_in_shell(kLimit, exact);
    EXPECT_EQ(refused.exit_status, kBadInput);
    EXPECT_EQ(refused.out, "");
    EXPECT_EQ(refused.err.find("ovik-tsne: the run takes about 6.4 GB of memory, and 3."), 0U)
        << refused.err;
    EXPECT_NE(refused.err.find(" GB are left within ulimit -v\nThe Barnes-Hut method (--theta 0.5) "
                               "takes "),
              std::string::npos)
        << refused.err;
    EXPECT_NE(refused.err.find("; --force tries all the same.\n"), std::string::npos);
    EXPECT_FALSE(std::filesystem::exists(results_));
    std::vector<std::string> forced = exact;
    forced.insert(forced.end(), {"--force", "--dry-run"});
    EXPECT_EQ(run_in_shell(kLimit, forced).exit_status, kSuccess);
    forced.pop_back();
    const CommandOutcome tried = run_in_shell(kLimit, forced);
    EXPECT_EQ(tried.exit_status, test::kFailedRun);
    EXPECT_NE(tried.err.find("Memory allocation failed!\n"), std::string::npos);
    const std::vector<std::string> smooth = {path, "-o", results_, "-j", "1", "-p", "5000"};
    EXPECT_NE(run_in_shell("ulimit -v 1000000; exec \"$0\" \"$@\"", smooth)
                  .err.find("\nA perplexity of 30 takes "),
              std::string::npos);
    const CommandOutcome smaller =
        run_in_shell(kLimit, {path, "-o", results_, "-j", "1", "-i", "1", "-q", "--no-plots"});
    EXPECT_EQ(smaller.exit_status, kSuccess) << smaller.err;
}

TEST_F(Memory, IsRefusedForReadingToo) {
    const std::string path = matrix(20000, 50);
    const CommandOutcome outcome =
        run_in_shell("ulimit -v 20000; exec \"$0\" \"$@\"", {path, "-o", results_, "-j", "1"});
    EXPECT_EQ(outcome.exit_status, kBadInput) << outcome.err;
    EXPECT_NE(outcome.err.find(": reading the matrix of about "), std::string::npos);
    EXPECT_NE(outcome.err.find(" rows and 50 columns takes about "), std::string::npos);
}
#endif

}  // namespace
}  // namespace ovik
