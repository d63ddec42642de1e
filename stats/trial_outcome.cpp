#include "stats/trial_outcome.h"

#include <limits>
#include <span>

#include "stats/map_stability.h"
#include "stats/median.h"
#include "stats/noise_comparison.h"
#include "stats/noise_record.h"
#include "util/matrix_view.h"

namespace ovik {

namespace {

/// How many nearest rows are compared.
constexpr std::size_t kSharedNeighbours = 10;

double mean_of(std::span<const double> values) {
    double sum = 0.0;
    for (const double value : values) {
        sum += value;
    }
    return sum / static_cast<double>(values.size());
}

struct Stability {
    double shared = std::numeric_limits<double>::quiet_NaN();
    double spread = std::numeric_limits<double>::quiet_NaN();
};

Stability stability_of(MatrixView<const double> map, std::span<const TrialResult> others) {
    if (others.empty()) {
        return {};
    }
    std::vector<std::vector<double>> maps;
    maps.reserve(others.size());
    for (const TrialResult& other : others) {
        maps.push_back(other.map);
    }
    RowStability rows = row_stability(map, maps, kSharedNeighbours);
    return {mean_of(rows.shared), median(rows.spread)};
}

}  // namespace

TrialOutcome outcome_of(const PerplexityTrials& trials, std::size_t rows, std::size_t dims) {
    TrialOutcome outcome;
    const TrialResult& own = trials.seeds.front();
    const MatrixView<const double> map{own.map.data(), rows, dims};
    const Stability seeds = stability_of(map, std::span(trials.seeds).subspan(1));
    const Stability columns = stability_of(map, trials.columns);
    outcome.trials = {trials.seeds.size(),
                      trials.columns.size(),
                      kSharedNeighbours,
                      seeds.shared,
                      columns.shared,
                      seeds.spread,
                      columns.spread};
    if (!trials.noise.empty()) {
        std::vector<RowFits> noise;
        noise.reserve(trials.noise.size());
        for (const TrialResult& one : trials.noise) {
            noise.push_back(one.rows);
        }
        outcome.noise = recorded_noise(compare_with_noise(own.rows, noise),
                                       noise.size(),
                                       static_cast<std::size_t>(own.sizes.back()),
                                       rows);
    }
    return outcome;
}

}  // namespace ovik
