#pragma once

#include <map>
#include <string>

namespace ovik {

/// A new gene table, name to description, from the compiled-in list; of genes with the same name
/// the first one counts. Ends the process as `exit_out_of_memory` does if there is too little memory.
std::map<std::string, std::string> make_gene_table();

}  // namespace ovik
