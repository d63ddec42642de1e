#include "stats/option_effect.h"

#include <algorithm>
#include <iterator>

#include "stats/method.h"

namespace ovik {

namespace {

bool is_uniform(const FitOptions& options) {
    return options.affinity == AffinityKind::Uniform;
}

bool is_not_uniform(const FitOptions& options) {
    return !is_uniform(options);
}

bool is_multiscale(const FitOptions& options) {
    return !options.multiscale.empty();
}

bool is_annealed(const FitOptions& options) {
    return options.schedule == ScheduleKind::Annealed;
}

bool is_classic(const FitOptions& options) {
    return options.schedule == ScheduleKind::Classic;
}

bool is_precomputed(const FitOptions& options) {
    return options.metric == MetricKind::Precomputed;
}

/// Theta is the accuracy of Barnes-Hut; a theta of 0 and the exact method say the same.
bool has_no_theta(const FitOptions& options) {
    return options.method == MethodKind::Mesh ||
           (options.method == MethodKind::Exact && options.theta != 0.0);
}

bool is_exact_by_name(const FitOptions& options) {
    return options.method == MethodKind::Exact;
}

bool is_without_neighbours(const FitOptions& options) {
    return !method_of(options).has_neighbours;
}

constexpr OptionBar kBars[] = {
    {"theta", "method", "barnes-hut", &has_no_theta},
    {"perplexity", "affinity", "perplexity", &is_uniform},
    {"perplexity", "multiscale", "", &is_multiscale},
    {"multiscale", "affinity", "perplexity", &is_uniform},
    {"neighbours", "affinity", "uniform", &is_not_uniform},
    {"neighbour_search", "method", "barnes-hut", &is_exact_by_name},
    {"neighbour_search", "theta", "0.5", &is_without_neighbours},
    // The nearest of a row stand in it.
    {"neighbour_search", "metric", "euclidean", &is_precomputed},
    {"stop_lying_iter", "schedule", "classic", &is_annealed},
    {"mom_switch_iter", "schedule", "classic", &is_annealed},
    {"momentum", "schedule", "classic", &is_annealed},
    {"hold_iter", "schedule", "annealed", &is_classic},
    {"release_iter", "schedule", "annealed", &is_classic},
    // Distances have no columns.
    {"pca", "metric", "euclidean", &is_precomputed},
};

}  // namespace

std::optional<OptionBar> bar_of(const FitOptions& options, std::string_view name) {
    const auto* const found =
        std::find_if(std::begin(kBars), std::end(kBars), [&](const OptionBar& bar) {
            return bar.option == name && bar.is_up(options);
        });
    return found == std::end(kBars) ? std::nullopt : std::optional(*found);
}

}  // namespace ovik
