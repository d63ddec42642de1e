#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <exception>
#include <memory>
#include <new>
#include <omp.h>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include <glog/logging.h>

#include "results/checkpoint_path.h"
#include "results/map_model.h"
#include "stats/memory_estimate.h"
#include "stats/shared_fit.h"
#include "util/available_memory.h"
#include "util/console.h"
#include "util/input_error.h"
#include "util/stopwatch.h"
#include "util/threads.h"
#include "util/whole_file.h"

#include "golden/embedded_files.h"
#include "golden/golden_parts.h"
#include "tools/choice_run.h"
#include "tools/command.h"
#include "tools/command_report.h"
#include "tools/comparison.h"
#include "tools/dry_run.h"
#include "tools/exit_status.h"
#include "tools/figure_choice.h"
#include "tools/gene_enrichment.h"
#include "tools/gene_report.h"
#include "tools/h5ad_result.h"
#include "tools/interruption.h"
#include "tools/label_join.h"
#include "tools/load_matrix.h"
#include "tools/many_rows.h"
#include "tools/memory_check.h"
#include "tools/neighbour_file.h"
#include "tools/onto_run.h"
#include "tools/options.h"
#include "tools/page_matrix.h"
#include "tools/perplexity_sweep.h"
#include "tools/progress_display.h"
#include "tools/rank_options.h"
#include "tools/reported_call.h"
#include "tools/reproduction.h"
#include "tools/result_paths.h"
#include "tools/row_genes.h"
#include "tools/run_model.h"
#include "tools/self_test_report.h"
#include "tools/set_join.h"
#include "tools/sparse_input.h"
#include "tools/standard_streams.h"
#include "tools/start_file.h"
#include "tools/trust_options.h"

/// The command `ovik-tsne`: checks the matrix, explains what is wrong with it, and runs the engine.

namespace ovik::tool {

namespace {

/// The command's log lines go to standard error, never to files of their own.
void start_logging(bool quiet) {
    FLAGS_logtostderr = true;
    FLAGS_minloglevel = quiet ? google::GLOG_WARNING : google::GLOG_INFO;
    google::InitGoogleLogging("ovik-tsne");
}

/// What the largest of the runs needs.
RunSize size_of_runs(const Options& options,
                     const MatrixReport& matrix,
                     const std::vector<double>& perplexities) {
    RunSize size;
    size.rows = matrix.rows;
    size.columns = matrix.columns;
    size.options = options.fit;
    size.options.perplexity = *std::max_element(perplexities.begin(), perplexities.end());
    size.has_plots = options.plots;
    size.page_bytes = page_bytes(options, matrix.rows * matrix.columns);
    size.has_clusters = options.clusters;
    size.threads = static_cast<std::size_t>(omp_get_max_threads());
    size.is_shared = perplexities.size() > 1;
    size.ranks = options.ranks != nullptr ? options.ranks->count() : 1;
    size.seeds = options.seeds;
    size.other_maps =
        static_cast<std::size_t>(std::max(options.against_noise, 2 * options.stability));
    if (options.chooses_perplexity) {
        size.seeds = 1;
        size.other_maps = static_cast<std::size_t>(options.seeds) +
                          static_cast<std::size_t>(options.stability) +
                          static_cast<std::size_t>(options.against_noise);
        size.has_own_matrices = true;
    }
    return size;
}

/// Silences the console if it is to be, and sets the number of threads.
///
/// @param silence  is given what holds messages back as long as it lives
void settle_manner(const Options& options, std::optional<ConsoleSilence>& silence) {
    if (options.quiet) {
        silence.emplace();
        if (std::freopen("/dev/null", "w", stdout) == nullptr) {
            throw std::system_error(
                errno, std::generic_category(), "cannot silence standard output");
        }
    }
    const std::string threads_note = set_thread_count(options.threads);
    if (!threads_note.empty()) {
        complain("note: " + threads_note);
    }
    if (options.ranks != nullptr) {
        tell_thread_count(*options.ranks, options.threads);
    }
}

/// Takes the whole way from new rows to their places on a map.
ExitStatus place(const Options& options, RunReport report) {
    const Stopwatch since_start;
    std::optional<ConsoleSilence> silence;
    settle_manner(options, silence);
    report.threads = static_cast<std::size_t>(omp_get_max_threads());
    return place_onto(options, std::move(report), since_start);
}

/// Refuses files that the run would write in the place of something else.
void check_places(const Options& options) {
    if (!options.checkpoint.empty()) {
        check_checkpoint_path(options.checkpoint);
    }
    if (!options.model.empty()) {
        check_model_path(options.model);
    }
}

/// What a run would settle later on, so that a dry one finds what is wrong with it.
void settle_results(Options& options, std::vector<std::string>& row_names) {
    settle_figure(options, row_names);
    settle_names(row_names, options.names);
    settle_start(options, row_names);
}

/// Rows that have been columns, or are cells, are called as most of their names are.
void settle_kind_of_names(Options& options, const LoadedMatrix& loaded) {
    if ((options.load.transformations.transpose || loaded.matrix.rows_are_points) &&
        !options.names_are_given) {
        options.names = kind_of_names(loaded.matrix.row_names);
    }
}

void tell_left_out_of_plots(const Options& options, std::size_t rows) {
    for (const std::string& line : left_out_of_plots(options, rows)) {
        print_info(line);
    }
}

/// Makes the maps, or those of the choice of a perplexity, with all their results.
ExitStatus make_maps(LoadedMatrix loaded,
                     const std::vector<LabelColumn>& labels,
                     const std::vector<double>& perplexities,
                     const std::shared_ptr<CachedNeighbours>& neighbours,
                     const Options& options,
                     RunReport report,
                     Stopwatch since_start) {
    const ExitStatus status =
        options.chooses_perplexity
            ? run_choice(
                  std::move(loaded), labels, perplexities, options, std::move(report), since_start)
            : run_perplexities(std::move(loaded),
                               labels,
                               perplexities,
                               neighbours,
                               options,
                               std::move(report),
                               since_start);
    if (const std::string note = denied_threads_note(); !note.empty()) {
        complain("note: " + note);
    }
    return status;
}

/// Reads the matrix, and settles what follows from it at once.
///
/// @param reported  null, or the call whose values it has to have
LoadedMatrix read_matrix(Options& options, const ReportedCall* reported) {
    LoadedMatrix loaded = load_matrix(options);
    options.into_rows = check_h5ad_result(options, loaded.matrix.row_names);
    settle_sparse_input(loaded, options);
    if (reported != nullptr) {
        check_reported_values(*reported, loaded);
    }
    settle_kind_of_names(options, loaded);
    return loaded;
}

/// Refuses runs that are not those of a report, or whose results would stand in one another's
/// place.
///
/// @param reported  null for runs that are not made again
void check_runs(const Options& options,
                const std::vector<double>& perplexities,
                const ReportedCall* reported) {
    if (reported != nullptr) {
        check_reported_options(*reported, options);
    } else {
        check_result_names(options, perplexities);
    }
}

/// Takes the whole way from the matrix to the results.
///
/// @param reported  in the place of results, the call that is made again; null for none
ExitStatus embed(Options options, RunReport report, const ReportedCall* reported = nullptr) {
    Stopwatch watch;
    Stopwatch since_start = watch;
    watch_for_interruption();
    check_noise_options(options);
    check_places(options);
    std::optional<ConsoleSilence> silence;
    settle_manner(options, silence);
    ProgressDisplay display(!options.quiet);
    options.on_stage = display.onStage();
    if (!options.checkpoint.empty() && is_written_in_place(options.checkpoint)) {
        tell_of_writing_in_place(options.checkpoint);
    }
    LoadedMatrix loaded = read_matrix(options, reported);
    report.reading_seconds = watch.lap();
    const MatrixReport& matrix = loaded.matrix.report;
    const std::vector<LabelColumn> labels = settle_labels(loaded, options);
    options.sets = settle_sets(loaded.matrix.row_names, options);
    settle_fit_options(options, matrix.rows, matrix.columns);
    settle_drawn_columns(options, matrix.columns);
    check_trust(options, {loaded.matrix.values.get(), matrix.rows, matrix.columns});
    report.options = reported_options(options);
    if (!options.model.empty()) {
        check_placing_options(options.fit);
    }
    const std::vector<double> perplexities = choose_perplexities(options, matrix.rows);
    check_runs(options, perplexities, reported);
    const auto neighbours = load_neighbours(options, perplexities, matrix.rows);
    RunSize size = size_of_runs(options, matrix, perplexities);
    const AvailableMemory available = available_memory();
    options.seeds_at_once = seeds_at_once(size, available);
    size.seeds_at_once = options.seeds_at_once;
    if (options.dry_run) {
        settle_results(options, loaded.matrix.row_names);
        print_plan(options, perplexities, size, available);
    }
    if (!options.force) {
        check_memory(size, available);
    }
    if (options.dry_run) {
        return Success;
    }
    tell_left_out_of_plots(options, matrix.rows);
    if (!options.model.empty()) {
        prepare_place(options.model);
    }
    start_logging(options.quiet);
    if (reported != nullptr) {
        return reproduce_maps(std::move(loaded), perplexities, neighbours, options, *reported);
    }
    report.threads = size.threads;
    report.estimated_memory = estimate_memory(size).peak();
    return make_maps(std::move(loaded),
                     labels,
                     perplexities,
                     neighbours,
                     options,
                     std::move(report),
                     since_start);
}

/// Makes the maps of a report again and says whether they are equal.
ExitStatus reproduce(const Options& call) {
    const ReportedCall reported = read_reported_call(call.reproduced_report);
    try {
        return embed(options_to_reproduce(reported, call), {}, &reported);
    } catch (const DifferenceFound& difference) {
        complain(difference.what());
        return Different;
    }
}

/// Does what the command line asks for.
ExitStatus run(const Options& options, std::vector<std::string> command_line) {
    if (!options.gene.empty()) {
        return show_gene(options.gene);
    }
    if (!options.enrich.empty()) {
        return show_enrichment(options);
    }
    if (!options.collected_reports.empty()) {
        return collect_reports(options);
    }
    if (options.tests_itself) {
        std::optional<ConsoleSilence> silence;
        settle_manner(options, silence);
        return show_self_test(golden::all_parts(), golden::expected_parts(golden::digests_text()));
    }
    if (!options.reproduced_report.empty()) {
        return reproduce(options);
    }
    check_rank_options(options);
    RunReport report = begin_report(options, std::move(command_line));
    return options.onto.empty() ? embed(options, std::move(report))
                                : place(options, std::move(report));
}

/// The whole command but for what the streams have not taken yet; what goes wrong is explained on
/// standard error.
int run_command(int argc, const char* const* argv, Ranks* ranks) {
    try {
        ParsedCommand command = parse_command_line(argc, argv);
        command.options.ranks = ranks;
        return command.exit_status ? *command.exit_status
                                   : run(command.options, {argv, argv + argc});
    } catch (const InputError& error) {
        complain(error.what());
        return BadInput;
    } catch (const std::bad_alloc&) {
        complain("the matrix and its embedding do not fit in memory");
    } catch (const std::exception& error) {
        complain(error.what());
    }
    return FailedRun;
}

}  // namespace

int run_whole_command(int argc, const char* const* argv, Ranks* ranks) {
    std::set_new_handler(nullptr);
    reserve_standard_streams();
    // A file that outgrows its limit is then reported like a full disk.
    std::signal(SIGXFSZ, SIG_IGN);
    const int status = run_command(argc, argv, ranks);
    const bool all_printed = flush_standard_streams();
    return all_printed || status != Success ? status : FailedRun;
}

}  // namespace ovik::tool
