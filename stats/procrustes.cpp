#include "stats/procrustes.h"

#include <algorithm>
#include <cmath>

namespace ovik {

namespace {

using Column = std::vector<double>;

/// A square matrix, column by column.
using SquareColumns = std::vector<Column>;

double dot(const Column& a, const Column& b) {
    double sum = 0.0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        sum += a[i] * b[i];
    }
    return sum;
}

/// A rotation of two columns in their plane.
struct Rotation {
    double cosine = 1.0;
    double sine = 0.0;

    void apply(Column& a, Column& b) const {
        for (std::size_t i = 0; i < a.size(); ++i) {
            const double before = a[i];
            a[i] = cosine * before - sine * b[i];
            b[i] = sine * before + cosine * b[i];
        }
    }
};

/// The rotation that brings two columns to right angles.
///
/// @return whether they were not
bool find_rotation(const Column& a, const Column& b, Rotation& rotation) {
    constexpr double kRightAngle = 1e-15;
    const double product = dot(a, b);
    const double aa = dot(a, a);
    const double bb = dot(b, b);
    if (std::fabs(product) <= kRightAngle * std::sqrt(aa * bb)) {
        return false;
    }
    const double cotangent = (bb - aa) / (2.0 * product);
    const double tangent =
        std::copysign(1.0, cotangent) / (std::fabs(cotangent) + std::hypot(1.0, cotangent));
    rotation.cosine = 1.0 / std::sqrt(1.0 + tangent * tangent);
    rotation.sine = rotation.cosine * tangent;
    return true;
}

SquareColumns identity(std::size_t dims) {
    SquareColumns columns(dims, Column(dims, 0.0));
    for (std::size_t d = 0; d < dims; ++d) {
        columns[d][d] = 1.0;
    }
    return columns;
}

/// Brings two columns to right angles, and turns two others by the same rotation.
///
/// @return whether they were not
bool turn_pair(SquareColumns& columns, SquareColumns& others, std::size_t i, std::size_t j) {
    Rotation rotation;
    if (!find_rotation(columns[i], columns[j], rotation)) {
        return false;
    }
    rotation.apply(columns[i], columns[j]);
    rotation.apply(others[i], others[j]);
    return true;
}

/// Brings all columns to right angles by one-sided Jacobi rotations: their norms are then the
/// singular values.
///
/// @return the right singular vectors
SquareColumns make_orthogonal(SquareColumns& columns) {
    constexpr int kMostSweeps = 60;
    SquareColumns right = identity(columns.size());
    bool was_turned = true;
    for (int sweep = 0; was_turned && sweep < kMostSweeps; ++sweep) {
        was_turned = false;
        for (std::size_t i = 0; i < columns.size(); ++i) {
            for (std::size_t j = i + 1; j < columns.size(); ++j) {
                was_turned = turn_pair(columns, right, i, j) || was_turned;
            }
        }
    }
    return right;
}

/// The product of the transpose of A and B.
SquareColumns product_of(const StandardisedMap& A, const StandardisedMap& B) {
    const std::size_t dims = A.dims();
    SquareColumns product(dims, Column(dims, 0.0));
    for (std::size_t n = 0; n < A.values.size(); n += dims) {
        for (std::size_t j = 0; j < dims; ++j) {
            for (std::size_t i = 0; i < dims; ++i) {
                product[j][i] += A.values[n + i] * B.values[n + j];
            }
        }
    }
    return product;
}

/// The part of an axis that is at right angles to all of some vectors of length 1.
Column rest_of_axis(std::size_t axis, std::size_t dims, const SquareColumns& others) {
    Column rest(dims, 0.0);
    rest[axis] = 1.0;
    // Twice: what the first round leaves of the others is of the size of rounding.
    for (int round = 0; round < 2; ++round) {
        for (const Column& other : others) {
            const double along = dot(rest, other);
            for (std::size_t i = 0; i < dims; ++i) {
                rest[i] -= along * other[i];
            }
        }
    }
    return rest;
}

/// Makes a column of length 1; of one that is nearly nothing, a direction that no other has.
///
/// @param found  the columns that have been made so
Column unit_column(Column column, double largest, const SquareColumns& found) {
    constexpr double kNothing = 1e-14;
    if (!(std::sqrt(dot(column, column)) > kNothing * largest)) {
        const std::size_t dims = column.size();
        double longest = -1.0;
        for (std::size_t axis = 0; axis < dims; ++axis) {
            Column rest = rest_of_axis(axis, dims, found);
            if (dot(rest, rest) > longest) {
                longest = dot(rest, rest);
                column = std::move(rest);
            }
        }
    }
    const double norm = std::sqrt(dot(column, column));
    for (double& value : column) {
        value /= norm;
    }
    return column;
}

/// The left singular vectors, of columns at right angles.
SquareColumns left_vectors(const SquareColumns& columns) {
    std::vector<std::size_t> order(columns.size());
    double largest = 0.0;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        order[i] = i;
        largest = std::max(largest, std::sqrt(dot(columns[i], columns[i])));
    }
    // The longest first: those of no length take the directions that are left.
    std::stable_sort(order.begin(), order.end(), [&columns](std::size_t a, std::size_t b) {
        return dot(columns[a], columns[a]) > dot(columns[b], columns[b]);
    });
    SquareColumns left(columns.size());
    SquareColumns found;
    for (const std::size_t i : order) {
        left[i] = unit_column(columns[i], largest, found);
        found.push_back(left[i]);
    }
    return left;
}

}  // namespace

StandardisedMap standardised(MatrixView<const double> map) {
    const std::size_t dims = map.columns;
    StandardisedMap result{
        {map.all().begin(), map.all().end()}, std::vector<double>(dims, 0.0), 0.0};
    std::vector<double>& values = result.values;
    double largest = 0.0;
    for (const double value : values) {
        largest = std::max(largest, std::fabs(value));
    }
    // By a power of two, which rounds nothing, so that no sum gets out of range.
    int exponent = 0;
    std::frexp(largest, &exponent);
    for (double& value : values) {
        value = std::ldexp(value, -exponent);
    }
    double squares = 0.0;
    for (std::size_t d = 0; d < dims; ++d) {
        // From the first point on: points at one place are then exactly at 0.
        const double first = values[d];
        double sum = 0.0;
        for (std::size_t n = 0; n < map.rows; ++n) {
            values[n * dims + d] -= first;
            sum += values[n * dims + d];
        }
        const double mean = sum / static_cast<double>(map.rows);
        for (std::size_t n = 0; n < map.rows; ++n) {
            values[n * dims + d] -= mean;
            squares += values[n * dims + d] * values[n * dims + d];
        }
        result.centre[d] = std::ldexp(first + mean, exponent);
    }
    const double norm = std::sqrt(squares);
    for (double& value : values) {
        value = norm > 0.0 ? value / norm : 0.0;
    }
    result.norm = std::ldexp(norm, exponent);
    return result;
}

double procrustes_disparity(const StandardisedMap& A, const StandardisedMap& B) {
    SquareColumns product = product_of(A, B);
    make_orthogonal(product);
    double overlap = 0.0;
    for (const Column& column : product) {
        overlap += std::sqrt(dot(column, column));
    }
    return std::clamp(1.0 - overlap * overlap, 0.0, 1.0);
}

void ProcrustesMove::apply(MatrixView<double> places) const {
    const std::size_t dims = centre.size();
    std::vector<double> from(dims);
    for (std::size_t n = 0; n < places.rows; ++n) {
        const std::span<double> place = places.row(n);
        for (std::size_t d = 0; d < dims; ++d) {
            from[d] = scale * (place[d] - centre[d]);
        }
        for (std::size_t j = 0; j < dims; ++j) {
            double sum = 0.0;
            for (std::size_t i = 0; i < dims; ++i) {
                sum += from[i] * turn[i * dims + j];
            }
            place[j] = target[j] + sum;
        }
    }
}

ProcrustesMove procrustes_move(MatrixView<const double> onto, MatrixView<const double> map) {
    const StandardisedMap A = standardised(onto);
    const StandardisedMap B = standardised(map);
    const std::size_t dims = onto.columns;
    // A' B = U S V': of all orthogonal matrices, V U' makes the most of the trace of A' B V U'.
    SquareColumns product = product_of(A, B);
    const SquareColumns right = make_orthogonal(product);
    const SquareColumns left = left_vectors(product);
    ProcrustesMove move{B.centre, A.centre, std::vector<double>(dims * dims, 0.0), 1.0};
    for (std::size_t k = 0; k < dims; ++k) {
        for (std::size_t i = 0; i < dims; ++i) {
            for (std::size_t j = 0; j < dims; ++j) {
                move.turn[i * dims + j] += right[k][i] * left[k][j];
            }
        }
    }
    if (A.norm > 0.0 && B.norm > 0.0) {
        move.scale = A.norm / B.norm;
    }
    return move;
}

}  // namespace ovik
