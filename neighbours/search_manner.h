#pragma once

#include "util/stage.h"

namespace ovik {

/// How neighbours are searched for.
struct NeighbourSearchManner {
    /// Whether nearly all of the nearest will do (`find_approximately`). Where that search cannot
    /// be made (`can_be_approximate`), the exact one is.
    bool is_approximate = false;
    /// Takes how far the search is, as rows of `Stage::Neighbours`; an exception that it throws
    /// ends the search. May be empty.
    OnStage on_stage = {};
};

}  // namespace ovik
