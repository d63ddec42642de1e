#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

/// t-SNE as a plain one-thread program, written straight from the formulas: the yardstick for the
/// engine, with which it shares no code. Every function is as slow and as clear as its formula.
/// Matrices are row-major.
namespace plain {

struct Matrix {
    std::vector<std::string> names;
    std::size_t rows = 0;
    std::size_t columns = 0;
    std::vector<double> values;
};

/// Reads tab-separated text: a header line, then a name and values per line.
///
/// @param most_rows  further rows are left out
Matrix read_tab_separated(const std::string& path, std::size_t most_rows);

void centre_columns(std::vector<double>& values, std::size_t rows, std::size_t columns);

/// Centres the columns and divides by the largest absolute value, through its reciprocal.
void normalise_input(std::vector<double>& values, std::size_t rows, std::size_t columns);

/// Squared distances of all pairs, N x N.
std::vector<double> squared_distances(const std::vector<double>& points,
                                      std::size_t N,
                                      std::size_t dims);

/// Conditional similarities of all pairs, N x N.
std::vector<double> conditional_similarities(const std::vector<double>& points,
                                             std::size_t N,
                                             std::size_t dims,
                                             double perplexity);

/// The same by the squared distances of all pairs.
std::vector<double> conditional_similarities_by(const std::vector<double>& squared_distances,
                                                std::size_t N,
                                                double perplexity);

/// Sum of the conditional similarities of both directions, divided by their total.
void symmetrise_and_normalise(std::vector<double>& P, std::size_t N);

/// @param annealing  the factor by which P counts for more
std::vector<double> gradient(const std::vector<double>& P,
                             const std::vector<double>& Y,
                             std::size_t N,
                             std::size_t dims,
                             double annealing = 1.0);

double cost(const std::vector<double>& P,
            const std::vector<double>& Y,
            std::size_t N,
            std::size_t dims);

/// Rows of (column, value), in the order in which entries are stored.
using SparseRows = std::vector<std::vector<std::pair<std::size_t, double>>>;

/// Conditional similarities to some others at these distances.
std::vector<double> similarities_to(const std::vector<double>& distances, double perplexity);

/// Conditional similarities to the K nearest others, found by comparing all pairs, nearest first.
SparseRows neighbour_similarities(const std::vector<double>& points,
                                  std::size_t N,
                                  std::size_t dims,
                                  double perplexity,
                                  std::size_t K);

/// The same by the distances of all pairs.
SparseRows neighbour_similarities_by(const std::vector<double>& distances,
                                     std::size_t N,
                                     double perplexity,
                                     std::size_t K);

SparseRows symmetrise(const SparseRows& conditional);

/// How many values of `rand` the build of a vantage-point tree takes.
std::size_t tree_draws(std::size_t point_count);

double normal_deviate();

/// The exponential and logarithm by which the plain programs go.
struct Functions {
    double (*exp)(double);
    double (*log)(double);
};

/// Those of the C library, unless a test puts others in their place.
Functions& functions();

/// The numbers of a run.
struct Schedule {
    int max_iter;
    int stop_lying_iter;
    int mom_switch_iter;
    unsigned int seed = 11;
    double learning_rate = 200.0;
    double exaggeration = 12.0;
    double start_spread = 0.0001;
    double momentum = 0.5;
    double final_momentum = 0.8;
    bool is_annealed = false;
    int hold_iter = 125;
    int release_iter = 125;
    bool has_automatic_rate = false;
    bool has_gains = true;
    double stop_when = 0.0;
    /// Null, or the embedding to start from, N x no_dims.
    const std::vector<double>* start = nullptr;
};

/// The factor of the similarities in the step of an iteration.
double exaggeration_of(const Schedule& schedule, int iter);

/// That factor where it is no part of the similarities, as in the annealed schedule; else 1.
double annealing_of(const Schedule& schedule, int iter);

double momentum_of(const Schedule& schedule, int iter);

double learning_rate_of(const Schedule& schedule, std::size_t N, int iter);

/// Whether a run ends with its last iteration so far.
///
/// @param costs  of all iterations so far
bool has_settled(const Schedule& schedule, const std::vector<double>& costs);

/// The whole exact method on an input matrix.
///
/// @param costs  if not null, the cost of each iteration is appended
/// @return the embedding, N x no_dims
std::vector<double> embed_exactly(const Matrix& input,
                                  std::size_t no_dims,
                                  double perplexity,
                                  const Schedule& schedule,
                                  std::vector<double>* costs);

/// Gradient descent on given similarities, N x N, from the start of the seed.
std::vector<double> descend_exactly(std::vector<double> P,
                                    std::size_t N,
                                    std::size_t no_dims,
                                    const Schedule& schedule,
                                    std::vector<double>* costs);

}  // namespace plain
