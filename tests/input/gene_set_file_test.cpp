#include "input/gene_set_file.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "util/input_error.h"

#include "tests/support/gzip.h"
#include "tests/support/temporary_directory.h"

namespace ovik {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;

class GeneSetFiles : public testing::Test {
  protected:
    std::vector<ListedSet> read(const std::string& text) {
        return read_gene_sets(directory_.write("sets.gmt", text));
    }

    std::string refusal(const std::string& text) {
        try {
            read(text);
        } catch (const InputError& error) {
            const std::string message = error.what();
            EXPECT_TRUE(message.starts_with(directory_.file("sets.gmt"))) << message;
            return message.substr(directory_.file("sets.gmt").size());
        }
        ADD_FAILURE() << text << " was not refused";
        return "";
    }

    test::TemporaryDirectory directory_;
};

const std::string kTwo = "Heat shock\thttp://x\tHSP104\tHSP12\n\nG1\t\t CLN1 \t\tCLN2";

TEST_F(GeneSetFiles, HoldASetPerLine) {
    for (const std::string& text : {kTwo, "\xEF\xBB\xBF" + kTwo, test::gzipped(kTwo)}) {
        const std::vector<ListedSet> sets = read(text);
        ASSERT_THAT(sets, SizeIs(2));
        EXPECT_EQ(sets[0].name, "Heat shock");
        EXPECT_EQ(sets[0].line, 1U);
        EXPECT_THAT(sets[0].genes, ElementsAre("HSP104", "HSP12"));
        EXPECT_EQ(sets[1].name, "G1");
        EXPECT_EQ(sets[1].line, 3U);
        EXPECT_THAT(sets[1].genes, ElementsAre("CLN1", "CLN2"));
    }
}

TEST_F(GeneSetFiles, MayHaveCarriageReturns) {
    const std::vector<ListedSet> sets = read("a\tb\tCLN1\r\n\r\n");
    ASSERT_THAT(sets, SizeIs(1));
    EXPECT_THAT(sets[0].genes, ElementsAre("CLN1"));
}

TEST_F(GeneSetFiles, MayHaveAColourInThePlaceOfADescription) {
    const std::vector<ListedSet> sets =
        read("a\t#0aF19c\tCLN1\nb\t#0af19\tCLN1\nc\t#0af19g\tCLN1\nd\t\tCLN1\n");
    ASSERT_THAT(sets, SizeIs(4));
    EXPECT_EQ(sets[0].colour, "#0aF19c");
    EXPECT_EQ(sets[1].colour + sets[2].colour + sets[3].colour, "");
}

TEST_F(GeneSetFiles, AreRefusedByLineWithTheCure) {
    EXPECT_EQ(refusal("a\tb\tCLN1\nCLN2\n"),
              ", line 2: has 1 field and so no gene\nA set is one line: its name, a description "
              "(which may be empty), then its genes, with a tab between each.");
    EXPECT_THAT(refusal("a\tb\n"), HasSubstr(", line 1: has 2 fields and so no gene\n"));
    EXPECT_THAT(refusal(" \tb\tCLN1\n"), HasSubstr(", line 1: the set has no name\n"));
    EXPECT_THAT(refusal("a\tb\t\t \n"), HasSubstr(", line 1: the set \"a\" has no gene\n"));
    EXPECT_THAT(refusal("\n"), HasSubstr(": holds no set\nA set is one line"));
    EXPECT_EQ(
        refusal("a\t\tX\nb\t\tX\na\t\tY\n"),
        ": the sets on lines 1 and 3 are both called \"a\"\nGive each set a name of its own.");
}

TEST_F(GeneSetFiles, HaveNoMoreSetsThanThePageTakes) {
    std::string text;
    for (std::size_t set = 0; set < kMostSets; ++set) {
        text += "s" + std::to_string(set) + "\t\tCLN1\n";
    }
    EXPECT_THAT(read(text), SizeIs(kMostSets));
    EXPECT_EQ(refusal(text + "more\t\tCLN1\n"),
              ": holds 1001 sets, and the chart page takes at most 1000\nLeave those in that you "
              "want to look at.");
}

TEST_F(GeneSetFiles, ThatCannotBeReadAreRefused) {
    EXPECT_THROW(read_gene_sets(directory_.file("none.gmt")), InputError);
    EXPECT_THAT(refusal(std::string("PK\0\3", 4)), HasSubstr(": "));
}

}  // namespace
}  // namespace ovik
