#include "input/known_layouts.h"

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ovik {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

TableHead head_of(std::vector<std::string> header,
                  std::vector<std::vector<std::string>> rows = {},
                  std::vector<std::string> opening = {}) {
    TableHead head;
    head.opening = std::move(opening);
    head.header = std::move(header);
    head.rows = std::move(rows);
    head.lines_above = head.opening.size() + 1;
    head.row_fields = head.header.size();
    return head;
}

TableLayout layout_of_head(const TableHead& head) {
    const auto& layouts = known_layouts();
    const auto known = std::find_if(layouts.begin(), layouts.end(), [&](const KnownLayout& each) {
        return each.recognises(head);
    });
    TableLayout layout;
    layout.name = known->name;
    layout.header = head.header;
    layout.lines_above = head.lines_above;
    known->describe(head, layout);
    return layout;
}

/// The headers of the fields that are values.
std::vector<std::string> values_of(const TableLayout& layout) {
    std::vector<std::string> values;
    for (std::size_t field = 0; field < layout.header.size(); ++field) {
        if (layout.isValue(field)) {
            values.push_back(layout.header[field]);
        }
    }
    return values;
}

TEST(KnownLayouts, EndWithOrdinaryText) {
    const TableLayout plain = layout_of_head(head_of({"gene", "a", "b"}));
    EXPECT_EQ(plain.name, "");
    EXPECT_TRUE(plain.isOrdinary());
    EXPECT_THAT(plain.no_rows, testing::Contains("__no_feature"));
    EXPECT_THAT(plain.notes, IsEmpty());
    EXPECT_THAT(layout_of_head(head_of({"gene"}, {}, {"# x", ""})).notes,
                ElementsAre("lines 1 to 2 are above the header, and no rows"));
}

TEST(KnownLayouts, KnowTablesOfCluster) {
    const TableLayout pcl = layout_of_head(head_of({"YORF", "NAME", "GWEIGHT", "a", "b"}));
    EXPECT_EQ(pcl.name, "gene expression table (.pcl)");
    EXPECT_EQ(pcl.names_field, 0U);
    EXPECT_THAT(values_of(pcl), ElementsAre("a", "b"));
    EXPECT_THAT(pcl.no_rows, ElementsAre("EWEIGHT", "EORDER", "AID"));
    const TableLayout cdt = layout_of_head(head_of({"GID", "UNIQID", "NAME", "GWEIGHT", "a"}));
    EXPECT_EQ(cdt.name, "gene expression table (.cdt)");
    EXPECT_EQ(cdt.names_field, 1U);
    EXPECT_THAT(values_of(cdt), ElementsAre("a"));
    const TableLayout unweighted =
        layout_of_head(head_of({"ORF", "name", "a"}, {{"EWEIGHT", "", "1"}}));
    EXPECT_THAT(values_of(unweighted), ElementsAre("a"));
    EXPECT_THAT(values_of(layout_of_head(head_of({"ORF", "a"}, {{"EWEIGHT", "1"}}))),
                ElementsAre("a"));
    // Without weights a column of this name may be anything.
    EXPECT_EQ(layout_of_head(head_of({"YORF", "NAME", "a"})).name, "");
}

TEST(KnownLayouts, KnowTablesOfGeo) {
    const TableLayout series = layout_of_head(
        head_of({"ID_REF", "GSM1"}, {}, {"!Series_title", "!series_matrix_table_begin"}));
    EXPECT_EQ(series.end_mark, "!series_matrix_table_end");
    EXPECT_TRUE(series.isOrdinary());
    EXPECT_THAT(series.notes, ElementsAre("the 2 lines above the table are no rows"));
    const TableLayout set = layout_of_head(
        head_of({"ID_REF", "IDENTIFIER", "GSM1"}, {}, {"^DATASET", "!dataset_table_begin"}));
    EXPECT_EQ(set.end_mark, "!dataset_table_end");
    EXPECT_EQ(set.names_field, 1U);
    EXPECT_THAT(values_of(set), ElementsAre("GSM1"));
}

TEST(KnownLayouts, KnowGctFiles) {
    const TableLayout older =
        layout_of_head(head_of({"Name", "Description", "a"}, {}, {"#1.2", "30\t1"}));
    EXPECT_EQ(older.name, "GCT 1.2");
    EXPECT_THAT(values_of(older), ElementsAre("a"));
    EXPECT_EQ(older.promised_rows, 30U);
    EXPECT_EQ(older.lines_above, 3U);
    const TableLayout newer =
        layout_of_head(head_of({"id", "x", "y", "a"}, {}, {"#1.3", "30\t1\t2\t4"}));
    EXPECT_EQ(newer.name, "GCT 1.3");
    EXPECT_THAT(values_of(newer), ElementsAre("a"));
    EXPECT_EQ(newer.lines_above, 7U);
    EXPECT_THAT(newer.notes, ElementsAre("4 lines above the rows describe the columns"));
    // Sizes that are not there promise nothing.
    const TableLayout broken = layout_of_head(head_of({"id", "a"}, {}, {"#1.3", "x"}));
    EXPECT_EQ(broken.promised_rows, std::nullopt);
    EXPECT_THAT(values_of(broken), ElementsAre("a"));
}

TEST(KnownLayouts, KnowTablesOfReadCounts) {
    const TableLayout counts = layout_of_head(
        head_of({"Geneid", "Chr", "Start", "End", "Strand", "Length", "a.bam", "b.bam"}));
    EXPECT_EQ(counts.name, "featureCounts table");
    EXPECT_THAT(values_of(counts), ElementsAre("a.bam", "b.bam"));

    const struct {
        const char* name;
        std::vector<std::string> header;
    } kOfOneSample[] = {
        {"Salmon table", {"Name", "Length", "EffectiveLength", "TPM", "NumReads"}},
        {"kallisto table", {"target_id", "length", "eff_length", "est_counts", "tpm"}},
        {"RSEM table",
         {"gene_id",
          "transcript_id(s)",
          "length",
          "effective_length",
          "expected_count",
          "TPM",
          "FPKM"}},
    };

    for (const auto& [name, header] : kOfOneSample) {
        const TableLayout layout = layout_of_head(head_of(header));
        EXPECT_EQ(layout.name, name);
        EXPECT_THAT(values_of(layout), ElementsAre(testing::AnyOf("TPM", "tpm")));
        ASSERT_THAT(layout.notes, SizeIs(1));
        EXPECT_THAT(layout.notes[0], HasSubstr("holds one sample"));
    }
}

TEST(KnownLayouts, LeaveOutTheOrdersOfCluster) {
    const TableLayout ordered = layout_of_head(head_of(
        {"YORF", "NAME", "GWEIGHT", "GORDER", "a", "b"}, {{"EWEIGHT", "", "", "", "1", "1"}}));
    EXPECT_THAT(values_of(ordered), ElementsAre("a", "b"));
    EXPECT_THAT(ordered.no_rows, testing::Contains("EORDER"));
}

TEST(KnownLayouts, TakeARemarkForNoTableOfGeo) {
    EXPECT_EQ(layout_of_head(head_of({"gene", "a", "b"}, {}, {"! made by lab X"})).name, "");
}

}  // namespace
}  // namespace ovik
