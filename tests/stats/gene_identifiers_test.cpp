#include "stats/gene_identifiers.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ovik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Texts = std::vector<std::string>;

TEST(GeneIdentifiers, AreThoseOfTheGeneTable) {
    const Texts names = {"YBR160W", "bmt5", "x", "MF", "CDC28"};
    const Texts functions = {"kinase", "NULL", "of no gene", "NULL", ""};
    const std::vector<GeneIdentifiers> genes = gene_identifiers(names, functions);
    ASSERT_EQ(genes.size(), 5U);
    EXPECT_EQ(genes[0].systematic, "YBR160W");
    EXPECT_EQ(genes[0].sgd_id, "S000000364");
    EXPECT_THAT(genes[0].aliases, IsEmpty());
    EXPECT_EQ(genes[1].systematic, "YIL096C");
    for (const std::size_t row : {2U, 3U, 4U}) {
        EXPECT_EQ(genes[row].systematic + genes[row].sgd_id, "") << names[row];
    }
}

TEST(GeneIdentifiers, HaveTheNamesOfOtherReleases) {
    const std::vector<GeneIdentifiers> genes = gene_identifiers(Texts{"YLR065C"}, Texts{"NULL"});
    ASSERT_EQ(genes.size(), 1U);
    EXPECT_THAT(genes[0].aliases, ElementsAre("SND2"));
}

TEST(GeneIdentifiers, AreNoneWhereNoRowIsAGene) {
    EXPECT_THAT(gene_identifiers(Texts{"CDC28"}, Texts{""}), IsEmpty());
    EXPECT_THAT(gene_identifiers(Texts{"CDC28"}, {}), IsEmpty());
    EXPECT_THAT(gene_identifiers({}, {}), IsEmpty());
}

}  // namespace
}  // namespace ovik
