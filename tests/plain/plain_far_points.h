#pragma once

#include <cstddef>
#include <vector>

/// Points far out of a map once more, as plainly as it can be written.
namespace plain {

struct Box {
    double least[2] = {1.0, 1.0};
    double greatest[2] = {-1.0, -1.0};
};

/// Whether a point lies in the box or on its edge.
bool is_inside(const Box& box, const std::vector<double>& Y, std::size_t n);

/// The box under which a mesh lies: of all points; or, where that has more than 65,536 cells, the
/// box whose edges leave 1, 2, 4, ... 64 points outside each side, but fewer than a quarter of all,
/// or one of no points, whichever of these costs least. A cell costs 20, or no price is high enough
/// where there are more than 4,194,304 and more than 16 for each point; k points outside each side
/// cost 4 k N; and no mesh N^2, if that is less than 84 millions.
Box mesh_box(const std::vector<double>& Y);

/// What a mesh has to add to the force (two) and the normalisation of a point.
struct PairSums {
    double force[2] = {};
    double q = 0.0;
};

/// Of all points outside the box on a point, in the order of their first coordinates, then of their
/// second ones.
PairSums from_far_points(const Box& box, const std::vector<double>& Y, std::size_t n);

/// Of all other points on a point outside the box: with b the number of binary digits of N, sums of
/// whole numbers in units of 2^-min(62 - b, 50).
PairSums on_far_point(const std::vector<double>& Y, std::size_t far);

}  // namespace plain
