#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <new>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <utility>

#include "results/checkpoint.h"
#include "results/checkpoint_keeper.h"
#include "stats/cached_neighbours.h"
#include "stats/exit_without_memory.h"
#include "stats/fit.h"
#include "stats/fit_checks.h"
#include "stats/fit_console.h"
#include "stats/method.h"
#include "stats/option_effect.h"
#include "stats/option_texts.h"
#include "stats/row_metric.h"
#include "stats/run_results.h"
#include "stats/seed_fits.h"
#include "stats/tsne.h"
#include "util/console.h"
#include "util/format.h"
#include "util/input_error.h"
#include "util/random_stream.h"
#include "util/stopwatch.h"

/// The run of the engine: from the loaded matrix to the results on disk.

namespace ovik {

namespace {

/// An option with its value as checkpoints have it.
std::pair<std::string, std::string> identity_entry(const auto& option) {
    if constexpr (requires { option.range.holds(option.value); }) {
        return {std::string(option.words.name),
                option.isAutomatic() ? std::string(kAutomatic) : shortest_text(option.value)};
    } else {
        return {std::string(option.words.name), value_text(option)};
    }
}

/// Adds what a run leaves unsaid of its options, since it is as preset: messages can name it then.
/// Lists are empty by default, which says as much.
void complete(RunIdentity& run) {
    const FitOptions presets;
    visit_fit_options(presets, [&run](const auto& option) {
        const std::string_view name = option.words.name;
        const bool is_there = std::any_of(run.options.begin(),
                                          run.options.end(),
                                          [&](const auto& entry) { return entry.first == name; });
        const std::string preset = value_text(option);
        if (option.words.decides_states && !option.words.is_always_told && !is_there &&
            !preset.empty()) {
            run.options.emplace_back(name, preset);
        }
    });
}

/// @throws InputError if the run cannot go on from there
Checkpoint read_resumed(const std::string& path, RunIdentity run, int max_iter) {
    Checkpoint checkpoint = read_checkpoint(path);
    complete(checkpoint.run);
    complete(run);
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
    state.marked_cost = checkpoint.marked_cost;
    return state;
}

/// How far a run from several seeds is: its fits one after the other.
class SeedProgress {
  public:
    SeedProgress(int seeds, int max_iter)
        : last_(std::int64_t{seeds} * (std::int64_t{max_iter} + 1) - 1) {}

    /// To be called after each iteration of any of the fits.
    IterationReport step(const IterationReport& reached) {
        return {shown(done_++), shown(last_), reached.cost, reached.finite};
    }

  private:
    static int shown(std::int64_t iteration) {
        return static_cast<int>(std::min<std::int64_t>(iteration, std::numeric_limits<int>::max()));
    }

    std::int64_t done_ = 0;
    std::int64_t last_;
};

/// How many iterations are done with this one.
std::uint64_t count_of(int iteration) {
    return static_cast<std::uint64_t>(std::int64_t{iteration} + 1);
}

/// Stages without the iterations, which those of several fits are counted by.
OnStage without_iterations(const OnStage& on_stage) {
    return [&on_stage](Stage stage, std::uint64_t done, std::uint64_t total) {
        if (stage != Stage::Iterations) {
            tell(on_stage, stage, done, total);
        }
    };
}

FitSnapshot snapshot_of(const FitState& state) {
    return {state.reached.iteration,
            state.reached.cost,
            state.embedding,
            state.velocity,
            state.gains,
            state.marked_cost};
}

}  // namespace

template <typename T>
void TSNE<T>::requireInput() const {
    if (!holdsInput()) {
        throw std::logic_error(
            "the input was released by finish: call init, or set X, N and D, before actuate");
    }
    if (prepared_X_ != nullptr && X == prepared_X_) {
        throw std::logic_error(
            "an earlier run has brought the rows into the form of its metric: call init, or take "
            "another object, before another run");
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
    if (!row_functions.empty() && row_functions.size() != static_cast<std::size_t>(N)) {
        throw InputError("row_functions holds " + std::to_string(row_functions.size()) +
                         " texts, and there are " + std::to_string(N) +
                         " rows: every row needs one, or none has any");
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
    visit_fit_options(options, [&](const auto& option) {
        if (option.words.decides_states && is_told(options, option)) {
            run.options.push_back(identity_entry(option));
        }
    });
    const std::string given = cached_neighbours == nullptr ? "" : cached_neighbours->identity();
    if (!given.empty()) {
        run.options.emplace_back("given neighbours", given);
    }
    if (options.start == StartKind::Given) {
        run.options.emplace_back("start_places", hexadecimal(digest_of(start_places)));
    }
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
    FitOptions options = fitOptions(no_dims, perplexity, stop_lying_iter, mom_switch_iter);
    const FitReport report = fitAndReport(options);
    if (report.seeds) {
        options.seed = report.seeds->runs[report.seeds->kept].seed;
    }
    Stopwatch watch;
    times_.results = 0.0;
    writeResults(options, report, std::move(labels), [&](ResultSettings& settings) {
        times_.results = watch.lap();
        if (on_embedding) {
            on_embedding(report);
            settings.label_columns = label_columns;
            settings.further_parameters = further_parameters;
            settings.trust = trust;
            watch.lap();
        }
    });
    times_.results += watch.lap();
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
    replaceArray(Y, holdsEmbedding(), new_array(rows * out_dims, 0.0));
    // The new array may lie where one lay that was released.
    released_Y_ = nullptr;
    return {Y, rows, out_dims};
}

/// Refuses members that go with no run.
template <typename T>
void TSNE<T>::requireRunnable(const FitOptions& options) const {
    requireInput();
    if (checkpoint_every < 1) {
        throw std::invalid_argument("checkpoint_every has to be at least 1");
    }
    if (seeds < 1 || (seeds > 1 && !(checkpoint_path.empty() && resume_path.empty()))) {
        throw std::invalid_argument("a run has at least one seed, and one with a checkpoint");
    }
    const auto columns = static_cast<std::size_t>(std::max(D, 0));
    const auto rows = static_cast<std::size_t>(std::max(N, 0));
    const std::span<const std::string> names = currentNames();
    check_metric({X, rows, columns}, options, names.size() == rows ? names : names.first(0));
}

namespace {

/// Where a fit by one seed draws from: the process's own stream, unless numbers are to be the same
/// on every machine; then null.
RandomStream* stream_of(NumericsKind numerics) {
    return numerics == NumericsKind::Platform ? &process_random_stream() : nullptr;
}

/// Fits by one seed, that of the process, or by several.
FitReport fit_by(MatrixView<double> embedding,
                 MatrixView<double> input,
                 const FitOptions& options,
                 const SeedManner& seeds,
                 const FitHooks& hooks) {
    return exiting_without_memory([&] {
        return seeds.count > 1 ? fit_seeds_into(embedding, input, options, seeds, hooks)
                               : fit_into(embedding,
                                          input,
                                          options,
                                          hooks,
                                          method_of(options),
                                          stream_of(options.numerics));
    });
}

}  // namespace

/// Fits the embedding, with the console's lines, checkpoints and the caller's own hook.
template <typename T>
FitReport TSNE<T>::fitAndReport(const FitOptions& options) {
    perplexity = options.perplexity;
    requireRunnable(options);
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
    SeedProgress progress(seeds, options.max_iter);
    FitHooks hooks;
    hooks.on_note = console_notes(options);
    hooks.on_stage = seeds > 1 ? without_iterations(on_stage) : on_stage;
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
        const IterationReport shown = seeds > 1 ? progress.step(state.reached) : state.reached;
        print_progress<T>(shown);
        if (seeds > 1) {
            tell(on_stage, Stage::Iterations, count_of(shown.iteration), count_of(shown.max_iter));
        }
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
    hooks.ranks = ranks;
    hooks.wants_neighbours = wants_neighbours;
    hooks.wants_row_costs = wants_row_costs;
    prepared_X_ = compares_directions(options.metric) ? X : nullptr;
    hooks.start = givenStart(embedding.columns);
    hooks.on_recall = &print_recall;
    hooks.on_sample = &print_sample;
    hooks.on_components = [&](double share) { print_components(options.pca, D, share); };
    const MatrixView<double> input{X, embedding.rows, static_cast<std::size_t>(std::max(D, 0))};
    FitReport report = fit_by(embedding, input, options, {seeds, seeds_at_once}, hooks);
    print_outcome(report, seeds);
    checkpoint_failure_ = keeper.failure();
    keepResults(report);
    print_fitting_time(report.fitting_clock);
    return report;
}

/// The given places as a matrix; none of an embedding without columns.
template <typename T>
MatrixView<const double> TSNE<T>::givenStart(std::size_t dims) const {
    if (dims == 0) {
        return {};
    }
    return {start_places.data(), start_places.size() / dims, dims};
}

template <typename T>
void TSNE<T>::keepResults(const FitReport& report) {
    seed_report_ = report.seeds;
    final_cost_ = report.final_cost;
    costs_ = report.costs;
    times_ = report.seconds;
    input_scale_ = report.scale;
    variance_kept_ = report.variance_kept;
    neighbour_recall_ = report.recall;
}

/// Forgets what became of the results of an earlier run.
template <typename T>
void TSNE<T>::forgetResults() {
    checkpoint_failure_.clear();
    final_cost_ = 0.0;
    variance_kept_.reset();
    neighbour_recall_.reset();
    costs_.clear();
    seed_report_.reset();
    times_ = {};
    input_scale_ = {};
    table_written_ = false;
    log_written_ = false;
    table_failure_.clear();
    log_failure_.clear();
    plots_ = {};
}

/// Writes what is asked for of table, log and plots, and keeps what became of each.
template <typename T>
void TSNE<T>::writeResults(const FitOptions& options,
                           const FitReport& report,
                           std::vector<std::string> labels,
                           const std::function<void(ResultSettings&)>& before_plots) {
    const WrittenResults written = write_results<T>(
        {.out_dir = out_dir,
         .out_name = out_name,
         .out_suffix = out_suffix,
         .data_title = data_title,
         .labels = std::move(labels),
         .label_columns = label_columns,
         .functions = row_functions,
         .genes = row_genes,
         .gene_sets = gene_sets,
         .transformations = transformations,
         .further_parameters = further_parameters,
         .trust = trust,
         .matrix = page_matrix,
         .draw_plots = draw_plots,
         .figure = figure,
         .on_stage = on_stage},
        out_base,
        {{Y, static_cast<std::size_t>(N), static_cast<std::size_t>(options.out_dims)},
         currentNames(),
         static_cast<std::size_t>(D),
         options,
         report},
        before_plots);
    table_failure_ = written.table_failure;
    table_written_ = !table_failure_;
    log_failure_ = written.log_failure;
    log_written_ = !log_failure_;
    plots_ = written.plots;
}

#define OVIK_INSTANTIATE_DRIVER(T)                                                   \
    template void TSNE<T>::actuate(int, double, std::vector<std::string>, int, int); \
    template IterationReport TSNE<T>::embed(int, double, int, int);                  \
    template void TSNE<T>::checkResume(int, double, int, int) const;

OVIK_INSTANTIATE_DRIVER(float)
OVIK_INSTANTIATE_DRIVER(double)

}  // namespace ovik
