#include "tools/gene_report.h"

#include <algorithm>
#include <cstdio>

#include "annotation/gene_names.h"

namespace ovik::tool {

namespace {

constexpr std::size_t kListed = 3;

std::string joined(const std::vector<std::string>& texts, const char* separator) {
    std::string result;
    for (const std::string& text : texts) {
        result += (result.empty() ? "" : separator) + text;
    }
    return result;
}

}  // namespace

ExitStatus show_gene(const std::string& name) {
    const GeneEntry* const gene = find_gene(name);
    if (gene != nullptr) {
        std::printf("%s: %s\n", gene->name, gene->function);
        return Success;
    }
    std::fprintf(stderr, "ovik-tsne: there is no gene \"%s\" in the table\n", name.c_str());
    const std::vector<std::string> suggestions = suggest_gene_names(name);
    if (!suggestions.empty()) {
        std::fprintf(stderr, "Did you mean %s?\n", joined(suggestions, " or ").c_str());
    }
    return BadInput;
}

std::string systematic_names_warning(const std::vector<std::string>& row_names) {
    const auto systematic = static_cast<std::size_t>(
        std::count_if(row_names.begin(), row_names.end(), [](const std::string& name) {
            return !standard_gene_name(name).empty();
        }));
    if (2 * systematic <= row_names.size()) {
        return "";
    }
    return std::to_string(systematic) + " of " + std::to_string(row_names.size()) +
           " rows carry systematic names of genes that the gene table lists under standard ones; "
           "to "
           "see what they do, add --names standard";
}

void rename_to_standard(std::vector<std::string>& row_names) {
    for (std::string& name : row_names) {
        const std::string_view standard = standard_gene_name(name);
        if (!standard.empty()) {
            name = standard;
        }
    }
}

std::string found_genes_line(const std::vector<std::string>& row_names) {
    std::size_t found = 0;
    std::vector<std::string> missing;
    for (const std::string& name : row_names) {
        if (find_gene(name) != nullptr) {
            ++found;
        } else if (missing.size() < kListed) {
            missing.push_back(name);
        }
    }
    std::string line = "Gene table: " + std::to_string(found) + " of " +
                       std::to_string(row_names.size()) + " rows found";
    if (!missing.empty()) {
        line += "; not found: " + joined(missing, ", ");
        line += row_names.size() - found > missing.size() ? ", ..." : "";
    }
    return line;
}

}  // namespace ovik::tool
