#include "tools/row_genes.h"

#include "util/counted.h"
#include "util/joined.h"

namespace ovik::tool {

namespace {

constexpr std::size_t kListed = 3;

/// A text for each row of a gene.
template <typename TextOf>
std::vector<std::string> texts_of(const RowGenes& genes, const TextOf& text_of) {
    std::vector<std::string> texts(genes.rows.size());
    for (std::size_t n = 0; n < texts.size(); ++n) {
        if (genes.rows[n].gene != nullptr) {
            texts[n] = text_of(genes.rows[n]);
        }
    }
    return texts;
}

bool are_numbers(const std::vector<std::string>& row_names) {
    for (std::size_t n = 0; n < row_names.size(); ++n) {
        if (row_names[n] != std::to_string(n + 1)) {
            return false;
        }
    }
    return true;
}

}  // namespace

std::vector<std::string> functions_of(const RowGenes& genes) {
    return texts_of(genes, [](const NamedGene& row) { return row.gene->function; });
}

std::vector<std::string> systematic_names_of(const RowGenes& genes) {
    return texts_of(genes, [](const NamedGene& row) { return row.systematic; });
}

std::vector<std::string> other_names_of(const RowGenes& genes,
                                        const std::vector<std::string>& row_names) {
    std::vector<std::string> names =
        texts_of(genes, [](const NamedGene& row) { return row.gene->name; });
    bool has_any = false;
    for (std::size_t n = 0; n < names.size(); ++n) {
        if (names[n] == row_names[n]) {
            names[n].clear();
        }
        has_any = has_any || !names[n].empty();
    }
    return has_any ? names : std::vector<std::string>();
}

RowGenes look_up_rows(const std::vector<std::string>& row_names) {
    RowGenes genes;
    genes.rows.reserve(row_names.size());
    for (std::size_t n = 0; n < row_names.size(); ++n) {
        const std::string& name = row_names[n];
        const NamedGene row = identify_gene(name);
        genes.rows.push_back(row);
        genes.listed += row.match == NameMatch::Listed ? 1U : 0U;
        genes.mapped += row.match == NameMatch::Mapped ? 1U : 0U;
        genes.ambiguous += row.match == NameMatch::Ambiguous ? 1U : 0U;
        if (row.gene == nullptr && genes.first_missing.size() < kListed) {
            genes.first_missing.push_back(name.empty() ? "row " + std::to_string(n + 1) : name);
        }
    }
    return genes;
}

RowNames kind_of_names(const std::vector<std::string>& names) {
    return 2 * look_up_rows(names).found() >= names.size() ? RowNames::AsInFile : RowNames::Other;
}

RowGenes rows_without_genes(std::size_t row_count) {
    RowGenes genes;
    genes.rows.resize(row_count);
    return genes;
}

void rename_to_standard(std::vector<std::string>& row_names) {
    for (std::string& name : row_names) {
        const NamedGene found = identify_gene(name);
        if (found.gene != nullptr) {
            name = found.gene->name;
        }
    }
}

std::string found_genes_line(const RowGenes& genes) {
    const std::size_t row_count = genes.rows.size();
    std::string line = "Gene table: " + std::to_string(genes.found()) + " of " +
                       std::to_string(row_count) + " rows found";
    if (genes.mapped > 0) {
        line += ", " + std::to_string(genes.listed) + " directly and " +
                std::to_string(genes.mapped) + " by another name";
    }
    if (genes.ambiguous > 0) {
        line += "; " + counted(genes.ambiguous, "name", "names") + " of several genes";
    }
    if (!genes.first_missing.empty()) {
        line +=
            "; not found: " + first_few(genes.first_missing, kListed, row_count - genes.found());
    }
    return line;
}

std::string few_genes_warning(const RowGenes& genes, const std::vector<std::string>& row_names) {
    const std::size_t row_count = row_names.size();
    if (2 * genes.found() >= row_count || are_numbers(row_names)) {
        return "";
    }
    return "warning: the gene table knows " + std::to_string(genes.found()) + " of " +
           std::to_string(row_count) + " rows, fewer than half: not " +
           first_few(genes.first_missing, kListed, row_count - genes.found()) +
           "\nTable and page say nothing of what such rows do, the map is the same. Genes of yeast "
           "are known by standard and systematic names (CDC28, YBR160W): is the first column that "
           "of the names? If the rows are no genes of yeast, --names other says so.";
}

}  // namespace ovik::tool
