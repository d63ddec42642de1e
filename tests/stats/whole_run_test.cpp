#include <cstdio>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "annotation/gene_table.h"

#include "tests/plain/plain_sptree.h"
#include "tests/plain/plain_tsne.h"
#include "tests/support/engine_run.h"
#include "tests/support/instruction_sets.h"
#include "tests/support/temporary_directory.h"
#include "tests/support/threads.h"

/// Whole runs on genes of the real matrices.

namespace ovik {
namespace {

using test::RunOutcome;

/// The table that an embedding in two dimensions should have.
std::string expected_table(const plain::Matrix& input, const std::vector<double>& Y) {
    auto functions = make_gene_table();
    std::string table = "name,data in xaxis,data in yaxis,psize,group,function\n";
    for (std::size_t n = 0; n < input.rows; ++n) {
        char coordinates[128];
        std::snprintf(coordinates, sizeof coordinates, "%.3f,%.3f", Y[2 * n], Y[2 * n + 1]);
        table += input.names[n] + "," + coordinates + ",1,Group:1:2,\"" +
                 functions[input.names[n]] + "\"\n";
    }
    return table;
}

TEST(WholeExactRun, EqualsThePlainProgramBitForBit) {
    const test::TemporaryDirectory directory;
    const std::string path = test::first_rows(directory, "eisen1998_timecourses.tsv", 160);
    const plain::Matrix input = plain::read_tab_separated(path, 160);
    ASSERT_EQ(input.rows, 160U);
    std::vector<double> costs;
    const std::vector<double> Y = plain::embed_exactly(input, 2, 20.0, {1000, 250, 250}, &costs);
    char last_cost[64];
    std::snprintf(last_cost, sizeof last_cost, "%f", costs.back());
    for (const int threads : test::kThreadCounts) {
        const test::ThreadCount scope(threads);
        const RunOutcome run = test::run_engine(path, {.perplexity = 20.0, .theta = 0.0});
        EXPECT_EQ(run.Y, Y) << threads << " threads";
        EXPECT_EQ(run.table, expected_table(input, Y));
        EXPECT_NE(
            run.out.find("Got error of " + std::string(last_cost) + " at iteration (1000/1000)"),
            std::string::npos);
    }
}

TEST(WholeExactRun, EqualsThePlainProgramInThreeDimensions) {
    const test::TemporaryDirectory directory;
    const std::string path = test::first_rows(directory, "brauer2008_chemostat.tsv", 90);
    const plain::Matrix input = plain::read_tab_separated(path, 90);
    const std::vector<double> Y = plain::embed_exactly(input, 3, 10.0, {1000, 100, 150}, nullptr);
    for (const int threads : test::kThreadCounts) {
        const test::ThreadCount scope(threads);
        const RunOutcome run = test::run_engine(path,
                                                {.no_dims = 3,
                                                 .perplexity = 10.0,
                                                 .theta = 0.0,
                                                 .max_iter = 1000,
                                                 .stop_lying_iter = 100,
                                                 .mom_switch_iter = 150});
        EXPECT_EQ(run.Y, Y) << threads << " threads";
    }
}

TEST(WholeExactRun, EqualsThePlainProgramForEveryInstructionSet) {
    const test::TemporaryDirectory directory;
    const std::string path = test::first_rows(directory, "brauer2008_chemostat.tsv", 203);
    const plain::Matrix input = plain::read_tab_separated(path, 203);
    std::vector<double> costs;
    const std::vector<double> Y = plain::embed_exactly(input, 2, 15.0, {600, 100, 150}, &costs);
    std::vector<RunOutcome> runs;
    for (const InstructionSet set : test::kInstructionSets) {
        const test::InstructionLimit limit(set);
        runs.push_back(test::run_engine(path,
                                        {.no_dims = 2,
                                         .perplexity = 15.0,
                                         .theta = 0.0,
                                         .max_iter = 600,
                                         .stop_lying_iter = 100,
                                         .mom_switch_iter = 150}));
        EXPECT_EQ(runs.back().Y, Y) << static_cast<int>(set);
        for (const double cost : costs) {
            char text[64];
            std::snprintf(text, sizeof text, "Got error of %f at iteration", cost);
            EXPECT_NE(runs.back().out.find(text), std::string::npos) << text;
        }
    }
}

TEST(WholeBarnesHutRun, EqualsThePlainProgramBitForBit) {
    const test::TemporaryDirectory directory;
    // Among the first 170 genes no two neighbours of one are at the same distance.
    const std::string path = test::first_rows(directory, "brauer2008_chemostat.tsv", 170);
    const plain::Matrix input = plain::read_tab_separated(path, 170);
    ASSERT_EQ(input.rows, 170U);
    for (const int no_dims : {2, 3}) {
        std::vector<double> costs;
        const std::vector<double> Y = plain::embed_with_tree(
            input, static_cast<std::size_t>(no_dims), 20.0, 0.5, {400, 120, 130}, &costs);
        char last_cost[64];
        std::snprintf(last_cost, sizeof last_cost, "%f", costs.back());
        for (const int threads : test::kThreadCounts) {
            const test::ThreadCount scope(threads);
            for (const InstructionSet instructions : test::kInstructionSets) {
                const test::InstructionLimit limit(instructions);
                const RunOutcome run = test::run_engine(path,
                                                        {.no_dims = no_dims,
                                                         .perplexity = 20.0,
                                                         .max_iter = 400,
                                                         .stop_lying_iter = 120,
                                                         .mom_switch_iter = 130});
                EXPECT_EQ(run.Y, Y)
                    << threads << " threads, instruction set " << static_cast<int>(instructions);
                EXPECT_NE(run.out.find("Got error of " + std::string(last_cost) +
                                       " at iteration (400/400)"),
                          std::string::npos);
            }
        }
    }
}

TEST(WholeBarnesHutRun, IsTheSameForAnyNumberOfThreads) {
    const test::TemporaryDirectory directory;
    const std::string path = test::first_rows(directory, "brauer2008_chemostat.tsv", 300);
    std::vector<RunOutcome> runs;
    for (const int threads : test::kThreadCounts) {
        const test::ThreadCount scope(threads);
        runs.push_back(test::run_engine(path, {.perplexity = 30.0}));
        EXPECT_EQ(runs.back().Y, runs.front().Y) << threads << " threads";
        EXPECT_EQ(runs.back().table, runs.front().table);
        EXPECT_EQ(runs.back().log, runs.front().log);
    }
    const RunOutcome again = test::run_engine(path, {.perplexity = 30.0});
    EXPECT_EQ(again.Y, runs.front().Y);
}

}  // namespace
}  // namespace ovik
