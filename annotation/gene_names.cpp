#include "annotation/gene_names.h"

#include <algorithm>
#include <unordered_map>

namespace ovik {

namespace {

using EntryIndex = std::unordered_map<std::string_view, const GeneEntry*>;

EntryIndex index_by(const char* GeneEntry::*field) {
    EntryIndex index;
    for (const GeneEntry& gene : gene_list()) {
        index.emplace(gene.*field, &gene);
    }
    return index;
}

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
    static const EntryIndex by_name = index_by(&GeneEntry::name);
    const auto found = by_name.find(name);
    return found != by_name.end() ? found->second : nullptr;
}

std::string_view standard_gene_name(std::string_view systematic) {
    static const EntryIndex by_systematic = index_by(&GeneEntry::systematic);
    const auto found = by_systematic.find(systematic);
    if (found == by_systematic.end() || found->second->name == systematic) {
        return {};
    }
    return found->second->name;
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
