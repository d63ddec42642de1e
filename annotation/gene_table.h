#pragma once

#include <map>
#include <string>

namespace ovik {

/// A new gene table, name to description, from the compiled-in list; of genes with the same name
/// the first one counts.
std::map<std::string, std::string> make_gene_table();

}  // namespace ovik
