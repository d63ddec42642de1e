#include "results/label_table.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "input/label_file.h"

#include "tests/support/temporary_directory.h"

namespace ovik {
namespace {

TEST(LabelTable, ReadsBackAsLabelsByName) {
    const test::TemporaryDirectory directory;
    const std::string path = directory.file("m.clusters.tsv");
    const std::vector<std::string> names{"CDC28", "=1+1", "a \"b\""};
    ASSERT_EQ(write_label_table(path, names, {"Cluster", {"1", "2", "1"}, {}}), std::error_code());
    EXPECT_EQ(test::read_file(path), "name\tCluster\nCDC28\t1\n=1+1\t2\n\"a \"\"b\"\"\"\t1\n");
    const LabelFile read = read_label_file(path, 3);
    ASSERT_TRUE(read.table);
    EXPECT_EQ(read.table->names, names);
    EXPECT_EQ(read.table->titles, (std::vector<std::string>{"Cluster"}));
    EXPECT_EQ(read.table->columns.front(), (std::vector<std::string>{"1", "2", "1"}));
}

TEST(LabelTable, SaysWhyItCannotBeWritten) {
    const test::TemporaryDirectory directory;
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    EXPECT_TRUE(write_label_table(directory.file("none/m.tsv"), {}, {"Cluster", {}, {}}));
    testing::internal::GetCapturedStdout();
    testing::internal::GetCapturedStderr();
}

}  // namespace
}  // namespace ovik
