#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace ovik {

/// Some rows of a run under a name of their own.
struct GeneSet {
    /// Any bytes.
    std::string name;
    /// Ascending, each once.
    std::vector<std::size_t> rows;
    /// "#rrggbb"; empty for one that the page chooses.
    std::string colour = {};
};

}  // namespace ovik
