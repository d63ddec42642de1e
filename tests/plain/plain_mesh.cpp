#include "tests/plain/plain_mesh.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>

#include "stats/fourier_plan.h"

#include "tests/plain/plain_own_potential.h"

namespace plain {

namespace {

constexpr std::size_t kCovered = 6;

struct Complex {
    double re = 0.0;
    double im = 0.0;
};

using Series = std::vector<Complex>;

Complex add(Complex a, Complex b) {
    return {a.re + b.re, a.im + b.im};
}

Complex subtract(Complex a, Complex b) {
    return {a.re - b.re, a.im - b.im};
}

Complex scale(Complex a, double factor) {
    return {a.re * factor, a.im * factor};
}

Complex times_i(Complex a) {
    return {-a.im, a.re};
}

Complex conjugate(Complex a) {
    return {a.re, -a.im};
}

/// exp(-2 pi i k / n).
Complex root(std::size_t k, std::size_t n) {
    const ovik::UnitRoot exact = ovik::unit_root(k, n);
    return {exact.cosine, -exact.sine};
}

Complex multiply(Complex a, Complex b) {
    return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
}

/// The transform of 2, 3, 4 or 5 numbers.
Series small(const Series& a) {
    if (a.size() == 2) {
        return {add(a[0], a[1]), subtract(a[0], a[1])};
    }
    if (a.size() == 3) {
        const Complex sum = add(a[1], a[2]);
        const Complex turn = times_i(scale(subtract(a[1], a[2]), std::sqrt(0.75)));
        const Complex middle = subtract(a[0], scale(sum, 0.5));
        return {add(a[0], sum), subtract(middle, turn), add(middle, turn)};
    }
    if (a.size() == 4) {
        const Complex even = add(a[0], a[2]);
        const Complex odd = add(a[1], a[3]);
        const Complex difference = subtract(a[0], a[2]);
        const Complex turn = times_i(subtract(a[1], a[3]));
        return {
            add(even, odd), subtract(difference, turn), subtract(even, odd), add(difference, turn)};
    }
    const Complex outer = add(a[1], a[4]);
    const Complex inner = add(a[2], a[3]);
    const Complex outer_difference = subtract(a[1], a[4]);
    const Complex inner_difference = subtract(a[2], a[3]);
    const double c1 = (std::sqrt(5.0) - 1.0) / 4.0;
    const double c2 = -(std::sqrt(5.0) + 1.0) / 4.0;
    const double s1 = std::sqrt((5.0 + std::sqrt(5.0)) / 8.0);
    const double s2 = std::sqrt((5.0 - std::sqrt(5.0)) / 8.0);
    const Complex near = add(add(a[0], scale(outer, c1)), scale(inner, c2));
    const Complex far = add(add(a[0], scale(outer, c2)), scale(inner, c1));
    const Complex near_turn =
        times_i(add(scale(outer_difference, s1), scale(inner_difference, s2)));
    const Complex far_turn =
        times_i(subtract(scale(outer_difference, s2), scale(inner_difference, s1)));
    return {add(add(a[0], outer), inner),
            subtract(near, near_turn),
            subtract(far, far_turn),
            add(far, far_turn),
            add(near, near_turn)};
}

/// The discrete Fourier transform, by the first of 4, 2, 3 and 5 that divides the length.
Series transform(const Series& x) {
    const std::size_t n = x.size();
    if (n == 1) {
        return x;
    }
    std::size_t radix = 4;
    for (const std::size_t other : {2U, 3U, 5U}) {
        radix = n % radix == 0 ? radix : other;
    }
    const std::size_t m = n / radix;
    std::vector<Series> parts(radix, Series(m));
    for (std::size_t p = 0; p < m; ++p) {
        Series a(radix);
        for (std::size_t i = 0; i < radix; ++i) {
            a[i] = x[p + m * i];
        }
        a = small(a);
        for (std::size_t j = 0; j < radix; ++j) {
            parts[j][p] = p == 0 || j == 0 ? a[j] : multiply(a[j], root(p * j % n, n));
        }
    }
    Series result(n);
    for (std::size_t j = 0; j < radix; ++j) {
        const Series part = transform(parts[j]);
        for (std::size_t k = 0; k < m; ++k) {
            result[radix * k + j] = part[k];
        }
    }
    return result;
}

/// The unscaled inverse: real and imaginary parts trade places before and after.
Series transform_back(Series x) {
    const auto trade = [](Series& values) {
        for (Complex& value : values) {
            std::swap(value.re, value.im);
        }
    };
    trade(x);
    x = transform(x);
    trade(x);
    return x;
}

/// Frequencies 0 to n / 2 of n real numbers: even ones are the real parts of half as many complex
/// numbers, odd ones the imaginary parts.
Series real_transform(const std::vector<double>& x) {
    const std::size_t half = x.size() / 2;
    Series pairs(half);
    for (std::size_t i = 0; i < half; ++i) {
        pairs[i] = {x[2 * i], x[2 * i + 1]};
    }
    pairs = transform(pairs);
    Series result(half + 1);
    for (std::size_t k = 0; k <= half; ++k) {
        const Complex here = pairs[k % half];
        const Complex there = conjugate(pairs[(half - k) % half]);
        const Complex even = scale(add(here, there), 0.5);
        const Complex odd = scale(subtract(here, there), 0.5);
        result[k] = subtract(even, times_i(multiply(odd, root(k, x.size()))));
    }
    return result;
}

/// The unscaled inverse.
std::vector<double> real_transform_back(const Series& x) {
    const std::size_t half = x.size() - 1;
    Series pairs(half);
    for (std::size_t k = 0; k < half; ++k) {
        const Complex there = conjugate(x[half - k]);
        const Complex turned = multiply(subtract(x[k], there), conjugate(root(k, 2 * half)));
        pairs[k] = add(add(x[k], there), times_i(turned));
    }
    pairs = transform_back(pairs);
    std::vector<double> result;
    for (const Complex& pair : pairs) {
        result.insert(result.end(), {pair.re, pair.im});
    }
    return result;
}

/// The least even length without prime factors above 5 at which cells that are up to count - 1
/// apart do not feel copies, with 12 more.
std::size_t padded(std::size_t count) {
    const auto is_fast = [](std::size_t length) {
        for (const std::size_t prime : {2U, 3U, 5U}) {
            while (length % prime == 0) {
                length /= prime;
            }
        }
        return length == 1;
    };
    std::size_t length = 2 * (count + 12);
    while (!is_fast(length)) {
        length += 2;
    }
    return length;
}

/// From an index of a ring to its distance from 0.
std::size_t folded(std::size_t i, std::size_t length) {
    return std::min(i, length - i);
}

/// 1 / (the transform of the spline's values at cells)^2.
double deconvolution(std::size_t k, std::size_t length) {
    const double transform = 66.0 + (52.0 * root(folded(k, length), length).re +
                                     2.0 * root(2 * folded(k, length) % length, length).re);
    return 1.0 / (transform * transform);
}

double charge_scale(std::size_t N) {
    int bits = 0;
    for (; N > 0; N /= 2) {
        ++bits;
    }
    return std::ldexp(1.0, std::min(49 - bits, 37));
}

/// A value for each cell and more: of rows x columns, or of the padded ones.
template <typename T>
using Rows = std::vector<std::vector<T>>;

/// What the transform of the charges is multiplied by, for frequencies of the rows up to the half.
Rows<double> influence(const Mesh& mesh, std::size_t N) {
    const std::size_t rows = padded(mesh.rows);
    const std::size_t columns = padded(mesh.columns);
    const double unit = mesh.cells_per_unit * mesh.cells_per_unit;
    Rows<Complex> spectrum(columns);
    for (std::size_t x = 0; x < columns; ++x) {
        std::vector<double> column(rows);
        for (std::size_t y = 0; y < rows; ++y) {
            const auto dx = static_cast<double>(folded(x, columns));
            const auto dy = static_cast<double>(folded(y, rows));
            column[y] = unit / (unit + (dx * dx + dy * dy));
        }
        spectrum[x] = real_transform(column);
    }
    const double cells = static_cast<double>(rows * columns) * charge_scale(N);
    Rows<double> result(rows / 2 + 1, std::vector<double>(columns));
    for (std::size_t k = 0; k <= rows / 2; ++k) {
        Series row(columns);
        for (std::size_t x = 0; x < columns; ++x) {
            // The transform of an even column is real.
            row[x] = {spectrum[x][k].re, 0.0};
        }
        row = transform(row);
        for (std::size_t x = 0; x < columns; ++x) {
            result[k][x] = row[folded(x, columns)].re *
                           (deconvolution(k, rows) * deconvolution(x, columns)) / cells;
        }
    }
    return result;
}

/// A polynomial by Horner's rule, from the lowest coefficient.
double polynomial(const std::vector<double>& coefficients, double f) {
    double sum = coefficients.back();
    for (std::size_t i = coefficients.size() - 1; i-- > 0;) {
        sum = sum * f + coefficients[i];
    }
    return sum;
}

using Weights = std::array<double, kCovered>;

/// 120 times the weights of a point that lies f behind the first of the cells that it covers.
Weights weights(double f) {
    return {polynomial({1, -5, 10, -10, 5, -1}, f),
            polynomial({26, -50, 20, 20, -20, 5}, f),
            polynomial({66, 0, -60, 0, 30, -10}, f),
            polynomial({26, 50, 20, -20, -20, 10}, f),
            polynomial({1, 5, 10, 10, 5, -5}, f),
            polynomial({0, 0, 0, 0, 0, 1}, f)};
}

/// Their derivatives.
Weights slopes(double f) {
    return {polynomial({-5, 20, -30, 20, -5}, f),
            polynomial({-50, 40, 60, -80, 25}, f),
            polynomial({0, -120, 0, 120, -50}, f),
            polynomial({50, 40, -60, -80, 50}, f),
            polynomial({5, 20, 30, 20, -25}, f),
            polynomial({0, 0, 0, 0, 5}, f)};
}

/// Where a point lies in a dimension.
struct PlaceOnMesh {
    std::size_t cell;
    double f;
};

PlaceOnMesh place(const Mesh& mesh, const std::vector<double>& Y, std::size_t n, std::size_t d) {
    const double x = mesh.cells_per_unit * (Y[2 * n + d] - mesh.corner[d]);
    return {static_cast<std::size_t>(x), x - std::floor(x)};
}

/// The sum of six products, with two of nothing behind them.
double sum_of_products(const Weights& a, const Weights& b) {
    std::array<double, 8> products{};
    for (std::size_t i = 0; i < kCovered; ++i) {
        products[i] = a[i] * b[i];
    }
    return ((products[0] + products[4]) + (products[2] + products[6])) +
           ((products[1] + products[5]) + (products[3] + products[7]));
}

/// What a point's own charge adds to the potential there, in one dimension.
double own_part(const std::vector<double>& own, double f) {
    return polynomial(own, (f - 0.5) * (f - 0.5));
}

/// The half of its slope.
double half_own_slope(const std::vector<double>& own, double f) {
    std::vector<double> derivative;
    for (std::size_t i = 1; i < own.size(); ++i) {
        derivative.push_back(static_cast<double>(i) * own[i]);
    }
    return (f - 0.5) * polynomial(derivative, (f - 0.5) * (f - 0.5));
}

/// For each covered column: the sum over the rows of a field, each times a weight.
Weights sums_over_rows(const Mesh& mesh,
                       const std::vector<double>& field,
                       PlaceOnMesh x,
                       PlaceOnMesh y,
                       const Weights& row_weights) {
    Weights sums{};
    for (std::size_t c = 0; c < kCovered; ++c) {
        sums[c] = field[y.cell * mesh.columns + x.cell + c] * row_weights[0];
        for (std::size_t r = 1; r < kCovered; ++r) {
            sums[c] += field[(y.cell + r) * mesh.columns + x.cell + c] * row_weights[r];
        }
    }
    return sums;
}

}  // namespace

Mesh mesh_under(const Box& box) {
    Mesh mesh;
    mesh.box = box;
    double width[2];
    for (std::size_t d = 0; d < 2; ++d) {
        mesh.corner[d] = box.least[d];
        width[d] = std::max(0.0, box.greatest[d] - box.least[d]);
    }
    for (int k = 0; k < 7 && std::max(width[0], width[1]) * mesh.cells_per_unit < 64.0; ++k) {
        mesh.cells_per_unit *= 2.0;
    }
    const auto covered = [&](std::size_t d) {
        return static_cast<std::size_t>(width[d] * mesh.cells_per_unit) + kCovered;
    };
    mesh.rows = covered(1);
    mesh.columns = (covered(0) + 2 + 7) / 8 * 8;
    return mesh;
}

Mesh mesh_under(const std::vector<double>& Y) {
    return mesh_under(mesh_box(Y));
}

std::vector<std::int64_t> mesh_charges(const Mesh& mesh, const std::vector<double>& Y) {
    const std::size_t N = Y.size() / 2;
    std::vector<std::int64_t> charges(mesh.rows * mesh.columns, 0);
    for (std::size_t n = 0; n < N; ++n) {
        if (!is_inside(mesh.box, Y, n)) {
            continue;
        }
        const PlaceOnMesh x = place(mesh, Y, n, 0);
        const PlaceOnMesh y = place(mesh, Y, n, 1);
        for (std::size_t r = 0; r < kCovered; ++r) {
            for (std::size_t c = 0; c < kCovered; ++c) {
                const double charge = weights(x.f)[c] * (weights(y.f)[r] * charge_scale(N));
                charges[(y.cell + r) * mesh.columns + x.cell + c] += std::llrint(charge);
            }
        }
    }
    return charges;
}

std::vector<double> mesh_potential(const Mesh& mesh,
                                   const std::vector<std::int64_t>& charges,
                                   std::size_t N) {
    const std::size_t rows = padded(mesh.rows);
    const std::size_t columns = padded(mesh.columns);
    Rows<Complex> spectrum(columns, Series(rows / 2 + 1));
    for (std::size_t x = 0; x < mesh.columns; ++x) {
        std::vector<double> column(rows, 0.0);
        for (std::size_t y = 0; y < mesh.rows; ++y) {
            column[y] = static_cast<double>(charges[y * mesh.columns + x]);
        }
        spectrum[x] = real_transform(column);
    }
    const Rows<double> factors = influence(mesh, N);
    for (std::size_t k = 0; k <= rows / 2; ++k) {
        Series row(columns);
        for (std::size_t x = 0; x < columns; ++x) {
            row[x] = spectrum[x][k];
        }
        row = transform(row);
        for (std::size_t x = 0; x < columns; ++x) {
            row[x] = scale(row[x], factors[k][x]);
        }
        row = transform_back(row);
        for (std::size_t x = 0; x < columns; ++x) {
            spectrum[x][k] = row[x];
        }
    }
    std::vector<double> potential(mesh.rows * mesh.columns);
    for (std::size_t x = 0; x < mesh.columns; ++x) {
        const std::vector<double> column = real_transform_back(spectrum[x]);
        for (std::size_t y = 0; y < mesh.rows; ++y) {
            potential[y * mesh.columns + x] = column[y];
        }
    }
    return potential;
}

MeshForces mesh_forces(const std::vector<double>& Y) {
    const std::size_t N = Y.size() / 2;
    const Mesh mesh = mesh_under(Y);
    const std::vector<double> potential = mesh_potential(mesh, mesh_charges(mesh, Y), N);
    const double factor = -0.5 * mesh.cells_per_unit;
    const std::vector<double> own = own_terms(mesh.cells_per_unit);
    MeshForces result;
    for (std::size_t n = 0; n < N; ++n) {
        if (!is_inside(mesh.box, Y, n)) {
            const PairSums all = on_far_point(Y, n);
            result.forces.insert(result.forces.end(), {all.force[0], all.force[1]});
            result.z_terms.push_back(all.q);
            continue;
        }
        const PairSums far = from_far_points(mesh.box, Y, n);
        const PlaceOnMesh x = place(mesh, Y, n, 0);
        const PlaceOnMesh y = place(mesh, Y, n, 1);
        const Weights sums = sums_over_rows(mesh, potential, x, y, weights(y.f));
        const Weights sloping = sums_over_rows(mesh, potential, x, y, slopes(y.f));
        const double slope_x = sum_of_products(slopes(x.f), sums) - half_own_slope(own, x.f);
        const double slope_y = sum_of_products(weights(x.f), sloping) - half_own_slope(own, y.f);
        const double value =
            sum_of_products(weights(x.f), sums) - (own_part(own, x.f) + own_part(own, y.f));
        result.forces.push_back(factor * slope_x + far.force[0]);
        result.forces.push_back(factor * slope_y + far.force[1]);
        result.z_terms.push_back(value + far.q);
    }
    return result;
}

double mesh_repulsion(const std::vector<double>& Y, std::vector<double>& forces) {
    MeshForces mesh = mesh_forces(Y);
    forces = std::move(mesh.forces);
    double sum = 0.0;
    for (const double term : mesh.z_terms) {
        sum += term;
    }
    return sum;
}

}  // namespace plain
