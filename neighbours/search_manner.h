#pragma once

#include "neighbours/on_progress.h"

namespace ovik {

/// How neighbours are searched for.
struct NeighbourSearchManner {
    /// Whether nearly all of the nearest will do (`find_approximately`). Where that search cannot
    /// be made, the exact one is.
    bool is_approximate = false;
    /// May be empty.
    OnProgress on_progress = {};
};

}  // namespace ovik
