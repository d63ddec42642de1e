#include "annotation/enrichment_table.h"

#include <algorithm>
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "annotation/gene_names.h"
#include "annotation/go_slim.h"

namespace ovik {
namespace {

using testing::ElementsAre;
using testing::SizeIs;

std::vector<std::string> split(const std::string& text, char at) {
    std::vector<std::string> parts;
    std::istringstream stream(text);
    for (std::string part; std::getline(stream, part, at);) {
        parts.push_back(part);
    }
    return parts;
}

TEST(EnrichmentTable, HasAllThatIsKnownOfEachTerm) {
    const std::vector<const GeneEntry*> genes = {
        find_gene("CLN1"), find_gene("ARG5,6"), find_gene("CLN2")};
    const Enrichment enrichment = enrich(genes);
    const std::vector<std::string> lines = split(enrichment_table(enrichment), '\n');
    ASSERT_THAT(lines, SizeIs(enrichment.terms.size() + 1));
    EXPECT_THAT(
        split(lines.front(), '\t'),
        ElementsAre(
            "term", "name", "aspect", "hits", "size", "drawn", "total", "fold", "p", "q", "genes"));
    bool has_comma = false;
    for (std::size_t i = 0; i < enrichment.terms.size(); ++i) {
        const EnrichedTerm& term = enrichment.terms[i];
        const std::vector<std::string> fields = split(lines[i + 1], '\t');
        ASSERT_THAT(fields, SizeIs(11));
        EXPECT_EQ(fields[0], go_terms()[term.term].id);
        EXPECT_EQ(fields[1], go_terms()[term.term].name);
        EXPECT_EQ(fields[2], aspect_name(go_terms()[term.term].aspect));
        EXPECT_EQ(fields[3], std::to_string(term.hits));
        EXPECT_EQ(fields[4], std::to_string(term.size));
        EXPECT_EQ(fields[5], "3");
        EXPECT_EQ(fields[6], std::to_string(enrichment.total));
        EXPECT_EQ(std::strtod(fields[7].c_str(), nullptr), term.fold);
        EXPECT_EQ(std::strtod(fields[8].c_str(), nullptr), term.p);
        EXPECT_EQ(std::strtod(fields[9].c_str(), nullptr), term.q);
        const std::vector<std::string> names = split(fields[10], ' ');
        EXPECT_THAT(names, SizeIs(term.hits));
        has_comma = has_comma || std::find(names.begin(), names.end(), "ARG5,6") != names.end();
    }
    EXPECT_TRUE(has_comma);
}

TEST(EnrichmentTable, CallsAspectsByTheirNames) {
    EXPECT_EQ(aspect_name('P'), "process");
    EXPECT_EQ(aspect_name('F'), "function");
    EXPECT_EQ(aspect_name('C'), "component");
}

}  // namespace
}  // namespace ovik
