#include "stats/kernels/mesh_points.h"

#include "util/kernels/lanes.h"

namespace ovik::OVIK_KERNELS {

namespace {

constexpr std::size_t kVectors = kSplineRow / kLanes;

/// A number for each cell of a row of a spline.
struct Row {
    Lanes part[kVectors];
};

/// Of f^0 to f^5: the coefficients of each weight. Two weights are nothing.
alignas(64) constexpr double kSplineCoefficients[kSplineOrder][kSplineRow] = {
    {1, 26, 66, 26, 1, 0, 0, 0},
    {-5, -50, 0, 50, 5, 0, 0, 0},
    {10, 20, -60, 20, 10, 0, 0, 0},
    {-10, 20, 0, -20, 10, 0, 0, 0},
    {5, -20, 30, -20, 5, 0, 0, 0},
    {-1, 5, -10, 10, -5, 1, 0, 0},
};

/// Of f^0 to f^4: those of the slopes.
alignas(64) constexpr double kSlopeCoefficients[kSplineOrder - 1][kSplineRow] = {
    {-5, -50, 0, 50, 5, 0, 0, 0},
    {20, 40, -120, 40, 20, 0, 0, 0},
    {-30, 60, 0, -60, 30, 0, 0, 0},
    {20, -80, 120, -80, 20, 0, 0, 0},
    {-5, 25, -50, 50, -25, 5, 0, 0},
};

inline Row load_row(const double* from) {
    Row row{};
    for (std::size_t v = 0; v < kVectors; ++v) {
        row.part[v] = load(from + v * kLanes);
    }
    return row;
}

inline void store_row(double* to, const Row& row) {
    for (std::size_t v = 0; v < kVectors; ++v) {
        store(to + v * kLanes, row.part[v]);
    }
}

/// Polynomials at f by Horner's rule.
template <std::size_t Terms>
inline Row polynomials(const double (&coefficients)[Terms][kSplineRow], double f) {
    Row sum = load_row(coefficients[Terms - 1]);
    for (std::size_t i = Terms - 1; i-- > 0;) {
        const Row added = load_row(coefficients[i]);
        for (std::size_t v = 0; v < kVectors; ++v) {
            sum.part[v] = sum.part[v] * f + added.part[v];
        }
    }
    return sum;
}

/// The cell at which a point's spline begins in a dimension, and how far behind it the point is.
struct Offset {
    std::size_t cell;
    double rest;
};

inline Offset offset(double place) {
    const auto cell = static_cast<std::int64_t>(place);
    return {static_cast<std::size_t>(cell), place - static_cast<double>(cell)};
}

/// Adds whole numbers nearest to charges below 2^51.
inline void add_charges(Lanes charges, std::int64_t* cells) {
    Bits cell;
    __builtin_memcpy(&cell, cells, sizeof cell);
    cell += nearest_whole(charges);
    __builtin_memcpy(cells, &cell, sizeof cell);
}

void spread(const MeshPoint* points,
            std::size_t count,
            double scale,
            std::size_t first_row,
            std::size_t stride,
            std::int64_t* cells) {
    for (std::size_t i = 0; i < count; ++i) {
        const Offset x = offset(points[i].x);
        const Offset y = offset(points[i].y);
        const Row weights = polynomials(kSplineCoefficients, x.rest);
        Row rows = polynomials(kSplineCoefficients, y.rest);
        for (Lanes& part : rows.part) {
            part *= scale;
        }
        double factors[kSplineRow];
        store_row(factors, rows);
        std::int64_t* row = cells + (y.cell - first_row) * stride + x.cell;
        for (std::size_t r = 0; r < kSplineOrder; ++r, row += stride) {
            for (std::size_t v = 0; v < kVectors; ++v) {
                add_charges(weights.part[v] * factors[r], row + v * kLanes);
            }
        }
    }
}

/// A number for each dimension.
typedef double Pair __attribute__((vector_size(2 * sizeof(double))));

/// A polynomial in each dimension by Horner's rule.
template <std::size_t Terms>
inline Pair polynomial(const double (&terms)[Terms], Pair s) {
    Pair sum = Pair{terms[Terms - 1], terms[Terms - 1]};
    for (std::size_t i = Terms - 1; i-- > 0;) {
        sum = sum * s + terms[i];
    }
    return sum;
}

/// The sum of products of a row, in the order that `gather` has.
inline double product_sum(const Row& a, const Row& b) {
    Lanes product[kVectors];
    for (std::size_t v = 0; v < kVectors; ++v) {
        product[v] = a.part[v] * b.part[v];
    }
#if OVIK_LANES == 2
    const Pair sums = (product[0] + product[2]) + (product[1] + product[3]);
#else
    #if OVIK_LANES == 4
    const Lanes four = product[0] + product[1];
    #else
    const auto four = __builtin_shufflevector(product[0], product[0], 0, 1, 2, 3) +
                      __builtin_shufflevector(product[0], product[0], 4, 5, 6, 7);
    #endif
    const Pair sums =
        __builtin_shufflevector(four, four, 0, 1) + __builtin_shufflevector(four, four, 2, 3);
#endif
    return sums[0] + sums[1];
}

void gather(const MeshPoint* points,
            std::size_t count,
            const MeshField& field,
            double* forces,
            double* z_terms) {
    for (std::size_t i = 0; i < count; ++i) {
        const Offset x = offset(points[i].x);
        const Offset y = offset(points[i].y);
        double weights[kSplineRow];
        double slopes[kSplineRow];
        store_row(weights, polynomials(kSplineCoefficients, y.rest));
        store_row(slopes, polynomials(kSlopeCoefficients, y.rest));
        const double* row = field.cells + y.cell * field.stride + x.cell;
        Row sums{};
        Row slope_sums{};
        for (std::size_t r = 0; r < kSplineOrder; ++r, row += field.stride) {
            const Row cells = load_row(row);
            for (std::size_t v = 0; v < kVectors; ++v) {
                const Lanes weighted = cells.part[v] * weights[r];
                const Lanes sloping = cells.part[v] * slopes[r];
                sums.part[v] = r == 0 ? weighted : sums.part[v] + weighted;
                slope_sums.part[v] = r == 0 ? sloping : slope_sums.part[v] + sloping;
            }
        }
        const Row weights_of_x = polynomials(kSplineCoefficients, x.rest);
        const Pair beyond = Pair{x.rest, y.rest} - 0.5;
        const Pair own = polynomial(field.own.terms, beyond * beyond);
        const Pair own_slopes = beyond * polynomial(field.own.slopes, beyond * beyond);
        const std::size_t n = points[i].index;
        const double slope_of_x = product_sum(polynomials(kSlopeCoefficients, x.rest), sums);
        const double slope_of_y = product_sum(weights_of_x, slope_sums);
        forces[2 * n] = field.force_factor * (slope_of_x - own_slopes[0]);
        forces[2 * n + 1] = field.force_factor * (slope_of_y - own_slopes[1]);
        z_terms[n] = product_sum(weights_of_x, sums) - (own[0] + own[1]);
    }
}

}  // namespace

extern const MeshPoints kMeshPoints;
const MeshPoints kMeshPoints = {&spread, &gather};

}  // namespace ovik::OVIK_KERNELS
