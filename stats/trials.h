#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "stats/fit_options.h"
#include "stats/noise_comparison.h"
#include "util/matrix_view.h"
#include "util/stage.h"

/// Many fits of one matrix, by which maps of several perplexities are judged.

namespace ovik {

/// What a trial is a fit of.
enum class TrialKind {
    /// The matrix: number 0 by the options as they are, others as `Variation::Seeds` has it.
    Seed,
    /// Columns drawn anew (`Variation::Columns`).
    Columns,
    /// The values of each column, shuffled over the rows.
    Noise,
};

struct Trial {
    TrialKind kind = TrialKind::Seed;
    /// Among those of its kind, from 0.
    std::size_t number = 0;
    double perplexity = 0.0;
};

/// "perplexity_12.5_seed_0".
std::string name_of(const Trial& trial);

/// How many trials of each kind a perplexity has.
struct TrialCounts {
    /// The map itself is the first of them: at least 1.
    std::size_t seeds = 0;
    std::size_t columns = 0;
    std::size_t noise = 0;

    [[nodiscard]] std::size_t sum() const { return seeds + columns + noise; }
};

/// All trials of all perplexities. Those of one matrix follow one another, the largest perplexity
/// first.
std::vector<Trial> trials_of(const std::vector<double>& perplexities, const TrialCounts& counts);

/// The options of the fit of a trial.
FitOptions options_of(const Trial& trial, const FitOptions& options);

/// All that decides what a trial comes to but for the matrix: lines "name=value".
std::string identity_of(const Trial& trial, const FitOptions& options);

/// What a trial comes to.
struct TrialResult {
    /// Row-major, rows x output dimensions.
    std::vector<double> map;
    /// Against the affinities without exaggeration.
    double final_cost = 0.0;
    /// The iteration done last.
    int iteration = -1;
    /// Sizes of neighbourhoods, and how well the map keeps each of them. This and the rest are
    /// there of the matrix as it is, by its first seed, and of noise.
    std::vector<double> sizes;
    std::vector<double> trustworthiness;
    std::vector<double> preservation;
    /// What is compared of the rows, with kept neighbours of the largest size.
    RowFits rows;
};

/// What trials take from their surroundings, and give to them. Several threads may call at once.
struct TrialHooks {
    /// Takes what a trial came to.
    std::function<void(const Trial& trial, const TrialResult& result)> keep;
    /// Asked again and again; false ends all trials. May be empty.
    std::function<bool()> goes_on = {};
    /// Told of `Stage::Fits`, the iterations of all trials; may be empty. An exception ends them.
    OnStage on_stage = {};
};

/// Makes trials: side by side as `run_side_by_side` does it, the neighbours of each matrix found
/// once for all perplexities. What a trial comes to depends on nothing but its matrix, itself and
/// the options.
///
/// @param X        as it was loaded: neither centred nor prepared for a metric
/// @param trials   in the order of `trials_of`, of which any may be missing
/// @param at_once  most trials side by side; 0 for as many as there are threads
/// @return false if they were ended
/// @throws what `fit` and the hooks throw; InputError if the metric cannot compare rows of a matrix
/// that was drawn
bool run_trials(MatrixView<const double> X,
                const FitOptions& options,
                const std::vector<Trial>& trials,
                std::size_t at_once,
                const TrialHooks& hooks);

}  // namespace ovik
