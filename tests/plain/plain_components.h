#pragma once

#include <cstddef>
#include <vector>

/// Principal components as a plain one-thread program: the yardstick for the engine, with which it
/// shares no code. Matrices are row-major.
namespace plain {

struct Components {
    /// N x count.
    std::vector<double> scores;
    /// dims x count.
    std::vector<double> loadings;
    std::vector<double> variances;
};

struct Eigenvector {
    double value = 0.0;
    std::vector<double> vector;
};

/// The eigenvectors of the `count` largest eigenvalues of a symmetric matrix, given by its rows.
std::vector<Eigenvector> eigenvectors(std::vector<std::vector<double>> A, std::size_t count);

/// Length 1, and the first of the largest loadings positive.
void normalise(std::vector<double>& loadings);

/// The first `count` principal components of points that are centred already: eigenvectors of the
/// products of columns, or of rows if there are fewer of them.
Components principal_components(const std::vector<double>& points,
                                std::size_t N,
                                std::size_t dims,
                                std::size_t count);

}  // namespace plain
