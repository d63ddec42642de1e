#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "results/row_reliability.h"

namespace ovik {

/// How far two clusters stay apart on other maps.
struct RecordedClusterPair {
    /// The clusters from 0, the lower number first.
    std::uint32_t first = 0;
    std::uint32_t second = 0;
    /// The share of rows that lie nearer to a row of their own cluster than to any of the other on
    /// the map, averaged over the two.
    double separation = 0.0;
    /// The share of the maps of other seeds, and of other columns, on which they are apart; NaN
    /// where there are none.
    double apart_seeds = 0.0;
    double apart_columns = 0.0;
    /// Whether they are apart on the map and on nearly all of the others.
    bool stay_apart = false;
};

/// How far a map stays as it is from other seeds, and of other columns.
struct RecordedStability {
    /// How many maps it was compared with.
    std::size_t seeds = 0;
    std::size_t draws = 0;
    /// How many nearest rows were compared.
    std::size_t neighbours = 0;
    /// Of each row; those of maps that there are.
    std::vector<RowNumbers> columns;
    /// Whether pairs of clusters were compared.
    bool has_clusters = false;
    std::vector<RecordedClusterPair> pairs;
};

}  // namespace ovik
