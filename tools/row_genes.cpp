#include "tools/row_genes.h"

#include "annotation/gene_lookup.h"
#include "util/counted.h"

namespace ovik::tool {

namespace {

constexpr std::size_t kListed = 3;

std::string joined(const std::vector<std::string>& texts) {
    std::string result;
    for (const std::string& text : texts) {
        result += (result.empty() ? "" : ", ") + text;
    }
    return result;
}

void count(RowGenes& rows, NameMatch match) {
    rows.listed += match == NameMatch::Listed ? 1U : 0U;
    rows.mapped += match == NameMatch::Mapped ? 1U : 0U;
    rows.ambiguous += match == NameMatch::Ambiguous ? 1U : 0U;
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

RowGenes look_up_rows(const std::vector<std::string>& row_names) {
    RowGenes rows = rows_without_genes(row_names.size());
    for (std::size_t n = 0; n < row_names.size(); ++n) {
        const NamedGene found = identify_gene(row_names[n]);
        count(rows, found.match);
        if (found.gene != nullptr) {
            rows.functions[n] = found.gene->function;
            rows.genes[n] = found.gene->name;
            rows.systematic[n] = found.systematic;
        } else if (rows.first_missing.size() < kListed) {
            rows.first_missing.push_back(row_names[n]);
        }
    }
    return rows;
}

RowGenes rows_without_genes(std::size_t row_count) {
    RowGenes rows;
    rows.functions.resize(row_count);
    rows.genes.resize(row_count);
    rows.systematic.resize(row_count);
    return rows;
}

void rename_to_standard(std::vector<std::string>& row_names) {
    for (std::string& name : row_names) {
        const NamedGene found = identify_gene(name);
        if (found.gene != nullptr) {
            name = found.gene->name;
        }
    }
}

std::string found_genes_line(const RowGenes& rows) {
    const std::size_t row_count = rows.functions.size();
    std::string line = "Gene table: " + std::to_string(rows.found()) + " of " +
                       std::to_string(row_count) + " rows found";
    if (rows.mapped > 0) {
        line += ", " + std::to_string(rows.listed) + " directly and " +
                std::to_string(rows.mapped) + " by another name";
    }
    if (rows.ambiguous > 0) {
        line += "; " + counted(rows.ambiguous, "name", "names") + " of several genes";
    }
    if (!rows.first_missing.empty()) {
        line += "; not found: " + joined(rows.first_missing);
        line += row_count - rows.found() > rows.first_missing.size() ? ", ..." : "";
    }
    return line;
}

std::string few_genes_warning(const RowGenes& rows, const std::vector<std::string>& row_names) {
    const std::size_t row_count = row_names.size();
    if (2 * rows.found() >= row_count || are_numbers(row_names)) {
        return "";
    }
    const bool is_all = row_count - rows.found() == rows.first_missing.size();
    return "warning: the gene table knows " + std::to_string(rows.found()) + " of " +
           std::to_string(row_count) + " rows, fewer than half: not " + joined(rows.first_missing) +
           (is_all ? "" : ", ...") +
           "\nTable and page say nothing of what such rows do, the map is the same. Genes of yeast "
           "are known by standard and systematic names (CDC28, YBR160W): is the first column that "
           "of the names? If the rows are no genes of yeast, --names other says so.";
}

}  // namespace ovik::tool
