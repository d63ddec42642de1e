#include "golden/fit_parts.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
#include <vector>

#include "stats/fit.h"
#include "stats/fit_options.h"

#include "golden/small_matrices.h"

namespace ovik::golden {

namespace {

constexpr Values kGenes = Values::Chemostat;

/// One map: of which matrix, and what is not as preset.
struct FitCase {
    const char* name = "";
    Values values = kGenes;
    std::uint32_t rows = 0;
    void (*set)(FitOptions& options) = nullptr;
    bool is_selected = false;
};

/// The iterations of a run.
constexpr int kLastIteration = 999;

/// What takes longer than a tenth of a second has fewer rows or iterations.
constexpr FitCase kFitCases[] = {
    // Methods
    {"barnes-hut", kGenes, 200, [](FitOptions&) {}, true},
    {"exact", kGenes, 120, [](FitOptions& o) { o.theta = 0.0; }, true},
    {"mesh",
     kGenes,
     200,
     [](FitOptions& o) {
         o.method = MethodKind::Mesh;
         o.max_iter = 299;
     },
     true},
    {"theta 0.2", kGenes, 150, [](FitOptions& o) { o.theta = 0.2; }},
    {"missing values", Values::Timecourses, 100, [](FitOptions&) {}},
    {"counts", Values::Counts, 200, [](FitOptions&) {}},
    // Metrics
    {"pearson", kGenes, 200, [](FitOptions& o) { o.metric = MetricKind::Pearson; }},
    {"cosine", kGenes, 200, [](FitOptions& o) { o.metric = MetricKind::Cosine; }},
    {"spearman", kGenes, 200, [](FitOptions& o) { o.metric = MetricKind::Spearman; }},
    {"precomputed",
     Values::Distances,
     200,
     [](FitOptions& o) { o.metric = MetricKind::Precomputed; }},
    {"exact pearson",
     kGenes,
     120,
     [](FitOptions& o) {
         o.theta = 0.0;
         o.metric = MetricKind::Pearson;
     }},
    {"exact precomputed",
     Values::Distances,
     120,
     [](FitOptions& o) {
         o.theta = 0.0;
         o.metric = MetricKind::Precomputed;
     }},
    {"principal components", kGenes, 200, [](FitOptions& o) { o.pca = 10; }},
    // Starts
    {"start pca", kGenes, 200, [](FitOptions& o) { o.start = StartKind::Pca; }},
    {"start given", kGenes, 200, [](FitOptions& o) { o.start = StartKind::Given; }},
    {"start sample",
     Values::Between,
     2000,
     [](FitOptions& o) {
         o.start = StartKind::Sample;
         o.max_iter = 19;
     }},
    // Schedules
    {"annealed", kGenes, 200, [](FitOptions& o) { o.schedule = ScheduleKind::Annealed; }, true},
    {"exact annealed",
     kGenes,
     120,
     [](FitOptions& o) {
         o.theta = 0.0;
         o.schedule = ScheduleKind::Annealed;
     }},
    {"constant gains", kGenes, 200, [](FitOptions& o) { o.gains = GainKind::Constant; }},
    {"automatic rate", kGenes, 200, [](FitOptions& o) { o.automatic_rate = true; }},
    {"stop when settled", kGenes, 200, [](FitOptions& o) { o.stop_when = 0.01; }},
    {"seed 3", kGenes, 200, [](FitOptions& o) { o.seed = 3; }},
    {"refined",
     kGenes,
     200,
     [](FitOptions& o) {
         o.affinity = AffinityKind::Uniform;
         o.start = StartKind::Pca;
         o.schedule = ScheduleKind::Annealed;
         o.exaggeration = 4.0;
         o.automatic_rate = true;
         o.final_momentum = 0.95;
     },
     true},
    // Affinities and neighbours
    {"uniform", kGenes, 200, [](FitOptions& o) { o.affinity = AffinityKind::Uniform; }},
    {"exact uniform",
     kGenes,
     120,
     [](FitOptions& o) {
         o.theta = 0.0;
         o.affinity = AffinityKind::Uniform;
     }},
    {"multiscale",
     kGenes,
     200,
     [](FitOptions& o) {
         o.multiscale = {5.0, 30.0};
     }},
    {"exact multiscale",
     kGenes,
     120,
     [](FitOptions& o) {
         o.theta = 0.0;
         o.multiscale = {5.0, 30.0};
     }},
    {"perplexity 5", kGenes, 200, [](FitOptions& o) { o.perplexity = 5.0; }},
    {"approximate search",
     Values::Between,
     2500,
     [](FitOptions& o) {
         o.neighbour_search = NeighbourSearchKind::Approximate;
         o.max_iter = 19;
     }},
    {"many rows", Values::Between, 2500, [](FitOptions& o) { o.max_iter = 19; }, true},
    {"many rows by mesh",
     Values::Between,
     2500,
     [](FitOptions& o) {
         o.method = MethodKind::Mesh;
         o.max_iter = 19;
     }},
    {"uniform by mesh",
     kGenes,
     200,
     [](FitOptions& o) {
         o.method = MethodKind::Mesh;
         o.affinity = AffinityKind::Uniform;
         o.max_iter = 299;
     }},
    {"refined by mesh",
     kGenes,
     200,
     [](FitOptions& o) {
         o.method = MethodKind::Mesh;
         o.metric = MetricKind::Pearson;
         o.multiscale = {5.0, 30.0};
         o.start = StartKind::Pca;
         o.schedule = ScheduleKind::Annealed;
         o.exaggeration = 4.0;
         o.automatic_rate = true;
         o.final_momentum = 0.95;
         o.max_iter = 299;
     }},
    {"start sample by mesh",
     Values::Between,
     2000,
     [](FitOptions& o) {
         o.method = MethodKind::Mesh;
         o.start = StartKind::Sample;
         o.max_iter = 19;
     }},
    // Dimensions
    {"three dimensions", kGenes, 150, [](FitOptions& o) { o.out_dims = 3; }, true},
    {"exact in three dimensions",
     kGenes,
     120,
     [](FitOptions& o) {
         o.theta = 0.0;
         o.out_dims = 3;
     }},
    {"four dimensions", kGenes, 100, [](FitOptions& o) { o.out_dims = 4; }},
};

/// Maps that are shared out among up to four processes, each of which has rows of its own.
constexpr FitCase kCasesOfManyRanks[] = {
    {"four windows of rows by mesh",
     Values::Between,
     14'000,
     [](FitOptions& o) {
         o.method = MethodKind::Mesh;
         o.max_iter = 9;
     }},
    {"four windows of rows, sample by mesh",
     Values::Between,
     14'000,
     [](FitOptions& o) {
         o.method = MethodKind::Mesh;
         o.metric = MetricKind::Pearson;
         o.affinity = AffinityKind::Uniform;
         o.start = StartKind::Sample;
         o.schedule = ScheduleKind::Annealed;
         o.max_iter = 9;
     }},
};

/// Places to start from: the first columns, and none for every tenth row, which then starts amidst
/// its neighbours.
std::vector<double> given_places(const SmallMatrix& matrix, std::size_t dims) {
    std::vector<double> places;
    for (std::size_t n = 0; n < matrix.rows; ++n) {
        for (std::size_t d = 0; d < dims; ++d) {
            places.push_back(n % 10 == 9 ? std::numeric_limits<double>::quiet_NaN()
                                         : 0.001 * matrix.values[n * matrix.columns + d]);
        }
    }
    return places;
}

/// Neighbours and their distances, as numbers.
std::vector<double> numbers_of(const NeighbourGraph& graph) {
    std::vector<double> numbers(graph.neighbours.begin(), graph.neighbours.end());
    numbers.insert(numbers.end(), graph.distances.begin(), graph.distances.end());
    return numbers;
}

FitOptions options_of(const FitCase& fit_case) {
    FitOptions options;
    options.max_iter = kLastIteration;
    options.numerics = NumericsKind::Portable;
    fit_case.set(options);
    return options;
}

/// Makes the map, and digests what its stages leave.
///
/// @param ranks  null, or those that share the fit
std::vector<StageDigest> stages_of(const FitCase& fit_case, Ranks* ranks) {
    SmallMatrix matrix = small_matrix(fit_case.values, fit_case.rows);
    const FitOptions options = options_of(fit_case);
    const auto dims = static_cast<std::size_t>(options.out_dims);
    const std::vector<double> places = given_places(matrix, dims);
    std::vector<double> first;
    FitHooks hooks;
    hooks.ranks = ranks;
    hooks.start = {places.data(), matrix.rows, dims};
    hooks.wants_neighbours = true;
    hooks.wants_row_costs = true;
    hooks.on_iteration = [&first](const FitState& state) {
        if (state.reached.iteration == 0) {
            first.assign(state.embedding.begin(), state.embedding.end());
        }
        return true;
    };
    const Fit map = fit(matrix.view(), options, hooks);
    std::vector<StageDigest> stages{stage_of("prepared rows", matrix.values)};
    if (map.report.neighbours.rows > 0) {
        stages.push_back(stage_of("neighbours", numbers_of(map.report.neighbours)));
    }
    stages.push_back(stage_of("first iteration", first));
    stages.push_back(stage_of("map", map.embedding));
    std::vector<double> costs = map.report.costs;
    costs.push_back(map.report.final_cost);
    stages.push_back(stage_of("costs", costs));
    stages.push_back(stage_of("costs of rows", map.report.row_costs));
    stages.push_back(stage_of("misfits of rows", map.report.row_misfits));
    return stages;
}

}  // namespace

std::vector<Part> fit_parts() {
    std::vector<Part> parts;
    for (const FitCase& fit_case : kFitCases) {
        parts.push_back({fit_case.name,
                         [&fit_case] { return stages_of(fit_case, nullptr); },
                         fit_case.is_selected});
    }
    return parts;
}

std::vector<Part> shared_parts(Ranks& ranks) {
    std::vector<Part> parts;
    const auto add = [&](const FitCase& fit_case) {
        parts.push_back({fit_case.name,
                         [&fit_case, &ranks] { return stages_of(fit_case, &ranks); },
                         fit_case.is_selected});
    };
    for (const FitCase& fit_case : kFitCases) {
        if (options_of(fit_case).method == MethodKind::Mesh) {
            add(fit_case);
        }
    }
    std::for_each(std::begin(kCasesOfManyRanks), std::end(kCasesOfManyRanks), add);
    return parts;
}

}  // namespace ovik::golden
