#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <optional>
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
#include "stats/barnes_hut_objective.h"
#include "stats/centring.h"
#include "stats/exact_objective.h"
#include "stats/gradient_descent.h"
#include "stats/normal_deviates.h"
#include "stats/optimisation.h"
#include "stats/tsne.h"
#include "util/console.h"
#include "util/format.h"
#include "util/partial_entry.h"
#include "util/stopwatch.h"

/// The run of the engine: from the loaded matrix to the results on disk.

namespace ovik {

namespace {

constexpr int kRandomSeed = 11;

/// Processor time in seconds.
float seconds(std::clock_t elapsed) {
    return static_cast<float>(elapsed) / 1000000.0F;
}

void seed_random_stream() {
    std::srand(static_cast<unsigned int>(kRandomSeed));
    print_info("Random seed:  " + num2string(kRandomSeed));
}

/// Tells the user of a perplexity that the number of points cannot bear; the run goes on.
void check_perplexity(double perplexity, int N) {
    if (3.0 * perplexity > static_cast<double>(N - 1)) {
        // The bound has five digits of a third on purpose, and is cut, not rounded.
        const double bound = (N - 1) * 0.33333;
        print_text(
            "Error: perplexity is too large for the number of data points! It should be <= " +
                num2string(bound, 1),
            1,
            '\n');
    }
}

template <typename T>
void report_progress(const IterationReport& reached) {
    char cost_text[512];  // "%f" of a double has at most 317 characters
    std::snprintf(cost_text, sizeof cost_text, "%f", reached.cost);
    progress_bar<T>("Got error of " + std::string(cost_text) + " at iteration",
                    reached.iteration,
                    reached.max_iter,
                    "",
                    T(),
                    0);
}

/// A number as a reader writes it: 30, 12.75.
std::string plain_number(double value) {
    char text[64];
    std::snprintf(text, sizeof text, "%g", value);
    return text;
}

/// Computes the similarities; a theta of exactly 0 selects the exact method.
std::unique_ptr<Objective> make_objective(const double* X,
                                          std::size_t rows,
                                          std::size_t columns,
                                          std::size_t out_dims,
                                          double perplexity,
                                          double theta,
                                          CachedNeighbours* kept) {
    if (theta == 0.0) {
        return std::make_unique<ExactObjective>(X, rows, columns, out_dims, perplexity);
    }
    return std::make_unique<BarnesHutObjective>(
        X, rows, columns, out_dims, perplexity, theta, kept);
}

/// @throws InputError if the run cannot go on from there
Checkpoint read_resumed(const std::string& path, const RunIdentity& run, int max_iter) {
    Checkpoint checkpoint = read_checkpoint(path);
    check_goes_on(path, checkpoint, run, max_iter);
    return checkpoint;
}

}  // namespace

template <typename T>
void TSNE<T>::requireInput() const {
    if (X != nullptr && X == released_X_) {
        throw std::logic_error("the input was released by finish: call init before actuate");
    }
}

template <typename T>
RunIdentity TSNE<T>::runIdentity(int no_dims,
                                 double perplexity,
                                 int stop_lying_iter,
                                 int mom_switch_iter) const {
    const auto rows = static_cast<std::size_t>(std::max(N, 0));
    const auto columns = static_cast<std::size_t>(std::max(D, 0));
    return {rows,
            columns,
            static_cast<std::size_t>(std::max(no_dims, 0)),
            perplexity,
            theta,
            stop_lying_iter,
            mom_switch_iter,
            digest_of(X, rows * columns),
            digest_of(row_names.data() + first_row_name_, rows)};
}

template <typename T>
void TSNE<T>::checkResume(int no_dims,
                          double perplexity,
                          int stop_lying_iter,
                          int mom_switch_iter) const {
    requireInput();
    if (!resume_path.empty()) {
        read_resumed(resume_path,
                     runIdentity(no_dims, perplexity, stop_lying_iter, mom_switch_iter),
                     max_iter);
    }
}

/// Iterates until the last iteration, or until `on_iteration` ends the fit.
template <typename T>
void TSNE<T>::fit(Optimisation& optimisation, CheckpointKeeper& keeper) const {
    bool goes_on = true;
    while (goes_on && !optimisation.isDone()) {
        optimisation.iterate();
        report_progress<T>(optimisation.reached());
        goes_on = !on_iteration || on_iteration(optimisation.reached());
        keeper.keep(optimisation, !goes_on || optimisation.isDone());
    }
    end_progress_bar();
    if (!optimisation.isDone()) {
        print_info("Ended early, at iteration " + std::to_string(optimisation.reached().iteration) +
                   " of " + std::to_string(max_iter));
    }
}

/// Names and values of the run's parameters, as the plots show them.
template <typename T>
std::vector<std::pair<std::string, std::string>> TSNE<T>::captionParameters(
    int no_dims, int stop_lying_iter, int mom_switch_iter, const IterationReport& reached) const {
    return {
        {"Method", theta == 0.0 ? "exact t-SNE" : "Barnes-Hut t-SNE"},
        {"Perplexity", plain_number(perplexity)},
        {"Theta", plain_number(theta)},
        {"Input", std::to_string(N) + " rows, " + std::to_string(D) + " columns"},
        {"Output dimensions", std::to_string(no_dims)},
        {"Last iteration", std::to_string(reached.iteration)},
        {"Early exaggeration",
         plain_number(kEarlyExaggeration) + " until iteration " + std::to_string(stop_lying_iter)},
        {"Momentum",
         plain_number(kInitialMomentum) + ", after iteration " + std::to_string(mom_switch_iter) +
             " " + plain_number(kFinalMomentum)},
        {"Learning rate", plain_number(kLearningRate)},
        {"Random seed", std::to_string(kRandomSeed)},
        {"Final cost", plain_number(reached.cost)}};
}

template <typename T>
void TSNE<T>::actuate(int no_dims,
                      double perplexity,
                      std::vector<std::string> labels,
                      int stop_lying_iter,
                      int mom_switch_iter) {
    const IterationReport reached = embed(no_dims, perplexity, stop_lying_iter, mom_switch_iter);
    Stopwatch watch;
    writeResults(
        no_dims, captionParameters(no_dims, stop_lying_iter, mom_switch_iter, reached), labels);
    times_.results = watch.lap();
}

template <typename T>
IterationReport TSNE<T>::embed(int no_dims,
                               double perplexity,
                               int stop_lying_iter,
                               int mom_switch_iter) {
    this->perplexity = perplexity;
    requireInput();
    if (checkpoint_every < 1) {
        throw std::invalid_argument("checkpoint_every has to be at least 1");
    }
    RunIdentity run;
    if (!checkpoint_path.empty() || !resume_path.empty()) {
        run = runIdentity(no_dims, perplexity, stop_lying_iter, mom_switch_iter);
    }
    std::optional<Checkpoint> resumed;
    if (!resume_path.empty()) {
        resumed = read_resumed(resume_path, run, max_iter);
    }
    forgetResults();
    const auto rows = static_cast<std::size_t>(std::max(N, 0));
    const auto columns = static_cast<std::size_t>(std::max(D, 0));
    const auto out_dims = static_cast<std::size_t>(std::max(no_dims, 0));
    const std::size_t count = rows * out_dims;
    replaceArray(
        Y, released_Y_, create_vec_malloc<double>(static_cast<std::ptrdiff_t>(count), 0.0));

    seed_random_stream();
    check_perplexity(perplexity, N);
    print_info("Launching t-SNE at perplexity = " + num2string(perplexity, 2) +
               " and theta = " + num2string(theta, 2));
    auto descent = std::make_unique<GradientDescent>(count);

    print_info("Computing similarities between inputs");
    std::clock_t start = std::clock();
    Stopwatch watch;
    centre_and_scale(X, rows, columns);
    auto objective =
        make_objective(X, rows, columns, out_dims, perplexity, theta, cached_neighbours.get());
    std::clock_t end = std::clock();
    times_.similarities = watch.lap();
    objective->exaggerate(kEarlyExaggeration);
    draw_initial_embedding(Y, count);
    print_info(objective->report(end - start));

    start = std::clock();
    const Schedule schedule{max_iter, stop_lying_iter, mom_switch_iter};
    Optimisation optimisation(*objective, *descent, {Y, rows, out_dims}, schedule);
    if (resumed) {
        optimisation.resume(*resumed);
        resumed.reset();
        print_info("Going on after iteration " + std::to_string(optimisation.reached().iteration) +
                   ", from checkpoint " + resume_path);
    }
    CheckpointKeeper keeper(checkpoint_path, checkpoint_every, run);
    fit(optimisation, keeper);
    checkpoint_failure_ = keeper.failure();
    final_cost_ = optimisation.finalCost();
    end = std::clock();
    descent.reset();
    objective.reset();
    times_.fitting = watch.lap();
    print_info("Performed fitting in " + num2string(seconds(end - start)) + "s");
    return optimisation.reached();
}

/// Of an earlier run.
template <typename T>
void TSNE<T>::forgetResults() {
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
    auto table = make_result_table<T>(Y,
                                      static_cast<std::size_t>(N),
                                      static_cast<std::size_t>(std::max(no_dims, 0)),
                                      row_names.data() + first_row_name_,
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
