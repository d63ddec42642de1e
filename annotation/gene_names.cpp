#include "annotation/gene_names.h"

#include <algorithm>
#include <unordered_map>

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

/// The text with ASCII letters in upper case.
std::string upper_case(std::string_view text) {
    std::string result(text);
    for (char& c : result) {
        c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    }
    return result;
}

/// From every way to name a gene, in upper case, to the names the table lists.
std::unordered_multimap<std::string, std::string> index_suggestions() {
    std::unordered_multimap<std::string, std::string> index;
    for (const GeneEntry& gene : gene_list()) {
        index.emplace(upper_case(gene.name), gene.name);
        index.emplace(upper_case(gene.systematic), gene.name);
    }
    for (const GeneAlias& alias : gene_aliases()) {
        index.emplace(upper_case(alias.alias), alias.name);
    }
    return index;
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

std::vector<std::string> suggest_gene_names(std::string_view name) {
    static const auto index = index_suggestions();
    std::vector<std::string> names;
    const auto [first, last] = index.equal_range(upper_case(name));
    for (auto entry = first; entry != last; ++entry) {
        if (entry->second != name) {
            names.push_back(entry->second);
        }
    }
    std::sort(names.begin(), names.end());
    names.erase(std::unique(names.begin(), names.end()), names.end());
    return names;
}

}  // namespace ovik
