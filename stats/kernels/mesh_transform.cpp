#include "stats/kernels/mesh_transform.h"

#include "util/kernels/transpose.h"

namespace ovik::OVIK_KERNELS {

namespace {

/// A complex number per lane.
struct Complex {
    Lanes re;
    Lanes im;
};

/// Doubles from one complex vector in memory to the next.
constexpr std::size_t kElement = 2 * kLanes;

inline Complex load_complex(const double* from) {
    return {load(from), load(from + kLanes)};
}

inline void store_complex(double* to, Complex z) {
    store(to, z.re);
    store(to + kLanes, z.im);
}

inline Complex operator+(Complex a, Complex b) {
    return {a.re + b.re, a.im + b.im};
}

inline Complex operator-(Complex a, Complex b) {
    return {a.re - b.re, a.im - b.im};
}

inline Complex operator*(Complex a, double factor) {
    return {a.re * factor, a.im * factor};
}

inline Complex conjugate(Complex a) {
    return {a.re, -a.im};
}

/// a + i b and a - i b.
inline Complex plus_i(Complex a, Complex b) {
    return {a.re - b.im, a.im + b.re};
}

inline Complex minus_i(Complex a, Complex b) {
    return {a.re + b.im, a.im - b.re};
}

/// a times the number at `root`.
inline Complex turned(Complex a, const double* root) {
    return {a.re * root[0] - a.im * root[1], a.re * root[1] + a.im * root[0]};
}

/// Transforms of 2, 3, 4 and 5 numbers, in place.
inline void small_transform(Complex (&a)[2]) {
    const Complex difference = a[0] - a[1];
    a[0] = a[0] + a[1];
    a[1] = difference;
}

inline void small_transform(Complex (&a)[3]) {
    constexpr double kSine = 0.8660254037844386;
    const Complex sum = a[1] + a[2];
    const Complex turn = (a[1] - a[2]) * kSine;
    const Complex middle = a[0] - sum * 0.5;
    a[0] = a[0] + sum;
    a[1] = minus_i(middle, turn);
    a[2] = plus_i(middle, turn);
}

inline void small_transform(Complex (&a)[4]) {
    const Complex even = a[0] + a[2];
    const Complex even_difference = a[0] - a[2];
    const Complex odd = a[1] + a[3];
    const Complex odd_difference = a[1] - a[3];
    a[0] = even + odd;
    a[1] = minus_i(even_difference, odd_difference);
    a[2] = even - odd;
    a[3] = plus_i(even_difference, odd_difference);
}

inline void small_transform(Complex (&a)[5]) {
    constexpr double kCosines[2] = {0.30901699437494745, -0.8090169943749475};
    constexpr double kSines[2] = {0.9510565162951535, 0.5877852522924731};
    const Complex sums[2] = {a[1] + a[4], a[2] + a[3]};
    const Complex differences[2] = {a[1] - a[4], a[2] - a[3]};
    const Complex near = a[0] + sums[0] * kCosines[0] + sums[1] * kCosines[1];
    const Complex far = a[0] + sums[0] * kCosines[1] + sums[1] * kCosines[0];
    const Complex near_turn = differences[0] * kSines[0] + differences[1] * kSines[1];
    const Complex far_turn = differences[0] * kSines[1] - differences[1] * kSines[0];
    a[0] = a[0] + sums[0] + sums[1];
    a[1] = minus_i(near, near_turn);
    a[2] = minus_i(far, far_turn);
    a[3] = plus_i(far, far_turn);
    a[4] = plus_i(near, near_turn);
}

/// Where a pass stands: transforms of n = radix * m numbers are left, and s are done side by side.
struct Stage {
    std::size_t m;
    std::size_t s;
};

/// The part of a pass with one p.
template <std::size_t Radix, bool IsTurned>
inline void pass_part(Stage at, std::size_t p, const double* roots, const double* x, double* y) {
    for (std::size_t q = 0; q < at.s; ++q) {
        Complex a[Radix];
        for (std::size_t j = 0; j < Radix; ++j) {
            a[j] = load_complex(x + (q + at.s * (p + at.m * j)) * kElement);
        }
        small_transform(a);
        for (std::size_t j = 0; j < Radix; ++j) {
            if (IsTurned && j > 0) {
                a[j] = turned(a[j], roots + 2 * (j - 1));
            }
            store_complex(y + (q + at.s * (Radix * p + j)) * kElement, a[j]);
        }
    }
}

/// @return the roots of the next pass
template <std::size_t Radix>
const double* pass(Stage at, const double* roots, const double* x, double* y) {
    pass_part<Radix, false>(at, 0, roots, x, y);
    for (std::size_t p = 1; p < at.m; ++p) {
        pass_part<Radix, true>(at, p, roots + 2 * (Radix - 1) * p, x, y);
    }
    return roots + 2 * (Radix - 1) * at.m;
}

/// Two arrays of complex vectors between which the passes of a transform go back and forth.
struct Buffers {
    double* now;
    double* next;

    void swap() {
        double* const other = next;
        next = now;
        now = other;
    }
};

/// Transforms what is in `now`; the result is in `now`, which may be the other one then.
void transform(const FourierPasses& passes, Buffers& at) {
    Stage stage{passes.length, 1};
    const double* roots = passes.roots;
    for (std::size_t i = 0; i < passes.count; ++i) {
        const std::size_t radix = passes.radices[i];
        stage.m /= radix;
        switch (radix) {
            case 2:
                roots = pass<2>(stage, roots, at.now, at.next);
                break;
            case 3:
                roots = pass<3>(stage, roots, at.now, at.next);
                break;
            case 4:
                roots = pass<4>(stage, roots, at.now, at.next);
                break;
            default:
                roots = pass<5>(stage, roots, at.now, at.next);
                break;
        }
        stage.s *= radix;
        at.swap();
    }
}

Buffers buffers_in(double* work, const MeshShape& shape) {
    const std::size_t rows = (shape.half_rows.length + kLanes) / kLanes * kLanes;
    const std::size_t columns = shape.padded_columns.length;
    return {work, work + kElement * (rows > columns ? rows : columns)};
}

double* spectrum_at(const MeshShape& shape, double* spectrum, std::size_t group, std::size_t x) {
    return spectrum + (group * shape.spectrum_columns + x) * kElement;
}

const double* spectrum_at(const MeshShape& shape,
                          const double* spectrum,
                          std::size_t group,
                          std::size_t x) {
    return spectrum + (group * shape.spectrum_columns + x) * kElement;
}

/// Row r of the padded field, or null for zeros.
const double* padded_row(const MeshShape& shape, const double* field, bool is_even, std::size_t r) {
    if (is_even && 2 * r > shape.padded_rows) {
        r = shape.padded_rows - r;
    }
    return r < shape.rows ? field + r * shape.stride : nullptr;
}

/// Frequency k of real numbers, from the transform of those that pair even and odd ones.
inline Complex separated(const MeshShape& shape, const double* pairs, std::size_t k) {
    const std::size_t n = shape.half_rows.length;
    const Complex here = load_complex(pairs + k % n * kElement);
    const Complex there = conjugate(load_complex(pairs + (n - k) % n * kElement));
    const Complex even = (here + there) * 0.5;
    const Complex odd = (here - there) * 0.5;
    return minus_i(even, turned(odd, shape.row_roots + 2 * k));
}

/// The reverse, times 2.
inline Complex paired(const MeshShape& shape, const double* frequencies, std::size_t k) {
    const std::size_t n = shape.half_rows.length;
    const Complex here = load_complex(frequencies + k * kElement);
    const Complex there = conjugate(load_complex(frequencies + (n - k) * kElement));
    const double* const root = shape.row_roots + 2 * k;
    const double back[2] = {root[0], -root[1]};
    return plus_i(here + there, turned(here - there, back));
}

/// Transforms as many columns as there are lanes.
void down_lanes(const MeshShape& shape,
                const double* field,
                bool is_even,
                std::size_t x,
                Buffers at,
                double* spectrum) {
    const std::size_t n = shape.half_rows.length;
    for (std::size_t i = 0; i < 2 * n; ++i) {
        const double* const row = padded_row(shape, field, is_even, i);
        store(at.now + i * kLanes, row == nullptr ? Lanes{} : load(row + x));
    }
    transform(shape.half_rows, at);
    for (std::size_t k = 0; k <= n; k += kLanes) {
        Lanes re[kLanes] = {};
        Lanes im[kLanes] = {};
        for (std::size_t i = 0; i < kLanes && k + i <= n; ++i) {
            const Complex z = separated(shape, at.now, k + i);
            re[i] = z.re;
            im[i] = z.im;
        }
        transpose(re);
        transpose(im);
        for (std::size_t i = 0; i < kLanes; ++i) {
            store_complex(spectrum_at(shape, spectrum, k / kLanes, x + i), {re[i], im[i]});
        }
    }
}

void down(const MeshShape& shape,
          const double* field,
          bool is_even,
          std::size_t begin,
          std::size_t end,
          double* work,
          double* spectrum) {
    for (std::size_t x = begin * kFieldGroup; x < end * kFieldGroup; x += kLanes) {
        down_lanes(shape, field, is_even, x, buffers_in(work, shape), spectrum);
    }
}

void across(const MeshShape& shape,
            const double* influence,
            std::size_t begin,
            std::size_t end,
            double* work,
            double* spectrum) {
    const std::size_t length = shape.padded_columns.length;
    for (std::size_t group = begin; group < end; ++group) {
        Buffers at = buffers_in(work, shape);
        double* const values = spectrum_at(shape, spectrum, group, 0);
        __builtin_memcpy(at.now, values, shape.columns * kElement * sizeof(double));
        for (std::size_t x = shape.columns; x < length; ++x) {
            store_complex(at.now + x * kElement, {Lanes{}, Lanes{}});
        }
        transform(shape.padded_columns, at);
        const double* const factors = influence + group * (length / 2 + 1) * kLanes;
        // Real and imaginary parts trade places, so that the same transform leads back.
        for (std::size_t x = 0; x < length; ++x) {
            const Lanes factor = load(factors + (2 * x > length ? length - x : x) * kLanes);
            const Complex z = load_complex(at.now + x * kElement);
            store_complex(at.now + x * kElement, {z.im * factor, z.re * factor});
        }
        transform(shape.padded_columns, at);
        for (std::size_t x = 0; x < shape.columns; ++x) {
            const Complex z = load_complex(at.now + x * kElement);
            store_complex(values + x * kElement, {z.im, z.re});
        }
    }
}

void even(const MeshShape& shape,
          const double* spectrum,
          std::size_t begin,
          std::size_t end,
          double* work,
          double* influence) {
    const std::size_t length = shape.padded_columns.length;
    for (std::size_t group = begin; group < end; ++group) {
        Buffers at = buffers_in(work, shape);
        for (std::size_t x = 0; x < length; ++x) {
            const std::size_t mirrored = 2 * x > length ? length - x : x;
            const Complex z = load_complex(spectrum_at(shape, spectrum, group, mirrored));
            store_complex(at.now + x * kElement, {z.re, Lanes{}});
        }
        transform(shape.padded_columns, at);
        for (std::size_t x = 0; x <= length / 2; ++x) {
            store(influence + (group * (length / 2 + 1) + x) * kLanes, load(at.now + x * kElement));
        }
    }
}

/// Transforms as many columns back as there are lanes.
void up_lanes(
    const MeshShape& shape, const double* spectrum, std::size_t x, Buffers at, double* field) {
    const std::size_t n = shape.half_rows.length;
    for (std::size_t k = 0; k <= n; k += kLanes) {
        Lanes re[kLanes];
        Lanes im[kLanes];
        for (std::size_t i = 0; i < kLanes; ++i) {
            const Complex z = load_complex(spectrum_at(shape, spectrum, k / kLanes, x + i));
            re[i] = z.re;
            im[i] = z.im;
        }
        transpose(re);
        transpose(im);
        for (std::size_t i = 0; i < kLanes; ++i) {
            store_complex(at.now + (k + i) * kElement, {re[i], im[i]});
        }
    }
    for (std::size_t k = 0; k < n; ++k) {
        const Complex z = paired(shape, at.now, k);
        store_complex(at.next + k * kElement, {z.im, z.re});
    }
    at.swap();
    transform(shape.half_rows, at);
    for (std::size_t row = 0; row < shape.rows; ++row) {
        // The even rows are the real parts, which stand in the place of the imaginary ones.
        const std::size_t place = row / 2 * kElement + (row % 2 == 0 ? kLanes : 0);
        store(field + row * shape.stride + x, load(at.now + place));
    }
}

void up(const MeshShape& shape,
        const double* spectrum,
        std::size_t begin,
        std::size_t end,
        double* work,
        double* field) {
    for (std::size_t x = begin * kFieldGroup; x < end * kFieldGroup; x += kLanes) {
        up_lanes(shape, spectrum, x, buffers_in(work, shape), field);
    }
}

}  // namespace

extern const MeshTransforms kMeshTransforms;
const MeshTransforms kMeshTransforms = {kLanes, &down, &across, &even, &up};

}  // namespace ovik::OVIK_KERNELS
