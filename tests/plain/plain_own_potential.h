#pragma once

#include <vector>

namespace plain {

/// The potential that a point's own charge has at the point on a mesh, as a polynomial of s, the
/// square of f - 1/2, where the point lies f behind a cell: the coefficients from the lowest. The
/// polynomials of both dimensions are added.
///
/// On a ring of 64 x 64 cells, whose kernel is 1 / (1 + squared distance) with the spline divided
/// out twice in each dimension: the mean over the one place between cells, less half of the mean
/// over both.
std::vector<double> own_terms(double cells_per_unit);

}  // namespace plain
