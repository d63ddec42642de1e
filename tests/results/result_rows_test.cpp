#include "results/result_rows.h"

#include <cmath>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "results/result_table.h"

#include "tests/support/temporary_directory.h"

namespace ovik {

namespace {

ResultRow parsed(const std::string& line) {
    const auto row = parse_result_row(line);
    EXPECT_TRUE(row) << line;
    return row.value_or(ResultRow{});
}

TEST(ParseResultRow, TakesAnOrdinaryLineApart) {
    const ResultRow row = parsed("SEO1,1.235,-0,1,Group:1:2,\"Putative permease\"");
    EXPECT_EQ(row.name, "SEO1");
    EXPECT_EQ(row.x, 1.235);
    EXPECT_EQ(row.y, 0.0);
    EXPECT_EQ(row.group, "Group:1:2");
    EXPECT_EQ(row.function, "Putative permease");
}

TEST(ParseResultRow, IsNotShiftedByCommasAndQuotes) {
    EXPECT_EQ(parsed("ADE5,7,1.000,2.000,1,Group:1:2,\"Enzyme of the 'de novo' pathway\"").name,
              "ADE5,7");
    EXPECT_EQ(parsed("\"a\",\"b\",1.000,2.000,1,Group:1:2,\"\"").name, "\"a\",\"b\"");
    EXPECT_EQ(parsed("A,1,2,1,Group:1:2,\"binds \"X\", then Y,\"Z\"\"").function,
              "binds \"X\", then Y,\"Z\"");
    EXPECT_EQ(parsed("A,1,2,1,Group:1:2,\"\"").function, "");
    EXPECT_EQ(parsed(",1,2,1,Group:1:2,\"f\"").name, "");
    // A name that mimics a whole row.
    EXPECT_EQ(parsed("A,9,9,1,Group:1:2,\"f\",1.5,2.5,1,Group:1:2,\"\"").name,
              "A,9,9,1,Group:1:2,\"f\"");
}

TEST(ParseResultRow, ReadsTablesWithoutColumnsAndWithoutFiniteNumbers) {
    const ResultRow row = parsed("1.000,2.000,1,Data,\"NULL\"");
    EXPECT_EQ(row.name, "");
    EXPECT_EQ(row.x, 1.0);
    EXPECT_EQ(row.group, "Data");
    EXPECT_TRUE(std::isnan(parsed("A,-nan,inf,1,Group:1:2,\"\"").x));
    EXPECT_TRUE(std::isinf(parsed("A,-nan,inf,1,Group:1:2,\"\"").y));
}

TEST(ParseResultRow, RefusesOtherLines) {
    for (const char* line : {"",
                             "\"",
                             ",\"",
                             "name,data in xaxis,data in yaxis,psize,group,function",
                             "A,1,2,1,Group:1:2,\"f",
                             "A,1,x,1,Group:1:2,\"f\"",
                             "2,1,Group:1:2,\"f\"",
                             "A,1,2,1,Group:1,\"f\"",
                             "A,1,2,1,Cluster:1:2,\"f\"",
                             "A,1,2,-1,Group:1:2,\"f\""}) {
        EXPECT_FALSE(parse_result_row(line)) << line;
    }
}

RC_GTEST_PROP(ParseResultRow, GivesBackWhatWasWritten, (std::string name, double x, double y)) {
    std::erase_if(name, [](char c) { return c == '\n' || c == '\0'; });
    const test::TemporaryDirectory directory;
    ResultTable<double> table;
    table.coordinates = {{x, y}};
    table.names = {name};
    table.groups = {"Group:2:3"};
    table.functions = {"Enzyme, of \"some\" kind"};
    RC_ASSERT(!write_result_table(directory.file("t.csv"), table));
    const auto rows = read_result_rows(directory.file("t.csv"));
    RC_ASSERT(rows.has_value() && rows->size() == 1U);
    RC_ASSERT(rows->front().name == name);
    RC_ASSERT(rows->front().function == table.functions[0]);
    RC_ASSERT(is_in_table_as(x, rows->front().x));
    RC_ASSERT(is_in_table_as(y, rows->front().y));
}

TEST(ReadResultRows, NeedsAWholeTable) {
    const test::TemporaryDirectory directory;
    EXPECT_FALSE(read_result_rows(directory.file("missing.csv")));
    EXPECT_FALSE(read_result_rows(directory.write("empty.csv", "")));
    EXPECT_EQ(read_result_rows(directory.write("header.csv", "h\n"))->size(), 0U);
    EXPECT_FALSE(
        read_result_rows(directory.write("odd.csv", "h\nA,1,2,1,Group:1:2,\"\"\nsomething\n")));
}

TEST(IsInTableAs, AllowsForThreeDecimalsOnly) {
    EXPECT_TRUE(is_in_table_as(1.23456, 1.235));
    EXPECT_FALSE(is_in_table_as(1.23456, 1.2365));
    EXPECT_TRUE(is_in_table_as(NAN, INFINITY));
    EXPECT_FALSE(is_in_table_as(NAN, 1.0));
}

}  // namespace

}  // namespace ovik
