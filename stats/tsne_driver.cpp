#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <new>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <utility>

#include "annotation/gene_func_map.h"
#include "plots/figure_drawing.h"
#include "plots/plot_columns.h"
#include "plots/plot_hand_off.h"
#include "results/checkpoint.h"
#include "results/checkpoint_keeper.h"
#include "results/result_table.h"
#include "results/run_log.h"
#include "stats/exit_without_memory.h"
#include "stats/fit.h"
#include "stats/fit_console.h"
#include "stats/method.h"
#include "stats/option_texts.h"
#include "stats/tsne.h"
#include "util/console.h"
#include "util/format.h"
#include "util/input_error.h"
#include "util/partial_entry.h"
#include "util/stopwatch.h"

/// The run of the engine: from the loaded matrix to the results on disk.

namespace ovik {

namespace {

/// @throws InputError if the run cannot go on from there
Checkpoint read_resumed(const std::string& path, const RunIdentity& run, int max_iter) {
    Checkpoint checkpoint = read_checkpoint(path);
    check_goes_on(path, checkpoint, run, max_iter);
    return checkpoint;
}

FitState state_of(const Checkpoint& checkpoint) {
    FitState state;
    state.reached.iteration = checkpoint.iteration;
    state.reached.cost = checkpoint.cost;
    state.embedding = checkpoint.embedding;
    state.velocity = checkpoint.velocity;
    state.gains = checkpoint.gains;
    return state;
}

FitSnapshot snapshot_of(const FitState& state) {
    return {
        state.reached.iteration, state.reached.cost, state.embedding, state.velocity, state.gains};
}

/// Names and values of the run's parameters, as the plots show them.
std::vector<std::pair<std::string, std::string>> caption_parameters(const FitOptions& options,
                                                                    int N,
                                                                    int D,
                                                                    const FitReport& report) {
    std::vector<std::pair<std::string, std::string>> parameters{
        {"Method", std::string(method_of(options).name) + " t-SNE"},
        {"Input", std::to_string(N) + " rows, " + std::to_string(D) + " columns"}};
    visit_fit_options(options, [&parameters](const auto& option) {
        // The page of a run that was ended is that of a run with this last iteration.
        if (option.words.decides_states) {
            parameters.emplace_back(option.words.title, plain_number(option.value));
        }
    });
    char cost[64];
    std::snprintf(cost, sizeof cost, "%g", report.reached.cost);
    parameters.emplace_back("Last iteration", std::to_string(report.reached.iteration));
    parameters.emplace_back("Final cost", cost);
    return parameters;
}

}  // namespace

template <typename T>
void TSNE<T>::requireInput() const {
    if (!holdsInput()) {
        throw std::logic_error(
            "the input was released by finish: call init, or set X, N and D, before actuate");
    }
}

/// The names of the rows at hand: the last ones, since `init` puts those of further rows behind.
template <typename T>
std::span<const std::string> TSNE<T>::currentNames() const {
    const std::size_t count = std::min(static_cast<std::size_t>(std::max(N, 0)), row_names.size());
    return std::span<const std::string>(row_names).last(count);
}

template <typename T>
void TSNE<T>::requireNames() const {
    if (currentNames().size() < static_cast<std::size_t>(std::max(N, 0))) {
        throw InputError("row_names holds " + std::to_string(row_names.size()) +
                         " names, and there are " + std::to_string(N) +
                         " rows: every row needs one, the last names are those of the rows");
    }
}

template <typename T>
FitOptions TSNE<T>::fitOptions(int no_dims,
                               double perplexity,
                               int stop_lying_iter,
                               int mom_switch_iter) const {
    FitOptions given = options;
    given.perplexity = perplexity;
    given.theta = theta;
    given.out_dims = no_dims;
    given.max_iter = max_iter;
    given.stop_lying_iter = stop_lying_iter;
    given.mom_switch_iter = mom_switch_iter;
    return given;
}

template <typename T>
RunIdentity TSNE<T>::runIdentity(const FitOptions& options) const {
    const auto rows = static_cast<std::size_t>(std::max(N, 0));
    const auto columns = static_cast<std::size_t>(std::max(D, 0));
    RunIdentity run{rows,
                    columns,
                    static_cast<std::size_t>(std::max(options.out_dims, 0)),
                    {},
                    digest_of({X, rows * columns}),
                    digest_of(currentNames())};
    visit_fit_options(options, [&run](const auto& option) {
        if (option.words.decides_states) {
            run.options.emplace_back(option.words.name, shortest_text(option.value));
        }
    });
    if (!transformations.empty()) {
        run.options.emplace_back("transformations", transformations);
    }
    return run;
}

template <typename T>
void TSNE<T>::checkResume(int no_dims,
                          double perplexity,
                          int stop_lying_iter,
                          int mom_switch_iter) const {
    requireInput();
    if (!resume_path.empty()) {
        read_resumed(resume_path,
                     runIdentity(fitOptions(no_dims, perplexity, stop_lying_iter, mom_switch_iter)),
                     max_iter);
    }
}

template <typename T>
void TSNE<T>::actuate(int no_dims,
                      double perplexity,
                      std::vector<std::string> labels,
                      int stop_lying_iter,
                      int mom_switch_iter) {
    requireNames();
    const FitOptions options = fitOptions(no_dims, perplexity, stop_lying_iter, mom_switch_iter);
    const FitReport report = fitAndReport(options);
    Stopwatch watch;
    auto parameters = caption_parameters(options, N, D, report);
    if (!transformations.empty()) {
        parameters.insert(parameters.begin() + 2, {"Transformations", transformations});
    }
    writeResults(no_dims, parameters, labels);
    times_.results = watch.lap();
}

template <typename T>
IterationReport TSNE<T>::embed(int no_dims,
                               double perplexity,
                               int stop_lying_iter,
                               int mom_switch_iter) {
    return fitAndReport(fitOptions(no_dims, perplexity, stop_lying_iter, mom_switch_iter)).reached;
}

/// Makes room for the embedding.
template <typename T>
MatrixView<double> TSNE<T>::makeEmbedding(int no_dims) {
    if (N < 0 || no_dims < 0) {
        throw std::bad_array_new_length();
    }
    const auto rows = static_cast<std::size_t>(N);
    const auto out_dims = static_cast<std::size_t>(no_dims);
    replaceArray(Y, Y_is_released_, new_array(rows * out_dims, 0.0));
    return {Y, rows, out_dims};
}

/// Fits the embedding, with the console's lines, checkpoints and the caller's own hook.
template <typename T>
FitReport TSNE<T>::fitAndReport(const FitOptions& options) {
    perplexity = options.perplexity;
    requireInput();
    if (checkpoint_every < 1) {
        throw std::invalid_argument("checkpoint_every has to be at least 1");
    }
    RunIdentity run;
    if (!checkpoint_path.empty() || !resume_path.empty()) {
        run = runIdentity(options);
    }
    std::optional<Checkpoint> resumed;
    if (!resume_path.empty()) {
        resumed = read_resumed(resume_path, run, max_iter);
    }
    forgetResults();
    const MatrixView<double> embedding = makeEmbedding(options.out_dims);
    print_launch(options, N);
    CheckpointKeeper keeper(checkpoint_path, checkpoint_every, std::move(run));
    FitHooks hooks;
    hooks.on_note = console_notes(options.perplexity);
    hooks.on_similarities = [&](const std::string& message) {
        print_info(message);
        if (resumed) {
            print_info("Going on after iteration " + std::to_string(resumed->iteration) +
                       ", from checkpoint " + resume_path);
        }
    };
    hooks.on_iteration = [&](const FitState& state) {
        // The fit has taken its arrays over.
        resumed.reset();
        print_progress<T>(state.reached);
        const bool goes_on = !on_iteration || on_iteration(state.reached);
        if (state.reached.finite) {
            keeper.keep(snapshot_of(state), !goes_on || state.isLast());
        }
        return goes_on;
    };
    const std::optional<FitState> start =
        resumed ? std::optional(state_of(*resumed)) : std::nullopt;
    hooks.resumed_state = start ? &*start : nullptr;
    hooks.cached_neighbours = cached_neighbours.get();
    FitReport report = exiting_without_memory([&] {
        const auto columns = static_cast<std::size_t>(std::max(D, 0));
        return fit_into(embedding, {X, embedding.rows, columns}, options, hooks);
    });
    print_end_of_iterations(report.reached);
    checkpoint_failure_ = keeper.failure();
    final_cost_ = report.final_cost;
    times_ = report.seconds;
    print_fitting_time(report.fitting_clock);
    return report;
}

/// Forgets what became of the results of an earlier run.
template <typename T>
void TSNE<T>::forgetResults() {
    checkpoint_failure_.clear();
    final_cost_ = 0.0;
    times_ = {};
    table_written_ = false;
    log_written_ = false;
    table_failure_.clear();
    log_failure_.clear();
    plots_ = {};
}

/// Writes the result table, then the record in the run log, then draws the plots.
template <typename T>
void TSNE<T>::writeResults(int no_dims,
                           const std::vector<std::pair<std::string, std::string>>& parameters,
                           const std::vector<std::string>& labels) {
    const std::string stem = result_table_stem(perplexity, out_suffix);
    auto table =
        make_result_table<T>({Y, static_cast<std::size_t>(N), static_cast<std::size_t>(no_dims)},
                             currentNames(),
                             gene_func_map);
    const PlotColumns<T> columns(table.coordinates);
    remove_left_over_files(out_base);
    remove_left_over_drawings(out_base);
    table_failure_ = write_result_table(out_base + "_" + stem + ".csv", table);
    table_written_ = !table_failure_;
    log_failure_ = append_run_log(out_base, data_title, perplexity, stem);
    log_written_ = !log_failure_;
    if (draw_plots) {
        PlottedRun<T> run;
        run.title = data_title;
        run.parameters = parameters;
        run.labels = labels;
        run.names = table.names;
        run.groups = table.groups;
        run.functions = table.functions;
        plots_ = hand_to_plots<T>({out_dir, out_name, out_base + "_" + stem, stem},
                                  std::move(table.coordinates),
                                  columns,
                                  run);
    }
}

#define OVIK_INSTANTIATE_DRIVER(T)                                                   \
    template void TSNE<T>::actuate(int, double, std::vector<std::string>, int, int); \
    template IterationReport TSNE<T>::embed(int, double, int, int);                  \
    template void TSNE<T>::checkResume(int, double, int, int) const;

OVIK_INSTANTIATE_DRIVER(float)
OVIK_INSTANTIATE_DRIVER(double)

}  // namespace ovik
