#include "annotation/gene_table.h"

#include <map>
#include <string>

#include <gtest/gtest.h>

#include "annotation/gene_list.h"

namespace ovik {
namespace {

TEST(GeneTable, HoldsEveryNameOfTheListAndNoOther) {
    const std::map<std::string, std::string> table = make_gene_table();
    std::map<std::string, std::string> first_of_name;
    for (const GeneEntry& gene : gene_list()) {
        first_of_name.emplace(gene.name, gene.function);
    }
    EXPECT_EQ(table, first_of_name);
}

TEST(GeneTable, IsListedUnderStandardNames) {
    const std::map<std::string, std::string> table = make_gene_table();
    EXPECT_EQ(table.count("CDC28"), 1U);
    EXPECT_EQ(table.count("YBR160W"), 0U);
}

TEST(GeneTable, IsANewOneEachTime) {
    std::map<std::string, std::string> table = make_gene_table();
    table["CDC28"] = "changed";
    table.erase("TUB1");
    EXPECT_NE(make_gene_table()["CDC28"], "changed");
    EXPECT_EQ(make_gene_table().count("TUB1"), 1U);
}

}  // namespace
}  // namespace ovik
