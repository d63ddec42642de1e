#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "stats/map_agreement.h"

namespace ovik {

/// One of several fits that differ in nothing but their seed.
struct SeedRun {
    int seed = 0;
    /// The iteration done last.
    int iteration = -1;
    /// Of the map, against the affinities without exaggeration.
    double final_cost = 0.0;
    /// False if a hook ended it before its time.
    bool is_complete = false;
};

/// What fits of several seeds come to.
struct SeedReport {
    /// In the order of the seeds; a fit that was not begun is not there.
    std::vector<SeedRun> runs;
    /// Which of them has the map that was kept: the complete one of lowest final cost, of equal
    /// ones the first; where none is complete, the one of lowest cost.
    std::size_t kept = 0;
    /// Of the maps that are complete and finite, averaged over the pairs; none of fewer than two.
    std::optional<MapAgreement> agreement;
};

}  // namespace ovik
