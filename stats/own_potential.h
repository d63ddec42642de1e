#pragma once

#include "stats/kernels/mesh_points.h"

namespace ovik {

/// The own potential of the points on a mesh.
///
/// At a point that lies on a cell it is 1, to the bits that a wide kernel leaves; between cells it
/// falls short of that by up to 0.0013 with three cells to a unit, by a 150th of that with six.
///
/// With w the spline's weights, times kSplineUnit, and G the potential of a charge in one cell, it
/// is the sum of A_d(x) A_e(y) G(d, e) over cells d and e from -5 to 5, where A_d is the sum of
/// w_k w_(k + d), a polynomial of the squared distance from the middle between two cells. G is
/// even, and smooth: the sum is that of a function of x and one of y to within 2.2e-6 of it. That
/// of x is the mean over all y, in which the mean of A_e is a spline of order 12; the half of the
/// mean over both is in each.
///
/// @param cells_per_unit  3 * 2^k, k from 0 to 7
OwnPotential own_potential(double cells_per_unit);

}  // namespace ovik
