#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "tests/plain/plain_far_points.h"
#include "tests/plain/plain_sptree.h"

/// Repulsion from a particle mesh once more, as plainly as it can be written: one thread, one
/// number after the other, Fourier transforms by recursion. Shares nothing with the engine but the
/// roots of unity, which have tests of their own.
namespace plain {

/// The cells under a map in two dimensions.
///
/// - There are 3 to a unit, or 3 * 2^k with the least k, of at most 7, for which the longer side of
///   the map's box is 64 cells or more.
/// - Coordinate y lies cells_per_unit * (y - corner) cells behind the first one; the spline of a
/// point
///   begins at the cell that this is rounded down to and covers six.
/// - Rows are those that splines cover; columns two more, rounded up to a multiple of eight.
struct Mesh {
    double cells_per_unit = 3.0;
    double corner[2] = {};
    std::size_t rows = 0;
    std::size_t columns = 0;
    /// What lies outside it is on no cell.
    Box box;
};

Mesh mesh_under(const Box& box);

Mesh mesh_under(const std::vector<double>& Y);

/// Charges of the cells, row by row, as whole numbers: with b the number of binary digits of N,
/// they are in units of 2^-min(49 - b, 37) / 120^2.
std::vector<std::int64_t> mesh_charges(const Mesh& mesh, const std::vector<double>& Y);

/// The potential that charges of N points have at the cells, times 120^-2.
std::vector<double> mesh_potential(const Mesh& mesh,
                                   const std::vector<std::int64_t>& charges,
                                   std::size_t N);

struct MeshForces {
    /// N x 2.
    std::vector<double> forces;
    std::vector<double> z_terms;
};

MeshForces mesh_forces(const std::vector<double>& Y);

/// The same as a repulsion for gradient descent.
double mesh_repulsion(const std::vector<double>& Y, std::vector<double>& forces);

}  // namespace plain
