#pragma once

#include <cstddef>
#include <span>
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
///
/// @param trials  of `rows` rows and `dims` output dimensions
RecordedTrials outcome_of(const PerplexityTrials& trials, std::size_t rows, std::size_t dims);

/// The share of rows that keep more of their nearest neighbours than all but a 20th of the rows of
/// noise: those with p = (1 + rows of noise that keep as many or more) / (1 + rows of noise) of at
/// most 0.05.
///
/// @param kept   of each row of a map
/// @param noise  of each row of maps of noise
double share_better_than_noise(std::span<const double> kept, std::vector<double> noise);

}  // namespace ovik
