#include "annotation/gene_names.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "annotation/gene_list.h"
#include "annotation/gene_lookup.h"
#include "annotation/gene_table.h"

#include "tests/fuzz/support/input_lines.h"
#include "tests/fuzz/support/require.h"

/// Looking genes up against going through the whole list. Line 1 of an input chooses a gene, line 2
/// an alias, line 3 which name it is (0 none, 1 listed, 2 systematic, 3 alias), line 4 the letters
/// whose case is changed, as bits; what follows is put behind the name.

namespace ovik {
namespace {

bool is_letter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

/// Whether two names differ in the case of ASCII letters at most, which is one bit.
bool are_alike(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) {
        return false;
    }
    for (std::size_t i = 0; i < a.size(); ++i) {
        const bool is_same = a[i] == b[i] || (is_letter(a[i]) && (a[i] ^ b[i]) == 0x20);
        if (!is_same) {
            return false;
        }
    }
    return true;
}

std::string chosen_name(test::InputLines& input) {
    const GeneEntry& gene = gene_list()[input.count(gene_list().size() - 1)];
    const GeneAlias& alias = gene_aliases()[input.count(gene_aliases().size() - 1)];
    const std::size_t kind = input.count(3);
    std::string name =
        kind == 0 ? "" : (kind == 1 ? gene.name : (kind == 2 ? gene.systematic : alias.alias));
    const std::size_t flips = input.count(1023);
    for (std::size_t i = 0; i < name.size(); ++i) {
        if (is_letter(name[i]) && (flips >> i & 1U) != 0) {
            name[i] = static_cast<char>(name[i] ^ 0x20);
        }
    }
    return name + input.rest();
}

/// A way to name a gene.
struct Naming {
    std::string_view name;
    std::string_view listed_name;
    const GeneEntry* gene;

    enum Kind { Listed, Systematic, Alias } kind;
};

/// The gene of a systematic name.
const GeneEntry* listed_entry(std::string_view systematic) {
    for (const GeneEntry& gene : gene_list()) {
        if (gene.systematic == systematic) {
            return &gene;
        }
    }
    return nullptr;
}

/// All of them in the order of the list; a gene that is listed under its systematic name is there
/// twice.
std::vector<Naming> all_names() {
    std::vector<Naming> names;
    for (const GeneEntry& gene : gene_list()) {
        names.push_back({gene.name, gene.name, &gene, Naming::Listed});
        names.push_back({gene.systematic, gene.name, &gene, Naming::Systematic});
    }
    for (const GeneAlias& alias : gene_aliases()) {
        names.push_back({alias.alias, alias.name, listed_entry(alias.systematic), Naming::Alias});
    }
    return names;
}

const std::vector<Naming>& namings() {
    static const std::vector<Naming> kNames = all_names();
    return kNames;
}

/// All genes of which this is a name in any letter case.
std::set<const GeneEntry*> genes_alike(std::string_view name) {
    std::set<const GeneEntry*> genes;
    for (const Naming& entry : namings()) {
        if (are_alike(entry.name, name)) {
            genes.insert(entry.gene);
        }
    }
    return genes;
}

/// The genes that have a name, in any letter case, or without any those whose proteins have it.
std::set<const GeneEntry*> genes_meant(const std::string& name) {
    std::set<const GeneEntry*> genes = genes_alike(name);
    const bool names_protein = !name.empty() && are_alike(name.substr(name.size() - 1), "p");
    return genes.empty() && names_protein ? genes_alike(name.substr(0, name.size() - 1)) : genes;
}

/// @param listed  the gene that is listed under the very name; null if none is
void check_identity(const std::string& name, const GeneEntry* listed) {
    const std::set<const GeneEntry*> genes = genes_meant(name);
    const NamedGene found = identify_gene(name);
    if (listed != nullptr) {
        OVIK_REQUIRE(found.match == NameMatch::Listed && found.gene == listed);
    } else if (genes.size() == 1) {
        OVIK_REQUIRE(found.match == NameMatch::Mapped && found.gene == *genes.begin());
        OVIK_REQUIRE(found.systematic == found.gene->systematic);
    } else {
        OVIK_REQUIRE(found.match == (genes.empty() ? NameMatch::Unknown : NameMatch::Ambiguous));
        OVIK_REQUIRE(found.gene == nullptr && found.systematic.empty());
    }
}

void check_name(const std::string& name) {
    const GeneEntry* listed = nullptr;
    const GeneEntry* systematic = nullptr;
    std::set<std::string> alike;
    for (const Naming& entry : namings()) {
        if (!are_alike(entry.name, name)) {
            continue;
        }
        alike.emplace(entry.listed_name);
        if (entry.name == name && entry.kind != Naming::Alias) {
            const GeneEntry*& first = entry.kind == Naming::Systematic ? systematic : listed;
            first = first != nullptr ? first : entry.gene;
        }
    }
    const bool has_standard_name = systematic != nullptr && systematic->name != name;
    const std::string_view standard = has_standard_name ? systematic->name : "";
    alike.erase(name);
    const std::set<const GeneEntry*> meant = genes_meant(name);
    if (alike.empty() && listed == nullptr && meant.size() == 1) {
        alike.emplace((*meant.begin())->name);
        alike.erase(name);
    }
    OVIK_REQUIRE(find_gene(name) == listed);
    check_identity(name, listed);
    OVIK_REQUIRE(standard_gene_name(name) == standard);
    OVIK_REQUIRE(suggest_gene_names(name) == std::vector<std::string>(alike.begin(), alike.end()));

    static std::map<std::string, std::string> table = make_gene_table();
    const std::size_t known = table.size();
    OVIK_REQUIRE(table[name] == (listed != nullptr ? listed->function : ""));
    OVIK_REQUIRE(table.size() == known + (listed != nullptr ? 0 : 1));
    if (listed == nullptr) {
        table.erase(name);
    }
}

}  // namespace
}  // namespace ovik

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    ovik::test::InputLines input(data, size);
    ovik::check_name(ovik::chosen_name(input));
    return 0;
}
