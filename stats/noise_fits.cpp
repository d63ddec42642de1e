#include "stats/noise_fits.h"

#include <string>
#include <utility>

#include "stats/fit.h"
#include "stats/fit_among_many.h"
#include "stats/fit_checks.h"
#include "stats/neighbourhood_quality.h"
#include "stats/resampling.h"
#include "stats/row_concentration.h"
#include "stats/side_by_side.h"
#include "util/input_error.h"
#include "util/stage_count.h"

namespace ovik {

namespace {

std::vector<double> shuffled(MatrixView<const double> X,
                             const FitOptions& options,
                             std::size_t number) {
    std::vector<double> values(X.all().begin(), X.all().end());
    shuffle_columns({values.data(), X.rows, X.columns}, options.seed, number);
    return values;
}

RowFits fit_shuffled(MatrixView<const double> X,
                     const FitOptions& options,
                     std::size_t number,
                     std::size_t neighbours,
                     const OnStage& on_stage) {
    std::vector<double> values = shuffled(X, options, number);
    const MatrixView<double> noise{values.data(), X.rows, X.columns};
    RowFits fits;
    // Before the fit brings the values into another form.
    fits.concentration = row_concentrations(noise);
    FitHooks hooks;
    hooks.wants_row_costs = true;
    hooks.on_stage = on_stage;
    Fit made = fit(noise, options, hooks);
    if (!made.report.reached.finite) {
        throw InputError(
            "a map of shuffled values got out of range at iteration " +
            std::to_string(made.report.reached.iteration) +
            "\nBring the values of the matrix to a common scale, or leave the comparison with "
            "noise out.");
    }
    fits.misfit = std::move(made.report.row_misfits);
    const MatrixView<const double> map{
        made.embedding.data(), X.rows, static_cast<std::size_t>(options.out_dims)};
    fits.kept = std::move(neighbourhood_quality(noise, map, {neighbours}, on_stage).front().kept);
    return fits;
}

std::optional<RowFits> noise_fit(MatrixView<const double> X,
                                 const FitOptions& options,
                                 std::size_t number,
                                 std::size_t neighbours,
                                 StageCount& progress,
                                 const std::function<bool()>& goes_on) {
    return FitAmongMany(progress, goes_on).make([&](const OnStage& on_stage) {
        return fit_shuffled(X, options, number, neighbours, on_stage);
    });
}

}  // namespace

void check_shuffles(MatrixView<const double> X, const FitOptions& options, std::size_t count) {
    if (options.metric == MetricKind::Euclidean) {
        return;
    }
    for (std::size_t number = 0; number < count; ++number) {
        const std::vector<double> values = shuffled(X, options, number);
        try {
            check_metric({values.data(), X.rows, X.columns}, options, {});
        } catch (const InputError&) {
            throw InputError(
                "with the values of each column shuffled, the metric cannot compare some rows, as "
                "where all values of a row are equal\nCompare by euclidean distances, or leave the "
                "comparison with noise out.");
        }
    }
}

std::optional<RowFits> noise_fit(MatrixView<const double> X,
                                 const FitOptions& options,
                                 std::size_t number,
                                 const NoiseManner& manner) {
    StageCount progress(manner.on_stage, Stage::Noise, iteration_count(options.max_iter));
    return noise_fit(X, options, number, manner.neighbours, progress, manner.goes_on);
}

std::vector<RowFits> noise_fits(MatrixView<const double> X,
                                const FitOptions& options,
                                std::size_t count,
                                const NoiseManner& manner) {
    StageCount progress(manner.on_stage, Stage::Noise, count * iteration_count(options.max_iter));
    return results_side_by_side<RowFits>(
        count,
        manner.at_once,
        manner.goes_on,
        [&](std::size_t number, const std::function<bool()>& all_go_on) {
            return noise_fit(X, options, number, manner.neighbours, progress, all_go_on);
        });
}

}  // namespace ovik
