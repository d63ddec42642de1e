#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>

#include "annotation/gene_func_map.h"
#include "plots/run_caption.h"
#include "stats/barnes_hut_objective.h"
#include "stats/centring.h"
#include "stats/exact_objective.h"
#include "stats/gradient_descent.h"
#include "stats/normal_deviates.h"
#include "stats/plot_columns.h"
#include "stats/plot_hand_off.h"
#include "stats/result_table.h"
#include "stats/run_log.h"
#include "stats/tsne.h"
#include "util/console.h"
#include "util/format.h"
#include "util/partial_entry.h"

/// The run of the engine: from the loaded matrix to the results on disk.

namespace ovik {

namespace {

constexpr int kRandomSeed = 11;
constexpr double kEarlyExaggeration = 12.0;
constexpr double kInitialMomentum = 0.5;
constexpr double kFinalMomentum = 0.8;

/// Processor time in seconds.
float seconds(std::clock_t elapsed) {
    return static_cast<float>(elapsed) / 1000000.0F;
}

void seed_random_stream() {
    print_info("Random seed: ", -1, ' ');
    std::srand(static_cast<unsigned int>(kRandomSeed));
    std::printf("%s\n", num2string(kRandomSeed).c_str());
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

/// When the optimisation changes course.
struct Schedule {
    int max_iter;
    int stop_lying_iter;
    int mom_switch_iter;
};

template <typename T>
void report_progress(double cost, long iter, int max_iter) {
    char cost_text[512];  // "%f" of a double has at most 317 characters
    std::snprintf(cost_text, sizeof cost_text, "%f", cost);
    progress_bar<T>("Got error of " + std::string(cost_text) + " at iteration",
                    static_cast<int>(iter),
                    max_iter,
                    "",
                    T(),
                    0);
}

/// Gradient descent from the random start to the final embedding.
///
/// @return the cost of the final embedding; 0 if there was no iteration
template <typename T>
double optimise(Objective& objective,
                GradientDescent& descent,
                double* Y,
                std::size_t N,
                std::size_t no_dims,
                const Schedule& schedule) {
    double momentum = kInitialMomentum;
    double cost = 0.0;
    if (schedule.max_iter >= 0) {
        objective.gradient(Y, descent.gradient());
    }
    for (long iter = 0; iter <= schedule.max_iter; ++iter) {
        descent.step(Y, momentum);
        zero_mean(Y, N, no_dims);
        if (iter == schedule.stop_lying_iter) {
            objective.relax(kEarlyExaggeration);
        }
        if (iter == schedule.mom_switch_iter) {
            momentum = kFinalMomentum;
        }
        // Until exaggeration ends the cost is that against the exaggerated similarities, on
        // purpose.
        cost = iter < schedule.max_iter ? objective.costAndGradient(Y, descent.gradient())
                                        : objective.cost(Y);
        report_progress<T>(cost, iter, schedule.max_iter);
    }
    std::putchar('\n');
    return cost;
}

/// The reason that `errno` has, unless all went well.
std::error_code failure_unless(bool done) {
    return done ? std::error_code() : std::error_code(errno, std::generic_category());
}

/// A number as a reader writes it: 30, 12.75.
std::string plain_number(double value) {
    char text[64];
    std::snprintf(text, sizeof text, "%g", value);
    return text;
}

}  // namespace

template <typename T>
void TSNE<T>::actuate(int no_dims,
                      double perplexity,
                      std::vector<std::string> labels,
                      int stop_lying_iter,
                      int mom_switch_iter) {
    this->perplexity = perplexity;
    if (X != nullptr && X == released_X_) {
        throw std::logic_error("the input was released by finish: call init before actuate");
    }
    table_written_ = false;
    log_written_ = false;
    table_failure_.clear();
    log_failure_.clear();
    plots_ = {};
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
    centre_and_scale(X, rows, columns);
    std::unique_ptr<Objective> objective;
    if (theta == 0.0) {
        objective = std::make_unique<ExactObjective>(X, rows, columns, out_dims, perplexity);
    } else {
        objective =
            std::make_unique<BarnesHutObjective>(X, rows, columns, out_dims, perplexity, theta);
    }
    std::clock_t end = std::clock();
    objective->exaggerate(kEarlyExaggeration);
    draw_initial_embedding(Y, count);
    print_info(objective->report(end - start));

    start = std::clock();
    const Schedule schedule{max_iter, stop_lying_iter, mom_switch_iter};
    const double cost = optimise<T>(*objective, *descent, Y, rows, out_dims, schedule);
    end = std::clock();
    descent.reset();
    objective.reset();
    print_info("Performed fitting in " + num2string(seconds(end - start)) + "s");

    RunCaption caption{data_title, {}, std::move(labels)};
    caption.parameters = {
        {"Method", theta == 0.0 ? "exact t-SNE" : "Barnes-Hut t-SNE"},
        {"Perplexity", plain_number(perplexity)},
        {"Theta", plain_number(theta)},
        {"Input", std::to_string(N) + " rows, " + std::to_string(D) + " columns"},
        {"Output dimensions", std::to_string(no_dims)},
        {"Last iteration", std::to_string(max_iter)},
        {"Early exaggeration",
         plain_number(kEarlyExaggeration) + " until iteration " + std::to_string(stop_lying_iter)},
        {"Momentum",
         plain_number(kInitialMomentum) + ", after iteration " + std::to_string(mom_switch_iter) +
             " " + plain_number(kFinalMomentum)},
        {"Learning rate", plain_number(kLearningRate)},
        {"Random seed", std::to_string(kRandomSeed)},
        {"Final cost", plain_number(cost)}};
    writeResults(no_dims, std::move(caption));
}

/// Writes the result table, then the record in the run log, then draws the plots.
template <typename T>
void TSNE<T>::writeResults(int no_dims, RunCaption caption) {
    const std::string stem = result_table_stem(perplexity, out_suffix);
    auto table = make_result_table<T>(Y,
                                      static_cast<std::size_t>(N),
                                      static_cast<std::size_t>(std::max(no_dims, 0)),
                                      row_names.data() + first_row_name_,
                                      gene_func_map);
    const PlotColumns<T> columns(table.coordinates);
    remove_left_over_entries(out_base);
    table_written_ = write_result_table(out_base + "_" + stem + ".csv", table);
    table_failure_ = failure_unless(table_written_);
    log_written_ = append_run_log(out_base, data_title, perplexity, stem);
    log_failure_ = failure_unless(log_written_);
    if (draw_plots) {
        caption.has_table = table_written_;
        const CaptionScope scope(caption);
        plots_ = hand_to_plots<T>({out_dir, out_name, out_base + "_" + stem, stem},
                                  std::move(table.coordinates),
                                  columns,
                                  caption.labels);
    }
}

template void TSNE<float>::actuate(int, double, std::vector<std::string>, int, int);
template void TSNE<double>::actuate(int, double, std::vector<std::string>, int, int);

}  // namespace ovik
