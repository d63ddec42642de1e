#include "annotation/gene_name_list.h"

#include <algorithm>
#include <set>
#include <utility>

#include "annotation/gene_lookup.h"

namespace ovik {

namespace {

/// The parts of a text between any of some characters, without empty ones.
std::vector<std::string> parts_between(std::string_view text, std::string_view separators) {
    std::vector<std::string> parts;
    std::size_t begin = text.find_first_not_of(separators);
    while (begin != std::string_view::npos) {
        const std::size_t end = std::min(text.find_first_of(separators, begin), text.size());
        parts.emplace_back(text.substr(begin, end - begin));
        begin = text.find_first_not_of(separators, end);
    }
    return parts;
}

/// Whether a name is of one gene or of several.
bool is_gene_name(const std::string& name) {
    return identify_gene(name).match != NameMatch::Unknown;
}

/// Adds the names between the commas of a word; two parts that make the name of a gene stay
/// together.
void add_names_of(const std::string& word, std::vector<std::string>& names) {
    const std::vector<std::string> parts = parts_between(word, ",");
    for (std::size_t i = 0; i < parts.size(); ++i) {
        const std::string both = i + 1 < parts.size() ? parts[i] + "," + parts[i + 1] : "";
        const bool belong_together = !both.empty() && is_gene_name(both);
        names.push_back(belong_together ? both : parts[i]);
        i += belong_together ? 1U : 0U;
    }
}

/// Texts in the order in which they came, each once.
class DistinctTexts {
  public:
    void add(const std::string& text) {
        if (known_.insert(text).second) {
            texts_.push_back(text);
        }
    }

    [[nodiscard]] std::vector<std::string> take() { return std::move(texts_); }

  private:
    std::set<std::string> known_;
    std::vector<std::string> texts_;
};

}  // namespace

std::vector<std::string> split_gene_names(std::string_view text) {
    std::vector<std::string> names;
    for (const std::string& word : parts_between(text, " \t\r\n\v\f;\"")) {
        add_names_of(word, names);
    }
    return names;
}

NamedGenes genes_named(std::span<const std::string> names) {
    NamedGenes result;
    DistinctTexts unknown;
    DistinctTexts ambiguous;
    for (const std::string& name : names) {
        const NamedGene found = identify_gene(name);
        if (found.match == NameMatch::Unknown) {
            unknown.add(name);
        } else if (found.systematic.empty()) {
            ambiguous.add(name);
        } else {
            result.genes.push_back(found.gene);
        }
    }
    result.unknown = unknown.take();
    result.ambiguous = ambiguous.take();
    return result;
}

}  // namespace ovik
