#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <omp.h>
#include <vector>

#include "stats/centring.h"
#include "stats/gradient_descent.h"
#include "stats/method.h"
#include "stats/normal_deviates.h"
#include "stats/sparse_affinities.h"
#include "stats/tree_repulsion.h"
#include "util/instruction_set.h"
#include "util/parallel.h"

#include "bench/clustered_points.h"

/// Times the stages of a Barnes-Hut run on clustered points, one after the other: the similarities
/// once, the parts of an iteration on the embedding that some iterations have made. Prints a name
/// and seconds a line.

namespace {

constexpr double kPerplexity = 30.0;
constexpr double kTheta = 0.5;
constexpr int kRepeats = 15;
constexpr double kLeastSeconds = 0.5;

double now() {
    const auto time = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration<double>(time).count();
}

template <typename Body>
double seconds_of(const Body& body) {
    const double start = now();
    body();
    return now() - start;
}

/// The shortest of many repeats, in seconds; others may use the machine.
template <typename Body>
double shortest(const Body& body) {
    const double end = now() + kLeastSeconds;
    double best = HUGE_VAL;
    for (int i = 0; i < kRepeats || now() < end; ++i) {
        best = std::min(best, seconds_of(body));
    }
    return best;
}

void print(const char* stage, double seconds) {
    std::printf("%s %.9f\n", stage, seconds);
    std::fflush(stdout);
}

std::unique_ptr<ovik::Objective> objective_for(ovik::MatrixView<double> X) {
    const ovik::FitOptions options{.perplexity = kPerplexity, .theta = kTheta};
    return ovik::method_of(options).make({X, options, {}});
}

/// Neighbours with their conditional similarities, and what makes joint ones of them.
std::unique_ptr<ovik::Objective> time_similarities(ovik::MatrixView<double> X) {
    unsigned int entries = 0;
    const double conditional = seconds_of([&] {
        const auto P =
            ovik::neighbour_affinities(X, kPerplexity, static_cast<int>(3 * kPerplexity));
        entries = P.row_P[X.rows];
    });
    std::unique_ptr<ovik::Objective> objective;
    const double all = seconds_of([&] { objective = objective_for(X); });
    // Keeps the search from being left out.
    if (entries == 0) {
        std::exit(EXIT_FAILURE);
    }
    print("similarities", all);
    print("neighbours", std::min(conditional, all));
    return objective;
}

/// The tree over an embedding, and the walk of all points through it.
void time_repulsion(const std::vector<double>& Y) {
    const std::size_t N = Y.size() / 2;
    ovik::TreeRepulsion repulsion(N, 2, kTheta);
    std::vector<double> forces(Y.size());
    std::vector<double> z_terms(N);
    const int workers = ovik::worker_count(N);
    print("tree", shortest([&] {
              const std::size_t parts = repulsion.prepare(Y.data());
              ovik::parallel_tasks(parts, workers, [&](std::size_t part, std::size_t /*worker*/) {
                  repulsion.preparePart(part);
              });
              repulsion.finishPreparation();
          }));
    constexpr std::size_t kTask = 64;
    print("walk", shortest([&] {
              const std::size_t tasks = (N + kTask - 1) / kTask;
              ovik::parallel_tasks(tasks, workers, [&](std::size_t i, std::size_t /*worker*/) {
                  repulsion.compute(
                      {i * kTask, std::min((i + 1) * kTask, N)}, forces.data(), z_terms.data());
              });
          }));
}

void time_stages(std::size_t N, std::size_t columns) {
    std::vector<double> points = ovik::bench::clustered_points(N, columns);
    const ovik::MatrixView<double> X{points.data(), N, columns};
    ovik::centre_and_scale(X);
    const auto objective = time_similarities(X);
    std::vector<double> Y(2 * N);
    std::srand(11);
    ovik::draw_initial_embedding(Y.data(), Y.size());
    ovik::GradientDescent descent(Y.size());
    objective->exaggerate(12.0);
    objective->gradient(Y.data(), descent.gradient());
    double step = HUGE_VAL;
    // As far as the clusters are apart, and the embedding as wide as it is in most of a run.
    for (int i = 0; i < 300; ++i) {
        if (i == 250) {
            objective->endExaggeration(12.0);
        }
        step = std::min(step, seconds_of([&] {
                            descent.step(Y.data(), 0.8);
                            ovik::zero_mean(Y.data(), N, 2);
                        }));
        objective->gradient(Y.data(), descent.gradient());
    }
    double cost = 0.0;
    print("step", step);
    print("gradient", shortest([&] { objective->gradient(Y.data(), descent.gradient()); }));
    print("gradient-and-cost",
          shortest([&] { cost = objective->costAndGradient(Y.data(), descent.gradient()); }));
    time_repulsion(Y);
    if (!std::isfinite(cost)) {
        std::exit(EXIT_FAILURE);
    }
}

}  // namespace

int main(int argc, char** argv) {
    const bool limited = argc == 4 && std::strcmp(argv[3], "avx2") == 0;
    if (argc != 3 && !limited) {
        std::fprintf(stderr, "usage: stages ROWS COLUMNS [avx2]\n");
        return 2;
    }
    if (limited) {
        ovik::limit_instruction_set(ovik::InstructionSet::Avx2);
    }
    time_stages(std::strtoul(argv[1], nullptr, 10), std::strtoul(argv[2], nullptr, 10));
}
