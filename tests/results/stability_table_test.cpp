#include "results/stability_table.h"

#include <cmath>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/temporary_directory.h"

namespace ovik {
namespace {

TEST(StabilityTable, HasALineForEachRow) {
    const test::TemporaryDirectory directory;
    const std::string path = directory.file("t.tsv");
    const std::vector<std::string> names = {"A", "C\tc"};
    RecordedStability stability;
    stability.columns = {{"shared_10_seeds", "S", {0.5, 1.0}}, {"spread_seeds", "P", {0.1, 2e-7}}};
    ASSERT_FALSE(write_stability_table(path, names, stability));
    EXPECT_EQ(test::read_file(path),
              "name\tshared_10_seeds\tspread_seeds\nA\t0.5\t0.1\nC c\t1\t2e-07\n");
    EXPECT_TRUE(write_stability_table("/nowhere/at/all.tsv", {}, stability));
}

TEST(StabilityTable, HasALineForEachPairOfClusters) {
    const test::TemporaryDirectory directory;
    const std::string path = directory.file("p.tsv");
    RecordedStability stability;
    stability.pairs = {{0, 1, 0.95, 1.0, 0.8, true}, {0, 2, 0.5, 0.2, std::nan(""), false}};
    ASSERT_FALSE(write_cluster_pairs(path, stability));
    EXPECT_EQ(test::read_file(path),
              "cluster\tother\tseparation\tapart_seeds\tapart_columns\tstay_apart\n"
              "1\t2\t0.95\t1\t0.8\tyes\n"
              "1\t3\t0.5\t0.2\t\tno\n");
    EXPECT_TRUE(write_cluster_pairs("/nowhere/at/all.tsv", stability));
}

}  // namespace
}  // namespace ovik
