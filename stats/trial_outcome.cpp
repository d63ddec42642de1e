#include "stats/trial_outcome.h"

#include <algorithm>
#include <limits>

#include "stats/map_stability.h"
#include "stats/median.h"
#include "stats/perplexity_choice.h"
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

double share_better_than_noise(std::span<const double> kept, std::vector<double> noise) {
    constexpr double kRate = 0.05;
    std::sort(noise.begin(), noise.end());
    const auto count = std::count_if(kept.begin(), kept.end(), [&noise](double value) {
        const auto as_many = noise.end() - std::lower_bound(noise.begin(), noise.end(), value);
        return static_cast<double>(1 + as_many) <= kRate * static_cast<double>(1 + noise.size());
    });
    return static_cast<double>(count) / static_cast<double>(kept.size());
}

RecordedTrials outcome_of(const PerplexityTrials& trials, std::size_t rows, std::size_t dims) {
    RecordedTrials outcome;
    outcome.seeds = trials.seeds.size();
    outcome.columns = trials.columns.size();
    outcome.noise = trials.noise.size();
    outcome.neighbours = kSharedNeighbours;
    const TrialResult& own = trials.seeds.front();
    const MatrixView<const double> map{own.map.data(), rows, dims};
    const Stability seeds = stability_of(map, std::span(trials.seeds).subspan(1));
    const Stability columns = stability_of(map, trials.columns);
    outcome.shared_by_seeds = seeds.shared;
    outcome.spread_by_seeds = seeds.spread;
    outcome.shared_by_columns = columns.shared;
    outcome.spread_by_columns = columns.spread;
    if (!trials.noise.empty()) {
        std::vector<double> kept;
        for (const TrialResult& noise : trials.noise) {
            kept.insert(kept.end(), noise.kept.begin(), noise.kept.end());
        }
        outcome.better_than_noise = share_better_than_noise(own.kept, std::move(kept));
        outcome.of_noise = largest_share_of_noise(rows, trials.noise.size());
    }
    return outcome;
}

}  // namespace ovik
