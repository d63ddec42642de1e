#include "tests/plain/plain_components.h"

#include <algorithm>
#include <cmath>

namespace plain {

namespace {

using Vector = std::vector<double>;
using Square = std::vector<Vector>;

struct Reflection {
    Vector v;
    double factor = 0.0;
};

struct Rotation {
    std::size_t index = 0;
    double c = 0.0;
    double s = 0.0;
};

/// A becomes (I - factor v v') A (I - factor v v') for each reflection in turn, until it is
/// tridiagonal.
std::vector<Reflection> tridiagonalise(Square& A) {
    const std::size_t n = A.size();
    std::vector<Reflection> reflections;
    for (std::size_t k = 0; k < n; ++k) {
        Reflection reflection{Vector(n), 0.0};
        double squares = 0.0;
        for (std::size_t i = k + 1; i < n; ++i) {
            squares += A[k][i] * A[k][i];
        }
        if (squares > 0.0) {
            const double target = A[k][k + 1] > 0.0 ? -std::sqrt(squares) : std::sqrt(squares);
            reflection.factor = 1.0 / (squares - A[k][k + 1] * target);
            for (std::size_t i = k + 1; i < n; ++i) {
                reflection.v[i] = A[k][i];
            }
            reflection.v[k + 1] -= target;
            Vector w(n);
            double product = 0.0;
            for (std::size_t i = k + 1; i < n; ++i) {
                for (std::size_t j = k + 1; j < n; ++j) {
                    w[i] += A[j][i] * reflection.v[j];
                }
                w[i] *= reflection.factor;
                product += w[i] * reflection.v[i];
            }
            for (std::size_t i = k + 1; i < n; ++i) {
                w[i] -= 0.5 * reflection.factor * product * reflection.v[i];
            }
            for (std::size_t i = k + 1; i < n; ++i) {
                for (std::size_t j = k + 1; j < n; ++j) {
                    A[j][i] -= reflection.v[j] * w[i] + w[j] * reflection.v[i];
                }
                A[k][i] = A[i][k] = 0.0;
            }
            A[k][k + 1] = A[k + 1][k] = target;
        }
        reflections.push_back(reflection);
    }
    return reflections;
}

double length(double a, double b) {
    const double larger = std::max(std::fabs(a), std::fabs(b));
    const double smaller = std::min(std::fabs(a), std::fabs(b));
    return larger == 0.0 ? 0.0 : larger * std::sqrt(1.0 + smaller / larger * (smaller / larger));
}

/// One implicit QL step on the rows from `first` to `last` of a tridiagonal matrix.
void ql_step(
    Vector& d, Vector& e, std::size_t first, std::size_t last, std::vector<Rotation>& rotations) {
    const double slope = (d[first + 1] - d[first]) / (2.0 * e[first]);
    const double root = length(slope, 1.0);
    double g = d[last] - d[first] + e[first] / (slope + (std::signbit(slope) ? -root : root));
    double s = 1.0;
    double c = 1.0;
    double p = 0.0;
    for (std::size_t i = last; i-- > first;) {
        const double f = s * e[i];
        const double b = c * e[i];
        const double r = length(f, g);
        e[i + 1] = r;
        if (r == 0.0) {
            d[i + 1] -= p;
            e[last] = 0.0;
            return;
        }
        s = f / r;
        c = g / r;
        g = d[i + 1] - p;
        const double t = (d[i] - g) * s + 2.0 * c * b;
        p = s * t;
        d[i + 1] = g + p;
        g = c * t - b;
        rotations.push_back({i, c, s});
    }
    d[first] -= p;
    e[first] = g;
    e[last] = 0.0;
}

/// d becomes the eigenvalues of the tridiagonal matrix of diagonal d and elements e beside it.
std::vector<Rotation> diagonalise(Vector& d, Vector& e) {
    double largest = 0.0;
    for (std::size_t i = 0; i < d.size(); ++i) {
        largest = std::max({largest, std::fabs(d[i]), std::fabs(e[i])});
    }
    std::vector<Rotation> rotations;
    for (std::size_t first = 0; first < d.size(); ++first) {
        for (;;) {
            std::size_t last = first;
            while (last + 1 < d.size() && std::fabs(e[last]) > largest * 0x1p-53) {
                ++last;
            }
            if (last == first) {
                break;
            }
            ql_step(d, e, first, last, rotations);
        }
    }
    return rotations;
}

}  // namespace

std::vector<Eigenvector> eigenvectors(Square A, std::size_t count) {
    const std::size_t n = A.size();
    const std::vector<Reflection> reflections = tridiagonalise(A);
    Vector d(n);
    Vector e(n);
    for (std::size_t i = 0; i < n; ++i) {
        d[i] = A[i][i];
        e[i] = i + 1 < n ? A[i][i + 1] : 0.0;
    }
    const std::vector<Rotation> rotations = diagonalise(d, e);
    std::vector<Eigenvector> found(n);
    for (std::size_t k = 0; k < n; ++k) {
        found[k].value = d[k];
        Vector& z = found[k].vector;
        z.resize(n);
        z[k] = 1.0;
        for (std::size_t r = rotations.size(); r-- > 0;) {
            const auto [i, c, s] = rotations[r];
            const double x = z[i];
            const double y = z[i + 1];
            z[i] = c * x + s * y;
            z[i + 1] = c * y - s * x;
        }
        for (std::size_t r = n; r-- > 0;) {
            double product = 0.0;
            for (std::size_t i = r + 1; i < n; ++i) {
                product += reflections[r].v[i] * z[i];
            }
            product *= reflections[r].factor;
            for (std::size_t i = r + 1; i < n; ++i) {
                z[i] -= reflections[r].v[i] * product;
            }
        }
    }
    std::stable_sort(found.begin(), found.end(), [](const Eigenvector& a, const Eigenvector& b) {
        return a.value > b.value;
    });
    found.resize(count);
    return found;
}

namespace {

/// The sums of products of every two columns of X, or of every two rows.
Square products_of(const Vector& X, std::size_t N, std::size_t D, bool of_rows) {
    const std::size_t n = of_rows ? N : D;
    Square A(n, Vector(n));
    for (std::size_t i = 0; i < n; ++i) {
        for (std::size_t j = 0; j < n; ++j) {
            for (std::size_t k = 0; k < (of_rows ? D : N); ++k) {
                A[i][j] += of_rows ? X[i * D + k] * X[j * D + k] : X[k * D + i] * X[k * D + j];
            }
        }
    }
    return A;
}

}  // namespace

void normalise(Vector& loadings) {
    double squares = 0.0;
    double largest = 0.0;
    for (const double loading : loadings) {
        squares += loading * loading;
        largest = std::fabs(loading) * (1.0 - 1e-9) > std::fabs(largest) ? loading : largest;
    }
    for (double& loading : loadings) {
        loading /= largest < 0.0 ? -std::sqrt(squares) : std::sqrt(squares);
    }
}

namespace {

/// The loadings of an eigenvector of the products of rows.
Vector loadings_of(const Vector& X, std::size_t N, std::size_t D, const Vector& of_rows) {
    Vector loadings(D);
    for (std::size_t i = 0; i < D; ++i) {
        for (std::size_t n = 0; n < N; ++n) {
            loadings[i] += X[n * D + i] * of_rows[n];
        }
    }
    return loadings;
}

}  // namespace

Components principal_components(const std::vector<double>& points,
                                std::size_t N,
                                std::size_t dims,
                                std::size_t count) {
    const bool of_rows = N < dims;
    const std::vector<Eigenvector> found =
        eigenvectors(products_of(points, N, dims, of_rows), count);
    Components components;
    components.scores.resize(N * count);
    components.loadings.resize(dims * count);
    components.variances.resize(count);
    for (std::size_t c = 0; c < count; ++c) {
        if (found[c].value <= 1e-12 * found[0].value) {
            continue;
        }
        components.variances[c] = found[c].value / (static_cast<double>(N) - 1.0);
        Vector loadings = of_rows ? loadings_of(points, N, dims, found[c].vector) : found[c].vector;
        normalise(loadings);
        for (std::size_t i = 0; i < dims; ++i) {
            components.loadings[i * count + c] = loadings[i];
            for (std::size_t n = 0; n < N; ++n) {
                components.scores[n * count + c] += points[n * dims + i] * loadings[i];
            }
        }
    }
    return components;
}

}  // namespace plain
