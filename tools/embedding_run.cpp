#include "tools/embedding_run.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <limits>
#include <span>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "plots/cost_figure.h"
#include "results/annotated_table.h"
#include "results/coordinate_files.h"
#include "results/digest.h"
#include "results/label_table.h"
#include "results/map_model.h"
#include "results/reliability_table.h"
#include "results/stability_table.h"
#include "stats/option_effect.h"
#include "stats/row_reliability.h"
#include "stats/schedule.h"
#include "stats/trust_texts.h"
#include "stats/tsne.h"
#include "util/console.h"
#include "util/json_text.h"

#include "tools/command_report.h"
#include "tools/earlier_results.h"
#include "tools/h5ad_result.h"
#include "tools/interruption.h"
#include "tools/map_clusters.h"
#include "tools/map_noise.h"
#include "tools/map_quality.h"
#include "tools/other_maps.h"
#include "tools/result_files.h"
#include "tools/result_paths.h"
#include "tools/run_model.h"
#include "tools/standard_streams.h"

namespace ovik::tool {

namespace {

/// @throws std::runtime_error if coordinates are not finite
void check_finite(const IterationReport& reached) {
    if (!reached.finite) {
        std::putchar('\n');
        throw std::runtime_error("the embedding got out of range at iteration " +
                                 std::to_string(reached.iteration) +
                                 ", and no results are written\nBring the values of the matrix to "
                                 "a common scale, or choose another perplexity.");
    }
}

/// Fills the parameters of a fresh object in, as its own loading of a file would.
template <typename T>
void set_up(TSNE<T>& tsne, const Options& options, RunInput& input) {
    tsne.max_iter = options.fit.max_iter;
    tsne.N = static_cast<int>(input.rows);
    tsne.D = static_cast<int>(input.columns);
    tsne.row_names = std::move(input.row_names);
    tsne.row_functions = functions_of(*input.genes);
    tsne.row_genes = other_names_of(*input.genes, tsne.row_names);
    tsne.label_columns = input.label_columns;
    tsne.gene_sets = options.sets;
    tsne.page_matrix = input.page_matrix;
    tsne.figure = input.figure;
    tsne.X = input.values.release();
    tsne.theta = options.fit.theta;
    tsne.options = options.fit;
    tsne.draw_plots = options.plots;
    tsne.checkpoint_path = options.checkpoint;
    tsne.checkpoint_every = options.checkpoint_every;
    tsne.transformations = names_of(options.load.transformations);
    tsne.resume_path = options.resume;
    tsne.start_places = std::move(input.start_places);
    tsne.cached_neighbours = std::move(input.neighbours);
    tsne.on_stage = options.on_stage;
    tsne.ranks = options.ranks;
    tsne.seeds = options.seeds;
    tsne.seeds_at_once = options.seeds_at_once;
    if (options.sparse_components > 0) {
        tsne.further_parameters.emplace_back(
            "Components", std::to_string(options.sparse_components) + " of a sparse matrix");
    }
    if (!options.neighbours_file.empty()) {
        tsne.further_parameters.emplace_back(
            "Neighbours",
            "given by " + std::filesystem::path(options.neighbours_file).filename().string());
    }
}

/// Takes over what the fits of several seeds came to.
void record_seeds(RunRecord& record, const SeedReport& seeds) {
    for (const SeedRun& one : seeds.runs) {
        record.seeds.push_back({one.seed, one.iteration, one.final_cost, one.is_complete});
    }
    record.kept_seed = seeds.runs[seeds.kept].seed;
    record.iteration = seeds.runs[seeds.kept].iteration;
    if (seeds.agreement) {
        record.agreement = {seeds.agreement->disparity,
                            seeds.agreement->neighbours,
                            seeds.agreement->shared_neighbours};
    }
}

/// Why something that is asked for of a finished map could not be found out; empty if it was.
struct LookFailures {
    std::string clusters;
    std::string quality;
    std::string noise;
    std::string stability;
};

/// Adds the clusters to the labels and the record of a run.
///
/// @param label_columns  of the run
template <typename T>
RowClusters add_clusters(TSNE<T>& tsne,
                         const Options& options,
                         const FitReport& report,
                         std::vector<LabelColumn>& label_columns,
                         RunRecord& record) {
    FitOptions fit = options.fit;
    fit.perplexity = tsne.perplexity;
    RowClusters clusters = find_map_clusters(tsne, fit, report, options.clusters_resolution);
    label_columns.push_back(cluster_labels(clusters));
    tsne.label_columns = label_columns;
    tsne.further_parameters.emplace_back("Clusters",
                                         clusters_text(clusters, options.clusters_resolution));
    record.clusters = {options.clusters_resolution, clusters.modularity, clusters.sizes};
    return clusters;
}

/// Tells how far each row can be trusted. What is known by then stays if the comparison with noise
/// fails.
///
/// @param X  as `look_at_map` has it
/// @return why the rows could not be compared with noise; empty if they were, or are not to be
template <typename T>
std::string judge_rows(const TSNE<T>& tsne,
                       const Options& options,
                       const FitReport& report,
                       MatrixView<const double> X,
                       const RowNeighbourhoods& measured,
                       RunRecord& record) {
    const auto known = std::make_shared<RowReliability>(
        row_reliability(measured, report.row_costs, report.row_misfits));
    record.reliability = known;
    if (options.against_noise == 0) {
        return {};
    }
    FitOptions fit = options.fit;
    fit.perplexity = tsne.perplexity;
    return failure_of([&] {
        record.noise = compare_with_noise(options, fit, X, measured.quality.back(), *known);
    });
}

/// Finds out what is asked for of a finished map, and gives it to the results. What fails costs no
/// other result.
///
/// @param X              the matrix as it was loaded, if the map is to be compared with others
/// @param label_columns  of the run, to which the clusters are added
template <typename T>
LookFailures look_at_map(TSNE<T>& tsne,
                         const Options& options,
                         const FitReport& report,
                         MatrixView<const double> X,
                         std::vector<LabelColumn>& label_columns,
                         RunRecord& record) {
    LookFailures failures;
    std::optional<RowClusters> clusters;
    if (options.clusters) {
        tell(options.on_stage, Stage::Clusters, 0, 0);
        failures.clusters = failure_of(
            [&] { clusters = add_clusters(tsne, options, report, label_columns, record); });
    }
    RowNeighbourhoods measured;
    if (options.quality) {
        failures.quality = failure_of([&] {
            measured = report_map_quality(tsne, options.fit.out_dims, options.reliability);
            if (options.reliability) {
                failures.noise = judge_rows(tsne, options, report, X, measured, record);
            }
        });
    }
    for (const NeighbourhoodQuality& one : measured.quality) {
        record.quality.push_back({one.neighbours, one.trustworthiness, one.preservation});
    }
    const RowClusters* const found = clusters ? &*clusters : nullptr;
    if (options.stability > 0) {
        failures.stability = failure_of(
            [&] { record.stability = compare_with_other_maps(tsne, options, X, report, found); });
    }
    tsne.trust =
        map_trust(report, std::move(measured.quality), found, record.reliability, record.stability);
    return failures;
}

void add_checkpoint(std::vector<ResultFile>& files,
                    const std::string& path,
                    const std::string& failure) {
    if (path.empty()) {
        return;
    }
    if (failure.empty()) {
        files.push_back({"Checkpoint", path, failure});
        print_info("Checkpoint: " + path + " (to go on: --resume)");
    } else {
        add_result(files, "Checkpoint", path, failure);
    }
}

/// Writes the coordinates in the forms that are asked for.
template <typename T>
void add_coordinates(std::vector<ResultFile>& files,
                     const TSNE<T>& tsne,
                     const Options& options,
                     const RunInput& input,
                     const std::string& base) {
    const auto N = static_cast<std::size_t>(tsne.N);
    const auto dims = static_cast<std::size_t>(options.fit.out_dims);
    if (options.coordinates_tsv) {
        const std::string path = base + ".tsv";
        const auto failure = write_coordinates_tsv<T>(path, tsne.row_names.data(), tsne.Y, N, dims);
        add_result(files, "Coordinates", path, failure);
    }
    if (options.coordinates_npy) {
        const std::string path = base + ".npy";
        const auto failure = write_coordinates_npy<T>(path, tsne.Y, N, dims);
        add_result(files, "Coordinates", path, failure);
    }
    if (options.annotated_tsv) {
        const std::string path = annotated_path(base);
        const std::vector<std::string> systematic = systematic_names_of(*input.genes);
        const auto failure = write_annotated_table<T>(
            path,
            {tsne.Y, N, dims},
            {tsne.row_names, systematic, input.label_columns, tsne.row_functions});
        add_result(files, "Annotated table", path, failure);
    }
}

/// What an AnnData file is told of the run.
template <typename T>
RunFacts facts_of(const TSNE<T>& tsne, const Options& options, const RunRecord& record) {
    RunFacts facts = reported_options(options);
    if (!record.seeds.empty()) {
        const auto is_seed = [](const auto& fact) { return fact.first == "seed"; };
        std::find_if(facts.begin(), facts.end(), is_seed)->second =
            std::to_string(record.kept_seed);
        facts.emplace_back("seeds", std::to_string(record.seeds.size()));
    }
    facts.emplace_back("matrix",
                       json_text(std::filesystem::path(options.matrix).filename().string()));
    if (!options.load.layer.empty()) {
        facts.emplace_back("layer", json_text(options.load.layer));
    }
    facts.emplace_back("program", json_text(std::string("ovik-tsne")));
    facts.emplace_back("version", json_text(std::string(OVIK_VERSION)));
    if (!bar_of(options.fit, "perplexity")) {
        facts.emplace_back("perplexity", json_text(tsne.perplexity));
    }
    facts.emplace_back("iterations", std::to_string(record.iteration + 1));
    facts.emplace_back("final_cost", json_text(record.final_cost));
    return facts;
}

/// Writes the map into an AnnData file, if one is named.
template <typename T>
void add_h5ad(std::vector<ResultFile>& files,
              const TSNE<T>& tsne,
              const Options& options,
              const RunRecord& record) {
    if (options.into.empty()) {
        return;
    }
    const MatrixView<const double> map{
        tsne.Y, static_cast<std::size_t>(tsne.N), static_cast<std::size_t>(options.fit.out_dims)};
    add_result(files,
               "AnnData",
               options.into,
               write_h5ad_result(options.into,
                                 options.into_rows,
                                 map,
                                 options.precision,
                                 facts_of(tsne, options, record)));
}

/// Writes how far the places of the rows can be trusted, as far as that was asked for.
template <typename T>
void add_trust(std::vector<ResultFile>& files,
               const TSNE<T>& tsne,
               const std::string& base,
               const RunRecord& record,
               const LookFailures& failures) {
    const auto add = [&files](const std::string& what,
                              const std::string& path,
                              std::error_code failure) { add_result(files, what, path, failure); };
    if (record.reliability) {
        const std::string path = reliability_path(base);
        add("Reliability",
            path,
            write_reliability_table(path, tsne.row_names, *record.reliability));
    }
    if (!failures.noise.empty()) {
        files.push_back({"Comparison with noise", "", failures.noise});
        complain("The rows could not be compared with noise (" + failures.noise + ")");
    }
    if (record.stability) {
        const std::string path = stability_path(base);
        add("Stability", path, write_stability_table(path, tsne.row_names, *record.stability));
    }
    if (record.stability && record.stability->has_clusters) {
        const std::string path = cluster_pairs_path(base);
        add("Cluster pairs", path, write_cluster_pairs(path, *record.stability));
    }
    for (const auto& [what, failure] :
         {std::pair{"Stability", &failures.stability}, std::pair{"Quality", &failures.quality}}) {
        if (!failure->empty()) {
            files.push_back({what, "", *failure});
            complain(std::string(what) + " could not be measured (" + *failure + ")");
        }
    }
}

/// Writes what the engine does not, and says what became of all results.
template <typename T>
std::vector<ResultFile> finish_results(const TSNE<T>& tsne,
                                       const Options& options,
                                       const RunInput& input,
                                       const RunRecord& record,
                                       const LookFailures& failures) {
    const std::string base = result_base(options, record.perplexity);
    std::vector<ResultFile> files;
    const auto add = [&files](const std::string& what,
                              const std::string& path,
                              std::error_code failure) { add_result(files, what, path, failure); };
    add("Result table", base + ".csv", tsne.tableFailure());
    add("Run log", tsne.out_base + ".log", tsne.logFailure());
    add_coordinates(files, tsne, options, input, base);
    if (options.clusters) {
        const std::string path = clusters_path(base);
        add_result(
            files,
            "Clusters",
            path,
            failures.clusters.empty()
                ? message_of(write_label_table(path, tsne.row_names, input.label_columns.back()))
                : failures.clusters);
    }
    add_trust(files, tsne, base, record, failures);
    if (options.plots) {
        add("Chart page", base + ".html", tsne.plots().page_failure);
    }
    add_figure(files, "Figure", base, tsne.plots().figure);
    if (options.plot_cost) {
        add_figure(files,
                   "Cost figure",
                   cost_base(base),
                   draw_cost_figure(cost_base(base),
                                    {options.title,
                                     record.iteration + 1 - static_cast<int>(record.costs.size()),
                                     record.costs,
                                     Schedule(options.fit, 0).endOfExaggeration()}));
    }
    add_checkpoint(files, options.checkpoint, tsne.checkpointFailure());
    add_h5ad(files, tsne, options, record);
    if (!options.model.empty()) {
        add("Model",
            options.model,
            write_map_model(options.model, model_of_run(tsne, options, input.columns_known)));
    }
    return files;
}

/// Takes over what came of the fit.
template <typename T>
void record_map(RunRecord& record, const TSNE<T>& tsne, const FitOptions& options) {
    const auto count =
        static_cast<std::size_t>(tsne.N) * static_cast<std::size_t>(options.out_dims);
    record.embedding = checksum_of(std::span<const double>(tsne.Y, count));
    record.costs = tsne.costs();
    record.final_cost = tsne.finalCost();
}

/// The values of a matrix, which a fit changes; none if they are not wanted.
std::vector<double> copy_if(bool is_wanted, const RunInput& input) {
    if (!is_wanted) {
        return {};
    }
    const double* const values = input.values.get();
    return {values, values + input.rows * input.columns};
}

template <typename T>
RunRecord run(const Options& options, RunInput input, double perplexity) {
    TSNE<T> tsne(options.out_dir, options.name, options.suffix, options.title);
    const std::vector<double> as_loaded =
        copy_if(options.against_noise > 0 || options.stability > 0, input);
    const auto finish = [](TSNE<T>* run) { run->finish(); };
    set_up(tsne, options, input);
    const std::unique_ptr<TSNE<T>, decltype(finish)> finished_whatever_happens(&tsne, finish);
    RunRecord record;
    record.perplexity =
        bar_of(options.fit, "perplexity") ? std::numeric_limits<double>::quiet_NaN() : perplexity;
    tsne.on_iteration = [&record](const IterationReport& reached) {
        check_finite(reached);
        record.iteration = reached.iteration;
        record.settled = reached.settled;
        return goes_on();
    };
    tsne.checkResume(
        options.fit.out_dims, perplexity, options.fit.stop_lying_iter, options.fit.mom_switch_iter);
    prepare_results(options, perplexity);
    std::vector<std::string> labels = input.labels;
    if (input.label_columns.empty() && !labels.empty()) {
        input.label_columns.push_back({"label", labels, {}});
    }
    tsne.wants_neighbours = options.clusters;
    tsne.wants_row_costs = options.reliability;
    LookFailures failures;
    tsne.on_embedding = [&](const FitReport& report) {
        const MatrixView<const double> X{as_loaded.data(), input.rows, input.columns};
        failures = look_at_map(tsne, options, report, X, input.label_columns, record);
        if (report.sample && report.sample->recall) {
            record.sample_recall = report.sample->recall->share;
        }
    };
    tsne.actuate(options.fit.out_dims,
                 perplexity,
                 std::move(labels),
                 options.fit.stop_lying_iter,
                 options.fit.mom_switch_iter);
    record_map(record, tsne, options.fit);
    record.variance_kept = tsne.varianceKept();
    if (tsne.neighbourRecall()) {
        record.neighbour_recall = tsne.neighbourRecall()->share;
    }
    if (options.sparse_components > 0) {
        record.variance_kept = options.sparse_variance_kept;
    }
    if (tsne.seedReport()) {
        record_seeds(record, *tsne.seedReport());
    }
    const RunTimes& times = tsne.times();
    record.seconds = {times.similarities, times.fitting, times.results, times.sample};
    record.files = finish_results(tsne, options, input, record, failures);
    tell_of_earlier_results(result_base(options, record.perplexity), record.files);
    if (input.keeps_places) {
        record.places.assign(tsne.Y,
                             tsne.Y + input.rows * static_cast<std::size_t>(options.fit.out_dims));
    }
    return record;
}

template <typename T>
RunRecord fit_alone(const Options& options, RunInput input, double perplexity, int last_iteration) {
    TSNE<T> tsne("", "", "", "");
    const auto finish = [](TSNE<T>* run) { run->finish(); };
    set_up(tsne, options, input);
    const std::unique_ptr<TSNE<T>, decltype(finish)> finished_whatever_happens(&tsne, finish);
    RunRecord record;
    tsne.on_iteration = [&](const IterationReport& reached) {
        check_finite(reached);
        record.iteration = reached.iteration;
        return goes_on() && (options.seeds > 1 || reached.iteration < last_iteration);
    };
    tsne.embed(
        options.fit.out_dims, perplexity, options.fit.stop_lying_iter, options.fit.mom_switch_iter);
    record_map(record, tsne, options.fit);
    return record;
}

}  // namespace

RunRecord run_embedding(const Options& options, RunInput input, double perplexity) {
    if (input.genes == nullptr) {
        input.genes = std::make_shared<const RowGenes>(look_up_rows(input.row_names));
    }
    return options.precision == Precision::Float
               ? run<float>(options, std::move(input), perplexity)
               : run<double>(options, std::move(input), perplexity);
}

RunRecord run_fit_alone(const Options& options,
                        RunInput input,
                        double perplexity,
                        int last_iteration) {
    input.genes = std::make_shared<const RowGenes>(rows_without_genes(input.rows));
    return options.precision == Precision::Float
               ? fit_alone<float>(options, std::move(input), perplexity, last_iteration)
               : fit_alone<double>(options, std::move(input), perplexity, last_iteration);
}

}  // namespace ovik::tool
