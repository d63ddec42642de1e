#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "results/run_record.h"
#include "stats/trials.h"

namespace ovik {

/// The trials of one perplexity.
struct PerplexityTrials {
    /// The map itself is the first.
    std::vector<TrialResult> seeds;
    std::vector<TrialResult> columns;
    std::vector<TrialResult> noise;
};

/// What the trials of a perplexity say of its map.
struct TrialOutcome {
    RecordedTrials trials;
    /// None without noise.
    std::optional<RecordedNoise> noise;
};

/// @param rows, dims  of the map
TrialOutcome outcome_of(const PerplexityTrials& trials, std::size_t rows, std::size_t dims);

}  // namespace ovik
