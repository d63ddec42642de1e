#pragma once

#include <cstddef>
#include <vector>

#include "util/matrix_view.h"

/// Maps of the same rows, laid onto one another.
///
/// @par Source Gower, "Generalized Procrustes analysis", Psychometrika 40:33, 1975; Schönemann, "A
/// generalized solution of the orthogonal Procrustes problem", Psychometrika 31:1, 1966

namespace ovik {

/// A map that is moved to its centre and scaled to a norm of 1.
struct StandardisedMap {
    /// Row-major, rows x dims; all zero if the points of the map are at one place.
    std::vector<double> values;
    /// The mean of the map.
    std::vector<double> centre;
    /// The root of the sum of squared distances from the centre.
    double norm = 0.0;

    [[nodiscard]] std::size_t dims() const { return centre.size(); }
};

/// @param map  finite, at least one row and one column
StandardisedMap standardised(MatrixView<const double> map);

/// The Procrustes disparity of two maps of one shape, as `MapAgreement` tells it.
double procrustes_disparity(const StandardisedMap& A, const StandardisedMap& B);

/// How one map comes to lie on another: moved, turned, mirrored where that helps, and scaled.
struct ProcrustesMove {
    /// What is moved to `target`.
    std::vector<double> centre;
    std::vector<double> target;
    /// Orthogonal, row-major, dims x dims: a row vector times this is turned.
    std::vector<double> turn;
    /// The quotient of the norms: the map gets the spread of the other. 1 if one of them has none.
    double scale = 1.0;

    /// Moves places: target + scale * (place - centre) * turn.
    ///
    /// @param places  rows x dims, changed in place; NaN stays NaN
    void apply(MatrixView<double> places) const;
};

/// The move that brings a map nearest to another, by the sum of squared distances of turned and
/// mirrored maps of one spread. Unlike the scale that makes this sum least, the spread of the other
/// keeps maps that agree little from shrinking.
///
/// @param onto, map  of one shape, as `standardised` takes them; row n of one is row n of the other
ProcrustesMove procrustes_move(MatrixView<const double> onto, MatrixView<const double> map);

}  // namespace ovik
