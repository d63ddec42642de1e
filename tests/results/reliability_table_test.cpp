#include "results/reliability_table.h"

#include <cmath>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/temporary_directory.h"

namespace ovik {
namespace {

TEST(ReliabilityTable, HasALineForEachRow) {
    const test::TemporaryDirectory directory;
    const std::string path = directory.file("t.tsv");
    const std::vector<std::string> names = {"A", "B \"b\"", "C\tc"};
    const RowReliability rows{
        {{"kept_10", "Kept", {0.5, 1.0, 0.1}}, {"cost", "Cost", {1e-7, std::nan(""), 0.25}}},
        10,
        30,
        {{2, 1}, {}, {}},
        {{}, {0}, {}}};
    ASSERT_FALSE(write_reliability_table(path, names, rows));
    EXPECT_EQ(test::read_file(path),
              "name\tkept_10\tcost\tfalse_neighbours\ttorn_neighbours\n"
              "A\t0.5\t1e-07\t\"C c; B \"\"b\"\"\"\t\n"
              "\"B \"\"b\"\"\"\t1\t\t\tA\n"
              "C c\t0.1\t0.25\t\t\n");
}

TEST(ReliabilityTable, SaysWhyItIsNotThere) {
    EXPECT_TRUE(write_reliability_table("/nowhere/at/all.tsv", {}, {}));
}

}  // namespace
}  // namespace ovik
