#include "stats/centring.h"

#include <cmath>
#include <iterator>

#include "stats/elementwise.h"
#include "util/malloc_array.h"
#include "util/parallel.h"

namespace ovik {

void zero_mean(double* X, std::size_t rows, std::size_t columns) {
    // Every iteration comes here: an embedding's few columns need no memory of their own.
    double few_means[8] = {};
    MallocArray<double> many_means;
    double* mean = few_means;
    if (columns > std::size(few_means)) {
        many_means = calloc_array<double>(columns);
        exit_unless_allocated(many_means);
        mean = many_means.get();
    }
    for (std::size_t n = 0; n < rows; ++n) {
        for (std::size_t d = 0; d < columns; ++d) {
            mean[d] += X[n * columns + d];
        }
    }
    const double reciprocal = 1.0 / static_cast<double>(rows);
    for (std::size_t d = 0; d < columns; ++d) {
        mean[d] = mean[d] * reciprocal;
    }
    parallel_for_each(rows, kElementwiseGrain, [&](std::size_t n) {
        for (std::size_t d = 0; d < columns; ++d) {
            X[n * columns + d] -= mean[d];
        }
    });
}

void centre_and_scale(double* X, std::size_t rows, std::size_t columns) {
    zero_mean(X, rows, columns);
    const std::size_t count = rows * columns;
    double largest = 0.0;
    for (std::size_t i = 0; i < count; ++i) {
        if (std::fabs(X[i]) > largest) {
            largest = std::fabs(X[i]);
        }
    }
    multiply_all(X, count, 1.0 / largest);
}

}  // namespace ovik
