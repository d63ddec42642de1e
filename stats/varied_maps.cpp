#include "stats/varied_maps.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <stdexcept>
#include <string>
#include <utility>

#include "stats/cached_neighbours.h"
#include "stats/chosen_affinities.h"
#include "stats/fit.h"
#include "stats/fit_among_many.h"
#include "stats/method.h"
#include "stats/resampling.h"
#include "stats/row_metric.h"
#include "stats/side_by_side.h"
#include "util/input_error.h"
#include "util/stage_count.h"

namespace ovik {

namespace {

/// Neighbours for the maps of all seeds; null where no method looks for any.
std::unique_ptr<CachedNeighbours> neighbours_of_seeds(const FitOptions& options, std::size_t rows) {
    if (!method_of(options).has_neighbours) {
        return nullptr;
    }
    return std::make_unique<CachedNeighbours>(
        static_cast<std::size_t>(std::max(affinity_neighbours(options, rows), 0)));
}

std::vector<double> fit_varied(MatrixView<const double> X,
                               const FitOptions& options,
                               Variation variation,
                               std::size_t number,
                               CachedNeighbours* neighbours,
                               const OnStage& on_stage) {
    std::vector<double> values = variation == Variation::Columns
                                     ? drawn_columns(X, options, number)
                                     : std::vector<double>(X.all().begin(), X.all().end());
    FitHooks hooks;
    hooks.on_stage = on_stage;
    hooks.cached_neighbours = variation == Variation::Seeds ? neighbours : nullptr;
    Fit made =
        fit({values.data(), X.rows, X.columns}, varied_options(options, variation, number), hooks);
    if (!made.report.reached.finite) {
        throw std::runtime_error("one of the maps got out of range");
    }
    return std::move(made.embedding);
}

}  // namespace

std::vector<double> drawn_columns(MatrixView<const double> X,
                                  const FitOptions& options,
                                  std::size_t number) {
    constexpr std::uint64_t kMostDraws = 100;
    for (std::uint64_t draw = 0; draw < kMostDraws; ++draw) {
        std::vector<double> values = bootstrapped_columns(X, options.seed, number + (draw << 32U));
        if (rows_without_direction({values.data(), X.rows, X.columns}, options.metric).empty()) {
            return values;
        }
    }
    throw InputError(
        "stability: each of " + std::to_string(kMostDraws) +
        " draws of the columns leaves a row without values that differ\nLeave out rows "
        "that have such values in few columns, compare rows by the metric euclidean, or "
        "do without stability.");
}

FitOptions varied_options(FitOptions options, Variation variation, std::size_t number) {
    if (variation == Variation::Seeds) {
        options.seed += 1 + static_cast<int>(number);
        if (options.start != StartKind::Sample) {
            options.start = StartKind::Random;
        }
    }
    return options;
}

std::optional<std::vector<double>> varied_map(MatrixView<const double> X,
                                              const FitOptions& options,
                                              Variation variation,
                                              std::size_t number,
                                              const std::function<bool()>& goes_on,
                                              CachedNeighbours* neighbours) {
    const OnStage nobody;
    StageCount progress(nobody, Stage::Stability, 0);
    return FitAmongMany(progress, goes_on).make([&](const OnStage& on_stage) {
        return fit_varied(X, options, variation, number, neighbours, on_stage);
    });
}

void check_draws(MatrixView<const double> X, const FitOptions& options, std::size_t count) {
    for (std::size_t number = 0; number < count && compares_directions(options.metric); ++number) {
        drawn_columns(X, options, number);
    }
}

std::optional<VariedMaps> varied_maps(MatrixView<const double> X,
                                      const FitOptions& options,
                                      std::size_t count,
                                      const VariationManner& manner) {
    if (count == 0) {
        return VariedMaps{};
    }
    const auto neighbours = neighbours_of_seeds(options, X.rows);
    StageCount progress(
        manner.on_stage, Stage::Stability, 2 * count * iteration_count(options.max_iter));
    const auto make = [&](std::size_t i, const std::function<bool()>& all_go_on) {
        const auto variation = i < count ? Variation::Seeds : Variation::Columns;
        return FitAmongMany(progress, all_go_on).make([&](const OnStage& on_stage) {
            return fit_varied(X, options, variation, i % count, neighbours.get(), on_stage);
        });
    };
    std::vector<std::vector<double>> maps =
        results_side_by_side<std::vector<double>>(2 * count, manner.at_once, manner.goes_on, make);
    if (maps.empty()) {
        return std::nullopt;
    }
    const auto middle = maps.begin() + static_cast<std::ptrdiff_t>(count);
    return VariedMaps{{std::move_iterator(maps.begin()), std::move_iterator(middle)},
                      {std::move_iterator(middle), std::move_iterator(maps.end())}};
}

}  // namespace ovik
