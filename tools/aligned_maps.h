#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "plots/comparison_page.h"
#include "stats/map_agreement.h"

namespace ovik::tool {

/// A map as a run left it.
struct RunMap {
    /// What its rows are, one gene each; shared by runs of the same rows. Null for no map.
    std::shared_ptr<const ComparedGenes> rows;
    std::size_t dims = 0;
    /// Row-major, rows x dims; NaN where a row has no place.
    std::vector<double> places;
};

/// A map that lies as near to the reference as it can.
struct AlignedMap {
    /// One per gene, NaN where the map has none; empty for no map.
    std::vector<double> x;
    std::vector<double> y;
    /// How many genes have a place here.
    std::size_t placed = 0;
    /// How many of them have one in the reference, too.
    std::size_t shared = 0;
    /// Not of the reference, nor where too few genes are shared for a map to be laid onto it.
    std::optional<MapAgreement> agreement;
};

struct AlignedMaps {
    /// Those of the reference in its order, then those that other maps have besides.
    ComparedGenes genes;
    std::size_t reference = 0;
    std::vector<AlignedMap> maps;
};

/// Matches the rows of maps by name (the second row of a name is that of the second in another map)
/// and lays each map onto the one with the most rows, the first of equals: moved, turned, mirrored
/// where that helps, and scaled to its spread (`procrustes_move`), by the rows that both have.
/// Maps of more dimensions are turned in all of them, and shown by the first two of the reference.
AlignedMaps align_maps(const std::vector<RunMap>& maps);

}  // namespace ovik::tool
