#include "tests/plain/plain_sparse_components.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace plain {

namespace {

using Vector = std::vector<double>;

double dot(const Vector& a, const Vector& b) {
    double sum = 0.0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        sum += a[i] * b[i];
    }
    return sum;
}

/// A sparse matrix as a list, and the means of its columns.
struct Matrix {
    const std::vector<Entry>& entries;
    std::size_t N;
    std::size_t dims;
    Vector means;

    Matrix(const std::vector<Entry>& list, std::size_t rows, std::size_t columns)
        : entries(list),
          N(rows),
          dims(columns),
          means(columns) {
        for (const Entry& entry : entries) {
            means[entry.column] += entry.value;
        }
        for (double& mean : means) {
            mean /= static_cast<double>(N);
        }
    }

    [[nodiscard]] Vector times(const Vector& v) const {
        Vector product(N);
        for (const Entry& entry : entries) {
            product[entry.row] += entry.value * v[entry.column];
        }
        const double of_means = dot(means, v);
        for (double& x : product) {
            x -= of_means;
        }
        return product;
    }

    [[nodiscard]] Vector covariances(const Vector& v) const {
        const Vector u = times(v);
        double sum = 0.0;
        for (const double x : u) {
            sum += x;
        }
        Vector product(dims);
        for (const Entry& entry : entries) {
            product[entry.column] += entry.value * u[entry.row];
        }
        for (std::size_t d = 0; d < dims; ++d) {
            product[d] -= means[d] * sum;
        }
        return product;
    }
};

double mixed(std::uint64_t index) {
    std::uint64_t bits = (index + 1) * 0x9e3779b97f4a7c15U;
    bits = (bits ^ (bits >> 30U)) * 0xbf58476d1ce4e5b9U;
    bits = (bits ^ (bits >> 27U)) * 0x94d049bb133111ebU;
    bits ^= bits >> 31U;
    return static_cast<double>(bits >> 11U) * 0x1p-52 - 1.0;
}

/// Takes the parts along directions away from v.
///
/// @return these parts
Vector remove(const std::vector<Vector>& directions, Vector& v) {
    Vector parts;
    for (const Vector& direction : directions) {
        parts.push_back(dot(direction, v));
    }
    for (std::size_t d = 0; d < v.size(); ++d) {
        for (std::size_t i = 0; i < directions.size(); ++i) {
            v[d] -= directions[i][d] * parts[i];
        }
    }
    return parts;
}

/// Makes vectors orthogonal to one another and of length 1, and leaves short ones out.
///
/// @return the parts of each vector before along those after
std::vector<Vector> orthonormalise(std::vector<Vector>& vectors, double least) {
    std::vector<Vector> kept;
    std::vector<Vector> parts;
    for (Vector v : vectors) {
        Vector along(vectors.size());
        for (int pass = 0; pass < 2; ++pass) {
            for (std::size_t k = 0; k < kept.size(); ++k) {
                const double part = dot(kept[k], v);
                for (std::size_t d = 0; d < v.size(); ++d) {
                    v[d] -= part * kept[k][d];
                }
                along[k] += part;
            }
        }
        const double length = std::sqrt(dot(v, v));
        if (length > least) {
            for (double& x : v) {
                x /= length;
            }
            along[kept.size()] = length;
            kept.push_back(v);
        }
        parts.push_back(along);
    }
    vectors = kept;
    return parts;
}

}  // namespace

Components sparse_principal_components(const std::vector<Entry>& entries,
                                       std::size_t N,
                                       std::size_t dims,
                                       std::size_t count) {
    constexpr std::size_t kBlock = 16;
    constexpr double kShort = 1e-11;
    const Matrix X(entries, N, dims);
    const std::size_t most = 8 * count + 160;
    std::vector<Vector> directions;
    std::vector<Vector> covariances;
    std::uint64_t drawn = 0;
    double largest_product = 0.0;
    const auto random_block = [&] {
        std::vector<Vector> block(kBlock, Vector(dims));
        for (std::size_t d = 0; d < dims; ++d) {
            for (Vector& v : block) {
                v[d] = mixed(drawn++);
            }
        }
        for (Vector& v : block) {
            remove(directions, v);
            remove(directions, v);
        }
        orthonormalise(block, kShort * std::sqrt(static_cast<double>(dims)));
        return block;
    };
    std::vector<Vector> block = random_block();
    std::vector<Eigenvector> found;
    while (true) {
        const std::size_t first = directions.size();
        directions.insert(directions.end(), block.begin(), block.end());
        std::vector<Vector> next;
        for (const Vector& v : block) {
            next.push_back(X.covariances(v));
            largest_product = std::max(largest_product, std::sqrt(dot(next.back(), next.back())));
        }
        for (Vector& v : next) {
            Vector parts = remove(directions, v);
            const Vector rest = remove(directions, v);
            for (std::size_t i = 0; i < parts.size(); ++i) {
                parts[i] += rest[i];
            }
            covariances.push_back(parts);
        }
        std::vector<Vector> coupling = orthonormalise(next, kShort * largest_product);
        bool is_whole = false;
        if (next.empty()) {
            coupling.assign(block.size(), Vector(block.size()));
            next = random_block();
            is_whole = next.empty();
        } else {
            for (Vector& v : next) {
                remove(directions, v);
            }
            orthonormalise(next, kShort);
        }
        const std::size_t m = directions.size();
        const bool is_last = is_whole || m >= most;
        if (m >= count || is_last) {
            // Products with the blocks before and, of those within a block, the ones of the
            // direction that comes first; the others by symmetry.
            std::vector<Vector> square(m, Vector(m));
            for (std::size_t j = m; j-- > 0;) {
                for (std::size_t i = 0; i < covariances[j].size(); ++i) {
                    square[i][j] = covariances[j][i];
                    square[j][i] = covariances[j][i];
                }
            }
            found = eigenvectors(square, count);
            double residual = 0.0;
            for (const Eigenvector& one : found) {
                double squares = 0.0;
                for (std::size_t k = 0; k < block.size(); ++k) {
                    double sum = 0.0;
                    for (std::size_t a = 0; a < block.size(); ++a) {
                        sum += coupling[a][k] * one.vector[first + a];
                    }
                    squares += sum * sum;
                }
                residual = std::max(residual, std::sqrt(squares));
            }
            if (is_last || residual <= 1e-7 * found[0].value) {
                break;
            }
        }
        block = next;
    }
    Components components;
    components.scores.resize(N * count);
    components.loadings.resize(dims * count);
    components.variances.resize(count);
    for (std::size_t c = 0; c < count; ++c) {
        if (found[c].value <= 1e-12 * found[0].value) {
            continue;
        }
        components.variances[c] = found[c].value / (static_cast<double>(N) - 1.0);
        Vector loadings(dims);
        for (std::size_t d = 0; d < dims; ++d) {
            for (std::size_t i = 0; i < found[c].vector.size(); ++i) {
                loadings[d] += directions[i][d] * found[c].vector[i];
            }
        }
        normalise(loadings);
        const Vector scores = X.times(loadings);
        for (std::size_t d = 0; d < dims; ++d) {
            components.loadings[d * count + c] = loadings[d];
        }
        for (std::size_t n = 0; n < N; ++n) {
            components.scores[n * count + c] = scores[n];
        }
    }
    return components;
}

}  // namespace plain
