#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "annotation/gene_list.h"
#include "util/api.h"

/// Looks genes up for people: exactly, and by the names they may have meant.

namespace ovik {

/// The gene that is listed under this very name, the first one if there are several; null if none
/// is.
OVIK_API const GeneEntry* find_gene(std::string_view name);

/// The gene that has this systematic name; null if none has.
OVIK_API const GeneEntry* find_systematic_gene(std::string_view systematic);

/// The standard name of a gene given by its systematic one; empty if it is not listed under one.
OVIK_API std::string_view standard_gene_name(std::string_view systematic);

/// The standard names that other releases of the annotation have for a gene given by its systematic
/// name, in byte order; none for other texts.
std::vector<std::string_view> aliases_of_gene(std::string_view systematic);

/// Names under which the table lists genes that may be meant by `name`: the same in other letter
/// case, and those of genes that have it, in any letter case, as systematic name or as standard
/// name of another release; without any, that of the gene whose protein has the name. Without
/// `name` itself.
OVIK_API std::vector<std::string> suggest_gene_names(std::string_view name);

}  // namespace ovik
