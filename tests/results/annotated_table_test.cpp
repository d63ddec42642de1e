#include "results/annotated_table.h"

#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/temporary_directory.h"

namespace ovik {
namespace {

using Texts = std::vector<std::string>;

class AnnotatedTable : public testing::Test {
  protected:
    template <typename T>
    std::string written(const std::vector<double>& Y, std::size_t dims) {
        const AnnotatedRows rows{names_, systematic_, labels_, functions_};
        EXPECT_EQ(write_annotated_table<T>(path_, {Y.data(), names_.size(), dims}, rows),
                  std::error_code());
        return test::read_file(path_);
    }

    test::TemporaryDirectory directory_;
    std::string path_ = directory_.file("map");
    Texts names_{"CDC28", "=1+1", "a \"b\""};
    Texts systematic_{"YBR160W", "", ""};
    Texts functions_{"Cyclin-dependent kinase (CDK) catalytic subunit", "NULL", ""};
    std::vector<LabelColumn> labels_;
};

TEST_F(AnnotatedTable, HasTheCoordinatesInFullPrecision) {
    EXPECT_EQ(written<double>({0.1, -2.5e-7, 1e300, 3.0, -0.0, 1.0 / 3.0}, 2),
              "name\tsystematic\tx\ty\tfunction\n"
              "CDC28\tYBR160W\t0.1\t-2.5e-07\tCyclin-dependent kinase (CDK) catalytic subunit\n"
              "=1+1\t\t1e+300\t3\t\n"
              "\"a \"\"b\"\"\"\t\t-0\t0.3333333333333333\t\n");
    EXPECT_NE(written<float>({0.1, 1, 2, 3, 4, 5}, 2).find("\t0.1\t1\t"), std::string::npos);
}

TEST_F(AnnotatedTable, NamesFurtherDimensions) {
    const std::string table = written<double>(std::vector<double>(12, 0.5), 4);
    EXPECT_TRUE(table.starts_with("name\tsystematic\tx\ty\tz\tcomponent_4\tfunction\n"));
}

TEST_F(AnnotatedTable, HasTheLabels) {
    constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
    labels_ = {{"group", {"a\tb", "", "c\n"}, {}}, {"x", {"01.50", "", "3"}, {1.5, kNone, 3.0}}};
    labels_.push_back({"label_x", {"", "", ""}, {}});
    EXPECT_EQ(written<double>({0, 0, 0, 0, 0, 0}, 2),
              "name\tsystematic\tx\ty\tgroup\tlabel_x\tlabel_label_x\tfunction\n"
              "CDC28\tYBR160W\t0\t0\ta b\t1.5\t\tCyclin-dependent kinase (CDK) catalytic subunit\n"
              "=1+1\t\t0\t0\t\t\t\t\n"
              "\"a \"\"b\"\"\"\t\t0\t0\tc \t3\t\t\n");
}

TEST_F(AnnotatedTable, ThatCannotBeWrittenIsReported) {
    const std::string nowhere = directory_.file("none/map");
    const std::vector<double> Y(6);
    testing::internal::CaptureStdout();
    EXPECT_EQ(write_annotated_table<double>(
                  nowhere, {Y.data(), 3, 2}, {names_, systematic_, labels_, functions_}),
              std::errc::no_such_file_or_directory);
    EXPECT_NE(testing::internal::GetCapturedStdout().find(nowhere), std::string::npos);
}

}  // namespace
}  // namespace ovik
