#pragma once

#include <string>
#include <vector>

namespace ovik {

/// What a gene of a row is called besides the name of the row; empty for a row of no known gene.
struct GeneIdentifiers {
    /// Systematic name, such as YBR160W.
    std::string systematic;
    /// Identifier at the Saccharomyces Genome Database, such as S000000364.
    std::string sgd_id;
    /// Standard names of other releases of the annotation.
    std::vector<std::string> aliases;
};

}  // namespace ovik
