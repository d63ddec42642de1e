#include "golden/further_parts.h"

#include <cstddef>
#include <optional>
#include <vector>

#include "stats/fit.h"
#include "stats/fit_options.h"
#include "stats/noise_fits.h"
#include "stats/row_placement.h"
#include "stats/seed_fits.h"
#include "stats/varied_maps.h"

#include "golden/small_matrices.h"

namespace ovik::golden {

namespace {

constexpr std::size_t kRows = 150;

FitOptions short_options() {
    FitOptions options;
    options.numerics = NumericsKind::Portable;
    options.max_iter = 299;
    return options;
}

std::vector<StageDigest> several_seeds() {
    SmallMatrix matrix = small_matrix(Values::Chemostat, kRows);
    std::vector<double> map(2 * kRows);
    const FitReport report =
        fit_seeds_into({map.data(), kRows, 2}, matrix.view(), short_options(), {.count = 3});
    std::vector<double> costs;
    for (const SeedRun& run : report.seeds->runs) {
        costs.push_back(run.final_cost);
    }
    return {stage_of("costs of seeds", costs), stage_of("map", map)};
}

std::vector<StageDigest> other_maps() {
    const SmallMatrix matrix = small_matrix(Values::Chemostat, kRows);
    const std::optional<VariedMaps> maps = varied_maps(matrix.view(), short_options(), 2);
    std::vector<StageDigest> stages;
    for (const std::vector<double>& map : maps.value().of_seeds) {
        stages.push_back(stage_of("map of another seed", map));
    }
    for (const std::vector<double>& map : maps.value().of_columns) {
        stages.push_back(stage_of("map of drawn columns", map));
    }
    return stages;
}

std::vector<StageDigest> noise() {
    constexpr std::size_t kNeighbours = 10;
    const SmallMatrix matrix = small_matrix(Values::Chemostat, kRows);
    NoiseManner manner;
    manner.neighbours = kNeighbours;
    std::vector<StageDigest> stages;
    for (const RowFits& fits : noise_fits(matrix.view(), short_options(), 2, manner)) {
        stages.push_back(stage_of("kept neighbours", fits.kept));
        stages.push_back(stage_of("misfits of rows", fits.misfit));
        stages.push_back(stage_of("concentrations", fits.concentration));
    }
    return stages;
}

/// Every fifth row is placed on the map of the others.
std::vector<StageDigest> placement() {
    const SmallMatrix whole = small_matrix(Values::Chemostat, kRows + kRows / 4);
    SmallMatrix old_rows{0, whole.columns, {}};
    SmallMatrix new_rows{0, whole.columns, {}};
    for (std::size_t n = 0; n < whole.rows; ++n) {
        SmallMatrix& target = n % 5 == 4 ? new_rows : old_rows;
        const double* const row = whole.values.data() + n * whole.columns;
        target.values.insert(target.values.end(), row, row + whole.columns);
        ++target.rows;
    }
    const FitOptions options = short_options();
    const Fit map = fit(old_rows.view(), options);
    FinishedMap finished{old_rows.view(),
                         map.report.scale,
                         {map.embedding.data(), old_rows.rows, 2},
                         options.perplexity,
                         options.metric,
                         options.numerics};
    const PlacedRows placed = place_rows(finished, new_rows.view());
    const std::vector<double> nearest(placed.nearest.begin(), placed.nearest.end());
    return {stage_of("nearest rows", nearest),
            stage_of("places", placed.embedding),
            stage_of("costs", placed.costs)};
}

}  // namespace

std::vector<Part> further_parts() {
    return {{"several seeds", &several_seeds},
            {"other maps", &other_maps},
            {"noise", &noise},
            {"new rows", &placement, true}};
}

}  // namespace ovik::golden
