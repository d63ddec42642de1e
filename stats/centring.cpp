#include "stats/centring.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "stats/elementwise.h"
#include "util/malloc_array.h"
#include "util/parallel.h"

namespace ovik {

namespace {

/// Adds the rows to sums that stay in registers.
template <std::size_t Columns>
void add_rows(const double* X, std::size_t rows, double* sums) {
    double held[Columns] = {};
    for (std::size_t n = 0; n < rows; ++n) {
        for (std::size_t d = 0; d < Columns; ++d) {
            held[d] += X[n * Columns + d];
        }
    }
    std::copy_n(held, Columns, sums);
}

void add_rows(const double* X, std::size_t rows, std::size_t columns, double* sums) {
    for (std::size_t n = 0; n < rows; ++n) {
        for (std::size_t d = 0; d < columns; ++d) {
            sums[d] += X[n * columns + d];
        }
    }
}

/// Writes the mean of every column, for which there are zeros.
void column_means(const double* X, std::size_t rows, std::size_t columns, double* means) {
    switch (columns) {
        case 2:
            add_rows<2>(X, rows, means);
            break;
        case 3:
            add_rows<3>(X, rows, means);
            break;
        default:
            add_rows(X, rows, columns, means);
    }
    const double reciprocal = 1.0 / static_cast<double>(rows);
    for (std::size_t d = 0; d < columns; ++d) {
        means[d] = means[d] * reciprocal;
    }
}

void subtract(double* X, std::size_t rows, std::size_t columns, const double* means) {
    parallel_for_each(rows, kElementwiseGrain, [=](std::size_t n) {
        for (std::size_t d = 0; d < columns; ++d) {
            X[n * columns + d] -= means[d];
        }
    });
}

}  // namespace

void zero_mean(double* X, std::size_t rows, std::size_t columns) {
    // Every iteration comes here: an embedding's few columns need no memory of their own.
    double few_means[8] = {};
    MallocArray<double> many_means;
    double* means = few_means;
    if (columns > std::size(few_means)) {
        many_means = calloc_array<double>(columns);
        require_allocated(many_means);
        means = many_means.get();
    }
    column_means(X, rows, columns, means);
    subtract(X, rows, columns, means);
}

InputScale centre_and_scale(MatrixView<double> X) {
    InputScale scale;
    const auto means = calloc_array<double>(X.columns);
    require_allocated(means);
    column_means(X.values, X.rows, X.columns, means.get());
    subtract(X.values, X.rows, X.columns, means.get());
    scale.means.assign(means.get(), means.get() + X.columns);
    double largest = 0.0;
    for (const double value : X.all()) {
        if (std::fabs(value) > largest) {
            largest = std::fabs(value);
        }
    }
    scale.factor = 1.0 / largest;
    multiply_all(X.values, X.size(), scale.factor);
    return scale;
}

void scale_alike(MatrixView<double> X, const InputScale& scale) {
    subtract(X.values, X.rows, X.columns, scale.means.data());
    multiply_all(X.values, X.size(), scale.factor);
}

}  // namespace ovik
