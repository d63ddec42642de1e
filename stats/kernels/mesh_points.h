#pragma once

#include <cstddef>
#include <cstdint>

#include "util/instruction_set.h"

namespace ovik {

/// Cells of each row, and rows, among which a point's charge is spread: a B-spline of order 6.
constexpr std::size_t kSplineOrder = 6;

/// Cells that the kernels touch in a row: behind the spline's come some to which nothing is added.
constexpr std::size_t kSplineRow = 8;

/// The charges of points are the spline's weights times this in each dimension, which makes its
/// coefficients whole numbers.
constexpr double kSplineUnit = 120.0;

/// Largest charge of a point in one cell, in units of kSplineUnit^2.
constexpr double kLargestCharge = 66.0 * 66.0;

/// A point in a mesh: its place in cells from the first one, and its row in the embedding. Its
/// spline begins with cell (int) x of row (int) y.
struct MeshPoint {
    double x;
    double y;
    std::size_t index;
};

/// Coefficients of the own potential.
constexpr std::size_t kOwnTerms = 6;

/// The part of a potential on a mesh that a point's own charge has at the point, which differs a
/// little with its place between cells.
///
/// With s the square of f - 0.5, it is the polynomial with these terms of the one f, plus that of
/// the other, from the lowest term, by Horner's rule.
struct OwnPotential {
    double terms[kOwnTerms];
    /// Times f - 0.5 the half of the slope, which is what the spline's slopes read of it.
    double slopes[kOwnTerms - 1];
};

/// A potential on the cells of a mesh.
struct MeshField {
    /// Rows of `stride` from cell (0, 0); finite in kSplineRow cells from that where a point's
    /// spline begins.
    const double* cells;
    std::size_t stride;
    OwnPotential own;
    /// Of the forces: they are it times the gradient by cells.
    double force_factor;
};

/// Points onto a mesh, and a field on the mesh at points.
///
/// With f the part of a coordinate behind the point, weight k of the spline, 0 to 5, is the
/// polynomial of `kSplineCoefficients` [k] by Horner's rule, and its slope the derivative of that.
struct MeshPoints {
    /// Adds charges, as whole numbers: weight x times (weight y times scale), rounded to the
    /// nearest and to even.
    ///
    /// @param scale      no charge exceeds 2^51
    /// @param first_row  that of `cells`
    /// @param cells      row-major, from one row to the next `stride`; kSplineRow cells from that
    ///                   where a point's spline begins are there
    void (*spread)(const MeshPoint* points,
                   std::size_t count,
                   double scale,
                   std::size_t first_row,
                   std::size_t stride,
                   std::int64_t* cells);

    /// Reads a potential at points, less what is their own.
    ///
    /// Sums over rows are formed first, in their order, then weighted ones over the columns of
    /// these: with columns 6 and 7 of weight 0, ((0 + 4) + (2 + 6)) + ((1 + 5) + (3 + 7)).
    ///
    /// @param forces   row-major, N x 2; those of these points are written
    /// @param z_terms  N values; those of these points are written: the potential
    void (*gather)(const MeshPoint* points,
                   std::size_t count,
                   const MeshField& field,
                   double* forces,
                   double* z_terms);
};

const MeshPoints& mesh_points(InstructionSet instructions);

}  // namespace ovik
