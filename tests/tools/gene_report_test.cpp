#include "tools/gene_report.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace ovik::tool {
namespace {

struct Shown {
    ExitStatus status;
    std::string out;
    std::string err;
};

Shown shown(const std::string& name) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const ExitStatus status = show_gene(name);
    std::string out = testing::internal::GetCapturedStdout();
    return {status, out, testing::internal::GetCapturedStderr()};
}

TEST(ShowGene, PrintsWhatTheGeneDoes) {
    const Shown gene = shown("CDC28");
    EXPECT_EQ(gene.status, Success);
    EXPECT_EQ(gene.out, "CDC28: Cyclin-dependent kinase (CDK) catalytic subunit\n");
    EXPECT_EQ(gene.err, "");
}

TEST(ShowGene, RefusesANameThatTheTableLacks) {
    const Shown systematic = shown("YBR160W");
    EXPECT_EQ(systematic.status, BadInput);
    EXPECT_EQ(systematic.out, "");
    EXPECT_EQ(systematic.err,
              "ovik-tsne: there is no gene \"YBR160W\" in the table\nDid you mean CDC28?\n");
    const Shown unlike = shown("xxxxxxxxxxxxxxxxxxxxxxxx");
    EXPECT_EQ(unlike.status, BadInput);
    EXPECT_EQ(unlike.err,
              "ovik-tsne: there is no gene \"xxxxxxxxxxxxxxxxxxxxxxxx\" in the table\n");
    EXPECT_EQ(shown("").status, BadInput);
}

TEST(SystematicNamesWarning, IsForMostOfTheRows) {
    EXPECT_EQ(systematic_names_warning({}), "");
    EXPECT_EQ(systematic_names_warning({"YBR160W", "CDC28"}), "");
    EXPECT_EQ(systematic_names_warning({"YBR160W", "YFL039C", "CDC28"}),
              "2 of 3 rows carry systematic names of genes that the gene table lists under "
              "standard ones; to see what they do, add --names standard");
    // Those that have no other name are found as they are.
    EXPECT_EQ(systematic_names_warning({"YAL069W", "YAL069W"}), "");
}

TEST(RenameToStandard, LeavesNamesWithoutAStandardOne) {
    std::vector<std::string> names = {"YBR160W", "YAL069W", "CDC28", "probe 7", ""};
    rename_to_standard(names);
    EXPECT_EQ(names, (std::vector<std::string>{"CDC28", "YAL069W", "CDC28", "probe 7", ""}));
}

TEST(FoundGenesLine, NamesTheFirstFewThatAreMissing) {
    EXPECT_EQ(found_genes_line({}), "Gene table: 0 of 0 rows found");
    EXPECT_EQ(found_genes_line({"CDC28", "TUB1"}), "Gene table: 2 of 2 rows found");
    EXPECT_EQ(found_genes_line({"a1x", "CDC28", "b2x", "c3x"}),
              "Gene table: 1 of 4 rows found; not found: a1x, b2x, c3x");
    EXPECT_EQ(found_genes_line({"a1x", "b2x", "c3x", "d4x", "CDC28"}),
              "Gene table: 1 of 5 rows found; not found: a1x, b2x, c3x, ...");
}

}  // namespace
}  // namespace ovik::tool
