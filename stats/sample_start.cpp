#include "stats/sample_start.h"

#include <algorithm>
#include <cmath>
#include <span>
#include <string>

#include "stats/elementwise.h"
#include "stats/fit.h"
#include "stats/median_place.h"
#include "util/counted.h"
#include "util/input_error.h"
#include "util/parallel.h"
#include "util/random_stream.h"

namespace ovik {

namespace {

/// Fewest rows for which another thread pays.
constexpr std::size_t kPlacingGrain = 256;

/// One round of placing.
///
/// @return how many rows have got a place
std::size_t place_round(MatrixView<double> Y,
                        std::vector<char>& has_place,
                        const NeighbourGraph& graph) {
    const std::vector<char> had_place = has_place;
    parallel_for(Y.rows, kPlacingGrain, [&](std::size_t /*worker*/, IndexRange range) {
        std::vector<std::uint32_t> placed;
        std::vector<double> values;
        for (std::size_t n = range.begin; n < range.end; ++n) {
            if (had_place[n] != 0) {
                continue;
            }
            const auto had_one = [&](std::uint32_t row) { return had_place[row] != 0; };
            find_placed_neighbours(graph, n, graph.neighbour_count, had_one, placed);
            if (!placed.empty()) {
                write_median_place(Y, placed, values, Y.row(n));
                has_place[n] = 1;
            }
        }
    });
    const auto count = [](const std::vector<char>& flags) {
        return static_cast<std::size_t>(std::count(flags.begin(), flags.end(), 1));
    };
    return count(has_place) - count(had_place);
}

/// The largest standard deviation of a coordinate.
double widest_deviation(MatrixView<const double> Y) {
    double widest = 0.0;
    for (std::size_t d = 0; d < Y.columns; ++d) {
        double mean = 0.0;
        for (std::size_t n = 0; n < Y.rows; ++n) {
            mean += Y.row(n)[d];
        }
        mean /= static_cast<double>(Y.rows);
        double squares = 0.0;
        for (std::size_t n = 0; n < Y.rows; ++n) {
            const double deviation = Y.row(n)[d] - mean;
            squares += deviation * deviation;
        }
        const double deviation = std::sqrt(squares / static_cast<double>(Y.rows - 1));
        if (!std::isfinite(deviation)) {
            return deviation;
        }
        widest = std::max(widest, deviation);
    }
    return widest;
}

/// The hooks of the fit of a sample, all of whose stages are one.
FitHooks hooks_of_fit(const SampleHooks& hooks, const FitOptions& options) {
    FitHooks of_fit;
    of_fit.on_iteration = hooks.on_iteration;
    of_fit.ranks = hooks.ranks;
    if (hooks.on_stage) {
        const auto last = static_cast<std::uint64_t>(std::max(options.max_iter, -1) + 1);
        of_fit.on_stage = [&on_stage = hooks.on_stage, last](
                              Stage stage, std::uint64_t done, std::uint64_t total) {
            const bool iterates = stage == Stage::Iterations;
            on_stage(Stage::Sample, iterates ? done : 0, iterates ? total : last);
        };
    }
    return of_fit;
}

/// A fit of some of the rows.
Fit fit_of(MatrixView<const double> X,
           std::span<const std::uint32_t> rows,
           const FitOptions& options,
           const SampleHooks& hooks) {
    std::vector<double> values;
    values.reserve(rows.size() * X.columns);
    for (const std::uint32_t row : rows) {
        values.insert(values.end(), X.row(row).begin(), X.row(row).end());
    }
    try {
        return fit({values.data(), rows.size(), X.columns},
                   options_of_sample(options, rows.size()),
                   hooks_of_fit(hooks, options));
    } catch (const InputError& error) {
        throw InputError("the sample of " + counted(rows.size(), "row", "rows") +
                         " at whose map all would start: " + error.what());
    }
}

}  // namespace

std::size_t sample_size(std::size_t rows) {
    return std::clamp<std::size_t>(rows / 10, 1000, 100'000);
}

std::vector<std::uint32_t> sampled_rows(std::size_t rows, int seed) {
    OwnRandomStream stream;
    stream.seed(static_cast<unsigned int>(seed));
    std::vector<std::uint32_t> sample;
    std::size_t wanted = sample_size(rows);
    for (std::size_t row = 0; row < rows; ++row) {
        const auto drawn = static_cast<std::size_t>(stream.next());
        if (drawn * (rows - row) < wanted << 31U) {
            sample.push_back(static_cast<std::uint32_t>(row));
            --wanted;
        }
    }
    return sample;
}

FitOptions options_of_sample(const FitOptions& options, std::size_t sample_size) {
    FitOptions sampled = options;
    sampled.metric = MetricKind::Euclidean;
    sampled.pca = 0;
    sampled.start = StartKind::Pca;
    const double most = static_cast<double>(sample_size - 1) / 3.0;
    sampled.perplexity = std::min(options.perplexity, most);
    sampled.multiscale = {};
    for (const double perplexity : options.multiscale) {
        sampled.multiscale.add(std::min(perplexity, most));
    }
    sampled.neighbours = std::min(options.neighbours, static_cast<int>(sample_size) - 2);
    return sampled;
}

void place_among_neighbours(MatrixView<double> Y,
                            std::vector<char> has_place,
                            const NeighbourGraph& graph) {
    std::vector<std::uint32_t> first;
    for (std::uint32_t row = 0; row < Y.rows; ++row) {
        if (has_place[row] != 0) {
            first.push_back(row);
        }
    }
    while (place_round(Y, has_place, graph) > 0) {
    }
    std::vector<double> middle(Y.columns);
    std::vector<double> values;
    write_median_place(Y, first, values, middle);
    for (std::size_t n = 0; n < Y.rows; ++n) {
        if (has_place[n] == 0) {
            std::copy(middle.begin(), middle.end(), Y.row(n).begin());
        }
    }
}

SampleReport start_from_sample(MatrixView<double> Y,
                               MatrixView<const double> X,
                               const FitOptions& options,
                               const NeighbourGraph& graph,
                               const SampleHooks& hooks) {
    if (Y.rows < kLeastSampledFrom) {
        throw InputError("a start by a sample is for " + std::to_string(kLeastSampledFrom) +
                         " rows or more, and there are " + std::to_string(Y.rows) +
                         "\nTake another start.");
    }
    const std::vector<std::uint32_t> sample = sampled_rows(Y.rows, options.seed);
    const Fit fitted = fit_of(X, sample, options, hooks);
    std::vector<char> has_place(Y.rows, 0);
    for (std::size_t i = 0; i < sample.size(); ++i) {
        has_place[sample[i]] = 1;
        std::copy_n(fitted.embedding.begin() + static_cast<std::ptrdiff_t>(i * Y.columns),
                    Y.columns,
                    Y.row(sample[i]).begin());
    }
    place_among_neighbours(Y, std::move(has_place), graph);
    const double widest = widest_deviation(Y);
    if (!(widest > 0.0) || !std::isfinite(widest)) {
        throw InputError("the map of the sample of " + counted(sample.size(), "row", "rows") +
                         " has no extent that is a number\nGive a smaller learning rate, or "
                         "another start.");
    }
    multiply_all(Y.values, Y.size(), options.start_spread / widest);
    return {sample.size(), fitted.report.recall};
}

}  // namespace ovik
