#include "stats/leading_eigenvectors.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <stdexcept>
#include <utility>

#include "util/parallel.h"

namespace ovik {

namespace {

/// Fewest elements of a matrix or of vectors for which another thread pays.
constexpr std::size_t kElementGrain = 32768;

/// Fewest of `count` pieces of `size` elements each for which another thread pays.
std::size_t piece_grain(std::size_t size) {
    return std::max<std::size_t>(8, kElementGrain / std::max<std::size_t>(size, 1));
}

/// A symmetric tridiagonal matrix.
struct Tridiagonal {
    std::vector<double> diagonal;
    /// Element i stands between i and i + 1; one more, which is 0, makes it as long as the
    /// diagonal.
    std::vector<double> beside;
};

/// Makes a symmetric matrix tridiagonal by reflections, each of which clears a row but for the
/// element beside the diagonal.
class Reflections {
  public:
    Reflections(std::vector<double> matrix, std::size_t n)
        : matrix_(std::move(matrix)),
          n_(n),
          factors_(n),
          last_v_(n),
          last_w_(n),
          v_(n),
          w_(n) {
        tridiagonal_.diagonal.resize(n);
        tridiagonal_.beside.resize(n);
        for (std::size_t k = 0; k < n; ++k) {
            reduce(k);
        }
    }

    [[nodiscard]] const Tridiagonal& tridiagonal() const { return tridiagonal_; }

    /// Takes vectors of the tridiagonal matrix back to those of the first one.
    ///
    /// @param vectors  row-major, n x count
    void applyTo(std::vector<double>& vectors, std::size_t count) const {
        parallel_for(count, piece_grain(n_ * n_), [&](std::size_t /*worker*/, IndexRange range) {
            std::vector<double> products(range.size());
            for (std::size_t k = n_; k-- > 0;) {
                reflect(k, vectors.data(), count, range, products);
            }
        });
    }

  private:
    [[nodiscard]] double* row(std::size_t k) { return matrix_.data() + k * n_; }

    [[nodiscard]] const double* row(std::size_t k) const { return matrix_.data() + k * n_; }

    /// Clears row k. The reflection before it is still to be applied to row k and those below.
    void reduce(std::size_t k) {
        double* const x = row(k);
        for (std::size_t i = k; i < n_; ++i) {
            x[i] -= last_v_[k] * last_w_[i] + last_w_[k] * last_v_[i];
        }
        tridiagonal_.diagonal[k] = x[k];
        findReflection(k);
        applyLastAndMultiply(k);
        finishReflection(k);
        std::swap(v_, last_v_);
        std::swap(w_, last_w_);
    }

    /// Finds v and its factor, with which I - factor v v' clears row k; row k keeps v.
    void findReflection(std::size_t k) {
        double* const x = row(k);
        double squares = 0.0;
        for (std::size_t i = k + 1; i < n_; ++i) {
            squares += x[i] * x[i];
        }
        factors_[k] = 0.0;
        std::fill(v_.begin(), v_.end(), 0.0);
        // Its reciprocal would be too large; such elements are nothing beside the others.
        if (squares < std::numeric_limits<double>::min()) {
            return;
        }
        const double beside = x[k + 1] > 0.0 ? -std::sqrt(squares) : std::sqrt(squares);
        tridiagonal_.beside[k] = beside;
        // Half the squared length of v.
        const double half_square = squares - x[k + 1] * beside;
        x[k + 1] -= beside;
        factors_[k] = 1.0 / half_square;
        std::copy(x + k + 1, x + n_, v_.begin() + static_cast<std::ptrdiff_t>(k) + 1);
    }

    /// Applies the reflection before to the rows below k, and multiplies them by v on the way.
    void applyLastAndMultiply(std::size_t k) {
        const std::size_t first = k + 1;
        std::fill(w_.begin(), w_.end(), 0.0);
        const std::size_t left = n_ - first;
        parallel_for(left, piece_grain(left), [&](std::size_t /*worker*/, IndexRange range) {
            const double* __restrict const last_v = last_v_.data();
            const double* __restrict const last_w = last_w_.data();
            double* __restrict const w = w_.data();
            for (std::size_t j = first; j < n_; ++j) {
                double* __restrict const a = row(j);
                const double last_v_j = last_v[j];
                const double last_w_j = last_w[j];
                const double v_j = v_[j];
                for (std::size_t i = first + range.begin; i < first + range.end; ++i) {
                    const double element = a[i] - (last_v_j * last_w[i] + last_w_j * last_v[i]);
                    a[i] = element;
                    w[i] += element * v_j;
                }
            }
        });
    }

    /// Makes w of the products with v: the matrix loses v w' + w v'.
    void finishReflection(std::size_t k) {
        const double factor = factors_[k];
        double product = 0.0;
        for (std::size_t i = k + 1; i < n_; ++i) {
            w_[i] *= factor;
            product += w_[i] * v_[i];
        }
        const double share = 0.5 * factor * product;
        for (std::size_t i = k + 1; i < n_; ++i) {
            w_[i] -= share * v_[i];
        }
    }

    /// Reflects some columns of vectors by reflection k.
    void reflect(std::size_t k,
                 double* vectors,
                 std::size_t count,
                 IndexRange range,
                 std::vector<double>& products) const {
        const double* const v = row(k);
        std::fill(products.begin(), products.end(), 0.0);
        for (std::size_t i = k + 1; i < n_; ++i) {
            const double* const z = vectors + i * count + range.begin;
            for (std::size_t c = 0; c < range.size(); ++c) {
                products[c] += v[i] * z[c];
            }
        }
        for (double& product : products) {
            product *= factors_[k];
        }
        for (std::size_t i = k + 1; i < n_; ++i) {
            double* const z = vectors + i * count + range.begin;
            for (std::size_t c = 0; c < range.size(); ++c) {
                z[c] -= v[i] * products[c];
            }
        }
    }

    std::vector<double> matrix_;
    std::size_t n_;
    std::vector<double> factors_;
    Tridiagonal tridiagonal_;
    std::vector<double> last_v_;
    std::vector<double> last_w_;
    std::vector<double> v_;
    std::vector<double> w_;
};

/// Of the coordinates `index` and `index` + 1.
struct Rotation {
    std::size_t index;
    double cosine;
    double sine;
};

/// The root of a^2 + b^2; the squares of the library's function differ between its versions.
double length_of(double a, double b) {
    const double larger = std::max(std::fabs(a), std::fabs(b));
    if (larger == 0.0) {
        return 0.0;
    }
    const double ratio = std::min(std::fabs(a), std::fabs(b)) / larger;
    return larger * std::sqrt(1.0 + ratio * ratio);
}

/// Makes a tridiagonal matrix diagonal, and keeps the rotations that do it.
class ImplicitQl {
  public:
    explicit ImplicitQl(Tridiagonal matrix)
        : d_(std::move(matrix.diagonal)),
          e_(std::move(matrix.beside)) {
        double largest = 0.0;
        for (std::size_t i = 0; i < d_.size(); ++i) {
            if (!std::isfinite(d_[i]) || !std::isfinite(e_[i])) {
                throw std::domain_error("a matrix whose eigenvalues are wanted is not finite");
            }
            largest = std::max({largest, std::fabs(d_[i]), std::fabs(e_[i])});
        }
        negligible_ = largest * std::numeric_limits<double>::epsilon() / 2.0;
        for (std::size_t i = 0; i < d_.size(); ++i) {
            isolate(i);
        }
    }

    /// Eigenvalues, in no order.
    [[nodiscard]] const std::vector<double>& values() const { return d_; }

    /// Takes unit vectors to the eigenvectors of the tridiagonal matrix.
    ///
    /// @param vectors  row-major, n x count
    void applyTo(std::vector<double>& vectors, std::size_t count) const {
        const std::size_t grain = piece_grain(rotations_.size());
        parallel_for(count, grain, [&](std::size_t /*worker*/, IndexRange range) {
            for (auto rotation = rotations_.rbegin(); rotation != rotations_.rend(); ++rotation) {
                const double c = rotation->cosine;
                const double s = rotation->sine;
                double* __restrict const upper = vectors.data() + rotation->index * count;
                double* __restrict const lower = upper + count;
                for (std::size_t v = range.begin; v < range.end; ++v) {
                    const double x = upper[v];
                    const double y = lower[v];
                    upper[v] = c * x + s * y;
                    lower[v] = c * y - s * x;
                }
            }
        });
    }

  private:
    /// Steps until nothing stands beside eigenvalue `first`.
    void isolate(std::size_t first) {
        constexpr int kMostSteps = 100;
        for (int step = 0; step <= kMostSteps; ++step) {
            std::size_t last = first;
            while (last + 1 < d_.size() && !(std::fabs(e_[last]) <= negligible_)) {
                ++last;
            }
            if (last == first) {
                return;
            }
            makeStep(first, last);
        }
        throw std::domain_error("the eigenvalues of a matrix were not found");
    }

    /// One implicit QL step on the block from `first` to `last`, from its end up.
    void makeStep(std::size_t first, std::size_t last) {
        const double slope = (d_[first + 1] - d_[first]) / (2.0 * e_[first]);
        const double root = length_of(slope, 1.0);
        double g = d_[last] - d_[first] + e_[first] / (slope + std::copysign(root, slope));
        double s = 1.0;
        double c = 1.0;
        double p = 0.0;
        for (std::size_t i = last; i-- > first;) {
            const double f = s * e_[i];
            const double b = c * e_[i];
            const double r = length_of(f, g);
            e_[i + 1] = r;
            if (r == 0.0) {
                // The block falls apart here, and the step ends.
                d_[i + 1] -= p;
                e_[last] = 0.0;
                return;
            }
            s = f / r;
            c = g / r;
            g = d_[i + 1] - p;
            const double t = (d_[i] - g) * s + 2.0 * c * b;
            p = s * t;
            d_[i + 1] = g + p;
            g = c * t - b;
            rotations_.push_back({i, c, s});
        }
        d_[first] -= p;
        e_[first] = g;
        e_[last] = 0.0;
    }

    std::vector<double> d_;
    std::vector<double> e_;
    double negligible_ = 0.0;
    std::vector<Rotation> rotations_;
};

}  // namespace

LeadingEigenvectors leading_eigenvectors(std::vector<double> matrix,
                                         std::size_t n,
                                         std::size_t count) {
    const Reflections reflections(std::move(matrix), n);
    const ImplicitQl ql(reflections.tridiagonal());
    std::vector<std::size_t> order(n);
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(), [&ql](std::size_t a, std::size_t b) {
        return ql.values()[a] > ql.values()[b];
    });
    LeadingEigenvectors found;
    found.vectors.resize(n * count);
    for (std::size_t c = 0; c < count; ++c) {
        found.values.push_back(ql.values()[order[c]]);
        found.vectors[order[c] * count + c] = 1.0;
    }
    ql.applyTo(found.vectors, count);
    reflections.applyTo(found.vectors, count);
    return found;
}

}  // namespace ovik
