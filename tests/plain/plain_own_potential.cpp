#include "tests/plain/plain_own_potential.h"

#include <algorithm>
#include <cstddef>

#include "stats/fourier_plan.h"

namespace plain {

namespace {

constexpr std::size_t kRing = 64;

std::size_t folded(std::size_t i) {
    return std::min(i % kRing, kRing - i % kRing);
}

double cosine(std::size_t k) {
    return ovik::unit_root(k % kRing, kRing).cosine;
}

using Polynomial = std::vector<double>;

Polynomial product(const Polynomial& a, const Polynomial& b) {
    Polynomial result(a.size() + b.size() - 1, 0.0);
    for (std::size_t i = 0; i < a.size(); ++i) {
        for (std::size_t j = 0; j < b.size(); ++j) {
            result[i + j] += a[i] * b[j];
        }
    }
    return result;
}

/// A polynomial of f, as one of f - 1/2.
Polynomial about_the_middle(const Polynomial& of_f) {
    Polynomial result{of_f.back()};
    for (std::size_t i = of_f.size() - 1; i-- > 0;) {
        result = product(result, {0.5, 1.0});
        result[0] += of_f[i];
    }
    return result;
}

/// The sum of the products of weights that are `apart` cells apart, as a polynomial of s. All of
/// its coefficients are exact.
Polynomial products_of_weights(std::size_t apart) {
    const std::vector<Polynomial> weights{{1, -5, 10, -10, 5, -1},
                                          {26, -50, 20, 20, -20, 5},
                                          {66, 0, -60, 0, 30, -10},
                                          {26, 50, 20, -20, -20, 10},
                                          {1, 5, 10, 10, 5, -5},
                                          {0, 0, 0, 0, 0, 1}};
    Polynomial sum(6, 0.0);
    for (std::size_t k = 0; k + apart < weights.size(); ++k) {
        const Polynomial both =
            product(about_the_middle(weights[k]), about_the_middle(weights[k + apart]));
        for (std::size_t i = 0; i < sum.size(); ++i) {
            sum[i] += both[2 * i];
        }
    }
    return sum;
}

/// The mean of that over all f: 120^2 times the B-spline of order 12 at whole numbers.
double mean_of_products(std::size_t apart) {
    const std::vector<double> eulerian{15724248, 9738114, 2203488, 152637, 2036, 1};
    return eulerian[apart] / 2772.0;
}

/// 1 on cell 0 of a ring, with the spline divided out twice.
std::vector<double> sharpened() {
    std::vector<double> ring(kRing, 0.0);
    for (std::size_t a = 0; a < kRing; ++a) {
        for (std::size_t k = 0; k < kRing; ++k) {
            const double spline = 66.0 + (52.0 * cosine(folded(k)) + 2.0 * cosine(2 * folded(k)));
            ring[a] += 1.0 / (spline * spline) * cosine(a * k);
        }
        ring[a] /= 64.0;
    }
    return ring;
}

/// The potential of a charge on cell (0, 0) at cell (x, any y), as points read it that lie in all
/// places between rows.
std::vector<double> kernel_of_columns(double cells_per_unit) {
    const std::vector<double> ring = sharpened();
    const double unit = cells_per_unit * cells_per_unit;
    std::vector<double> kernel(kRing, 0.0);
    for (std::size_t x = 0; x < kRing; ++x) {
        for (std::size_t y = 0; y < kRing; ++y) {
            double weight = mean_of_products(0) * ring[y];
            for (std::size_t e = 1; e < 6; ++e) {
                weight += mean_of_products(e) * (ring[folded(y + kRing - e)] + ring[folded(y + e)]);
            }
            const auto dx = static_cast<double>(folded(x));
            const auto dy = static_cast<double>(folded(y));
            kernel[x] += weight * (unit / (unit + (dx * dx + dy * dy)));
        }
    }
    return kernel;
}

}  // namespace

std::vector<double> own_terms(double cells_per_unit) {
    const std::vector<double> ring = sharpened();
    const std::vector<double> kernel = kernel_of_columns(cells_per_unit);
    std::vector<double> terms(6, 0.0);
    double mean = 0.0;
    for (std::size_t d = 0; d < 6; ++d) {
        double potential = 0.0;
        for (std::size_t a = 0; a < kRing; ++a) {
            potential += ring[a] * kernel[folded(a + kRing - d)];
        }
        const double both_sides = d == 0 ? potential : 2.0 * potential;
        mean += mean_of_products(d) * both_sides;
        for (std::size_t i = 0; i < terms.size(); ++i) {
            terms[i] += products_of_weights(d)[i] * both_sides;
        }
    }
    terms[0] -= 0.5 * mean;
    return terms;
}

}  // namespace plain
