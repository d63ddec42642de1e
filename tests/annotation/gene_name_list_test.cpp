#include "annotation/gene_name_list.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "annotation/gene_names.h"

namespace ovik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(SplitGeneNames, TakesLinesAndListsOfAnyForm) {
    EXPECT_THAT(split_gene_names("CDC28\nCLN1\n"), ElementsAre("CDC28", "CLN1"));
    EXPECT_THAT(split_gene_names(" CDC28,CLN1;\tCLN2 \r\n\"YBR160W\", nonsense"),
                ElementsAre("CDC28", "CLN1", "CLN2", "YBR160W", "nonsense"));
    EXPECT_THAT(split_gene_names(""), IsEmpty());
    EXPECT_THAT(split_gene_names(" ,\n;\"\" "), IsEmpty());
}

TEST(SplitGeneNames, KeepsNamesThatHoldACommaTogether) {
    EXPECT_THAT(split_gene_names("ARG5,6"), ElementsAre("ARG5,6"));
    EXPECT_THAT(split_gene_names("CDC28,arg5,6,DUR1,2,CLN1"),
                ElementsAre("CDC28", "arg5,6", "DUR1,2", "CLN1"));
    EXPECT_THAT(split_gene_names("ARG5,7"), ElementsAre("ARG5", "7"));
}

TEST(GenesNamed, FindsGenesByAnyOfTheirNames) {
    const std::vector<std::string> names{
        "CDC28", "ybr160w", "Tyr1p", "nonsense", "MF", "x", "nonsense"};
    const NamedGenes named = genes_named(names);
    EXPECT_THAT(named.genes,
                ElementsAre(find_gene("CDC28"), find_gene("CDC28"), find_gene("TYR1")));
    EXPECT_THAT(named.unknown, ElementsAre("nonsense", "x"));
    EXPECT_THAT(named.ambiguous, ElementsAre("MF"));
}

}  // namespace
}  // namespace ovik
