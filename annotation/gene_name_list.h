#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "annotation/gene_list.h"
#include "util/api.h"

/// Lists of genes as people have them.

namespace ovik {

/// What the names of a list stand for.
struct NamedGenes {
    /// The genes in the order of their names; one that has several names in the list stands there
    /// as often.
    std::vector<const GeneEntry*> genes;
    /// Names that are of no gene, in their order, each once.
    std::vector<std::string> unknown;
    /// Names of several genes, of which none is taken, in their order, each once.
    std::vector<std::string> ambiguous;
};

/// The names in a text, in their order: they stand on lines of their own, or between blanks, tabs,
/// commas, semicolons or double quotes. Names that hold a comma, as ARG5,6 does, are known by being
/// those of genes.
OVIK_API std::vector<std::string> split_gene_names(std::string_view text);

/// Looks names up in any letter case: standard names, also those of other releases, systematic
/// names and names of proteins.
OVIK_API NamedGenes genes_named(std::span<const std::string> names);

}  // namespace ovik
