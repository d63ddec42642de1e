#pragma once

#include <cstddef>
#include <vector>

/// How far two maps agree, as plainly as it can be written. Maps are row-major.
namespace plain {

/// The Procrustes disparity of two maps in the plane, from the closed form of two singular values.
double plane_disparity(std::vector<double> A, std::vector<double> B);

/// The share of the K nearest others that rows have in common; of rows equally far the earlier.
double shared_neighbours(const std::vector<double>& A,
                         const std::vector<double>& B,
                         std::size_t dims,
                         std::size_t K);

}  // namespace plain
