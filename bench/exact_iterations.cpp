#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <omp.h>
#include <random>
#include <vector>

#include "stats/kernels/pair_kernels.h"
#include "stats/panels.h"
#include "stats/symmetric_forces.h"

/// Measures an iteration of the exact method, cost and gradient, for each instruction set of the
/// processor and for one thread and all. Prints a table in Markdown.
///
/// exact_iterations [POINTS [REPEATS]]

namespace {

constexpr const char* kSets[] = {"portable", "AVX2", "AVX-512"};

/// A cloud of points as wide as finished embeddings are, and similarities that fall with distance.
struct Input {
    std::vector<double> Y;
    std::vector<double> P;
    std::vector<double> diagonal;
};

Input make_input(std::size_t N) {
    std::mt19937_64 generator(1);
    std::normal_distribution<double> normal(0.0, 20.0);
    Input input{std::vector<double>(2 * N), {}, std::vector<double>(N, 0.0)};
    for (double& y : input.Y) {
        y = normal(generator);
    }
    input.P.resize(ovik::panel_matrix_size(N));
    for (std::size_t n = 0; n < N; ++n) {
        for (std::size_t m = 0; m < N; ++m) {
            const double x = input.Y[2 * n] - input.Y[2 * m];
            const double y = input.Y[2 * n + 1] - input.Y[2 * m + 1];
            input.P[n * N + m] = n == m ? 0.0 : 1e-7 * std::exp(-0.1 * (x * x + y * y)) + 1e-12;
        }
    }
    ovik::rows_to_panels(input.P.data(), N);
    return input;
}

/// The shortest of some repeats, in milliseconds; others may use the machine.
double shortest(const Input& input, const ovik::PairKernels& kernels, int threads, int repeats) {
    omp_set_num_threads(threads);
    const std::size_t N = input.diagonal.size();
    ovik::SymmetricForces forces(N, 2, ovik::platform_elementary().log, kernels);
    forces.takeAffinities(input.P.data(), input.diagonal.data());
    std::vector<double> gradient(2 * N);
    double best = HUGE_VAL;
    for (int i = 0; i < repeats; ++i) {
        const double start = omp_get_wtime();
        if (!forces.take(input.Y.data()) || !std::isfinite(forces.cost(gradient.data()))) {
            std::exit(EXIT_FAILURE);
        }
        best = std::min(best, 1e3 * (omp_get_wtime() - start));
    }
    return best;
}

}  // namespace

int main(int argc, char** argv) {
    const std::size_t N = argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 2000;
    const int repeats = argc > 2 ? std::atoi(argv[2]) : 50;
    const int processors = omp_get_num_procs();
    const Input input = make_input(N);
    std::printf(
        "| %zu points | 1 thread | %d threads | ratio |\n|---|---|---|---|\n", N, processors);
    for (const ovik::InstructionSet set : ovik::kInstructionSets) {
        if (set > ovik::best_instruction_set()) {
            continue;
        }
        const ovik::PairKernels& kernels = ovik::pair_kernels(set);
        const double one = shortest(input, kernels, 1, repeats);
        const double all = shortest(input, kernels, processors, repeats);
        std::printf("| %s | %.2f ms | %.2f ms | %.2f |\n",
                    kSets[static_cast<int>(set)],
                    one,
                    all,
                    one / all);
    }
}
