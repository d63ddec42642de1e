#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "neighbours/neighbour_recall.h"
#include "plots/figure_options.h"
#include "plots/plot_outcome.h"
#include "results/gene_set.h"
#include "results/label_column.h"
#include "results/map_trust.h"
#include "stats/fit_options.h"
#include "stats/input_scale.h"
#include "stats/iteration_report.h"
#include "stats/run_times.h"
#include "stats/seed_report.h"
#include "util/api.h"
#include "util/matrix_view.h"
#include "util/stage.h"

namespace ovik {

class CachedNeighbours;
class Ranks;
struct FitReport;
struct QuantisedMatrix;
struct ResultSettings;
struct RunIdentity;

/// A byte that marks the unit that instantiates `TSNE`; nothing reads or writes it.
OVIK_API extern char gInstantiationGuardTSNE;

/// An object in which runs over the same input share the neighbours of its rows.
///
/// @param most  neighbours of a row that the largest of them wants: 3 * perplexity, truncated
OVIK_API std::shared_ptr<CachedNeighbours> make_cached_neighbours(std::size_t most);

/// t-SNE: embeds the rows of a matrix in a few dimensions so that close rows stay close.
///
/// Use: construct, `init`, set `theta` if need be, `actuate`, `finish`. One run per object is the
/// intended use. Called from one thread; the work is spread over OpenMP's threads, and the results
/// are the same for any number of them. Both instantiations, `float` and `double`, compute in
/// `double`; T is the precision in which results are handed out.
///
/// The random start is from the process-wide `rand` stream, which each run seeds anew.
///
/// Messages go to standard output, remarks to standard error; `ConsoleSilence` holds them back.
/// Work arrays that do not fit in memory end the process with "Memory allocation failed!" and
/// status 1; other allocations throw std::bad_alloc. The exact method logs its perplexity through
/// glog, which this library leaves to the application to initialise.
///
/// @par Source van der Maaten and Hinton, "Visualizing data using t-SNE", JMLR 9:2579, 2008;
/// van der Maaten, "Accelerating t-SNE using tree-based algorithms", JMLR 15:3221, 2014
template <typename T>
class TSNE {
  public:
    std::string out_dir;
    std::string out_name;
    /// `out_dir` and `out_name` joined as they stand: results are named after it.
    std::string out_base;
    /// Appended to the stem of the result table.
    std::string out_suffix;
    /// What the data are, in the run log.
    std::string data_title;
    /// Iterations run from 0 to `max_iter` inclusive.
    int max_iter = 0;
    /// Rows (points).
    int N = 0;
    /// Columns (measurements).
    int D = 0;
    /// One name per row: if there are more, the last ones are those of the rows.
    std::vector<std::string> row_names;
    /// What the gene of each row does, for table and plots; empty: the gene table says it of the
    /// last names of `row_names`.
    std::vector<std::string> row_functions;
    /// The name under which the gene table lists each row, where it is another than its own; the
    /// chart page shows it. Empty for none.
    std::vector<std::string> row_genes;
    /// Labels of the rows in the place of those that `actuate` is given: the chart page offers
    /// each, the figure shows the first. Empty for none.
    std::vector<LabelColumn> label_columns;
    /// Sets of the rows, which the chart page lists. Empty for none.
    std::vector<GeneSet> gene_sets;
    /// The values that the chart page takes along (`quantised`, results/quantised_matrix.h), made
    /// of the input before the run brings that into another form; null for none.
    std::shared_ptr<const QuantisedMatrix> page_matrix;
    /// Input, row-major, N x D, from array `new`; centred and scaled in place by `actuate`. Under a
    /// metric of `options` that compares rows by their correlation it serves a single run.
    double* X = nullptr;
    /// Embedding, row-major, N x no_dims, from array `new`.
    double* Y = nullptr;
    /// Effective number of neighbours; 20 after `init`, then the argument of `actuate`.
    double perplexity = 0.0;
    /// Accuracy of the Barnes-Hut method, 0.5 after `init`; exactly 0.0 selects the exact method.
    double theta = 0.0;
    /// The numbers of the fit that neither a field nor an argument of `actuate` gives; what one of
    /// these gives holds.
    FitOptions options;
    /// Whether `actuate` draws the chart page and the figure.
    bool draw_plots = true;
    /// How large the figure is and what it shows besides; none: 1200 x 1200 pixels.
    std::optional<FigureOptions> figure;
    /// Called by `actuate` after each iteration; false ends the fit there, and the results are
    /// those of a run whose last iteration it was. An exception leaves `actuate` without results.
    /// It changes no number. Empty: nothing is called.
    std::function<bool(const IterationReport&)> on_iteration;
    /// Takes how far the stages of `actuate` are; see `OnStage`. Empty: nothing is called.
    OnStage on_stage;
    /// The file to which `actuate` saves the state of the fit, whole or not at all, and which
    /// replaces an earlier one: see results/checkpoint.h. Empty: none.
    std::string checkpoint_path;
    /// Iterations between two checkpoints, at least 1; the last iteration is always saved. An
    /// embedding that is not finite never is.
    int checkpoint_every = 50;

    /// From how many seeds the embedding is fitted, at least 1: `options.seed` and those that
    /// follow. The one of lowest cost is kept, and the results are those of a run with its seed.
    /// Not with checkpoints. See `fit_seeds_into` (stats/seed_fits.h).
    int seeds = 1;
    /// Where the rows start if `options.start` is `StartKind::Given`: N x no_dims, row-major; NaN
    /// in rows that start among their neighbours.
    std::vector<double> start_places;
    /// What was done to the input before it came here, such as "log1p": the chart page names it,
    /// and so do checkpoints, which are not gone on with if it differs. Empty: nothing.
    std::string transformations;
    /// A checkpoint from which `actuate` goes on, to the same bytes as the unbroken run, instead of
    /// from its start. Empty: none.
    std::string resume_path;
    /// Called by `actuate` once the embedding, table and log are there, before it draws the plots,
    /// with the report of the fit: `label_columns`, `further_parameters` and `trust` may still be
    /// filled. It changes no number. An exception leaves `actuate` without plots. Empty: nothing is
    /// called.
    std::function<void(const FitReport&)> on_embedding;
    /// Whether that report is to hold the neighbours of the rows.
    bool wants_neighbours = false;
    /// Whether it is to hold the cost of each row.
    bool wants_row_costs = false;
    /// Names and values of what else chart page and figure say of the run, behind the parameters of
    /// the fit.
    std::vector<std::pair<std::string, std::string>> further_parameters;
    /// What the chart page says of how far the map can be trusted; empty for nothing.
    MapTrust trust;
    /// Neighbours that runs of several objects over the same input share, so that they are searched
    /// for once; the results are those of separate runs. Not used by the exact method. Null: the
    /// run searches for its own. See `make_cached_neighbours`.
    std::shared_ptr<CachedNeighbours> cached_neighbours;
    /// Null, or the ranks that share the fit (`FitHooks::ranks`).
    Ranks* ranks = nullptr;

    /// Most of these fits that run side by side, each by one thread; 0 for as many as there are
    /// threads.
    std::size_t seeds_at_once = 0;

    /// @param out_dir     directory of the results, with its separator at the end
    /// @param out_name    start of their file names
    /// @param out_suffix  end of the table's file name, before ".csv"
    /// @param data_title  what the data are, for the run log
    OVIK_API TSNE(std::string out_dir,
                  std::string out_name,
                  std::string out_suffix,
                  std::string data_title);

    TSNE(const TSNE&) = delete;
    TSNE& operator=(const TSNE&) = delete;

    /// Does not release `X` and `Y`: `finish` does.
    OVIK_API ~TSNE();

    /// Reads the matrix (see `read_matrix_w_index`; one header line) and sets the defaults.
    ///
    /// Values beyond the length of the first row are dropped. Called again, it appends the new
    /// names to `row_names` and works on the new rows alone; the arrays it replaces live until
    /// `finish`.
    ///
    /// @param path       the file; if it cannot be opened, the console says so
    /// @param max_iter   last iteration of the run
    /// @param delimiter  the character between fields
    /// @throws InputError if there is no row, or if a row is shorter than the first: `row_names`,
    /// `N`, `D` and `X` are then as before
    /// @throws std::system_error with the path and the system's reason if the path is a directory,
    /// or the file cannot be read to its end; they are then as before, too
    OVIK_API void init(std::string path, int max_iter, char delimiter);

    /// Embeds the rows and writes the results: the table `out_base` + "_tsne_" + perplexity +
    /// `out_suffix` + ".csv", a record in the log `out_base` + ".log", and, named as the table, the
    /// chart page (".html", see `Javas`) and the figure (".png", ".svg" and the script ".gp", see
    /// `Gnuplot`).
    ///
    /// A second run starts from the input as the first left it; the embedding that it replaces
    /// lives until `finish`.
    ///
    /// @param no_dims          output dimensions, at least 2 for the table to have rows
    /// @param perplexity       effective number of neighbours; the console tells of one that
    ///                         is too large (3 * perplexity > N - 1), and the run goes on
    /// @param labels           one per row, or empty: they colour the points of the plots
    /// @param stop_lying_iter  iteration at which early exaggeration ends
    /// @param mom_switch_iter  iteration after which the momentum is 0.8
    /// @throws std::logic_error if `finish` has released the input, or an earlier run has brought
    /// it into the form of its metric
    /// @throws std::invalid_argument if `checkpoint_every` is below 1, or `seeds` is, or is above 1
    /// with a checkpoint
    /// @throws std::bad_array_new_length if `no_dims` or `N` is negative
    /// @throws InputError if `row_names` has fewer names than there are rows, and as `checkResume`
    /// does, before anything is printed or written
    OVIK_API void actuate(int no_dims,
                          double perplexity,
                          std::vector<std::string> labels,
                          int stop_lying_iter,
                          int mom_switch_iter);

    /// Embeds the rows into `Y` and writes no results but checkpoints: what `actuate` does first,
    /// with the same arguments, messages and exceptions.
    ///
    /// @return the last iteration done
    OVIK_API IterationReport embed(int no_dims,
                                   double perplexity,
                                   int stop_lying_iter,
                                   int mom_switch_iter);

    /// Tells in advance whether `actuate`, given the same arguments, can go on from `resume_path`.
    ///
    /// @throws std::logic_error if `finish` has released the input
    /// @throws InputError with the reason if not: the file cannot be read, is damaged, or is of
    /// another matrix or other options, or of an iteration beyond `max_iter`
    OVIK_API void checkResume(int no_dims,
                              double perplexity,
                              int stop_lying_iter,
                              int mom_switch_iter) const;

    /// Releases `X` and `Y`, which keep their values, and all arrays that they replaced. `N` and
    /// `D` become 0: there is no input any more, until `init`, or a caller who sets `X`, `N` and
    /// `D`. An array that a caller puts into `Y` is released in its turn, unless it lies where the
    /// one released last lay.
    OVIK_API void finish();

    /// Whether the last `actuate` wrote its result table.
    [[nodiscard]] bool tableWritten() const { return table_written_; }

    /// The cost of the last embedding, against the affinities without exaggeration.
    [[nodiscard]] double finalCost() const { return final_cost_; }

    /// The share of the variance that principal components kept in the last run, if they stood for
    /// the columns.
    [[nodiscard]] std::optional<double> varianceKept() const { return variance_kept_; }

    /// How many of the nearest neighbours the last run found, if its search was not exact.
    [[nodiscard]] const std::optional<NeighbourRecall>& neighbourRecall() const {
        return neighbour_recall_;
    }

    /// The cost of each iteration of the last embedding, as `FitReport::costs`.
    [[nodiscard]] const std::vector<double>& costs() const { return costs_; }

    /// What the fits of several seeds came to; none of a run from one.
    [[nodiscard]] const std::optional<SeedReport>& seedReport() const { return seed_report_; }

    /// How the last embedding centred and scaled its input.
    [[nodiscard]] const InputScale& inputScale() const { return input_scale_; }

    /// How long its stages took.
    [[nodiscard]] const RunTimes& times() const { return times_; }

    /// Whether the last `actuate` wrote its record in the run log.
    [[nodiscard]] bool logWritten() const { return log_written_; }

    /// Why the last checkpoint of the last `actuate` could not be written; empty if it was, or none
    /// was asked for.
    [[nodiscard]] const std::string& checkpointFailure() const { return checkpoint_failure_; }

    /// Why it could not write the result table; no error if it could.
    [[nodiscard]] std::error_code tableFailure() const { return table_failure_; }

    /// Why it could not write its record in the run log; no error if it could.
    [[nodiscard]] std::error_code logFailure() const { return log_failure_; }

    /// What became of its plots.
    [[nodiscard]] const PlotOutcome& plots() const { return plots_; }

    // The steps of a run, for callers that want them one by one.

    /// Fills DD, N x N, with squared distances. See `squared_distance_matrix`.
    OVIK_API static void computeSquaredEuclideanDistance(const double* X, int N, int D, double* DD);

    /// Fills P, N x N, with conditional affinities. See `dense_conditional_affinities`.
    OVIK_API static void computeGaussianPerplexity(
        const double* X, int N, int D, double* P, double perplexity);

    /// Stores conditional affinities to the K nearest neighbours: three blocks from `malloc`,
    /// which the caller frees. See `neighbour_affinities`.
    OVIK_API static void computeGaussianPerplexity(const double* X,
                                                   int N,
                                                   int D,
                                                   unsigned int** row_P,
                                                   unsigned int** col_P,
                                                   double** val_P,
                                                   double perplexity,
                                                   int K);

    /// Replaces the three blocks, which are freed, by those of the symmetric matrix. See
    /// `symmetrized`.
    OVIK_API static void symmetrizeMatrix(unsigned int** row_P,
                                          unsigned int** col_P,
                                          double** val_P,
                                          int N);

    /// Barnes-Hut gradient into dC, N x D. The first argument is not used. See
    /// `barnes_hut_gradient`.
    OVIK_API static void computeGradient(const double* P,
                                         const unsigned int* row_P,
                                         const unsigned int* col_P,
                                         const double* val_P,
                                         const double* Y,
                                         int N,
                                         int D,
                                         double* dC,
                                         double theta);

    /// Exact gradient into dC, N x D. See `exact_gradient`.
    OVIK_API static void computeExactGradient(
        const double* P, const double* Y, int N, int D, double* dC);

    /// Exact cost. See `exact_cost`.
    OVIK_API static double evaluateError(const double* P, const double* Y, int N, int D);

    /// Barnes-Hut cost. See `barnes_hut_cost`.
    OVIK_API static double evaluateError(const unsigned int* row_P,
                                         const unsigned int* col_P,
                                         const double* val_P,
                                         const double* Y,
                                         int N,
                                         int D,
                                         double theta);

    /// Centres the columns of an N x D matrix. See `zero_mean`.
    OVIK_API static void zeroMean(double* X, int N, int D);

    /// A standard normal deviate from the `rand` stream. See `normal_deviate`.
    OVIK_API static double randn();

  private:
    void replaceArray(double*& member, bool is_owned, std::unique_ptr<double[]> fresh);
    [[nodiscard]] bool holdsInput() const;
    [[nodiscard]] bool holdsEmbedding() const;
    void requireInput() const;
    void requireNames() const;
    void requireRunnable(const FitOptions& options) const;
    [[nodiscard]] std::span<const std::string> currentNames() const;
    [[nodiscard]] FitOptions fitOptions(int no_dims,
                                        double perplexity,
                                        int stop_lying_iter,
                                        int mom_switch_iter) const;
    [[nodiscard]] RunIdentity runIdentity(const FitOptions& options) const;
    [[nodiscard]] MatrixView<double> makeEmbedding(int no_dims);
    FitReport fitAndReport(const FitOptions& options);
    [[nodiscard]] MatrixView<const double> givenStart(std::size_t dims) const;
    void forgetResults();
    void keepResults(const FitReport& report);
    void writeResults(const FitOptions& options,
                      const FitReport& report,
                      std::vector<std::string> labels,
                      const std::function<void(ResultSettings&)>& before_plots);

    /// Whether `finish` has released `X`, and no other has taken its place since.
    bool input_is_released_ = false;
    /// What `finish` has released, and `Y` points at until another takes its place.
    const double* released_Y_ = nullptr;
    /// The input that a run has brought into the form of its metric; null for none.
    const double* prepared_X_ = nullptr;
    /// Arrays that a later `init` or `actuate` replaced.
    std::vector<std::unique_ptr<double[]>> replaced_;
    bool table_written_ = false;
    bool log_written_ = false;
    double final_cost_ = 0.0;
    std::optional<double> variance_kept_;
    std::optional<NeighbourRecall> neighbour_recall_;
    std::vector<double> costs_;
    std::optional<SeedReport> seed_report_;
    RunTimes times_;
    InputScale input_scale_;
    std::string checkpoint_failure_;
    std::error_code table_failure_;
    std::error_code log_failure_;
    PlotOutcome plots_;
};

}  // namespace ovik
