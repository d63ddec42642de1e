#pragma once

#include <map>
#include <string>

#include "util/api.h"

namespace ovik {

/// A new gene table, name to description, from the compiled-in list; of genes with the same name
/// the first one counts.
OVIK_API std::map<std::string, std::string> make_gene_table();

}  // namespace ovik
