#include "tools/label_join.h"

#include <cmath>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "util/input_error.h"

namespace ovik::tool {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Texts = std::vector<std::string>;

LabelTable table_of(Texts names, std::vector<Texts> columns) {
    LabelTable table;
    table.names_title = "gene";
    table.names = std::move(names);
    table.columns = std::move(columns);
    for (std::size_t column = 0; column < table.columns.size(); ++column) {
        table.titles.push_back("t" + std::to_string(column + 1));
    }
    for (std::size_t line = 0; line < table.names.size(); ++line) {
        table.lines.push_back(line + 2);
    }
    return table;
}

std::string refusal(const LabelTable& table, const Texts& rows) {
    try {
        join_labels(table, rows, "f.tsv", true);
    } catch (const InputError& error) {
        return error.what();
    }
    return "not refused";
}

TEST(JoinLabels, FindsRowsByName) {
    const JoinedLabels joined =
        join_labels(table_of({"b", "a", "x", "y", "z", "w"}, {{"2", "one", "", "", "", ""}}),
                    {"a", "b", "c", "b"},
                    "f.tsv",
                    true);
    ASSERT_EQ(joined.columns.size(), 1U);
    EXPECT_EQ(joined.columns[0].title, "t1");
    EXPECT_THAT(joined.columns[0].texts, ElementsAre("one", "2", "", "2"));
    EXPECT_FALSE(joined.columns[0].isNumeric());
    EXPECT_EQ(joined_labels_line(joined.counts),
              "Labels: 3 of 4 rows labelled, 1 without a label; 4 names are of no row: x, y, z, "
              "...");
}

TEST(JoinLabels, FindsRowsByOtherNamesOfTheirGenes) {
    const LabelTable table =
        table_of({"cdc28", "YBR166C", "ddi2", "CDC28"}, {{"a", "b", "c", "d"}});
    const JoinedLabels joined = join_labels(table, {"CDC28", "Tyr1p", "DDI2"}, "f.tsv", true);
    EXPECT_THAT(joined.columns[0].texts, ElementsAre("d", "b", ""));
    EXPECT_EQ(joined.counts.by_name, 1U);
    EXPECT_EQ(joined.counts.by_gene, 1U);
    EXPECT_THAT(joined_labels_line(joined.counts),
                HasSubstr("; 1 row was found under another name of the gene; 2 names are of"));
    const JoinedLabels exact = join_labels(table, {"CDC28", "Tyr1p", "DDI2"}, "f.tsv", false);
    EXPECT_THAT(exact.columns[0].texts, ElementsAre("d", "", ""));
}

TEST(JoinLabels, ReadDecimalCommasWhereTheyAreAskedFor) {
    const LabelTable table =
        table_of({"a", "b", "c"}, {{"-0,24", "NA", "1"}, {"0.5", "1", "2"}, {"x", "1,5", ""}});
    const JoinedLabels joined = join_labels(table, {"a", "b", "c"}, "f.tsv", true, ',');
    EXPECT_THAT(joined.columns[0].numbers, ElementsAre(-0.24, testing::IsNan(), 1.0));
    EXPECT_THAT(joined.columns[1].numbers, ElementsAre(0.5, 1.0, 2.0));
    EXPECT_FALSE(joined.columns[2].isNumeric());
    EXPECT_EQ(comma_labels_warning(table, joined.columns, "f.tsv"), "");
    const JoinedLabels groups = join_labels(table, {"a", "b", "c"}, "f.tsv", true);
    EXPECT_FALSE(groups.columns[0].isNumeric());
    EXPECT_TRUE(groups.columns[1].isNumeric());
    EXPECT_THAT(comma_labels_warning(table, groups.columns, "f.tsv"),
                testing::StartsWith("warning: f.tsv: the labels of \"t1\" are numbers with decimal "
                                    "commas, and are taken for groups\n--decimal , reads them"));
}

TEST(JoinLabels, TellsNumbersFromGroups) {
    const JoinedLabels joined = join_labels(table_of({"a", "b", "c"},
                                                     {{"1.5", "NA", "-2e3"},
                                                      {"1", "2", "3 nM"},
                                                      {"NA", "", "x"},
                                                      {"inf", "1", "2"},
                                                      {"", "NA", "-"}}),
                                            {"a", "b", "c", "d"},
                                            "f.tsv",
                                            true);
    const std::vector<double>& numbers = joined.columns[0].numbers;
    ASSERT_EQ(numbers.size(), 4U);
    EXPECT_EQ(numbers[0], 1.5);
    EXPECT_TRUE(std::isnan(numbers[1]) && std::isnan(numbers[3]));
    EXPECT_EQ(numbers[2], -2000.0);
    EXPECT_THAT(joined.columns[0].texts, ElementsAre("1.5", "", "-2e3", ""));
    EXPECT_FALSE(joined.columns[1].isNumeric());
    EXPECT_THAT(joined.columns[2].texts, ElementsAre("", "", "x", ""));
    EXPECT_FALSE(joined.columns[3].isNumeric());
    EXPECT_THAT(joined.columns[4].texts, ElementsAre("", "", "-", ""));
    EXPECT_THAT(joined.columns[4].numbers, IsEmpty());
}

TEST(JoinLabels, TakesTheNumbersOfClustersForGroups) {
    LabelTable table = table_of({"a", "b"}, {{"1", "2"}, {"1", "2"}, {"1", "2"}});
    table.titles = {"Cluster", "clusters", "dose"};
    const JoinedLabels joined = join_labels(table, {"a", "b"}, "f.tsv", false);
    EXPECT_FALSE(joined.columns[0].isNumeric());
    EXPECT_FALSE(joined.columns[1].isNumeric());
    EXPECT_TRUE(joined.columns[2].isNumeric());
    EXPECT_THAT(joined.columns[0].texts, ElementsAre("1", "2"));
}

TEST(JoinLabels, RefusesFilesThatAreNotOfTheRows) {
    EXPECT_THAT(refusal(table_of({"x"}, {{"1"}}), {"a", "b"}),
                HasSubstr("f.tsv: none of its names (x, ...) is that of a row (a, ...)\n"));
    LabelTable table = table_of({"b"}, {{"1"}});
    table.names_title = "a";
    EXPECT_THAT(refusal(table, {"a", "b"}),
                HasSubstr("f.tsv: the first line opens with a, the name of a row"));
    table.names_title = "YBR160W";
    EXPECT_THAT(refusal(table, {"b", "CDC28"}),
                HasSubstr("f.tsv: the first line opens with YBR160W, a name of the gene of the row "
                          "CDC28, where titles are expected\nPut a header line above it"));
    table.names_title = "cdc28";
    EXPECT_THAT(refusal(table, {"b", "CDC28"}), HasSubstr("opens with cdc28, a name of the gene"));
    EXPECT_THAT(refusal(table, {"b", "TUB1"}), "not refused");
    EXPECT_THAT(refusal(table_of({"CDC28", "YBR160W"}, {{"1", "2"}}), {"cdc28"}),
                HasSubstr("f.tsv: lines 2 (CDC28) and 3 (YBR160W) are of one gene, that of the row "
                          "cdc28\n"));
}

TEST(JoinLabels, TakesAnyTitleWhereRowsAreNoGenes) {
    LabelTable table = table_of({"b"}, {{"x"}});
    table.names_title = "cdc28";
    EXPECT_THAT(join_labels(table, {"b", "CDC28"}, "f.tsv", false).columns[0].texts,
                ElementsAre("x", ""));
}

TEST(JoinLabels, CallsAColumnWithoutATitleLabel) {
    LabelTable table = table_of({"a"}, {{"x"}});
    table.titles[0].clear();
    EXPECT_EQ(join_labels(table, {"a"}, "f.tsv", true).columns[0].title, "label");
}

TEST(SettleLabels, SaysHowManyRowsHaveOne) {
    LoadedMatrix loaded;
    loaded.matrix.row_names = {"CDC28", "a"};
    EXPECT_THAT(settle_labels(loaded, {}), IsEmpty());
    loaded.label_table = table_of({"a", "cdc28"}, {{"x", "y"}, {"1", "2"}});
    testing::internal::CaptureStdout();
    EXPECT_EQ(settle_labels(loaded, {}).size(), 2U);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "-- Labels: 2 of 2 rows labelled, 0 without a label; 1 row was found under another "
              "name of the gene\n");
    Options options;
    options.names = RowNames::Other;
    testing::internal::CaptureStdout();
    EXPECT_THAT(settle_labels(loaded, options).front().texts, ElementsAre("", "x"));
    EXPECT_THAT(testing::internal::GetCapturedStdout(), HasSubstr("1 of 2 rows labelled"));
}

}  // namespace
}  // namespace ovik::tool
