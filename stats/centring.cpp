#include "stats/centring.h"

#include <cmath>

#include "stats/elementwise.h"
#include "util/malloc_array.h"
#include "util/parallel.h"

namespace ovik {

void zero_mean(double* X, std::size_t rows, std::size_t columns) {
    const auto mean = calloc_array<double>(columns);
    exit_unless_allocated(mean);
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
