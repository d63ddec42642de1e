#pragma once

#include <string_view>
#include <vector>

#include "annotation/gene_list.h"

/// Finding the gene that a row of a file is about, whatever name the file has for it.

namespace ovik {

/// How a name was found to be that of a gene.
enum class NameMatch {
    /// The table lists a gene under this very name.
    Listed,
    /// It is another way to write the name of one gene.
    Mapped,
    /// It is another way to write the names of several genes, so that none is taken.
    Ambiguous,
    Unknown,
};

/// What a name stands for.
struct NamedGene {
    NameMatch match = NameMatch::Unknown;
    /// Null unless the name is listed or mapped. Of several genes listed under it, the first one.
    const GeneEntry* gene = nullptr;
    /// The systematic name of the gene; empty if there is none, or if several are listed under it.
    std::string_view systematic;
};

/// All genes that have this name in any letter case, as the one they are listed under, as
/// systematic name or as standard name of another release; in the order of the list, each once.
std::vector<const GeneEntry*> genes_called(std::string_view name);

/// Finds the gene of a name: the one listed under this very name; else the one that has it in
/// another letter case, as systematic name or as standard name of another release; else the one of
/// which it names the protein, by a "p" behind the name, such as Tyr1p.
NamedGene identify_gene(std::string_view name);

}  // namespace ovik
