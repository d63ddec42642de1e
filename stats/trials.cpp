#include "stats/trials.h"

#include <algorithm>
#include <array>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

#include "stats/cached_neighbours.h"
#include "stats/chosen_affinities.h"
#include "stats/fit.h"
#include "stats/fit_among_many.h"
#include "stats/method.h"
#include "stats/neighbourhood_quality.h"
#include "stats/option_texts.h"
#include "stats/resampling.h"
#include "stats/row_concentration.h"
#include "stats/side_by_side.h"
#include "stats/varied_maps.h"
#include "util/format.h"
#include "util/input_error.h"
#include "util/stage_count.h"

namespace ovik {

namespace {

/// The numbers of neighbours that are looked at, as far as there are rows enough.
constexpr std::array<std::size_t, 2> kSizes = {10, 30};

const char* word_of(TrialKind kind) {
    return kind == TrialKind::Seed ? "seed" : kind == TrialKind::Columns ? "columns" : "noise";
}

/// A matrix of which trials are made, and its neighbours.
struct TrialMatrix {
    std::vector<double> values;
    std::unique_ptr<CachedNeighbours> neighbours;
};

/// The matrices of trials. Each is made when the first trial wants it, and given up with the last.
class TrialMatrices {
  public:
    TrialMatrices(MatrixView<const double> X,
                  const FitOptions& options,
                  const std::vector<Trial>& trials)
        : X_(X),
          options_(options) {
        std::size_t most = 0;
        for (const Trial& trial : trials) {
            ++places_[keyOf(trial)].wanted;
            const int wanted = affinity_neighbours(options_of(trial, options), X.rows);
            most = std::max(most, static_cast<std::size_t>(wanted));
        }
        most_neighbours_ = method_of(options).has_neighbours ? most : 0;
    }

    std::shared_ptr<const TrialMatrix> take(const Trial& trial) {
        Place& place = places_.at(keyOf(trial));
        const std::lock_guard lock(place.mutex);
        if (place.matrix == nullptr) {
            place.matrix = std::make_shared<TrialMatrix>(make(trial));
        }
        return --place.wanted == 0 ? std::exchange(place.matrix, nullptr) : place.matrix;
    }

  private:
    using Key = std::pair<TrialKind, std::size_t>;

    struct Place {
        std::mutex mutex;
        /// How many trials have not taken it yet.
        std::size_t wanted = 0;
        std::shared_ptr<TrialMatrix> matrix;
    };

    static Key keyOf(const Trial& trial) {
        return {trial.kind, trial.kind == TrialKind::Seed ? 0 : trial.number};
    }

    [[nodiscard]] TrialMatrix make(const Trial& trial) const {
        TrialMatrix made;
        if (trial.kind == TrialKind::Columns) {
            made.values = drawn_columns(X_, options_, trial.number);
        } else {
            made.values.assign(X_.all().begin(), X_.all().end());
        }
        if (trial.kind == TrialKind::Noise) {
            shuffle_columns({made.values.data(), X_.rows, X_.columns}, options_.seed, trial.number);
        }
        if (most_neighbours_ > 0) {
            made.neighbours = std::make_unique<CachedNeighbours>(most_neighbours_);
        }
        return made;
    }

    MatrixView<const double> X_;
    const FitOptions& options_;
    std::size_t most_neighbours_ = 0;
    std::map<Key, Place> places_;
};

/// Looks at how well the map of a trial keeps neighbourhoods.
///
/// @param X  as the fit has left it: in the form of the metric
void measure(TrialResult& result,
             MatrixView<const double> X,
             std::size_t dims,
             const OnStage& on_stage) {
    std::vector<std::size_t> sizes(kSizes.begin(), kSizes.end());
    std::erase_if(sizes, [&X](std::size_t size) { return 2 * size >= X.rows; });
    for (NeighbourhoodQuality& quality :
         neighbourhood_quality(X, {result.map.data(), X.rows, dims}, sizes, on_stage)) {
        result.sizes.push_back(static_cast<double>(quality.neighbours));
        result.trustworthiness.push_back(quality.trustworthiness);
        result.preservation.push_back(quality.preservation);
        result.rows.kept = std::move(quality.kept);
    }
}

/// @throws InputError if coordinates are not finite
void check_finite(const IterationReport& reached, const Trial& trial) {
    if (!reached.finite) {
        throw InputError("the map of " + name_of(trial) + " got out of range at iteration " +
                         std::to_string(reached.iteration) +
                         "\nBring the values of the matrix to a common scale, or choose other "
                         "perplexities.");
    }
}

/// @param X  the matrix that is embedded, as it was loaded or made
TrialResult run_trial(const Trial& trial,
                      const FitOptions& options,
                      MatrixView<const double> X,
                      CachedNeighbours* neighbours,
                      const OnStage& on_stage) {
    std::vector<double> values(X.all().begin(), X.all().end());
    const bool is_judged =
        trial.kind == TrialKind::Noise || (trial.kind == TrialKind::Seed && trial.number == 0);
    FitHooks hooks;
    hooks.cached_neighbours = neighbours;
    hooks.wants_row_costs = is_judged;
    hooks.on_stage = on_stage;
    hooks.on_iteration = [&](const FitState& state) {
        check_finite(state.reached, trial);
        return true;
    };
    const MatrixView<double> input{values.data(), X.rows, X.columns};
    Fit made = fit(input, options_of(trial, options), hooks);
    TrialResult result;
    result.map = std::move(made.embedding);
    result.final_cost = made.report.final_cost;
    result.iteration = made.report.reached.iteration;
    if (is_judged) {
        measure(result, input, static_cast<std::size_t>(options.out_dims), on_stage);
        result.rows.misfit = std::move(made.report.row_misfits);
        result.rows.concentration = row_concentrations(X);
    }
    return result;
}

}  // namespace

std::string name_of(const Trial& trial) {
    return "perplexity_" + shortest_text(trial.perplexity) + "_" + word_of(trial.kind) + "_" +
           std::to_string(trial.number);
}

std::vector<Trial> trials_of(const std::vector<double>& perplexities, const TrialCounts& counts) {
    std::vector<double> falling = perplexities;
    std::sort(falling.rbegin(), falling.rend());
    std::vector<Trial> trials;
    const auto add = [&](TrialKind kind, std::size_t count) {
        for (std::size_t number = 0; number < count; ++number) {
            for (const double perplexity : falling) {
                trials.push_back({kind, number, perplexity});
            }
        }
    };
    add(TrialKind::Seed, counts.seeds);
    add(TrialKind::Columns, counts.columns);
    add(TrialKind::Noise, counts.noise);
    return trials;
}

FitOptions options_of(const Trial& trial, const FitOptions& options) {
    FitOptions own = trial.kind == TrialKind::Seed && trial.number > 0
                         ? varied_options(options, Variation::Seeds, trial.number - 1)
                         : options;
    own.perplexity = trial.perplexity;
    return own;
}

std::string identity_of(const Trial& trial, const FitOptions& options) {
    const FitOptions own = options_of(trial, options);
    std::string text = std::string("matrix=") + word_of(trial.kind);
    if (trial.kind != TrialKind::Seed) {
        text += " " + std::to_string(trial.number);
    }
    visit_fit_options(own, [&text](const auto& option) {
        text += "\n" + std::string(option.words.name) + "=";
        if constexpr (requires { option.isAutomatic(); }) {
            text += option.isAutomatic() ? std::string(kAutomatic) : shortest_text(option.value);
        } else {
            text += value_text(option);
        }
    });
    return text + "\n";
}

bool run_trials(MatrixView<const double> X,
                const FitOptions& options,
                const std::vector<Trial>& trials,
                std::size_t at_once,
                const TrialHooks& hooks) {
    TrialMatrices matrices(X, options, trials);
    StageCount progress(
        hooks.on_stage, Stage::Fits, trials.size() * iteration_count(options.max_iter));
    const auto make = [&](std::size_t i, const std::function<bool()>& goes_on) {
        return FitAmongMany(progress, goes_on).make([&](const OnStage& on_stage) {
            const std::shared_ptr<const TrialMatrix> matrix = matrices.take(trials[i]);
            const MatrixView<const double> values{matrix->values.data(), X.rows, X.columns};
            hooks.keep(trials[i],
                       run_trial(trials[i], options, values, matrix->neighbours.get(), on_stage));
            return true;
        });
    };
    const auto made = results_side_by_side<bool>(trials.size(), at_once, hooks.goes_on, make);
    return made.size() == trials.size();
}

}  // namespace ovik
