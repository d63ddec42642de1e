#pragma once

#include <cstddef>

namespace ovik {

/// How many of the nearest neighbours a search has found, measured on some rows.
struct NeighbourRecall {
    /// The share of the neighbours that are as near as those of a comparison with all rows.
    double share = 1.0;
    /// On how many rows it was measured.
    std::size_t rows = 0;

    bool operator==(const NeighbourRecall&) const = default;
};

}  // namespace ovik
