#include "tools/dry_run.h"

#include <limits>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/temporary_directory.h"
#include "tools/memory_check.h"

namespace ovik::tool {
namespace {

using testing::HasSubstr;

constexpr double kUnknown = std::numeric_limits<double>::infinity();

std::string plan(const Options& options,
                 const std::vector<double>& perplexities,
                 const RunSize& size,
                 double available) {
    testing::internal::CaptureStdout();
    print_plan(options, perplexities, size, {available, "on this machine"});
    return testing::internal::GetCapturedStdout();
}

TEST(PrintPlan, TellsSizeMethodMemoryAndFiles) {
    const test::TemporaryDirectory directory;
    Options options;
    options.out_dir = directory.prefix();
    options.name = "yeast";
    options.plots = false;
    options.fit.out_dims = 3;
    options.fit.max_iter = 99;
    const RunSize size{.rows = 1000, .columns = 1, .options = options.fit};
    const std::string memory = memory_text(estimate_memory(size).peak());
    const std::string base = directory.prefix() + "yeast";
    EXPECT_EQ(plan(options, {5.0, 12.75}, size, 2e9),
              "-- Input: 1000 rows, 1 column\n"
              "-- Method: Barnes-Hut (theta = 0.50), perplexity 5.00, 12.75, 3 dimensions, 100 "
              "iterations\n"
              "-- Memory: about " +
                  memory +
                  "; 2.0 GB are left on this machine\n"
                  "-- Files:\n"
                  "--   " +
                  base + ".log\n--   " + base + "_tsne_5_0.csv\n--   " + base +
                  "_tsne_12_7.csv\n--   " + base +
                  "_tsne_comparison.html\n"
                  "-- Nothing was run and nothing written\n");
    EXPECT_EQ(directory.entryCount(), 0U);
}

TEST(PrintPlan, TellsWhatPageAndFigureLack) {
    const test::TemporaryDirectory directory;
    Options options;
    options.out_dir = directory.prefix();
    options.name = "cells";
    const RunSize size{.rows = 10'000'000, .columns = 50, .options = options.fit};
    EXPECT_THAT(plan(options, {30.0}, size, kUnknown),
                HasSubstr("\n-- Chart page: without the map, which has 10000000 points, "));
}

TEST(PrintPlan, TellsWhatBecomesOfFilesThatAreThere) {
    const test::TemporaryDirectory directory;
    Options options;
    options.out_dir = directory.prefix();
    options.name = "yeast";
    options.fit.theta = 0.0;
    const std::string log = directory.write("yeast.log", "");
    const std::string table = directory.write("yeast_tsne_5_0.csv", "");
    const std::string text = plan(options, {5.0}, {.rows = 1, .options = options.fit}, kUnknown);
    EXPECT_THAT(text, HasSubstr("--   " + log + " (appended to)\n"));
    EXPECT_THAT(text, HasSubstr("--   " + table + " (replaced)\n"));
    EXPECT_THAT(text, HasSubstr("yeast_tsne_5_0.html\n"));
    EXPECT_THAT(text, HasSubstr("-- Input: 1 row, 0 columns\n"));
    EXPECT_THAT(text, HasSubstr("-- Method: exact (theta = 0.00)"));
    options.fit = {.method = MethodKind::Mesh};
    EXPECT_THAT(plan(options, {5.0}, {.rows = 1, .options = options.fit}, kUnknown),
                HasSubstr("-- Method: particle-mesh, perplexity 5.00, 2 dimensions"));
    // Of what is left nothing is known.
    EXPECT_THAT(text, testing::ContainsRegex("-- Memory: about [0-9]+ MB\n"));
}

}  // namespace
}  // namespace ovik::tool
