#include <cstdio>
#include <exception>
#include <vector>

#include "stats/centring.h"
#include "stats/exact_objective.h"

#include "bench/loaded_matrix.h"

/// Prints the cost of maps over all pairs of rows: the Kullback-Leibler divergence from the
/// affinities of perplexity 30 of all pairs, as the exact method has it, whatever a map was made
/// by. A line for each file of coordinates, of as many rows as the matrix; missing values are the
/// means of their rows.

namespace {

constexpr double kPerplexity = 30.0;

int print_costs(const char* matrix, char** maps, int count) {
    const ovik::LoadedMatrix input = ovik::bench::loaded(matrix);
    const ovik::MatrixView<double> X = ovik::bench::view(input);
    ovik::centre_and_scale(X);
    constexpr std::size_t kDims = 2;
    ovik::ExactObjective objective({X.values, X.rows, X.columns}, kDims, kPerplexity);
    for (int i = 0; i < count; ++i) {
        const ovik::LoadedMatrix map = ovik::bench::loaded(maps[i]);
        const ovik::MatrixView<double> Y = ovik::bench::view(map);
        if (Y.rows != X.rows || Y.columns != kDims) {
            std::fprintf(stderr, "%s: no map of %s\n", maps[i], matrix);
            return 1;
        }
        std::printf("%.6f\n", objective.cost(Y.values));
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        std::fprintf(stderr, "usage: map_cost MATRIX COORDINATES...\n");
        return 2;
    }
    try {
        return print_costs(argv[1], argv + 2, argc - 2);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
}
