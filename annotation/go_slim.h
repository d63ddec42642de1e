#pragma once

#include <cstdint>
#include <span>

#include "annotation/gene_list.h"
#include "util/api.h"

namespace ovik {

/// What products of genes do, take part in or belong to: a term of the yeast GO slim.
struct GoTerm {
    /// Such as "GO:0006457".
    const char* id;
    /// Such as "protein folding".
    const char* name;
    /// What it tells of: 'P' a process, 'F' a function, 'C' a component of the cell or a complex.
    char aspect;
};

/// All terms in the order of their identifiers, without the three roots, which say no more than
/// that nothing is known.
OVIK_API std::span<const GoTerm> go_terms();

/// The terms of a gene as ascending places in `go_terms()`; none of one of which nothing is known.
///
/// @param gene  an entry of `gene_list()`
OVIK_API std::span<const std::uint16_t> go_terms_of(const GeneEntry& gene);

}  // namespace ovik
