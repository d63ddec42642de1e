#pragma once

#include <optional>
#include <string>
#include <vector>

#include "plots/choice_figure.h"
#include "results/run_record.h"
#include "stats/perplexity_choice.h"

#include "tools/comparison_entry.h"
#include "tools/options.h"

/// What a choice of perplexity leaves beside the maps: a sentence, a table and a figure.

namespace ovik::tool {

/// The choice among runs.
///
/// @param entries  in the order of their perplexities
/// @return none unless there are at least two, each judged by trials, of different perplexities and
/// otherwise alike: of the same data, the same options and as many trials
std::optional<PerplexityChoice> choice_among(const std::vector<ComparisonEntry>& entries);

/// Why there is no choice among runs of which some were to be chosen from.
///
/// @param entries  of which `choice_among` makes none
/// @return which report differs from the first of a choice, and in what; empty if no run was to be
/// chosen from
std::string why_no_choice(const std::vector<ComparisonEntry>& entries);

/// The shares of which the choice is made, as curves.
ChoiceCurves choice_curves(const std::vector<ComparisonEntry>& entries,
                           const PerplexityChoice& choice);

/// The numbers of all perplexities, a line each, as text between tabs.
std::string choice_table(const std::vector<ComparisonEntry>& entries,
                         const PerplexityChoice& choice);

/// Writes the table and, if plots are wanted, the figure; says so.
std::vector<ResultFile> write_choice(const Options& options,
                                     const std::vector<ComparisonEntry>& entries,
                                     const PerplexityChoice& choice);

}  // namespace ovik::tool
