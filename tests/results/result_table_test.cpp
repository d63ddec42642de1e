#include "results/result_table.h"

#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/temporary_directory.h"

namespace ovik {
namespace {

using Functions = std::map<std::string, std::string>;

constexpr const char* kHeader = "name,data in xaxis,data in yaxis,psize,group,function\n";

template <typename T = double>
ResultTable<T> table_of(const std::vector<double>& Y,
                        std::size_t no_dims,
                        const std::vector<std::string>& names,
                        Functions functions = {}) {
    return make_result_table<T>(Y.data(), names.size(), no_dims, names.data(), functions);
}

template <typename T>
std::string written(const ResultTable<T>& table) {
    const test::TemporaryDirectory directory;
    EXPECT_EQ(write_result_table(directory.file("t.csv"), table), std::error_code());
    EXPECT_EQ(directory.entryCount(), 1U);
    return test::read_file(directory.file("t.csv"));
}

TEST(MakeResultTable, HasOneRowPerPointInTwoDimensions) {
    const auto table = table_of({1.0, 2.0, 3.0, 4.0}, 2, {"A", "B"});
    EXPECT_EQ(table.names, (std::vector<std::string>{"A", "B"}));
    EXPECT_EQ(table.groups, (std::vector<std::string>{"Group:1:2", "Group:1:2"}));
    EXPECT_EQ(table.coordinates[1][0], 3.0);
    EXPECT_EQ(table.coordinates[1][1], 4.0);
}

TEST(MakeResultTable, EnumeratesThePairsOfThreeDimensions) {
    const auto table = table_of({1.0, 2.0, 3.0, 4.0, 5.0, 6.0}, 3, {"A", "B"});
    EXPECT_EQ(table.names, (std::vector<std::string>{"A", "B", "A", "B", "A", "B"}));
    EXPECT_EQ(table.groups,
              (std::vector<std::string>{
                  "Group:1:2", "Group:1:2", "Group:1:3", "Group:1:3", "Group:2:3", "Group:2:3"}));
    EXPECT_EQ(table.coordinates[3][0], 4.0);
    EXPECT_EQ(table.coordinates[3][1], 6.0);
    EXPECT_EQ(table.coordinates[4][0], 2.0);
    EXPECT_EQ(table.coordinates[4][1], 3.0);
}

TEST(MakeResultTable, HasNoRowsBelowTwoDimensions) {
    EXPECT_TRUE(table_of({1.0, 2.0}, 1, {"A", "B"}).names.empty());
    EXPECT_TRUE(table_of({}, 0, {"A", "B"}).coordinates.empty());
}

TEST(MakeResultTable, LooksFunctionsUpAndInsertsUnknownNames) {
    Functions functions = {{"SEO1", "Putative permease"}};
    const std::vector<std::string> names = {"SEO1", "XYZ1", "XYZ1"};
    const std::vector<double> Y(6, 0.0);
    const auto table = make_result_table<double>(Y.data(), 3, 2, names.data(), functions);
    EXPECT_EQ(table.functions, (std::vector<std::string>{"Putative permease", "", ""}));
    EXPECT_EQ(functions, (Functions{{"SEO1", "Putative permease"}, {"XYZ1", ""}}));
}

TEST(MakeResultTable, TakesFunctionsThatAreGiven) {
    const std::vector<double> Y = {1, 2, 3, 4, 5, 6};
    const std::vector<std::string> names = {"cdc28", "x"};
    const std::vector<std::string> functions = {"Kinase", ""};
    const auto table = make_result_table<double>(MatrixView<const double>{Y.data(), 2, 3},
                                                 std::span<const std::string>(names),
                                                 std::span<const std::string>(functions));
    EXPECT_EQ(table.names, (std::vector<std::string>{"cdc28", "x", "cdc28", "x", "cdc28", "x"}));
    EXPECT_EQ(table.functions,
              (std::vector<std::string>{"Kinase", "", "Kinase", "", "Kinase", ""}));
}

TEST(ResultTableStem, CutsThePerplexityToOneDigit) {
    EXPECT_EQ(result_table_stem(30.0, ""), "tsne_30_0");
    EXPECT_EQ(result_table_stem(12.75, ""), "tsne_12_7");
    EXPECT_EQ(result_table_stem(5.0, ""), "tsne_5_0");
    EXPECT_EQ(result_table_stem(7.25, "_b"), "tsne_7_2_b");
}

TEST(WriteResultTable, WritesTheDocumentedRow) {
    EXPECT_EQ(written(table_of({1.23456, 0.0}, 2, {"SEO1"}, {{"SEO1", "Putative permease"}})),
              std::string(kHeader) + "SEO1,1.235,0,1,Group:1:2,\"Putative permease\"\n");
}

TEST(WriteResultTable, PrintsOnlyExactZerosWithoutDigits) {
    EXPECT_EQ(
        written(table_of({0.0004, -1.5, -0.0, 0.0}, 2, {"A", "B"})),
        std::string(kHeader) + "A,0.000,-1.500,1,Group:1:2,\"\"\n" + "B,-0,0,1,Group:1:2,\"\"\n");
}

TEST(WriteResultTable, HoldsOnlyTheHeaderWithoutRows) {
    EXPECT_EQ(written(table_of({1.0}, 1, {"A"})), kHeader);
}

TEST(WriteResultTable, ShowsSinglePrecisionForFloat) {
    EXPECT_EQ(written(table_of<float>({16777217.0, 0.5}, 2, {"A"})),
              std::string(kHeader) + "A,16777216.000,0.500,1,Group:1:2,\"\"\n");
}

TEST(WriteResultTable, FallsBackOnColumnsThatAreEmptyAsAWhole) {
    ResultTable<double> table;
    table.coordinates = {{1.0, 2.0}};
    EXPECT_EQ(written(table), std::string(kHeader) + "1.000,2.000,1,Data,\"NULL\"\n");
}

TEST(WriteResultTable, EscapesNothing) {
    EXPECT_EQ(written(table_of({1.0, 2.0}, 2, {"ADE5,7"}, {{"ADE5,7", "a \"b\", c"}})),
              std::string(kHeader) + "ADE5,7,1.000,2.000,1,Group:1:2,\"a \"b\", c\"\n");
}

TEST(WriteResultTable, ReportsAFileThatCannotBeOpened) {
    testing::internal::CaptureStdout();
    EXPECT_EQ(write_result_table("no/such/dir/t.csv", table_of({1.0, 2.0}, 2, {"A"})),
              std::errc::no_such_file_or_directory);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "\n-- \033[1;31mError: I cannot open file: no/such/dir/t.csv\n\033[0m\n");
}

TEST(ResultTable, TakesAnEmbeddingWithItsShape) {
    const std::vector<double> Y = {1.0, 2.0, 3.0, 4.0};
    const std::vector<std::string> names = {"A", "B"};
    std::map<std::string, std::string> functions{{"A", "does"}};
    const auto table = make_result_table<double>({Y.data(), 2, 2}, names, functions);
    EXPECT_EQ(table.names, names);
    EXPECT_EQ(table.coordinates[1][0], 3.0);
    EXPECT_EQ(table.functions, (std::vector<std::string>{"does", ""}));
}

}  // namespace
}  // namespace ovik
