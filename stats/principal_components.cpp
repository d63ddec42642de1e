#include "stats/principal_components.h"

#include <algorithm>
#include <utility>

#include "stats/component_columns.h"
#include "stats/leading_eigenvectors.h"
#include "util/parallel.h"

namespace ovik {

namespace {

/// Fewest multiplications for which another thread pays.
constexpr std::size_t kProductGrain = 65536;

std::size_t row_grain(std::size_t products_of_row) {
    return std::max<std::size_t>(1, kProductGrain / std::max<std::size_t>(products_of_row, 1));
}

/// Adds up the products of some columns with those from each of them on, in row order.
void add_products(MatrixView<const double> X, IndexRange columns, double* products) {
    const std::size_t D = X.columns;
    for (std::size_t n = 0; n < X.rows; ++n) {
        const double* const x = X.values + n * D;
        for (std::size_t i = columns.begin; i < columns.end; ++i) {
            const double x_i = x[i];
            double* __restrict const sums = products + i * D;
            for (std::size_t j = i; j < D; ++j) {
                sums[j] += x_i * x[j];
            }
        }
    }
}

/// The sums of the products of every two columns, columns x columns, each in row order.
std::vector<double> column_products(MatrixView<const double> X) {
    constexpr std::size_t kTile = 8;
    const std::size_t D = X.columns;
    std::vector<double> products(D * D);
    const std::size_t tiles = (D + kTile - 1) / kTile;
    const int workers = worker_count(tiles, row_grain(kTile * X.rows * D));
    parallel_tasks(tiles, workers, [&](std::size_t tile, std::size_t /*worker*/) {
        add_products(X, {tile * kTile, std::min((tile + 1) * kTile, D)}, products.data());
    });
    for (std::size_t i = 0; i < D; ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            products[i * D + j] = products[j * D + i];
        }
    }
    return products;
}

/// The product of two matrices, A.rows x B.columns; each element is a sum in index order.
std::vector<double> product(MatrixView<const double> A, MatrixView<const double> B) {
    std::vector<double> result(A.rows * B.columns);
    const std::size_t grain = row_grain(A.columns * B.columns);
    parallel_for_each(A.rows, grain, [&](std::size_t n) {
        double* __restrict const sums = result.data() + n * B.columns;
        for (std::size_t d = 0; d < A.columns; ++d) {
            const double a = A.values[n * A.columns + d];
            const double* const b = B.values + d * B.columns;
            for (std::size_t c = 0; c < B.columns; ++c) {
                sums[c] += a * b[c];
            }
        }
    });
    return result;
}

std::vector<double> transposed(MatrixView<const double> X) {
    std::vector<double> result(X.size());
    for (std::size_t n = 0; n < X.rows; ++n) {
        for (std::size_t d = 0; d < X.columns; ++d) {
            result[d * X.rows + n] = X.values[n * X.columns + d];
        }
    }
    return result;
}

double trace(const std::vector<double>& matrix, std::size_t n) {
    double sum = 0.0;
    for (std::size_t i = 0; i < n; ++i) {
        sum += matrix[i * n + i];
    }
    return sum;
}

}  // namespace

double PrincipalComponents::varianceKept() const {
    double kept = 0.0;
    for (const double variance : variances) {
        kept += variance;
    }
    return std::min(kept / total_variance, 1.0);
}

PrincipalComponents principal_components(MatrixView<const double> X, std::size_t count) {
    const bool by_rows = X.rows < X.columns;
    const std::vector<double> turned = by_rows ? transposed(X) : std::vector<double>();
    const MatrixView<const double> turned_view{turned.data(), X.columns, X.rows};
    const std::size_t n = std::min(X.rows, X.columns);
    std::vector<double> products = column_products(by_rows ? turned_view : X);
    const double divisor = static_cast<double>(X.rows) - 1.0;
    PrincipalComponents found;
    found.count = count;
    found.total_variance = trace(products, n) / divisor;
    LeadingEigenvectors leading = leading_eigenvectors(std::move(products), n, count);
    found.loadings = by_rows ? product(turned_view, {leading.vectors.data(), n, count})
                             : std::move(leading.vectors);
    for (std::size_t c = 0; c < count; ++c) {
        const bool varies = leading.values[c] > kVaryingShare * leading.values[0];
        found.varying += varies ? 1 : 0;
        found.variances.push_back(varies ? leading.values[c] / divisor : 0.0);
        if (varies) {
            normalise_column(found.loadings, count, c);
        } else {
            clear_column(found.loadings, count, c);
        }
    }
    found.scores = product(X, {found.loadings.data(), X.columns, count});
    return found;
}

}  // namespace ovik
