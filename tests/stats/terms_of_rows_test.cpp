#include "stats/terms_of_rows.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "annotation/gene_names.h"
#include "annotation/go_slim.h"

namespace ovik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;

std::string function_of(const char* name) {
    return find_gene(name)->function;
}

/// The identifiers of the terms of a row.
std::vector<std::string> ids_of(const RowTerms& terms, std::size_t row) {
    std::vector<std::string> ids;
    for (const std::size_t place : terms.of_rows.at(row)) {
        ids.push_back(terms.list.at(place).id);
    }
    return ids;
}

TEST(TermsOfRows, AreThoseOfTheGenesUnderAnyOfTheirNames) {
    const std::string kinase = function_of("CDC28");
    const std::vector<std::string> names = {"CDC28", "nonsense", "ybr160w", "HSP104", "Cdc28p"};
    const std::vector<std::string> functions = {kinase, "", kinase, function_of("HSP104"), kinase};
    const RowTerms terms = terms_of_rows(names, functions);
    ASSERT_THAT(terms.of_rows, SizeIs(5));
    std::vector<std::string> expected;
    for (const std::uint16_t term : go_terms_of(*find_gene("HSP104"))) {
        expected.emplace_back(go_terms()[term].id);
    }
    EXPECT_EQ(ids_of(terms, 3), expected);
    EXPECT_THAT(ids_of(terms, 1), IsEmpty());
    EXPECT_EQ(ids_of(terms, 0), ids_of(terms, 2));
    EXPECT_THAT(terms.repeated, ElementsAre(Pair(2, 0), Pair(4, 0)));
    EXPECT_EQ(terms.list.front().name.empty(), false);
    EXPECT_LT(terms.list.size(), go_terms().size());
}

TEST(TermsOfRows, AreNotThoseOfGenesThatOnlyShareAName) {
    const std::vector<std::string> names = {"CDC28", "HSP104", "MF"};
    const std::vector<std::string> functions = {"Of another organism", "", "NULL"};
    const RowTerms none = terms_of_rows(names, functions);
    EXPECT_THAT(none.list, IsEmpty());
    EXPECT_THAT(none.of_rows, IsEmpty());
}

}  // namespace
}  // namespace ovik
