#include "input/header_line.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "util/input_error.h"

namespace ovik {
namespace {

TEST(FindHeader, TellsHeadersFromRowsBehindCommentsAndEmptyLines) {
    const struct {
        const char* text;
        std::size_t first_text;
        std::size_t header;
    } kCases[] = {
        {"# note\ngene\ta\tb\nG1\t1\t2\n", 1, 1},
        {"\n\ngene\ta\tb\nG1\t1\t2\n", 2, 2},
        // Time points, by the word above the names.
        {"# note\ngene\t0\t7\nG1\t1\t2\n", 1, 1},
        {"# note\n\t0\t7\nG1\t1\t2\n", 1, 1},
        {"# a\tb\tc\ngene\t0\t7\nG1\t1\t2\n", 1, 1},
        // A comment that has a field for each of the row's.
        {"# note\n#x\ty\tz\nG1\t1\t2\n", 2, 1},
        // A row, so that the first line is the header.
        {"# note\nYAL001C\t1\t2\nG2\t1\t2\n", 1, 0},
        {"# note\nG1\t1.5\t0.25\nG2\t1\t2\n", 1, 0},
        {"# note\nG1\t1,5\t0,25\nG2\t1\t2\n", 1, 0},
        {"# note\nG1\t1.5\tND\t0.25\nG2\t1\t2\t3\n", 1, 0},
        {"\nG1\t1\t2\nG2\t1\t2\n", 1, 0},
    };

    for (const auto& [text, first_text, header] : kCases) {
        EXPECT_EQ(find_header("m", text, first_text, '\t', {}), header) << text;
    }
}

TEST(FindHeader, RefusesToGuess) {
    try {
        find_header("m", "# note\nX\t0\t7\nG2\t1\t2\n", 1, '\t', {});
        ADD_FAILURE();
    } catch (const InputError& error) {
        EXPECT_THAT(error.what(), testing::StartsWith("m:2: the line behind the comments may be"));
        EXPECT_THAT(error.what(), testing::HasSubstr("no-header"));
    }
}

TEST(HeaderBelowTitle, IsTheFirstLineOfManyFieldsIfThatHeadsColumns) {
    const struct {
        const char* text;
        std::size_t header;
    } kCases[] = {
        {"Table S1. Ratios\n\ngene\ta\tb\nG1\t1\t2\n", 2},
        {"Table S1\nof 2008\n\ta\tb\nG1\t1\t2\n", 2},
        {"Table S1\ngene\t0\t7\nG1\t1\t2\n", 1},
        {"Table S1\t\t\n\t\t\t\ngene\ta\tb\nG1\t1\t2\n", 2},
        // Headers of one word, and what is no title.
        {"gene\t\"a\nb\"\tc\td\te\tf\nG1\t1\t2\t3\t4\t5\n", 0},
        {"gene\t\"a\nb\tc\td\te\"\tf\nG1\t1\t2\n", 0},
        {"g\nG1\t1\t2\nG2\t1\t2\n", 0},
        {"g\nx\t1\tNA\nG2\t1\t2\n", 0},
        {"g\nG1\t0,5\t1,5\nG2\t1\t2\n", 0},
        {"gene\ta\tb\nG1\tx\ty\n", 0},
        {"a\tb\nG1\tx\ty\n", 0},
        {"", 0},
    };

    for (const auto& [text, header] : kCases) {
        EXPECT_EQ(header_below_title(text, 0, '\t', {}), header) << text;
    }
}

TEST(LooksLikeRow, IsTrueOfValuesThatHeadNothing) {
    EXPECT_TRUE(looks_like_row("x", {"0.5", "-1.25"}, {}, {}));
    EXPECT_TRUE(looks_like_row("x", {"NA", "0.5", "-1.25"}, {}, {}));
    EXPECT_TRUE(looks_like_row("x", {"ND", "0.5", "-1.25"}, {}, {}));
    EXPECT_TRUE(looks_like_row("x", {"0,5", "-1,25"}, {}, {}));
    EXPECT_TRUE(looks_like_row("YAL001C", {"0", "7"}, {"A", "B"}, {}));
    EXPECT_TRUE(looks_like_row("G0", {"0", "7"}, {"G1", "G25"}, {}));
}

TEST(LooksLikeRow, IsFalseOfHeaders) {
    EXPECT_FALSE(looks_like_row("gene", {"a", "0.5"}, {"G1"}, {}));
    EXPECT_FALSE(looks_like_row("gene", {"0", "7", "3"}, {"G1"}, {}));
    EXPECT_FALSE(looks_like_row("gene", {"0.5", "1", "2"}, {"G1"}, {}));
    EXPECT_FALSE(looks_like_row("gene", {"NA"}, {"G1"}, {}));
    EXPECT_FALSE(looks_like_row("YAL001C", {"a", "b"}, {}, {}));
    EXPECT_FALSE(looks_like_row("1", {"2", "3"}, {"4", "5"}, {}));
}

TEST(LooksLikeGene, AsksTheCallerToo) {
    LoadOptions options;
    EXPECT_TRUE(looks_like_gene("YAL001C", options));
    EXPECT_FALSE(looks_like_gene("CDC28", options));
    options.is_gene = [](const std::string& name) { return name == "CDC28"; };
    EXPECT_TRUE(looks_like_gene("CDC28", options));
}

TEST(MayBeRow, IsSaidOfNumbersBehindWhatIsNotKnownToHeadNames) {
    const std::vector<std::string> rising = {"137", "582", "867"};
    const std::vector<std::string> counts = {"12", "30", "4"};
    for (const auto& values : {rising, counts}) {
        EXPECT_TRUE(may_be_row(true, "TP53", values, {}));
        EXPECT_TRUE(may_be_row(true, "15S_rRNA", values, {}));
        EXPECT_FALSE(may_be_row(true, "gene", values, {}));
        EXPECT_FALSE(may_be_row(true, "", values, {}));
    }
    EXPECT_FALSE(may_be_row(true, "TP53", {"a", "b", "1"}, {}));
    EXPECT_TRUE(may_be_row(false, "", counts, {}));
    EXPECT_FALSE(may_be_row(false, "", rising, {}));
}

TEST(HeadsNames, KnowsTheWordsHoweverTheyAreWritten) {
    for (const char* const text : {"gene", "Gene ID", "gene_id", "PROBE.SET.ID", "Time (min)"}) {
        EXPECT_TRUE(heads_names(text)) << text;
    }
    for (const char* const text : {"", "TP53", "CDC28", "id1", "gene CDC28"}) {
        EXPECT_FALSE(heads_names(text)) << text;
    }
}

}  // namespace
}  // namespace ovik
