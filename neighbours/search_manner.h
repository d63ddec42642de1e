#pragma once

#include "util/stage.h"

namespace ovik {

/// Which of rows at equal distance are the nearer ones.
enum class NeighbourTies {
    /// Those that the way of a search through a vantage-point tree comes upon first.
    OfTree,
    /// The row itself, then the lower ones.
    ByRow,
};

/// How neighbours are searched for.
struct NeighbourSearchManner {
    /// Whether nearly all of the nearest will do (`find_approximately`). Where that search cannot
    /// be made (`can_be_approximate`), the exact one is.
    bool is_approximate = false;
    /// Takes how far the search is, as rows of `Stage::Neighbours`; an exception that it throws
    /// ends the search. May be empty.
    OnStage on_stage = {};
    /// Of the exact search; an approximate one has them by row.
    NeighbourTies ties = NeighbourTies::OfTree;
};

}  // namespace ovik
