#include "annotation/gene_names.h"

#include <algorithm>

#include "annotation/gene_lookup.h"

namespace ovik {

namespace {

/// The genes in the order of one of their names; those that share it in that of the list.
class EntryIndex {
  public:
    explicit EntryIndex(const char* GeneEntry::*field) : field_(field) {
        entries_.reserve(gene_list().size());
        for (const GeneEntry& gene : gene_list()) {
            entries_.push_back(&gene);
        }
        std::stable_sort(entries_.begin(), entries_.end(), [this](const auto* a, const auto* b) {
            return nameOf(a) < nameOf(b);
        });
    }

    /// The first gene of this name in the list, or null.
    [[nodiscard]] const GeneEntry* find(std::string_view name) const {
        const auto found = std::lower_bound(
            entries_.begin(), entries_.end(), name, [this](const auto* gene, const auto& wanted) {
                return nameOf(gene) < wanted;
            });
        return found != entries_.end() && nameOf(*found) == name ? *found : nullptr;
    }

  private:
    [[nodiscard]] std::string_view nameOf(const GeneEntry* gene) const { return gene->*field_; }

    const char* GeneEntry::*field_;
    std::vector<const GeneEntry*> entries_;
};

/// The aliases in the order of the systematic names of their genes, those of one gene in byte
/// order.
std::vector<const GeneAlias*> aliases_by_gene() {
    std::vector<const GeneAlias*> aliases;
    aliases.reserve(gene_aliases().size());
    for (const GeneAlias& alias : gene_aliases()) {
        aliases.push_back(&alias);
    }
    std::stable_sort(aliases.begin(), aliases.end(), [](const auto* one, const auto* other) {
        return std::string_view(one->systematic) < other->systematic;
    });
    return aliases;
}

}  // namespace

const GeneEntry* find_gene(std::string_view name) {
    static const EntryIndex by_name(&GeneEntry::name);
    return by_name.find(name);
}

const GeneEntry* find_systematic_gene(std::string_view systematic) {
    static const EntryIndex by_systematic(&GeneEntry::systematic);
    return by_systematic.find(systematic);
}

std::string_view standard_gene_name(std::string_view systematic) {
    const GeneEntry* const gene = find_systematic_gene(systematic);
    if (gene == nullptr || gene->name == systematic) {
        return {};
    }
    return gene->name;
}

std::vector<std::string_view> aliases_of_gene(std::string_view systematic) {
    static const std::vector<const GeneAlias*> aliases = aliases_by_gene();
    auto alias = std::lower_bound(
        aliases.begin(), aliases.end(), systematic, [](const auto* one, std::string_view wanted) {
            return one->systematic < wanted;
        });
    std::vector<std::string_view> names;
    for (; alias != aliases.end() && (*alias)->systematic == systematic; ++alias) {
        names.emplace_back((*alias)->alias);
    }
    return names;
}

std::vector<std::string> suggest_gene_names(std::string_view name) {
    std::vector<std::string> names;
    for (const GeneEntry* const gene : genes_called(name)) {
        if (gene->name != name) {
            names.emplace_back(gene->name);
        }
    }
    const GeneEntry* const meant = names.empty() ? identify_gene(name).gene : nullptr;
    if (meant != nullptr && meant->name != name) {
        names.emplace_back(meant->name);
    }
    std::sort(names.begin(), names.end());
    names.erase(std::unique(names.begin(), names.end()), names.end());
    return names;
}

}  // namespace ovik
