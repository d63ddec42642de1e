#pragma once

#include <span>

#include "util/api.h"

namespace ovik {

/// A gene of budding yeast.
struct GeneEntry {
    /// Systematic name, such as YBR160W.
    const char* systematic;
    /// The name it is listed under: its standard name, such as CDC28, else its systematic one. At
    /// most 9 characters.
    const char* name;
    /// What its product does, at most 70 characters; "NULL" if there is no description.
    const char* function;
    /// Its stable identifier at the Saccharomyces Genome Database, such as S000000364.
    const char* sgd_id;
};

/// A further standard name of a gene.
struct GeneAlias {
    const char* alias;
    /// The systematic name of the gene.
    const char* systematic;
    /// The name the gene is listed under.
    const char* name;
};

/// All genes in genome order: chromosome I left arm first, mitochondrial genes last. The two
/// mating-factor genes are both listed as "MF".
OVIK_API std::span<const GeneEntry> gene_list();

/// Standard names of other releases of the annotation, in byte order. One that went from one gene
/// to another is an alias of the gene that is not listed under it.
OVIK_API std::span<const GeneAlias> gene_aliases();

}  // namespace ovik
